#include "themes/theme_painter.h"

#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "themes/painted_frame.h"

#include <QApplication>
#include <QMetaObject>
#include <QWidget>

namespace {

const char *const kThemeElementsUpdate = "ThemeElementsUpdate";

// Gives an edge line its colour whichever way it draws itself: a QFrame line uses the
// foreground, a filled widget the background.
void colourEdgeLine(QWidget *line, OleColor colour)
{
    const QColor c = ResolveColor(colour);
    QPalette pal = line->palette();
    pal.setColor(QPalette::WindowText, c);
    pal.setColor(QPalette::Window, c);
    pal.setColor(QPalette::Light, c);
    pal.setColor(QPalette::Dark, c);
    pal.setColor(QPalette::Mid, c);
    line->setPalette(pal);
    line->setProperty("borderColor", c);
}

void callThemeElementsUpdate(QWidget *window)
{
    // Dialogs have no such procedure; look first so that no warning is printed for them.
    if (window->metaObject()->indexOfMethod("ThemeElementsUpdate()") < 0)
        return;
    QMetaObject::invokeMethod(window, kThemeElementsUpdate, Qt::DirectConnection);
}

} // namespace

QColor ResolveColor(OleColor color)
{
    const OleColor plain = TranslateColor(color);
    return QColor(RedOf(plain), GreenOf(plain), BlueOf(plain));
}

OleColor ToOleColor(const QColor &c)
{
    const QColor rgb = c.toRgb();
    return OleColor(rgb.red()) | (OleColor(rgb.green()) << 8) | (OleColor(rgb.blue()) << 16);
}

OleColor BlendColor(OleColor a, OleColor b, int weight)
{
    const OleColor ca = TranslateColor(a);
    const OleColor cb = TranslateColor(b);
    const double w = weight >= 256 ? 255.0 : double(weight);
    auto mix = [w](int x, int y) { return x * w / 255.0 + y * (255.0 - w) / 255.0; };
    return ComposeColor(mix(RedOf(ca), RedOf(cb)), mix(GreenOf(ca), GreenOf(cb)),
                        mix(BlueOf(ca), BlueOf(cb)));
}

void SetWindowOpacity(QWidget *window, int alpha)
{
    if (!window)
        return;
    const double opacity = qBound(20, alpha, 255) / 255.0;
    // Setting it again costs a round trip, and on Wayland, which has no window opacity, a
    // warning each time a widget is painted with an opaque theme.
    if (qFuzzyCompare(window->windowOpacity(), opacity))
        return;
    window->setWindowOpacity(opacity);
}

ThemeGradients GradientsFor(const Theme &t)
{
    const OleColor first = BlendColor(t.MainColor, kShadowGrey, 555 - t.MainContrast);
    return {first, BlendColor(t.MainColor, kWindowBackground, 55 - t.MainContrast), first,
            BlendColor(t.MainColor, kWindowBackground, 255 - t.MainContrast)};
}

OleColor LightEdgeColor(const Theme &t)
{
    return BlendColor(GradientsFor(t).panelStart, kWindowBackground, 355 - t.MainContrast);
}

OleColor ShadowEdgeColor(const Theme &t)
{
    return BlendColor(GradientsFor(t).panelStart, kShadowGrey, 455 - t.MainContrast);
}

QString PushButtonStyleSheet(const Theme &t)
{
    auto css = [](OleColor c) { return ResolveColor(c).name(); };
    return QStringLiteral("QPushButton { color: %1; background: %2; border: 1px solid %3; border-radius: 4px;"
                          " padding: 5px 14px; font-family: \"%4\"; }"
                          "QPushButton:hover { background: %5; }"
                          "QPushButton:pressed { background: %6; }"
                          // Enter's button stands out; the keyboard focus is dotted.
                          "QPushButton:default { border: 2px solid %1; }"
                          "QPushButton:focus { border: 2px dotted %1; }"
                          "QPushButton:disabled { color: %3; }")
        .arg(ReadableOn(ResolveColor(BlendColor(t.PanelColor, t.MainColor, 40)), ResolveColor(t.PanelColor)).name(),
             css(BlendColor(t.PanelColor, t.MainColor, 40)),
             css(BlendColor(t.PanelColor, t.MainColor, 110)), t.PanelFont,
             css(BlendColor(t.PanelColor, t.MainColor, 70)), css(BlendColor(t.PanelColor, t.MainColor, 100)));
}

void ApplyTheme(QWidget *window)
{
    if (!window)
        return;
    const Theme &t = CurrentTheme();
    SetKeepOnTop(window, ReadBoolDetail(QStringLiteral("mdb_SET"), QStringLiteral("On-Top"), false));

    auto *panel = window->findChild<PaintedFrame *>(QStringLiteral("pfrPANEL"));
    auto *bar = window->findChild<PaintedFrame *>(QStringLiteral("pfrBAR"));
    for (PaintedFrame *frame : {panel, bar}) {
        if (frame)
            frame->setBackgroundColor(t.MainColor);
    }
    const ThemeGradients g = GradientsFor(t);
    if (bar)
        bar->setGradient(t.BarAngle, g.barStart, g.barEnd);
    if (panel)
        panel->setGradient(t.PanelAngle, g.panelStart, g.panelEnd);

    callThemeElementsUpdate(window);

    if (auto *light = window->findChild<QWidget *>(QStringLiteral("lneLIGHT")))
        colourEdgeLine(light, LightEdgeColor(t));
    if (auto *shadow = window->findChild<QWidget *>(QStringLiteral("lneSHAD")))
        colourEdgeLine(shadow, ShadowEdgeColor(t));
}

void ApplyThemeToAllWindows()
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return;
    // Hidden windows too, so that a widget shown again later is already in the new theme.
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->findChild<PaintedFrame *>(QStringLiteral("pfrPANEL")))
            ApplyTheme(w);
    }
}
