#include "time/font_fit.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
// Text grows in proportion to its pixel size, give or take the rounding of hinted glyphs.
constexpr int kReferencePixels = 100;
} // namespace

int FontFit::largestPixelSize(const std::function<double(int)> &usage, int minimum, int maximum)
{
    if (maximum <= minimum)
        return minimum;
    const double atReference = usage(kReferencePixels);
    const double estimate = atReference > 0 ? kReferencePixels / atReference : maximum;
    const int guess = int(std::clamp<double>(std::floor(estimate), minimum, maximum));
    // Gallop away from the guess until the answer is bracketed, then bisect the bracket.
    int lo = minimum; // fits (the floor)
    int hi = maximum; // the answer is at most this
    if (usage(guess) <= 1) {
        lo = guess;
        for (int step = 1; lo < hi; step *= 2) {
            const int next = std::min(hi, lo + step);
            if (usage(next) > 1) {
                hi = next - 1;
                break;
            }
            lo = next;
        }
    } else {
        hi = guess - 1;
        for (int step = 1; lo < hi; step *= 2) {
            const int next = std::max(lo, hi - step + 1);
            if (usage(next) <= 1) {
                lo = next;
                break;
            }
            hi = next - 1;
        }
    }
    while (lo < hi) {
        const int mid = lo + (hi - lo + 1) / 2;
        if (usage(mid) <= 1)
            lo = mid;
        else
            hi = mid - 1;
    }
    return lo;
}

double FontFit::usage(double width, double height, double roomWidth, double roomHeight)
{
    if (roomWidth <= 0 || roomHeight <= 0)
        return std::numeric_limits<double>::infinity();
    return std::max(width / roomWidth, height / roomHeight);
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
        return usage(fm.horizontalAdvance(text), fm.height(), width, height);
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
