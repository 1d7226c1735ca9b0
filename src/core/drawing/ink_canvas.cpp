#include "core/drawing/ink_canvas.h"

#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_stroke.h"
#include "core/drawing/pen_cursor.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QTabletEvent>

#include <cmath>

namespace {
// How close to a corner of a placed item the pointer must be to scale it, in widget pixels.
constexpr qreal kGrab = 7;
// A placed item is never scaled smaller than this, in layer pixels.
constexpr qreal kSmallestItem = 8;

InkShape shapeFor(Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ShiftModifier)
        return InkShape::Line;
    if (modifiers & Qt::ControlModifier)
        return InkShape::Rectangle;
    return InkShape::Freehand;
}

Qt::CursorShape cursorFor(FloatingItem::Handle handle)
{
    switch (handle) {
    case FloatingItem::Handle::TopLeft:
    case FloatingItem::Handle::BottomRight:
        return Qt::SizeFDiagCursor;
    case FloatingItem::Handle::TopRight:
    case FloatingItem::Handle::BottomLeft:
        return Qt::SizeBDiagCursor;
    case FloatingItem::Handle::Body:
        return Qt::SizeAllCursor;
    case FloatingItem::Handle::None:
        break;
    }
    return Qt::ArrowCursor;
}
} // namespace

InkCanvas::InkCanvas(DrawingLayer *layer, QWidget *parent) : QWidget(parent), m_layer(layer)
{
    setAttribute(Qt::WA_OpaquePaintEvent); // every paint covers its whole area
    setAttribute(Qt::WA_TabletTracking);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    // Screen readers announce it by what it is for; its picture is not text they could read.
    setAccessibleName(tr("Drawing area"));
    connect(m_layer, &DrawingLayer::changed, this, &InkCanvas::layerChanged);
    connect(m_layer, &DrawingLayer::historyChanged, this, &InkCanvas::undoStateChanged);
    matchLayerSize();
    updateCursor(QPointF(-1, -1));
}

InkCanvas::~InkCanvas() = default;

void InkCanvas::setBackground(const QColor &color)
{
    if (m_background == color)
        return;
    m_background = color;
    update();
}

void InkCanvas::setTool(Tool tool)
{
    settle();
    m_tool = tool;
    updateCursor(mapFromGlobal(QCursor::pos()));
}

void InkCanvas::setPen(const InkPen &pen)
{
    m_pen = pen;
    updateCursor(mapFromGlobal(QCursor::pos()));
}

void InkCanvas::setStretched(bool stretched)
{
    if (m_stretched == stretched)
        return;
    m_stretched = stretched;
    if (m_stretched) {
        setMinimumSize(0, 0);
        setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    } else {
        matchLayerSize();
    }
    update();
}

void InkCanvas::setLayer(DrawingLayer *layer)
{
    if (!layer || layer == m_layer)
        return;
    settle();
    disconnect(m_layer, nullptr, this, nullptr);
    m_layer = layer;
    connect(m_layer, &DrawingLayer::changed, this, &InkCanvas::layerChanged);
    connect(m_layer, &DrawingLayer::historyChanged, this, &InkCanvas::undoStateChanged);
    matchLayerSize();
    update();
    emit undoStateChanged();
}

QSizeF InkCanvas::layerScales() const
{
    if (!m_stretched || width() <= 0 || height() <= 0)
        return QSizeF(devicePixelRatioF(), devicePixelRatioF());
    return QSizeF(qreal(m_layer->size().width()) / width(), qreal(m_layer->size().height()) / height());
}

qreal InkCanvas::layerScale() const
{
    const QSizeF scales = layerScales();
    return (scales.width() + scales.height()) / 2;
}

QPointF InkCanvas::toLayer(const QPointF &widgetPos) const
{
    const QSizeF scales = layerScales();
    return QPointF(widgetPos.x() * scales.width(), widgetPos.y() * scales.height());
}

QRectF InkCanvas::toWidget(const QRectF &layerArea) const
{
    const QSizeF scales = layerScales();
    return QRectF(layerArea.x() / scales.width(), layerArea.y() / scales.height(),
                  layerArea.width() / scales.width(), layerArea.height() / scales.height());
}

