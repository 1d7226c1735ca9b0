#include "themes/gradient_painter.h"

#include "themes/theme_colors.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <cmath>
#include <utility>

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

bool PaintGradient(QPainter &painter, const QSize &size, double angle, OleColor color1, OleColor color2)
{
    angle = NormalizeGradientAngle(angle);
    const OleColor c1 = resolveForRamp(color1);
    const OleColor c2 = resolveForRamp(color2);
    if (size.width() < 2 || size.height() < 2)
        return false;

    const int side = qMax(size.width(), size.height());
    const float span = std::sqrt(float(side) * side + float(side) * side);
    const int steps = int(span); // one line per pixel of the span
    const float stepR = steps ? float(RedOf(c2) - RedOf(c1)) / steps : 0.0f;
    const float stepG = steps ? float(GreenOf(c2) - GreenOf(c1)) / steps : 0.0f;
    const float stepB = steps ? float(BlueOf(c2) - BlueOf(c1)) / steps : 0.0f;

    const QPointF centre(size.width() / 2.0f, size.height() / 2.0f);
    const float left = float(centre.x()) - span / 2.0f;
    const float top = float(centre.y()) - span / 2.0f;
    const float lineStep = steps ? span / steps : 0.0f;

    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    auto endsOf = [&](int i) {
        const float y = top + i * lineStep;
        return std::pair{RotatePoint(centre, QPointF(left, y), angle),
                         RotatePoint(centre, QPointF(left + span, y), angle)};
    };
    auto next = endsOf(0);
    for (int i = 0; i <= steps; ++i) {
        const auto ends = next;
        if (i < steps) {
            next = endsOf(i + 1);
            // A line that the next one covers pixel for pixel would never be seen. (With both
            // offsets taken from x, that is every line but the last.)
            if (next.first.x() == ends.first.x() && next.first.y() == ends.first.y() &&
                next.second.x() == ends.second.x() && next.second.y() == ends.second.y())
                continue;
        }
        const OleColor c =
            ComposeColor(RedOf(c1) + i * stepR, GreenOf(c1) + i * stepG, BlueOf(c1) + i * stepB);
        QPen pen(QColor(RedOf(c), GreenOf(c), BlueOf(c)), 1, Qt::SolidLine, Qt::FlatCap);
        pen.setCosmetic(true);
        painter.setPen(pen);
        painter.drawLine(ends.first, ends.second);
    }
    painter.restore();
    return true;
}

bool PaintGradient(QImage &image, double angle, OleColor color1, OleColor color2)
{
    if (image.isNull())
        return false;
    QPainter painter(&image);
    return PaintGradient(painter, image.size() / image.devicePixelRatio(), angle, color1, color2);
}
