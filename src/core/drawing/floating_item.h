#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRectF>
#include <QString>

class QPainter;

// A picture or a text put on a drawing but not fixed yet: the user can still move it and
// scale it by its corners (keeping its shape), and it is painted into the layer only when it
// is fixed. Positions are layer pixels.
class FloatingItem
{
public:
    // The part of the item under the pointer.
    enum class Handle
    {
        None,
        Body,
        TopLeft,
        TopRight,
        BottomLeft,
        BottomRight,
    };

    FloatingItem() = default;
    static FloatingItem picture(const QImage &image);
    // A text in `font` (its size set in pixels) and `color`; lines break where `text` does.
    static FloatingItem text(const QString &text, const QFont &font, const QColor &color);

    bool isNull() const { return m_rect.isEmpty(); }
    bool isText() const { return !m_text.isEmpty(); }
    QString text() const { return m_text; }

    // The size at a scale of 1: the picture's pixels, the text's lines in its font.
    QSizeF naturalSize() const { return m_natural; }
    QRectF rect() const { return m_rect; }
    void setRect(const QRectF &rect) { m_rect = rect; }
    // Centres the item in `area`, at its natural size or smaller so that it fits.
    void fitInto(const QRectF &area);
    // The pixels painting it can touch.
    QRect paintArea() const;

    void paint(QPainter &painter) const;

    // What is under `point`: a corner within `grab` pixels of it, else the body, else nothing.
    Handle handleAt(const QPointF &point, qreal grab) const;
    // The rectangle after `handle` was dragged by `delta` from `start`: the body moves it; a
    // corner scales it about the opposite corner, keeping its shape, never below `smallestSide`.
    static QRectF draggedRect(const QRectF &start, Handle handle, const QPointF &delta, qreal smallestSide);

private:
    QImage m_picture;
    QString m_text;
    QFont m_font;
    QColor m_color;
    QSizeF m_natural;
    QRectF m_rect;
};