QRect InkCanvas::toWidget(const QRect &layerArea) const
{
    return toWidget(QRectF(layerArea)).toAlignedRect();
}

void InkCanvas::growToCover(const QSize &widgetSize)
{
    if (m_stretched)
        return;
    const qreal scale = layerScale();
    m_layer->ensureSize(
        QSize(int(std::ceil(widgetSize.width() * scale)), int(std::ceil(widgetSize.height() * scale))));
}

void InkCanvas::matchLayerSize()
{
    if (m_stretched)
        return;
    const QSize size = toWidget(QRect(QPoint(0, 0), m_layer->size())).size();
    if (size != this->size())
        setFixedSize(size);
}

void InkCanvas::layerChanged(const QRect &layerArea)
{
    matchLayerSize();
    update(toWidget(layerArea));
}

void InkCanvas::updateLayerArea(const QRect &layerArea)
{
    if (!layerArea.isEmpty())
        update(toWidget(layerArea).adjusted(-1, -1, 1, 1));
}

QSize InkCanvas::sizeHint() const
{
    return toWidget(QRect(QPoint(0, 0), m_layer->size())).size();
}

// ---- placing pictures and texts ----

void InkCanvas::placeItem(const FloatingItem &item)
{
    settle();
    m_placed = item;
    update(placedWidgetArea());
    setFocus(Qt::OtherFocusReason); // Enter and Escape act on the item at once
    emit placedItemChanged();
    emit undoStateChanged();
}

void InkCanvas::setPlacedRect(const QRectF &layerRect)
{
    if (m_placed.isNull())
        return;
    const QRect before = placedWidgetArea();
    m_placed.setRect(layerRect);
    update(before | placedWidgetArea());
    emit placedItemChanged();
}

bool InkCanvas::fixPlacedItem()
{
    if (m_placed.isNull())
        return false;
    const FloatingItem item = m_placed;
    const QRect before = placedWidgetArea();
    m_placed = FloatingItem();
    m_dragHandle = FloatingItem::Handle::None;
    m_layer->beginEdit(item.isText() ? QCoreApplication::translate("InkCanvas", "Text")
                                     : QCoreApplication::translate("InkCanvas", "Picture"));
    m_layer->paint(item.paintArea(), [&item](QPainter &painter) { item.paint(painter); });
    m_layer->commitEdit();
    update(before);
    emit placedItemChanged();
    return true;
}

void InkCanvas::discardPlacedItem()
{
    if (m_placed.isNull())
        return;
    const QRect before = placedWidgetArea();
    m_placed = FloatingItem();
    m_dragHandle = FloatingItem::Handle::None;
    update(before);
    emit placedItemChanged();
    emit undoStateChanged();
}

QRect InkCanvas::placedWidgetArea() const
{
    if (m_placed.isNull())
        return {};
    // The frame and corner handles are drawn just outside the item.
    const int handle = int(kGrab) + 2;
    return toWidget(m_placed.paintArea()).adjusted(-handle, -handle, handle, handle);
}

void InkCanvas::nudgePlaced(const QPointF &delta)
{
    setPlacedRect(m_placed.rect().translated(toLayer(delta)));
}

qreal InkCanvas::grabDistance() const
{
    return kGrab * layerScale();
}

// ---- commands ----

void InkCanvas::settle()
{
    if (m_stroke)
        updateLayerArea(m_stroke->finish());
    m_stroke.reset();
    fixPlacedItem();
}

bool InkCanvas::isDrawing() const
{
    return m_stroke != nullptr;
}

bool InkCanvas::canUndo() const
{
    return hasPlacedItem() || m_layer->canUndo();
}

void InkCanvas::undo()
{
    if (m_stroke)
        return; // the drag decides first
    if (hasPlacedItem()) {
        discardPlacedItem();
        return;
    }
    m_layer->undo();
}

void InkCanvas::redo()
{
    if (m_stroke || hasPlacedItem())
        return;
    m_layer->redo();
}

void InkCanvas::clear()
{
    settle();
    m_layer->beginEdit(QCoreApplication::translate("InkCanvas", "Clear Board"));
    m_layer->paint(QRect(QPoint(0, 0), m_layer->size()), [](QPainter &painter) {
        painter.setCompositionMode(QPainter::CompositionMode_Clear);
        painter.fillRect(painter.clipBoundingRect(), Qt::transparent);
    });
    m_layer->commitEdit();
}

