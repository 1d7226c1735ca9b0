// Placeholder until the theme module lands.
#include "themes/theme_painter.h"

#include "themes/painted_frame.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>

QColor ResolveColor(OleColor color)
{
    if (color & kSystemColorFlag)
        return QApplication::palette().color(QPalette::Base);
    return QColor(color & 0xFF, (color >> 8) & 0xFF, (color >> 16) & 0xFF);
}

OleColor ToOleColor(const QColor &c)
{
    return OleColor(c.red()) | (OleColor(c.green()) << 8) | (OleColor(c.blue()) << 16);
}

OleColor BlendColor(OleColor a, OleColor b, int weight)
{
    const QColor ca = ResolveColor(a), cb = ResolveColor(b);
    weight = qMin(weight, 255);
    auto mix = [weight](int x, int y) { return qBound(0, int(x * weight / 255.0 + y * (255 - weight) / 255.0), 255); };
    return ToOleColor(QColor(mix(ca.red(), cb.red()), mix(ca.green(), cb.green()), mix(ca.blue(), cb.blue())));
}

void SetWindowOpacity(QWidget *window, int alpha)
{
    window->setWindowOpacity(qBound(20, alpha, 255) / 255.0);
}

ThemeGradients GradientsFor(const Theme &t)
{
    const OleColor first = BlendColor(t.MainColor, kShadowGrey, 555 - t.MainContrast);
    return {first, BlendColor(t.MainColor, kWindowBackground, 55 - t.MainContrast), first,
            BlendColor(t.MainColor, kWindowBackground, 255 - t.MainContrast)};
}

void ApplyTheme(QWidget *window)
{
    const Theme &t = CurrentTheme();
    const ThemeGradients g = GradientsFor(t);
    if (auto *bar = window->findChild<PaintedFrame *>(QStringLiteral("pfrBAR")))
        bar->setGradient(t.BarAngle, g.barStart, g.barEnd);
    if (auto *panel = window->findChild<PaintedFrame *>(QStringLiteral("pfrPANEL")))
        panel->setGradient(t.PanelAngle, g.panelStart, g.panelEnd);
    QMetaObject::invokeMethod(window, "ThemeElementsUpdate", Qt::DirectConnection);
}

void ApplyThemeToAllWindows()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->findChild<PaintedFrame *>(QStringLiteral("pfrPANEL")))
            ApplyTheme(w);
    }
}
