#pragma once

#include "core/drawing/floating_item.h"
#include "core/drawing/ink_pen.h"

#include <QWidget>

#include <memory>

class DrawingLayer;
class InkStroke;
struct InkPoint;

// A surface to draw on: shows a DrawingLayer over a background colour and turns the pointer
// into ink, with the pen's pressure when a tablet gives it.
//
// By default the layer is shown pixel for pixel on the screen (a layer pixel is a device pixel,
// so ink is as sharp as the screen) and the widget is as large as the layer; a DrawingArea
// around it scrolls it and grows the layer with the window. Stretched, the layer is a page of
// its own fixed size scaled over the whole widget, so that what is drawn keeps its place on
// the page whatever the widget's size. A subclass paints what lies under the ink
// (paintUnderlay).
//
// While dragging, Shift makes a straight line and Ctrl a rectangle, from where the drag
// started; Escape takes the stroke back. A picture or text being placed (placeItem) is moved
// by its body and scaled by its corners; Enter, a double click or a click beside it fixes it,
// Escape or Delete drops it, the arrow keys nudge it.
class InkCanvas : public QWidget
{
    Q_OBJECT
public:
    enum class Tool
    {
        Ink,     // the pen set with setPen()
        Text,    // a click asks for a text there (textRequested)
        Pointer, // draws nothing: clicks are the owner's (a placed item still moves)
    };

    explicit InkCanvas(DrawingLayer *layer, QWidget *parent = nullptr);
    ~InkCanvas() override;

    DrawingLayer *layer() const { return m_layer; }
    // Shows another layer, with its own history (a calendar's other month); what is in progress
    // on the old one is finished first.
    void setLayer(DrawingLayer *layer);

    // Shows the layer stretched over the widget instead of pixel for pixel.
    void setStretched(bool stretched);
    bool isStretched() const { return m_stretched; }

    void setBackground(const QColor &color);
    QColor background() const { return m_background; }

    void setTool(Tool tool);
    Tool tool() const { return m_tool; }
    void setPen(const InkPen &pen);
    const InkPen &pen() const { return m_pen; }

    // Layer pixels per widget pixel across and down: the screen's device pixel ratio, or the
    // stretch. layerScale() is the mean of the two, for sizes that have no direction.
    QSizeF layerScales() const;
    qreal layerScale() const;
    QPointF toLayer(const QPointF &widgetPos) const;
    QRectF toWidget(const QRectF &layerArea) const;
    QRect toWidget(const QRect &layerArea) const;
    // Makes the layer cover at least `widgetSize` (widget pixels); not when stretched.
    void growToCover(const QSize &widgetSize);

    // Puts a picture or text on the surface to be moved and scaled before it is fixed; an
    // item still being placed is fixed first.
    void placeItem(const FloatingItem &item);
    bool hasPlacedItem() const { return !m_placed.isNull(); }
    const FloatingItem &placedItem() const { return m_placed; }
    void setPlacedRect(const QRectF &layerRect);
    // Paints the item into the layer as one undo step. False when there was none.
    bool fixPlacedItem();
    void discardPlacedItem();

    // Ends what is in progress so that the layer holds everything shown: a stroke is finished
    // and a placed item fixed (before saving, copying, changing tools).
    void settle();
    bool isDrawing() const;

    // Undo drops an item being placed before it takes back anything in the layer.
    void undo();
    void redo();
    bool canUndo() const;
    // Clears the whole layer as one undo step.
    void clear();

    QSize sizeHint() const override;

signals:
    // The text tool was used at `layerPos`.
    void textRequested(const QPointF &layerPos);
    // An item was placed, moved, fixed or dropped.
    void placedItemChanged();
    // Whether there is anything to undo may have changed outside the layer's history.
    void undoStateChanged();

protected:
    // Paints what lies under the ink in `exposed` (widget pixels): the background colour.
    virtual void paintUnderlay(QPainter &painter, const QRect &exposed);

    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void pointerPressed(const QPointF &widgetPos, qreal pressure, Qt::KeyboardModifiers modifiers,
                        bool eraserEnd);
    void pointerMoved(const QPointF &widgetPos, qreal pressure, Qt::KeyboardModifiers modifiers);
    void pointerReleased();
    void followModifiers(Qt::KeyboardModifiers modifiers);
    void updateLayerArea(const QRect &layerArea);
    void layerChanged(const QRect &layerArea);
    void matchLayerSize();
    void updateCursor(const QPointF &widgetPos);
    void nudgePlaced(const QPointF &delta);
    QRect placedWidgetArea() const;
    void paintPlacedFrame(QPainter &painter) const;
    qreal grabDistance() const;

    DrawingLayer *m_layer;
    bool m_stretched = false;
    QColor m_background = Qt::white;
    Tool m_tool = Tool::Ink;
    InkPen m_pen;
    std::unique_ptr<InkStroke> m_stroke;
    FloatingItem m_placed;
    FloatingItem::Handle m_dragHandle = FloatingItem::Handle::None;
    QRectF m_dragStartRect;
    QPointF m_dragStartPos;
    bool m_pressConsumed = false; // the press only fixed an item: its drag draws nothing
    bool m_tabletDown = false;
};
