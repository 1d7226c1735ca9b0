#include "notes/line_spacing.h"

#include <QLocale>

int LineSpacingPresetIndex(const QString &valueText)
{
    for (int i = 0; i < kCustomLineSpacingIndex; ++i) {
        if (valueText == QLatin1String(kLineSpacingPresets[i].value))
            return i;
    }
    return kCustomLineSpacingIndex;
}

QString FormatLineSpacing(double multiple)
{
    QString text = QString::number(multiple, 'f', 2);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.endsWith(u'.'))
        text.chop(1);
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

LineSpacingInput ParseLineSpacing(const QString &typed)
{
    LineSpacingInput input;
    const QString text = typed.trimmed().replace(u',', u'.');
    bool isNumber = false;
    const double value = QLocale::c().toDouble(text, &isNumber);
    // Written this way round so that NaN is refused too.
    if (isNumber && value >= kSmallestLineSpacing && value <= kLargestLineSpacing) {
        input.accepted = true;
        input.multiple = value;
        return input;
    }
    input.reason = isNumber ? QStringLiteral("The line spacing must be between 0.5 and 5.")
                            : QStringLiteral("\"%1\" is not a line spacing. Type a number such as 1.3.")
                                  .arg(typed.trimmed());
    return input;
}
