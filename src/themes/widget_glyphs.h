#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

// Small line pictures of the eight widgets for the dashboard's tiles, drawn rather than loaded
// so that they take the theme's colours and stay sharp at any scale.
class WidgetGlyphs
{
public:
    // Draws widget `index` (0..7) centred in `box` with strokes of `color`; other indexes draw
    // nothing.
    static void paint(QPainter &painter, int index, const QRectF &box, const QColor &color);
};
