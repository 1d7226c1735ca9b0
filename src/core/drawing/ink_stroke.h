#pragma once

#include "core/drawing/ink_pen.h"
#include "core/drawing/stroke_smoother.h"

#include <QImage>
#include <QRect>

class DrawingLayer;
class QPainter;

// One drag with the pen, the highlighter or the eraser, from the press to the release, drawn
// onto a layer as one edit (so one undo step).
//
// A freehand pen or eraser line goes into the layer piece by piece as the pointer moves. The
// highlighter's line is laid down opaque on a wet layer of its own and goes into the layer,
// translucent, only when the drag ends: so it does not darken where it crosses itself. A
// straight line or a rectangle is only shown while it is dragged and drawn at the end.
class InkStroke
{
public:
    InkStroke(DrawingLayer &layer, const InkPen &pen, InkShape shape, const InkPoint &start);
    // A stroke neither finished nor cancelled is cancelled.
    ~InkStroke();
    InkStroke(const InkStroke &) = delete;
    InkStroke &operator=(const InkStroke &) = delete;

    const InkPen &pen() const { return m_pen; }
    InkShape shape() const { return m_shape; }

    // The pointer moved. Returns the layer area whose look changed, to repaint.
    QRect moveTo(const InkPoint &point);
    // Turns a freehand line into a straight line or a rectangle from where it started (a
    // modifier pressed during the drag); what was drawn so far is taken back. A shape stays
    // what it is. Returns the area to repaint.
    QRect setShape(InkShape shape);
    // Ends the stroke; the mark becomes one undo step. Returns the area to repaint.
    QRect finish();
    // Takes the whole stroke back (Escape during the drag). Returns the area to repaint.
    QRect cancel();
    bool isActive() const { return !m_ended; }

    // Paints, in layer pixels, what is not in the layer yet: the highlighter's wet ink and the
    // line or rectangle being dragged.
    void paintPreview(QPainter &painter, const QRect &exposed) const;

    // The name of the undo step a stroke of this pen and shape makes ("Pen", "Rectangle").
    static QString stepLabel(const InkPen &pen, InkShape shape);

private:
    QRect drawSegment(const InkSegment &segment);
    QRect shapeArea() const;
    void paintShapePreview(QPainter &painter) const;

    DrawingLayer &m_layer;
    InkPen m_pen;
    InkShape m_shape;
    StrokeSmoother m_smoother;
    QPointF m_start;
    QPointF m_end;
    QImage m_wet;      // the highlighter's line, opaque, until the drag ends
    QRect m_wetArea;   // the part of m_wet drawn on
    QRect m_drawnArea; // the part of the layer drawn on
    bool m_ended = false;
};
