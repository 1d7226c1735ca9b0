#pragma once

#include <QFont>
#include <QString>
#include <functional>

// Finds the largest font for a text box, so the time texts fill their panels at any size.
class FontFit
{
public:
    // The largest pixel size in [minimum, maximum] for which fits(size) holds (fits must be
    // monotonic: true up to some size, false beyond); minimum when none fits.
    static int largestPixelSize(const std::function<bool(int)> &fits, int minimum = 6, int maximum = 800);

    // base with the largest pixel size at which text fits in width x height (one line).
    static QFont fitting(const QFont &base, const QString &text, int width, int height);

    // text with every digit replaced by the font's widest digit, so that a fit made for it
    // holds for every time of the same shape and the font does not jump from one second
    // to the next.
    static QString widestDigits(const QFont &font, const QString &text);

    static QFont withPixelSize(const QFont &base, int pixels);
};
