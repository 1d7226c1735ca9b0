#pragma once

#include <QScrollArea>

class DrawingLayer;
class InkCanvas;

// The scrolling frame around an InkCanvas: whenever it gets larger than the layer, the layer
// grows to fill it, so the board always fills the window; when it gets smaller, the drawing
// outside it stays and can be scrolled to.
class DrawingArea : public QScrollArea
{
    Q_OBJECT
public:
    explicit DrawingArea(DrawingLayer *layer, QWidget *parent = nullptr);

    InkCanvas *canvas() const { return m_canvas; }
    // Fills the visible part with layer again (after the layer was replaced by a smaller one).
    void fillViewport();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    InkCanvas *m_canvas;
};
