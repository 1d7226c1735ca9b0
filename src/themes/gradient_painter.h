#pragma once

#include "themes/theme.h"

#include <QPointF>
#include <QSize>

class QImage;
class QPainter;

// The angled two-colour gradient of the bar and panel frames.
//
// The area is covered with one-pixel lines, one per entry of a colour ramp from colour 1 to
// colour 2. The lines are laid out for angle 0 (horizontal lines stepping down a square whose
// side is the larger of width and height, each as long as that square's diagonal) and their end
// points are then turned about the centre by the angle with RotatePoint(). RotatePoint takes
// both offsets from the point's x, so every turned line falls on one slanted streak through
// the frame: that streak over the frame's flat background is the look of the program's themes,
// and it is kept exactly.

// The angle brought into 0..360: angle - Int(angle / 360) * 360, Int rounding down, so that
// -90 becomes 270 and 360 becomes 0.
double NormalizeGradientAngle(double angle);

// Turns `point` about `centre` by `angle` degrees, in single precision. Both offsets are taken
// from point.x (dy = point.x - centre.y), which the gradients' look depends on.
QPointF RotatePoint(QPointF centre, QPointF point, double angle);

// Paints the gradient over a client area of `size` pixels (origin at the painter's 0,0).
// System-colour references below 25 are resolved from the palette first; other references are
// used as they stand. Returns false, painting nothing, when the area is narrower or lower than
// 2 pixels.
bool PaintGradient(QPainter &painter, const QSize &size, double angle, OleColor color1, OleColor color2);

// The same over a whole image.
bool PaintGradient(QImage &image, double angle, OleColor color1, OleColor color2);
