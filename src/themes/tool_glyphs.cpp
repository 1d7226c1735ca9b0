#include "themes/tool_glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace {

QPixmap blank(int side, qreal pixelRatio)
{
    QPixmap pixmap(QSize(side, side) * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// A pen-like body lying from bottom-left to top-right, in a 24-unit box.
void drawBody(QPainter &p, const QColor &ink, qreal tipLength, bool chisel)
{
    p.translate(12, 12);
    p.rotate(-45);
    QPainterPath body;
    body.addRoundedRect(QRectF(-10 + tipLength, -3.5, 20 - tipLength, 7), 1.2, 1.2);
    p.setPen(QPen(ink, 1.4));
    p.setBrush(Qt::NoBrush);
    p.drawPath(body);
    QPainterPath tip;
    tip.moveTo(-10 + tipLength, -3.5);
    tip.lineTo(-10 + tipLength, 3.5);
    if (chisel) {
        tip.lineTo(-10, 1.5);
        tip.lineTo(-10, -1.5);
    } else {
        tip.lineTo(-10, 0);
    }
    tip.closeSubpath();
    p.setBrush(ink);
    p.drawPath(tip);
}

void drawEraser(QPainter &p, const QColor &ink)
{
    p.translate(12, 13);
    p.rotate(-35);
    p.setPen(QPen(ink, 1.4));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(QRectF(-9, -4.5, 18, 9), 1.5, 1.5);
    p.setBrush(ink);
    p.drawRoundedRect(QRectF(-9, -4.5, 7, 9), 1.5, 1.5);
}

void drawText(QPainter &p, const QColor &ink)
{
    QFont font = p.font();
    font.setPixelSize(19);
    font.setBold(true);
    p.setFont(font);
    p.setPen(ink);
    p.drawText(QRectF(0, 0, 24, 22), Qt::AlignCenter, QStringLiteral("A"));
    p.setPen(QPen(ink, 1.4));
    p.drawLine(QPointF(4, 22), QPointF(20, 22));
}

// An arrow pointer leaning left, as the system's.
void drawPointer(QPainter &p, const QColor &ink)
{
    QPainterPath arrow;
    arrow.moveTo(7, 3);
    arrow.lineTo(7, 19);
    arrow.lineTo(11, 15.5);
    arrow.lineTo(14, 21.5);
    arrow.lineTo(16.5, 20.3);
    arrow.lineTo(13.6, 14.4);
    arrow.lineTo(18.5, 14.4);
    arrow.closeSubpath();
    p.setPen(QPen(ink, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPath(arrow);
}

} // namespace

QIcon ToolGlyph(DrawingPens::Tool tool, const QColor &ink, const QColor &accent, int side, qreal pixelRatio)
{
    QPixmap pixmap = blank(side, pixelRatio);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.scale(side / 24.0, side / 24.0);
    switch (tool) {
    case DrawingPens::Pen:
        drawBody(p, ink, 6, false);
        break;
    case DrawingPens::Highlighter: {
        QColor mark = accent;
        mark.setAlpha(170);
        p.fillRect(QRectF(2, 19, 14, 4), mark);
        drawBody(p, ink, 5, true);
        break;
    }
    case DrawingPens::Eraser:
        drawEraser(p, ink);
        break;
    case DrawingPens::Text:
        drawText(p, ink);
        break;
    case DrawingPens::Pointer:
        drawPointer(p, ink);
        break;
    }
    p.end();
    return QIcon(pixmap);
}

QIcon WidthGlyph(qreal diameter, const QColor &ink, int side, qreal pixelRatio)
{
    QPixmap pixmap = blank(side, pixelRatio);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(Qt::NoPen);
    p.setBrush(ink);
    const qreal d = qBound(2.0, diameter, side - 2.0);
    p.drawEllipse(QRectF((side - d) / 2, (side - d) / 2, d, d));
    p.end();
    return QIcon(pixmap);
}

QIcon SwatchGlyph(const QColor &color, int side, qreal pixelRatio)
{
    QPixmap pixmap = blank(side, pixelRatio);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing, true);
    p.setPen(QPen(color.lightness() > 200 ? QColor(0, 0, 0, 110) : QColor(255, 255, 255, 140), 1));
    p.setBrush(color);
    p.drawRoundedRect(QRectF(1.5, 1.5, side - 3, side - 3), 3, 3);
    p.end();
    return QIcon(pixmap);
}

QIcon ColorSwatch(const QColor &color, const QSize &size, qreal pixelRatio)
{
    QPixmap pixmap(size * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::gray);
    painter.drawRect(QRectF(QPointF(0, 0), QSizeF(size)).adjusted(0, 0, -1, -1));
    painter.end();
    QIcon icon(pixmap);
    icon.addPixmap(pixmap, QIcon::Selected);
    return icon;
}
