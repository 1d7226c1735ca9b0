#pragma once

#include <QMarginsF>
#include <QPageLayout>
#include <QSizeF>
#include <QString>

// The page setup of the print preview, kept under "fnte_PRN\Details".
//
// Margins are in centimetres from the edge of the paper: "Print Page Margin 0" to "3" hold the
// left, top, right and bottom margin. The title and the two fields exist twice: the page setup
// writes "Print Page Text ..." and the printing reads "Print Text ...", two separate sets of
// values, as they always were.
struct PrintSettings
{
    int paperCode = 9;                       // "Print Page Paper", the printer paper-size code
    QSizeF userPaperCm = QSizeF(21.0, 29.7); // the user-defined paper
    QPageLayout::Orientation orientation = QPageLayout::Portrait;
    double marginCm[4] = {0.0, 0.0, 0.0, 0.0}; // left, top, right, bottom
    bool sameMargins = false;                  // "Print Check Lock": one margin for every side

    // What the head and foot show.
    bool title = true;
    bool headLine = true;
    bool date = true;
    bool time = false;
    bool footName = false;
    bool footFileName = true;
    bool footLine = true;
    bool pageNumber = true;

    // Written by the page setup.
    QString pageTitle = QStringLiteral("Journal Report");
    QString pageField1;
    QString pageField2;
    // Read by the printing.
    QString printTitle = QStringLiteral("Journal Report.");
    QString printField1;
    QString printField2;

    int zoomPercent = 50; // "Print Zoom"

    static constexpr double kLargestMarginCm = 20.0;
    static constexpr double kSmallestPaperCm = 2.0;
    static constexpr double kLargestPaperCm = 300.0;

    // The four margins in millimetres, as a page layout takes them.
    QMarginsF marginsMm() const;
    QSizeF userPaperMm() const { return userPaperCm * 10.0; }

    static PrintSettings load();
    void save() const;
};

inline constexpr char kPrintWindowName[] = "fnte_PRN";
// How orientation is stored ("Print Page Orientation").
inline constexpr char kPortrait[] = "PORTRAIT";
inline constexpr char kLandscape[] = "LANDSCAPE";

// A typed decimal number with a full stop as its decimal point: "2,5" and " 2.5 " give "2.5".
// Text that is no number comes back trimmed but otherwise as it was.
QString NormaliseDecimalPoint(const QString &text);
// How a decimal number is stored and shown: a full stop whatever the locale, at least one
// decimal ("2.5", "0.0").
QString DecimalText(double value);
// The number in `text` (either decimal point), or `fallback` when there is none.
double ParseDecimal(const QString &text, double fallback, bool *ok = nullptr);
