#pragma once

#include <QFont>
#include <QString>
#include <functional>

// Finds the largest font for a text box, so the time texts fill their panels at any size.
class FontFit
{
public:
    // The largest pixel size in [minimum, maximum] whose usage(size) is at most 1; minimum when
    // none is. usage is the share of the room a text at that size takes (the larger of its width
    // over the room's width and its height over the room's height) and must grow with the size.
    // Every size measured is a font looked up and loaded, so the search starts where the
    // usage at one size puts it, and measures a handful of sizes, not the ten a bisection would.
    static int largestPixelSize(const std::function<double(int)> &usage, int minimum = 6, int maximum = 800);

    // The larger of width / room width and height / room height; infinite for an empty room.
    static double usage(double width, double height, double roomWidth, double roomHeight);

    // base with the largest pixel size at which text fits in width x height (one line).
    static QFont fitting(const QFont &base, const QString &text, int width, int height);

    // text with every digit replaced by the font's widest digit, so that a fit made for it
    // holds for every time of the same shape and the font does not jump from one second
    // to the next.
    static QString widestDigits(const QFont &font, const QString &text);

    static QFont withPixelSize(const QFont &base, int pixels);
};
