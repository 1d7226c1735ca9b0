#pragma once

#include <QList>
#include <QPageSize>
#include <QSizeF>
#include <QString>

// The papers the page setup offers: their captions, in the order shown, and the standard
// printer paper-size code each is stored as ("Print Page Paper"), with its size.
struct PaperChoice
{
    const char *caption;
    int code;          // the printer paper-size code (9 is A4, 256 the user-defined size)
    double widthMm;    // portrait; 0 for the user-defined size
    double heightMm;
};

inline constexpr int kPaperA4 = 9;
inline constexpr int kPaperUserDefined = 256;

const QList<PaperChoice> &PaperChoices();

// The index of `code` in PaperChoices(), -1 when no paper has it.
int PaperIndexOfCode(int code);

// The page size of paper `code`, portrait; `userSizeMm` for the user-defined size. An unknown
// code gives A4. Known sizes come out as Qt's standard sizes, so printers recognise them.
QPageSize PageSizeOfPaper(int code, const QSizeF &userSizeMm);
