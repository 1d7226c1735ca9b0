#include "themes/gradient_painter.h"

#include "themes/theme_colors.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <cmath>

namespace {

// A system-colour reference with an index below 25 becomes that colour; other references stay
// as they are and are read by their low bytes.
OleColor resolveForRamp(OleColor color)
{
    if ((color & kSystemColorFlag) && (color & ~kSystemColorFlag) < 25u)
        return TranslateColor(color);
    return color;
}

} // namespace

double NormalizeGradientAngle(double angle)
{
    return angle - std::floor(angle / 360.0) * 360.0;
}

QPointF RotatePoint(QPointF centre, QPointF point, double angle)
{
    const float theta = float(angle) * 4.0f * std::atan(1.0f) / 180.0f;
    const float cx = float(centre.x());
    const float cy = float(centre.y());
    const float dx = float(point.x()) - cx;
    const float dy = float(point.x()) - cy; // point.x for both offsets, on purpose
    const float x = cx + dx * std::cos(theta) + dy * std::sin(theta);
    const float y = cy - (dx * std::sin(theta) - dy * std::cos(theta));
    return QPointF(x, y);
}

OleColor GradientRampColor(OleColor color1, OleColor color2, int i, int steps)
{
    const OleColor c1 = resolveForRamp(color1);
    const OleColor c2 = resolveForRamp(color2);
    if (steps <= 0)
        return ComposeColor(RedOf(c1), GreenOf(c1), BlueOf(c1));
    const float stepR = float(RedOf(c2) - RedOf(c1)) / steps;
    const float stepG = float(GreenOf(c2) - GreenOf(c1)) / steps;
    const float stepB = float(BlueOf(c2) - BlueOf(c1)) / steps;
    return ComposeColor(RedOf(c1) + i * stepR, GreenOf(c1) + i * stepG, BlueOf(c1) + i * stepB);
}

QList<GradientLine> GradientLines(const QSize &size, double angle, OleColor color1, OleColor color2)
{
    angle = NormalizeGradientAngle(angle);
    QList<GradientLine> lines;
    if (size.width() < 2 || size.height() < 2)
        return lines;

    const int side = qMax(size.width(), size.height());
    const float span = std::sqrt(float(side) * side + float(side) * side);
    const int steps = int(span); // one line per pixel of the span
    const QPointF centre(size.width() / 2.0f, size.height() / 2.0f);
    const float left = float(centre.x()) - span / 2.0f;
    const float top = float(centre.y()) - span / 2.0f;
    const float lineStep = steps ? span / steps : 0.0f;
    for (int i = 0; i <= steps; ++i) {
        const float x = left + i * lineStep;
        const QPointF from = RotatePoint(centre, QPointF(x, top), angle);
        const QPointF to = RotatePoint(centre, QPointF(x, top + span), angle);
        // A line from a point to itself paints no pixel (the end point is never drawn).
        if (from == to)
            continue;
        const OleColor c = GradientRampColor(color1, color2, i, steps);
        lines.append({QLineF(from, to), QColor(RedOf(c), GreenOf(c), BlueOf(c))});
    }
    return lines;
}

void PaintGradientLines(QPainter &painter, const QList<GradientLine> &lines)
{
    if (lines.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    for (const GradientLine &line : lines) {
        QPen pen(line.color, 1, Qt::SolidLine, Qt::FlatCap);
        pen.setCosmetic(true);
        painter.setPen(pen);
        painter.drawLine(line.line);
    }
    painter.restore();
}

bool PaintGradient(QPainter &painter, const QSize &size, double angle, OleColor color1, OleColor color2)
{
    if (size.width() < 2 || size.height() < 2)
        return false;
    PaintGradientLines(painter, GradientLines(size, angle, color1, color2));
    return true;
}

bool PaintGradient(QImage &image, double angle, OleColor color1, OleColor color2)
{
    if (image.isNull())
        return false;
    QPainter painter(&image);
    return PaintGradient(painter, image.size() / image.devicePixelRatio(), angle, color1, color2);
}
