#pragma once

#include "themes/theme.h"

#include <QColor>
#include <QLineF>
#include <QList>
#include <QPointF>
#include <QSize>

class QImage;
class QPainter;

// The angled two-colour gradient of the bar and panel frames.
//
// The area is covered with one-pixel lines, one per entry of a colour ramp from colour 1 to
// colour 2. The lines are laid out for angle 0, where the colour runs from left to right: upright
// lines stepping across a square whose side is the larger of width and height, each as long as
// that square's diagonal. Their end points are then turned about the centre by the angle with
// RotatePoint(). RotatePoint takes both offsets from the point's x, and the two ends of an
// upright line share their x, so every turned line shrinks to a single point; like the
// platform's line call, a line that starts and ends on the same point paints nothing. The frame
// therefore keeps its flat background colour at every angle: that flat look is the look of the
// program's themes, and it is kept exactly.

// The angle brought into 0..360: angle - Int(angle / 360) * 360, Int rounding down, so that
// -90 becomes 270 and 360 becomes 0.
double NormalizeGradientAngle(double angle);

// Turns `point` about `centre` by `angle` degrees, in single precision. Both offsets are taken
// from point.x (dy = point.x - centre.y), which the gradients' look depends on.
QPointF RotatePoint(QPointF centre, QPointF point, double angle);

// Entry i of the ramp of `steps` steps from colour 1 to colour 2 (entry 0 is colour 1, entry
// `steps` colour 2); a ramp of 0 steps is colour 1 throughout. System-colour references below 25
// are resolved from the palette; other references are used as they stand.
OleColor GradientRampColor(OleColor color1, OleColor color2, int i, int steps);

// One line of the gradient, in its ramp colour.
struct GradientLine
{
    QLineF line;
    QColor color;
};

// The lines the gradient paints over a client area of `size` pixels, leaving out those that
// paint nothing (a line from a point to itself); empty for an area narrower or lower than 2
// pixels.
QList<GradientLine> GradientLines(const QSize &size, double angle, OleColor color1, OleColor color2);

// Paints lines from GradientLines() with the painter's origin at the area's top left.
void PaintGradientLines(QPainter &painter, const QList<GradientLine> &lines);

// Paints the gradient over a client area of `size` pixels (origin at the painter's 0,0), one
// line per ramp entry. Returns false, painting nothing, when the area is narrower or lower than
// 2 pixels.
bool PaintGradient(QPainter &painter, const QSize &size, double angle, OleColor color1, OleColor color2);

// The same over a whole image.
bool PaintGradient(QImage &image, double angle, OleColor color1, OleColor color2);
