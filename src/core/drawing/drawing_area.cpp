#include "core/drawing/drawing_area.h"

#include "core/drawing/ink_canvas.h"

#include <QResizeEvent>

DrawingArea::DrawingArea(DrawingLayer *layer, QWidget *parent)
    : QScrollArea(parent), m_canvas(new InkCanvas(layer))
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setWidget(m_canvas);
    setFocusProxy(m_canvas);
}

void DrawingArea::fillViewport()
{
    m_canvas->growToCover(maximumViewportSize());
}

void DrawingArea::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    // The size the viewport has without scroll bars: a layer as large as that needs none.
    fillViewport();
}