// ---- the pointer ----

void InkCanvas::pointerPressed(const QPointF &widgetPos, qreal pressure, Qt::KeyboardModifiers modifiers,
                               bool eraserEnd)
{
    const QPointF at = toLayer(widgetPos);
    m_pressConsumed = false;
    if (hasPlacedItem()) {
        m_dragHandle = m_placed.handleAt(at, grabDistance());
        if (m_dragHandle != FloatingItem::Handle::None) {
            m_dragStartRect = m_placed.rect();
            m_dragStartPos = at;
            return;
        }
        // A press beside the item fixes it; drawing starts with the next press.
        fixPlacedItem();
        m_pressConsumed = true;
        return;
    }
    if (m_tool == Tool::Text) {
        m_pressConsumed = true;
        emit textRequested(at);
        return;
    }
    if (m_tool == Tool::Pointer) {
        m_pressConsumed = true;
        return;
    }
    InkPen pen = m_pen;
    if (eraserEnd)
        pen.kind = InkKind::Eraser;
    m_stroke = std::make_unique<InkStroke>(*m_layer, pen, shapeFor(modifiers), InkPoint{at, pressure});
    updateLayerArea(
        QRectF(at, QSizeF(1, 1)).adjusted(-pen.width, -pen.width, pen.width, pen.width).toAlignedRect());
}

void InkCanvas::pointerMoved(const QPointF &widgetPos, qreal pressure, Qt::KeyboardModifiers modifiers)
{
    const QPointF at = toLayer(widgetPos);
    if (m_dragHandle != FloatingItem::Handle::None) {
        setPlacedRect(
            FloatingItem::draggedRect(m_dragStartRect, m_dragHandle, at - m_dragStartPos, kSmallestItem));
        return;
    }
    if (!m_stroke)
        return;
    followModifiers(modifiers);
    updateLayerArea(m_stroke->moveTo(InkPoint{at, pressure}));
}

void InkCanvas::followModifiers(Qt::KeyboardModifiers modifiers)
{
    if (!m_stroke)
        return;
    const InkShape wanted = shapeFor(modifiers);
    if (wanted != InkShape::Freehand && m_stroke->shape() == InkShape::Freehand)
        updateLayerArea(m_stroke->setShape(wanted));
}

void InkCanvas::pointerReleased()
{
    if (m_dragHandle != FloatingItem::Handle::None) {
        m_dragHandle = FloatingItem::Handle::None;
        return;
    }
    if (!m_stroke)
        return;
    updateLayerArea(m_stroke->finish());
    m_stroke.reset();
}

void InkCanvas::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_stroke) {
        event->ignore(); // the right button opens the widget's menu
        return;
    }
    pointerPressed(event->position(), 1.0, event->modifiers(), false);
}

void InkCanvas::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        pointerMoved(event->position(), 1.0, event->modifiers());
    else
        updateCursor(event->position());
}

void InkCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    pointerReleased();
    updateCursor(event->position());
}

void InkCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && hasPlacedItem() &&
        m_placed.handleAt(toLayer(event->position()), grabDistance()) == FloatingItem::Handle::Body) {
        fixPlacedItem();
        return;
    }
    // Otherwise a double click is two presses: a quick dot stays a dot.
    mousePressEvent(event);
}

void InkCanvas::tabletEvent(QTabletEvent *event)
{
    const bool eraserEnd = event->pointerType() == QPointingDevice::PointerType::Eraser;
    switch (event->type()) {
    case QEvent::TabletPress:
        if (event->button() != Qt::LeftButton || m_stroke)
            return event->ignore(); // side buttons arrive as the mouse buttons they stand for
        m_tabletDown = true;
        pointerPressed(event->position(), event->pressure(), event->modifiers(), eraserEnd);
        break;
    case QEvent::TabletMove:
        if (m_tabletDown)
            pointerMoved(event->position(), event->pressure(), event->modifiers());
        else
            updateCursor(event->position());
        break;
    case QEvent::TabletRelease:
        if (!m_tabletDown)
            return event->ignore();
        m_tabletDown = false;
        pointerReleased();
        break;
    default:
        return event->ignore();
    }
    event->accept(); // no mouse events are made from it
}

