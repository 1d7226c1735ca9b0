#include "notes/print_settings.h"

#include "core/settings_store.h"

#include <QRegularExpression>

#include <cmath>

namespace {

const QString kWindow = QLatin1String(kPrintWindowName);
const QString kPaper = QStringLiteral("Print Page Paper");
const QString kUserWidth = QStringLiteral("Print Page User Width");
const QString kUserHeight = QStringLiteral("Print Page User Height");
const QString kOrientation = QStringLiteral("Print Page Orientation");
const QString kMargin = QStringLiteral("Print Page Margin %1");
const QString kLock = QStringLiteral("Print Check Lock");
const QString kTitle = QStringLiteral("Print Page Check Title");
const QString kHeadLine = QStringLiteral("Print Page Check Head line");
const QString kDate = QStringLiteral("Print Page Check Date");
const QString kTime = QStringLiteral("Print Page Check Time");
const QString kFootName = QStringLiteral("Print Page Check Foot Name");
const QString kFootFileName = QStringLiteral("Print Page Check Foot File Name");
const QString kFootLine = QStringLiteral("Print Page Check Foot line");
const QString kPageNumber = QStringLiteral("Print Page Check Page lngNUMBERVAL");
const QString kPageTitle = QStringLiteral("Print Page Text Title");
const QString kPageField = QStringLiteral("Print Page Text Field %1");
const QString kPrintTitle = QStringLiteral("Print Text Title");
const QString kPrintField = QStringLiteral("Print Text Field %1");
const QString kZoom = QStringLiteral("Print Zoom");

// A check value is on only when it is 1, as stored.
bool readCheck(const QString &name, bool defaultValue)
{
    return ReadIntDetail(kWindow, name, defaultValue ? 1 : 0) == 1;
}

void writeCheck(const QString &name, bool on)
{
    WriteDetail(kWindow, name, on ? QStringLiteral("1") : QStringLiteral("0"));
}

} // namespace

QString DecimalText(double value)
{
    QString text = QString::number(value, 'f', 2);
    while (text.endsWith(QLatin1Char('0')) && !text.endsWith(QLatin1String(".0")))
        text.chop(1);
    return text;
}

QString NormaliseDecimalPoint(const QString &text)
{
    QString result = text.trimmed();
    // One comma with digits around it is a decimal comma; "1,000.5" keeps its meaning.
    static const QRegularExpression decimalComma(QStringLiteral("^([+-]?\\d*),(\\d*)$"));
    const QRegularExpressionMatch match = decimalComma.match(result);
    if (match.hasMatch() && (match.capturedLength(1) > 0 || match.capturedLength(2) > 0))
        result = match.captured(1) + QLatin1Char('.') + match.captured(2);
    return result;
}

double ParseDecimal(const QString &text, double fallback, bool *ok)
{
    bool converted = false;
    const double value = NormaliseDecimalPoint(text).toDouble(&converted);
    converted = converted && std::isfinite(value);
    if (ok)
        *ok = converted;
    return converted ? value : fallback;
}

QMarginsF PrintSettings::marginsMm() const
{
    return QMarginsF(marginCm[0] * 10.0, marginCm[1] * 10.0, marginCm[2] * 10.0, marginCm[3] * 10.0);
}

PrintSettings PrintSettings::load()
{
    PrintSettings s;
    s.paperCode = ReadIntDetail(kWindow, kPaper, s.paperCode);
    const double width = ParseDecimal(ReadDetail(kWindow, kUserWidth, QString()), s.userPaperCm.width());
    const double height = ParseDecimal(ReadDetail(kWindow, kUserHeight, QString()), s.userPaperCm.height());
    s.userPaperCm = QSizeF(qBound(kSmallestPaperCm, width, kLargestPaperCm),
                           qBound(kSmallestPaperCm, height, kLargestPaperCm));
    s.orientation = ReadDetail(kWindow, kOrientation, QLatin1String(kPortrait)) == QLatin1String(kLandscape)
                        ? QPageLayout::Landscape
                        : QPageLayout::Portrait;
    for (int i = 0; i < 4; ++i) {
        const double margin = ParseDecimal(ReadDetail(kWindow, kMargin.arg(i), QStringLiteral("0.0")), 0.0);
        s.marginCm[i] = qBound(0.0, margin, kLargestMarginCm);
    }
    s.sameMargins = readCheck(kLock, false);
    s.title = readCheck(kTitle, s.title);
    s.headLine = readCheck(kHeadLine, s.headLine);
    s.date = readCheck(kDate, s.date);
    s.time = readCheck(kTime, s.time);
    s.footName = readCheck(kFootName, s.footName);
    s.footFileName = readCheck(kFootFileName, s.footFileName);
    s.footLine = readCheck(kFootLine, s.footLine);
    s.pageNumber = readCheck(kPageNumber, s.pageNumber);
    s.pageTitle = ReadDetail(kWindow, kPageTitle, s.pageTitle);
    s.pageField1 = ReadDetail(kWindow, kPageField.arg(1), QString());
    s.pageField2 = ReadDetail(kWindow, kPageField.arg(2), QString());
    s.printTitle = ReadDetail(kWindow, kPrintTitle, s.printTitle);
    s.printField1 = ReadDetail(kWindow, kPrintField.arg(1), QString());
    s.printField2 = ReadDetail(kWindow, kPrintField.arg(2), QString());
    s.zoomPercent = ReadIntDetail(kWindow, kZoom, s.zoomPercent);
    return s;
}

void PrintSettings::save() const
{
    WriteDetail(kWindow, kPaper, QString::number(paperCode));
    WriteDetail(kWindow, kUserWidth, DecimalText(userPaperCm.width()));
    WriteDetail(kWindow, kUserHeight, DecimalText(userPaperCm.height()));
    WriteDetail(kWindow, kOrientation,
                QLatin1String(orientation == QPageLayout::Landscape ? kLandscape : kPortrait));
    for (int i = 0; i < 4; ++i)
        WriteDetail(kWindow, kMargin.arg(i), DecimalText(marginCm[i]));
    writeCheck(kLock, sameMargins);
    writeCheck(kTitle, title);
    writeCheck(kHeadLine, headLine);
    writeCheck(kDate, date);
    writeCheck(kTime, time);
    writeCheck(kFootName, footName);
    writeCheck(kFootFileName, footFileName);
    writeCheck(kFootLine, footLine);
    writeCheck(kPageNumber, pageNumber);
    WriteDetail(kWindow, kPageTitle, pageTitle);
    WriteDetail(kWindow, kPageField.arg(1), pageField1);
    WriteDetail(kWindow, kPageField.arg(2), pageField2);
    WriteDetail(kWindow, kZoom, QString::number(zoomPercent));
}
