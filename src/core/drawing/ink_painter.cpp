#include "core/drawing/ink_painter.h"

#include <QPainter>
#include <QPainterPath>

namespace {

void preparePainter(QPainter &painter, const InkPen &pen)
{
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (pen.kind == InkKind::Eraser)
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
    else
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

QColor inkColor(const InkPen &pen)
{
    QColor color = pen.color;
    color.setAlpha(255);
    return color;
}

// The smallest rectangle holding every point, even when they are all in one place.
QRectF spanning(std::initializer_list<QPointF> points)
{
    QPointF low = *points.begin();
    QPointF high = low;
    for (const QPointF &p : points) {
        low = QPointF(qMin(low.x(), p.x()), qMin(low.y(), p.y()));
        high = QPointF(qMax(high.x(), p.x()), qMax(high.y(), p.y()));
    }
    return QRectF(low, high);
}

QRect grow(const QRectF &area, qreal width)
{
    const qreal margin = width / 2 + 2; // half the line each side, and the anti-aliased edge
    return area.adjusted(-margin, -margin, margin, margin).toAlignedRect();
}

} // namespace

void PaintInkSegment(QPainter &painter, const InkSegment &segment, const InkPen &pen)
{
    painter.save();
    preparePainter(painter, pen);
    const qreal width = pen.widthAt((segment.fromPressure + segment.toPressure) / 2);
    QPen line(inkColor(pen), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(line);
    painter.setBrush(Qt::NoBrush);
    if (segment.from == segment.to && segment.control == segment.to) {
        painter.drawPoint(segment.to);
    } else {
        QPainterPath path(segment.from);
        path.quadTo(segment.control, segment.to);
        painter.drawPath(path);
    }
    painter.restore();
}

void PaintInkShape(QPainter &painter, InkShape shape, const QPointF &from, const QPointF &to,
                   const InkPen &pen)
{
    painter.save();
    preparePainter(painter, pen);
    const QPen line(inkColor(pen), pen.width, Qt::SolidLine,
                    shape == InkShape::Line ? Qt::RoundCap : Qt::SquareCap,
                    shape == InkShape::Line ? Qt::RoundJoin : Qt::MiterJoin);
    const QRectF area = QRectF(from, to).normalized();
    if (shape == InkShape::Line || shape == InkShape::Freehand) {
        painter.setPen(line);
        painter.drawLine(from, to);
    } else if (pen.kind == InkKind::Pen) {
        painter.setPen(line);
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(area);
    } else {
        painter.setPen(Qt::NoPen);
        painter.setBrush(inkColor(pen));
        painter.drawRect(area);
    }
    painter.restore();
}

QRect InkSegmentBounds(const InkSegment &segment, const InkPen &pen)
{
    const QRectF area = spanning({segment.from, segment.control, segment.to});
    return grow(area, pen.widthAt(qMax(segment.fromPressure, segment.toPressure)));
}

QRect InkShapeBounds(InkShape, const QPointF &from, const QPointF &to, const InkPen &pen)
{
    // Square caps of an outline reach half the width beyond the corners, as round caps do.
    return grow(spanning({from, to}), pen.width * 1.5);
}
