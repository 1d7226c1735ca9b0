#include "time/font_fit.h"

#include <QFontMetricsF>

int FontFit::largestPixelSize(const std::function<bool(int)> &fits, int minimum, int maximum)
{
    int lo = minimum; // assumed to fit (the floor)
    int hi = maximum;
    while (lo < hi) {
        const int mid = lo + (hi - lo + 1) / 2;
        if (fits(mid))
            lo = mid;
        else
            hi = mid - 1;
    }
    return lo;
}

QFont FontFit::withPixelSize(const QFont &base, int pixels)
{
    QFont f = base;
    f.setPixelSize(qMax(1, pixels));
    return f;
}

QFont FontFit::fitting(const QFont &base, const QString &text, int width, int height)
{
    const int size = largestPixelSize([&](int px) {
        const QFontMetricsF fm(withPixelSize(base, px));
        return fm.horizontalAdvance(text) <= width && fm.height() <= height;
    });
    return withPixelSize(base, size);
}

QString FontFit::widestDigits(const QFont &font, const QString &text)
{
    const QFontMetricsF fm(withPixelSize(font, 100));
    QChar widest = QLatin1Char('0');
    for (char c = '1'; c <= '9'; ++c) {
        if (fm.horizontalAdvance(QLatin1Char(c)) > fm.horizontalAdvance(widest))
            widest = QLatin1Char(c);
    }
    QString out = text;
    for (QChar &c : out) {
        if (c.isDigit())
            c = widest;
    }
    return out;
}
