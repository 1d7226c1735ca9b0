#pragma once

#include "themes/theme.h"

#include <QColor>
#include <QPalette>

// Colour helpers of the theme: stored colours are 0x00BBGGRR values or references to a system
// colour (0x80000000 + n). References are resolved against the application palette only when
// painting, so a theme follows the desktop's colour scheme.

// The palette role standing in for system colour `index` (0..30); false for unknown numbers.
bool SystemColorRole(int index, QPalette::ColorGroup *group, QPalette::ColorRole *role);

// The plain 0x00BBGGRR value of a stored colour. A system-colour reference is looked up in the
// application palette; one that cannot be translated gives 0xFFFFFFFF (-1, white once composed).
OleColor TranslateColor(OleColor color);

// The red, green and blue channels of a plain value, taken from its low three bytes.
inline int RedOf(OleColor c)
{
    return int(c & 0xFFu);
}
inline int GreenOf(OleColor c)
{
    return int((c & 0xFF00u) / 256u);
}
inline int BlueOf(OleColor c)
{
    return int((c & 0xFF0000u) / 65536u);
}

// Composes a colour from channels, each capped to 0..255 and rounded to the nearest whole
// number (halves to even).
OleColor ComposeColor(double red, double green, double blue);

// Relative luminance of a colour (0 black .. 1 white), as the web accessibility guidelines
// define it for judging text contrast.
double RelativeLuminance(const QColor &color);

// The contrast ratio of two colours, from 1 (the same) to 21 (black on white). Text needs 4.5
// to read comfortably and 3 at the very least.
double ContrastRatio(const QColor &a, const QColor &b);

// `wanted` when it reads on `background` at `least` contrast, else black or white, whichever
// reads better: for text that must be read whatever the theme (questions, buttons, menus).
QColor ReadableOn(const QColor &background, const QColor &wanted, double least = 4.5);

// `text` moved part way towards `background` for a quieter, greyed look, but no further than
// still reads at `least` contrast; `text` itself, or black or white, when even that is too faint.
QColor SubduedOn(const QColor &background, const QColor &text, double least = 4.5);
