#pragma once

#include "themes/gradient_painter.h"
#include "themes/theme.h"
#include "themes/theme_colors.h"

#include <QColor>

class QWidget;

// Resolves a stored colour to a QColor: a plain 0x00BBGGRR value directly, a system-colour
// reference through the application palette.
QColor ResolveColor(OleColor color);
OleColor ToOleColor(const QColor &color);

// Mixes two colours: weight 255 (or more) gives a, weight 0 gives b; weights below 0
// extrapolate past b and each channel is capped at 0..255.
OleColor BlendColor(OleColor a, OleColor b, int weight);

// Window opacity from the theme, never below 20 so a widget cannot vanish.
void SetWindowOpacity(QWidget *window, int alpha);

// Paints the theme onto a window: keep-on-top, the gradients of its "pfrBAR" and "pfrPANEL"
// frames, then the window's own ThemeElementsUpdate() (called by name when it has one), then
// the edge lines "lneLIGHT"/"lneSHAD" when present.
void ApplyTheme(QWidget *window);

// ApplyTheme() on every top-level window that carries a "pfrPANEL" frame.
void ApplyThemeToAllWindows();

// The two colours of each gradient for a theme, as ApplyTheme paints them.
struct ThemeGradients
{
    OleColor barStart;
    OleColor barEnd;
    OleColor panelStart;
    OleColor panelEnd;
};
ThemeGradients GradientsFor(const Theme &theme);

// A style sheet for push buttons on a themed panel: faces mix a little of the panel's text
// colour into the main colour, so they read on light and dark themes alike.
QString PushButtonStyleSheet(const Theme &theme);

// The edge-line colours ApplyTheme gives "lneLIGHT" and "lneSHAD".
OleColor LightEdgeColor(const Theme &theme);
OleColor ShadowEdgeColor(const Theme &theme);
