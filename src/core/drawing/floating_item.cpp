#include "core/drawing/floating_item.h"

#include <QFontMetricsF>
#include <QLineF>
#include <QPainter>

namespace {
constexpr int kTextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextExpandTabs;

QPointF cornerOf(const QRectF &rect, FloatingItem::Handle handle)
{
    switch (handle) {
    case FloatingItem::Handle::TopLeft:
        return rect.topLeft();
    case FloatingItem::Handle::TopRight:
        return rect.topRight();
    case FloatingItem::Handle::BottomLeft:
        return rect.bottomLeft();
    default:
        return rect.bottomRight();
    }
}

FloatingItem::Handle oppositeOf(FloatingItem::Handle handle)
{
    switch (handle) {
    case FloatingItem::Handle::TopLeft:
        return FloatingItem::Handle::BottomRight;
    case FloatingItem::Handle::TopRight:
        return FloatingItem::Handle::BottomLeft;
    case FloatingItem::Handle::BottomLeft:
        return FloatingItem::Handle::TopRight;
    default:
        return FloatingItem::Handle::TopLeft;
    }
}
} // namespace

FloatingItem FloatingItem::picture(const QImage &image)
{
    FloatingItem item;
    if (image.isNull())
        return item;
    item.m_picture = image;
    item.m_natural = QSizeF(image.size()) / image.devicePixelRatio();
    item.m_rect = QRectF(QPointF(0, 0), item.m_natural);
    return item;
}

FloatingItem FloatingItem::text(const QString &text, const QFont &font, const QColor &color)
{
    FloatingItem item;
    if (text.trimmed().isEmpty())
        return item;
    item.m_text = text;
    item.m_font = font;
    item.m_color = color;
    const QFontMetricsF metrics(font);
    const QRectF bounds = metrics.boundingRect(QRectF(0, 0, 1e6, 1e6), kTextFlags, text);
    // Italic letters lean past their advance; a little room keeps them whole.
    const qreal room = metrics.height() / 8;
    item.m_natural = QSizeF(bounds.width() + 2 * room, bounds.height());
    item.m_rect = QRectF(QPointF(0, 0), item.m_natural);
    return item;
}

void FloatingItem::fitInto(const QRectF &area)
{
    if (m_natural.isEmpty())
        return;
    const qreal scale = qMin(1.0, qMin(area.width() / m_natural.width(), area.height() / m_natural.height()));
    const QSizeF size = m_natural * qMax(scale, 0.01);
    m_rect = QRectF(area.center() - QPointF(size.width() / 2, size.height() / 2), size);
}

QRect FloatingItem::paintArea() const
{
    return m_rect.adjusted(-2, -2, 2, 2).toAlignedRect();
}

void FloatingItem::paint(QPainter &painter) const
{
    if (isNull())
        return;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (!m_picture.isNull()) {
        painter.drawImage(m_rect, m_picture);
    } else {
        painter.translate(m_rect.topLeft());
        painter.scale(m_rect.width() / m_natural.width(), m_rect.height() / m_natural.height());
        painter.setFont(m_font);
        painter.setPen(m_color);
        const qreal room = QFontMetricsF(m_font).height() / 8;
        painter.drawText(QRectF(QPointF(room, 0), m_natural), kTextFlags, m_text);
    }
    painter.restore();
}

FloatingItem::Handle FloatingItem::handleAt(const QPointF &point, qreal grab) const
{
    if (isNull())
        return Handle::None;
    for (Handle corner : {Handle::TopLeft, Handle::TopRight, Handle::BottomLeft, Handle::BottomRight}) {
        if (QLineF(point, cornerOf(m_rect, corner)).length() <= grab)
            return corner;
    }
    return m_rect.contains(point) ? Handle::Body : Handle::None;
}

QRectF FloatingItem::draggedRect(const QRectF &start, Handle handle, const QPointF &delta, qreal smallestSide)
{
    if (handle == Handle::Body)
        return start.translated(delta);
    if (handle == Handle::None || start.isEmpty())
        return start;
    const QPointF anchor = cornerOf(start, oppositeOf(handle));
    const QPointF corner = cornerOf(start, handle) + delta;
    // Which way the dragged corner lies from the anchor; dragging past the anchor does not
    // turn the item over, it only makes it as small as it can be.
    const qreal towardsX = cornerOf(start, handle).x() >= anchor.x() ? 1 : -1;
    const qreal towardsY = cornerOf(start, handle).y() >= anchor.y() ? 1 : -1;
    // The scale is how far the corner went along the item's diagonal, so a drag that is not
    // quite diagonal still scales smoothly.
    const qreal along = (corner.x() - anchor.x()) * towardsX * start.width() +
                        (corner.y() - anchor.y()) * towardsY * start.height();
    const qreal diagonal = start.width() * start.width() + start.height() * start.height();
    const qreal least = smallestSide / qMin(start.width(), start.height());
    const qreal scale = qMax(least, along / diagonal);
    const QSizeF size = start.size() * scale;
    const QPointF far(anchor.x() + towardsX * size.width(), anchor.y() + towardsY * size.height());
    return QRectF(anchor, far).normalized();
}
