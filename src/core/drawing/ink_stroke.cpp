#include "core/drawing/ink_stroke.h"

#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_painter.h"

#include <QCoreApplication>
#include <QPainter>

InkStroke::InkStroke(DrawingLayer &layer, const InkPen &pen, InkShape shape, const InkPoint &start)
    : m_layer(layer), m_pen(pen), m_shape(shape), m_start(start.pos), m_end(start.pos)
{
    m_layer.beginEdit(stepLabel(pen, shape));
    const InkSegment dot = m_smoother.begin(start);
    if (m_shape == InkShape::Freehand)
        drawSegment(dot);
}

InkStroke::~InkStroke()
{
    if (!m_ended)
        cancel();
}

QString InkStroke::stepLabel(const InkPen &pen, InkShape shape)
{
    if (shape == InkShape::Line)
        return QCoreApplication::translate("InkStroke", "Line");
    if (shape == InkShape::Rectangle)
        return QCoreApplication::translate("InkStroke", "Rectangle");
    switch (pen.kind) {
    case InkKind::Highlighter:
        return QCoreApplication::translate("InkStroke", "Highlighter");
    case InkKind::Eraser:
        return QCoreApplication::translate("InkStroke", "Eraser");
    case InkKind::Pen:
        break;
    }
    return QCoreApplication::translate("InkStroke", "Pen");
}

QRect InkStroke::drawSegment(const InkSegment &segment)
{
    const QRect area = InkSegmentBounds(segment, m_pen);
    if (m_pen.kind == InkKind::Highlighter) {
        if (m_wet.isNull()) {
            m_wet = QImage(m_layer.size(), QImage::Format_ARGB32_Premultiplied);
            m_wet.fill(Qt::transparent);
        }
        QPainter painter(&m_wet);
        PaintInkSegment(painter, segment, m_pen);
        m_wetArea |= area & m_wet.rect();
    } else {
        m_layer.paint(area, [&](QPainter &painter) { PaintInkSegment(painter, segment, m_pen); });
        m_drawnArea |= area;
    }
    return area;
}

QRect InkStroke::shapeArea() const
{
    return InkShapeBounds(m_shape, m_start, m_end, m_pen);
}

QRect InkStroke::moveTo(const InkPoint &point)
{
    if (m_ended)
        return {};
    if (m_shape != InkShape::Freehand) {
        const QRect before = shapeArea();
        m_end = point.pos;
        return before | shapeArea();
    }
    m_end = point.pos;
    QRect area;
    for (const InkSegment &segment : m_smoother.add(point))
        area |= drawSegment(segment);
    return area;
}

QRect InkStroke::setShape(InkShape shape)
{
    if (m_ended || shape == m_shape || m_shape != InkShape::Freehand)
        return {};
    QRect area = m_drawnArea | m_wetArea;
    m_layer.revertEdit();
    m_wet = QImage();
    m_wetArea = QRect();
    m_drawnArea = QRect();
    m_shape = shape;
    return area | shapeArea();
}

QRect InkStroke::finish()
{
    if (m_ended)
        return {};
    QRect area;
    if (m_shape == InkShape::Freehand) {
        for (const InkSegment &segment : m_smoother.finish())
            area |= drawSegment(segment);
        if (!m_wetArea.isEmpty()) {
            m_layer.paint(m_wetArea, [this](QPainter &painter) {
                painter.setOpacity(InkPen::kHighlighterOpacity);
                painter.drawImage(m_wetArea, m_wet, m_wetArea);
            });
            area |= m_wetArea;
        }
    } else {
        area = shapeArea();
        m_layer.paint(area, [this](QPainter &painter) {
            if (m_pen.kind == InkKind::Highlighter)
                painter.setOpacity(InkPen::kHighlighterOpacity);
            PaintInkShape(painter, m_shape, m_start, m_end, m_pen);
        });
    }
    m_layer.commitEdit();
    m_wet = QImage();
    m_ended = true;
    return area | m_drawnArea;
}

QRect InkStroke::cancel()
{
    if (m_ended)
        return {};
    const QRect area = m_drawnArea | m_wetArea | (m_shape == InkShape::Freehand ? QRect() : shapeArea());
    m_layer.cancelEdit();
    m_wet = QImage();
    m_ended = true;
    return area;
}

void InkStroke::paintPreview(QPainter &painter, const QRect &exposed) const
{
    if (m_ended)
        return;
    painter.save();
    if (!m_wetArea.isEmpty()) {
        const QRect part = exposed & m_wetArea;
        painter.setOpacity(InkPen::kHighlighterOpacity);
        painter.drawImage(part, m_wet, part);
    }
    if (m_shape != InkShape::Freehand)
        paintShapePreview(painter);
    painter.restore();
}

void InkStroke::paintShapePreview(QPainter &painter) const
{
    if (m_pen.kind != InkKind::Eraser) {
        if (m_pen.kind == InkKind::Highlighter)
            painter.setOpacity(InkPen::kHighlighterOpacity);
        PaintInkShape(painter, m_shape, m_start, m_end, m_pen);
        return;
    }
    // What the eraser will take away, shown as a grey area with a dashed edge: the view cannot
    // show the board through the layer before the pixels are really cleared.
    InkPen marker = m_pen;
    marker.kind = InkKind::Highlighter;
    marker.color = Qt::gray;
    painter.setOpacity(0.35);
    PaintInkShape(painter, m_shape, m_start, m_end, marker);
    painter.setOpacity(1);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(Qt::darkGray, 1, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    if (m_shape == InkShape::Rectangle)
        painter.drawRect(QRectF(m_start, m_end).normalized());
}
