#pragma once

#include "core/drawing/ink_pen.h"
#include "core/drawing/stroke_smoother.h"

#include <QRect>

class QPainter;

// Drawing ink onto a layer. The pen and the highlighter draw in their colour (the highlighter
// opaque here: it is laid down on a layer of its own and made translucent as a whole, so that
// it does not darken where it crosses itself); the eraser clears to transparent.

// Draws one piece of a freehand line, round at both ends so that pieces join without seams.
void PaintInkSegment(QPainter &painter, const InkSegment &segment, const InkPen &pen);

// Draws a straight line or a rectangle from `from` to `to`. A rectangle of the pen is an
// outline; of the highlighter and the eraser a filled area (a highlighted block, a cleared one).
void PaintInkShape(QPainter &painter, InkShape shape, const QPointF &from, const QPointF &to,
                   const InkPen &pen);

// The pixels a piece or a shape can touch, anti-aliasing included.
QRect InkSegmentBounds(const InkSegment &segment, const InkPen &pen);
QRect InkShapeBounds(InkShape shape, const QPointF &from, const QPointF &to, const InkPen &pen);
