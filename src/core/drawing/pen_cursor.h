#pragma once

#include "core/drawing/ink_pen.h"

#include <QCursor>

// The pointer shown over a drawing surface for a pen: a dot of the pen's colour and size for
// the pen, a translucent block for the highlighter, a hollow circle for the eraser, each with
// an edge that shows on light and dark boards alike. `diameter` is the mark's width on screen
// in device-independent pixels; the cursor is drawn sharp at the screen's `pixelRatio`.
QCursor PenCursor(const InkPen &pen, qreal diameter, qreal pixelRatio);
