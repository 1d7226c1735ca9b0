#include "notes/print_paper.h"

namespace {

constexpr double kInch = 25.4;

// The captions are shown as written, the odd commas and the blank after "Quarto" included.
// Each size is that of the code, which is not always what the caption says ("B5" is the
// 182 by 257 mm of its code).
const QList<PaperChoice> kPapers = {
    {"A3, 297 X 420 mm", 8, 297, 420},
    {"A4, 210 X 297 mm", 9, 210, 297},
    {"A4 Small, 210 X 297 mm", 10, 210, 297},
    {"A5, 148 X 210 mm", 11, 148, 210},
    {"10 X 14", 16, 10 * kInch, 14 * kInch},
    {"11 X 17", 17, 11 * kInch, 17 * kInch},
    {"B4, 250 X 354 mm", 12, 250, 354},
    {"B5, 170 X 257 mm", 13, 182, 257},
    {"Envelope #9, 3 7/8 X 8 7/8 in", 19, 3.875 * kInch, 8.875 * kInch},
    {"Envelope #10, 4 1/8 X 9 1/2 in", 20, 4.125 * kInch, 9.5 * kInch},
    {"Envelope #11, 4 1/2 X 10 3/8 in", 21, 4.5 * kInch, 10.375 * kInch},
    {"Envelope #12, 4 1/2 X 11 in", 22, 4.5 * kInch, 11 * kInch},
    {"Envelope #14, 5 X 11 1/2 in", 23, 5 * kInch, 11.5 * kInch},
    {"Envelope B4, 250 X 353 mm", 33, 250, 353},
    {"Envelope B5, 176 X 250 mm", 34, 176, 250},
    {"Envelope B6, 176 X 125 mm", 35, 176, 125},
    {"Envelope C3, 324 X 458 mm", 29, 324, 458},
    {"Envelope C4, 229 X 324 mm", 30, 229, 324},
    {"Envelope C5, 162 X 229 mm", 28, 162, 229},
    {"Envelope C6, 114 X 162 mm", 31, 114, 162},
    {"Envelope C65, 114 X 229 mm", 32, 114, 229},
    {"Envelope DL, 110 X 220 mm", 27, 110, 220},
    {"Envelope Italy, 110 X 230 mm", 36, 110, 230},
    {"Envelope Monarch 3 7/8 X 7 1/2 in", 37, 3.875 * kInch, 7.5 * kInch},
    {"Envelope Personal 3 5/8 X 6 1/2 in", 38, 3.625 * kInch, 6.5 * kInch},
    {"Executive 7 1/4 X 10 1/2 in", 7, 7.25 * kInch, 10.5 * kInch},
    {"German Legal Fanfold, 8 1/2 X 13 in", 41, 8.5 * kInch, 13 * kInch},
    {"German Standard Fanfold, 8 1/2 X 12 in", 40, 8.5 * kInch, 12 * kInch},
    {"U.S. Standard Fanfold, 14 7/8 X 11 in", 39, 14.875 * kInch, 11 * kInch},
    {"Folio, 8 1/2 X 13 in", 14, 8.5 * kInch, 13 * kInch},
    {"Ledger, 17 X 11 in", 4, 17 * kInch, 11 * kInch},
    {"Legal, 8 1/2 X 14 in", 5, 8.5 * kInch, 14 * kInch},
    {"Letter, 8 1/2 X 11 in", 1, 8.5 * kInch, 11 * kInch},
    {"Letter Small, 8 1/2 X 11 in", 2, 8.5 * kInch, 11 * kInch},
    {"Quarto, 215 X 275 mm ", 15, 215, 275},
    {"Half Note 5 1/2 X 8 1/2 in", 6, 5.5 * kInch, 8.5 * kInch},
    {"Tabloid, 11 X 17 in", 3, 11 * kInch, 17 * kInch},
    {"User-defined", kPaperUserDefined, 0, 0},
};

} // namespace

const QList<PaperChoice> &PaperChoices()
{
    return kPapers;
}

int PaperIndexOfCode(int code)
{
    for (int i = 0; i < kPapers.size(); ++i) {
        if (kPapers[i].code == code)
            return i;
    }
    return -1;
}

QPageSize PageSizeOfPaper(int code, const QSizeF &userSizeMm)
{
    int index = PaperIndexOfCode(code);
    if (index < 0)
        index = PaperIndexOfCode(kPaperA4);
    const PaperChoice &paper = kPapers[index];
    const QSizeF size = paper.code == kPaperUserDefined ? userSizeMm : QSizeF(paper.widthMm, paper.heightMm);
    // A size within a few points of a standard one takes the standard one's id and name.
    return QPageSize(size, QPageSize::Millimeter, QString(), QPageSize::FuzzyMatch);
}
