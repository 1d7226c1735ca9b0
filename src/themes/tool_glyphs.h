#pragma once

#include "core/drawing/drawing_pens.h"

#include <QColor>
#include <QIcon>

// The pictures of a drawing window's tool buttons, drawn rather than loaded so that they take
// the panel's text colour under any theme and stay sharp at any screen scale. `side` is the
// icon's size in device-independent pixels; `pixelRatio` the screen's.

// The pen, highlighter, eraser or text tool, drawn in `ink`; the highlighter's mark in `accent`.
QIcon ToolGlyph(DrawingPens::Tool tool, const QColor &ink, const QColor &accent, int side, qreal pixelRatio);
// A dot of `diameter` pixels (a line width), no wider than the icon.
QIcon WidthGlyph(qreal diameter, const QColor &ink, int side, qreal pixelRatio);
// A rounded square of `color` with an edge that shows on any panel.
QIcon SwatchGlyph(const QColor &color, int side, qreal pixelRatio);
// A plain `size` rectangle of `color` with a grey edge, for colour lists and colour buttons;
// it looks the same when its item is selected, so the chosen colour is not tinted.
QIcon ColorSwatch(const QColor &color, const QSize &size, qreal pixelRatio);
