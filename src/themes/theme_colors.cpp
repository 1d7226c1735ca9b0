#include "themes/theme_colors.h"

#include "themes/theme_painter.h"

#include <QGuiApplication>
#include <cmath>

namespace {

struct SystemColorEntry
{
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};

// The system colour numbers of the stored themes, each mapped to the palette role that plays
// the same part on this desktop.
constexpr SystemColorEntry kSystemColors[] = {
    {QPalette::Active, QPalette::Button},          // 0 scroll bar
    {QPalette::Active, QPalette::Dark},            // 1 desktop
    {QPalette::Active, QPalette::Highlight},       // 2 active caption
    {QPalette::Inactive, QPalette::Mid},           // 3 inactive caption
    {QPalette::Active, QPalette::Window},          // 4 menu
    {QPalette::Active, QPalette::Base},            // 5 window background
    {QPalette::Active, QPalette::Shadow},          // 6 window frame
    {QPalette::Active, QPalette::WindowText},      // 7 menu text
    {QPalette::Active, QPalette::Text},            // 8 window text
    {QPalette::Active, QPalette::HighlightedText}, // 9 active caption text
    {QPalette::Active, QPalette::Window},          // 10 active border
    {QPalette::Inactive, QPalette::Window},        // 11 inactive border
    {QPalette::Active, QPalette::Mid},             // 12 application workspace
    {QPalette::Active, QPalette::Highlight},       // 13 highlight
    {QPalette::Active, QPalette::HighlightedText}, // 14 highlighted text
    {QPalette::Active, QPalette::Button},          // 15 button face
    {QPalette::Active, QPalette::Dark},            // 16 button shadow
    {QPalette::Disabled, QPalette::Text},          // 17 grey text
    {QPalette::Active, QPalette::ButtonText},      // 18 button text
    {QPalette::Disabled, QPalette::WindowText},    // 19 inactive caption text
    {QPalette::Active, QPalette::Light},           // 20 3-D highlight
    {QPalette::Active, QPalette::Shadow},          // 21 3-D dark shadow
    {QPalette::Active, QPalette::Midlight},        // 22 3-D light
    {QPalette::Active, QPalette::ToolTipText},     // 23 tooltip text
    {QPalette::Active, QPalette::ToolTipBase},     // 24 tooltip background
    {QPalette::Active, QPalette::Base},            // 25 (unused number, reads as window)
    {QPalette::Active, QPalette::Link},            // 26 hot-tracked item
    {QPalette::Active, QPalette::Highlight},       // 27 active caption gradient
    {QPalette::Inactive, QPalette::Mid},           // 28 inactive caption gradient
    {QPalette::Active, QPalette::Highlight},       // 29 menu highlight
    {QPalette::Active, QPalette::Window},          // 30 menu bar
};

constexpr int kSystemColorCount = int(sizeof(kSystemColors) / sizeof(kSystemColors[0]));

int capChannel(double value)
{
    if (!(value > 0.0)) // negatives and NaN
        return 0;
    if (value > 255.0)
        return 255;
    return int(std::nearbyint(value));
}

} // namespace

bool SystemColorRole(int index, QPalette::ColorGroup *group, QPalette::ColorRole *role)
{
    if (index < 0 || index >= kSystemColorCount)
        return false;
    *group = kSystemColors[index].group;
    *role = kSystemColors[index].role;
    return true;
}

OleColor TranslateColor(OleColor color)
{
    if (!(color & kSystemColorFlag))
        return color & 0x00FFFFFFu;
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
    if (!SystemColorRole(int(color & ~kSystemColorFlag), &group, &role))
        return 0xFFFFFFFFu;
    // Without a GUI application (command-line tools, model tests) Qt's built-in scheme stands in.
    const QPalette palette = qobject_cast<QGuiApplication *>(QCoreApplication::instance())
                                 ? QGuiApplication::palette()
                                 : QPalette();
    return ToOleColor(palette.color(group, role));
}

OleColor ComposeColor(double red, double green, double blue)
{
    return OleColor(capChannel(red)) | (OleColor(capChannel(green)) << 8) |
           (OleColor(capChannel(blue)) << 16);
}

double RelativeLuminance(const QColor &color)
{
    const auto channel = [](double v) { return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
    return 0.2126 * channel(color.redF()) + 0.7152 * channel(color.greenF()) + 0.0722 * channel(color.blueF());
}

QColor ReadableOn(const QColor &background, const QColor &wanted, double least)
{
    if (ContrastRatio(wanted, background) >= least)
        return wanted;
    const QColor black(Qt::black);
    const QColor white(Qt::white);
    return ContrastRatio(black, background) >= ContrastRatio(white, background) ? black : white;
}

QColor SubduedOn(const QColor &background, const QColor &text, double least)
{
    // Half-way towards the background at most; a greyed entry must still be read.
    for (int share = 50; share > 0; share -= 5) {
        const double t = share / 100.0;
        const QColor mixed =
            QColor::fromRgbF(float(text.redF() + (background.redF() - text.redF()) * t),
                             float(text.greenF() + (background.greenF() - text.greenF()) * t),
                             float(text.blueF() + (background.blueF() - text.blueF()) * t));
        if (ContrastRatio(mixed, background) >= least)
            return mixed;
    }
    return ReadableOn(background, text, least);
}

double ContrastRatio(const QColor &a, const QColor &b)
{
    const double la = RelativeLuminance(a);
    const double lb = RelativeLuminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}