void InkCanvas::keyPressEvent(QKeyEvent *event)
{
    if (m_stroke) {
        if (event->key() == Qt::Key_Escape) {
            updateLayerArea(m_stroke->cancel());
            m_stroke.reset();
        } else {
            followModifiers(event->modifiers());
        }
        return;
    }
    if (!hasPlacedItem())
        return QWidget::keyPressEvent(event);
    const qreal step = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        fixPlacedItem();
        break;
    case Qt::Key_Escape:
    case Qt::Key_Delete:
        discardPlacedItem();
        break;
    case Qt::Key_Left:
        nudgePlaced(QPointF(-step, 0));
        break;
    case Qt::Key_Right:
        nudgePlaced(QPointF(step, 0));
        break;
    case Qt::Key_Up:
        nudgePlaced(QPointF(0, -step));
        break;
    case Qt::Key_Down:
        nudgePlaced(QPointF(0, step));
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void InkCanvas::keyReleaseEvent(QKeyEvent *event)
{
    if (!m_stroke)
        QWidget::keyReleaseEvent(event);
}

void InkCanvas::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_stretched)
        update(); // every pixel of the page moves
}

void InkCanvas::changeEvent(QEvent *event)
{
    // On a screen of another pixel ratio the layer is shown at another widget size.
    if (event->type() == QEvent::ScreenChangeInternal) {
        matchLayerSize();
        updateCursor(mapFromGlobal(QCursor::pos()));
    }
    QWidget::changeEvent(event);
}

void InkCanvas::updateCursor(const QPointF &widgetPos)
{
    if (hasPlacedItem()) {
        const FloatingItem::Handle handle = m_dragHandle != FloatingItem::Handle::None
                                                ? m_dragHandle
                                                : m_placed.handleAt(toLayer(widgetPos), grabDistance());
        setCursor(cursorFor(handle));
        return;
    }
    if (m_tool == Tool::Text) {
        setCursor(Qt::IBeamCursor);
        return;
    }
    if (m_tool == Tool::Pointer) {
        setCursor(Qt::ArrowCursor);
        return;
    }
    setCursor(PenCursor(m_pen, m_pen.width / layerScale(), devicePixelRatioF()));
}

// ---- painting ----

void InkCanvas::paintUnderlay(QPainter &painter, const QRect &exposed)
{
    painter.fillRect(exposed, m_background);
}

void InkCanvas::paintEvent(QPaintEvent *event)
{
    const QRect exposed = event->rect();
    QPainter painter(this);
    paintUnderlay(painter, exposed);

    const QSizeF scales = layerScales();
    const QRect layerArea =
        QRectF(toLayer(exposed.topLeft()), toLayer(QPointF(exposed.bottomRight()) + QPointF(1, 1)))
            .toAlignedRect() &
        QRect(QPoint(0, 0), m_layer->size());
    painter.save();
    painter.scale(1 / scales.width(), 1 / scales.height());
    if (m_stretched)
        painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.drawImage(layerArea.topLeft(), m_layer->image(), layerArea);
    if (m_stroke)
        m_stroke->paintPreview(painter, layerArea);
    if (hasPlacedItem() && m_placed.paintArea().intersects(layerArea))
        m_placed.paint(painter);
    painter.restore();
    if (hasPlacedItem())
        paintPlacedFrame(painter);
}

void InkCanvas::paintPlacedFrame(QPainter &painter) const
{
    const QRectF rect = toWidget(m_placed.rect());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Qt::white, 1));
    painter.drawRect(rect);
    painter.setPen(QPen(QColor(40, 110, 220), 1, Qt::DashLine));
    painter.drawRect(rect);
    painter.setPen(QPen(QColor(40, 110, 220), 1));
    painter.setBrush(Qt::white);
    const qreal half = kGrab - 3;
    for (const QPointF &corner : {rect.topLeft(), rect.topRight(), rect.bottomLeft(), rect.bottomRight()})
        painter.drawRect(QRectF(corner - QPointF(half, half), QSizeF(2 * half, 2 * half)));
}
