#include "themes/widget_glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

namespace {

// Every glyph is drawn on a 24 x 24 grid and scaled to the box.
constexpr qreal kGrid = 24.0;

void clock(QPainter &p)
{
    p.drawEllipse(QPointF(12, 13), 8, 8);
    p.drawLine(QPointF(12, 13), QPointF(12, 8.5));
    p.drawLine(QPointF(12, 13), QPointF(15, 14.5));
    // the two bells and the feet of an alarm clock
    p.drawArc(QRectF(2.5, 2.5, 6, 6), 60 * 16, 120 * 16);
    p.drawArc(QRectF(15.5, 2.5, 6, 6), 0, 120 * 16);
    p.drawLine(QPointF(7, 19.5), QPointF(5.5, 21.5));
    p.drawLine(QPointF(17, 19.5), QPointF(18.5, 21.5));
}

void calculator(QPainter &p)
{
    p.drawRoundedRect(QRectF(5, 2.5, 14, 19), 2, 2);
    p.drawRect(QRectF(7.5, 5, 9, 3.5));
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col)
            p.drawPoint(QPointF(8.5 + col * 3.5, 12 + row * 3.2));
    }
}

void calendar(QPainter &p)
{
    p.drawRoundedRect(QRectF(3.5, 5, 17, 15.5), 2, 2);
    p.drawLine(QPointF(3.5, 9.5), QPointF(20.5, 9.5));
    p.drawLine(QPointF(8, 3), QPointF(8, 7));
    p.drawLine(QPointF(16, 3), QPointF(16, 7));
    for (int row = 0; row < 2; ++row) {
        for (int col = 0; col < 4; ++col)
            p.drawPoint(QPointF(7 + col * 3.4, 13 + row * 3.6));
    }
}

void notes(QPainter &p)
{
    QPainterPath page;
    page.moveTo(5, 2.5);
    page.lineTo(14.5, 2.5);
    page.lineTo(19, 7);
    page.lineTo(19, 21.5);
    page.lineTo(5, 21.5);
    page.closeSubpath();
    page.moveTo(14.5, 2.5);
    page.lineTo(14.5, 7);
    page.lineTo(19, 7);
    p.drawPath(page);
    for (int line = 0; line < 3; ++line)
        p.drawLine(QPointF(8, 11 + line * 3.3), QPointF(16, 11 + line * 3.3));
}

void stopwatch(QPainter &p)
{
    p.drawEllipse(QPointF(12, 13.5), 8, 8);
    p.drawLine(QPointF(10, 2.5), QPointF(14, 2.5));
    p.drawLine(QPointF(12, 2.5), QPointF(12, 5.5));
    p.drawLine(QPointF(18, 6), QPointF(19.5, 4.5));
    p.drawLine(QPointF(12, 13.5), QPointF(14.5, 9.5));
}

void timer(QPainter &p)
{
    QPainterPath glass;
    glass.moveTo(6.5, 2.5);
    glass.lineTo(17.5, 2.5);
    glass.cubicTo(17.5, 8, 13, 10, 12, 12);
    glass.cubicTo(13, 14, 17.5, 16, 17.5, 21.5);
    glass.lineTo(6.5, 21.5);
    glass.cubicTo(6.5, 16, 11, 14, 12, 12);
    glass.cubicTo(11, 10, 6.5, 8, 6.5, 2.5);
    p.drawPath(glass);
    p.drawLine(QPointF(9, 19.5), QPointF(15, 19.5));
}

void whiteboard(QPainter &p)
{
    p.drawRoundedRect(QRectF(2.5, 3.5, 19, 13), 1.5, 1.5);
    p.drawLine(QPointF(8, 16.5), QPointF(5.5, 21.5));
    p.drawLine(QPointF(16, 16.5), QPointF(18.5, 21.5));
    QPainterPath squiggle;
    squiggle.moveTo(6, 12.5);
    squiggle.cubicTo(8, 6, 10, 6, 11, 10);
    squiggle.cubicTo(12, 14, 15, 13, 18, 7.5);
    p.drawPath(squiggle);
}

void weather(QPainter &p)
{
    p.drawArc(QRectF(4, 3.5, 9, 9), 20 * 16, 200 * 16);
    for (int ray = 0; ray < 4; ++ray) {
        const qreal a = qDegreesToRadians(100.0 + ray * 45.0);
        p.drawLine(QPointF(8.5 + 6.5 * qCos(a), 8 - 6.5 * qSin(a)),
                   QPointF(8.5 + 8.5 * qCos(a), 8 - 8.5 * qSin(a)));
    }
    QPainterPath cloud;
    cloud.moveTo(7, 20.5);
    cloud.cubicTo(3.5, 20.5, 3.5, 15, 7.5, 15);
    cloud.cubicTo(8, 10.5, 15, 10, 16, 14);
    cloud.cubicTo(21, 13.5, 21.5, 20.5, 17, 20.5);
    cloud.closeSubpath();
    p.drawPath(cloud);
}

} // namespace

void WidgetGlyphs::paint(QPainter &painter, int index, const QRectF &box, const QColor &color)
{
    using Draw = void (*)(QPainter &);
    static constexpr Draw kDraw[] = {clock,     calculator, calendar,   notes,
                                     stopwatch, timer,      whiteboard, weather};
    if (index < 0 || index >= int(std::size(kDraw)))
        return;
    const qreal side = qMin(box.width(), box.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(box.center().x() - side / 2, box.center().y() - side / 2);
    painter.scale(side / kGrid, side / kGrid);
    QPen pen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    kDraw[index](painter);
    painter.restore();
}
