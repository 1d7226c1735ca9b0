#include "calendar/calendar_stickers.h"

#include "core/drawing/closed_polygon.h"

#include <QCoreApplication>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPainterPathStroker>
#include <QtMath>

#include <array>

// Every sticker is drawn on a 100 x 100 box that the painter scales to the image.

namespace {

// The edge around each shape: thin on a large sticker, never thinner than one pixel on a small one.
QPen edgePen(const QPainter &p, const QColor &fill)
{
    const qreal unitsPerPixel = 1.0 / p.worldTransform().m11();
    return QPen(fill.darker(175), qMax(2.5, unitsPerPixel), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// Fills `shape` with `color`, a shade lighter at the top so that it does not look flat, and edges it.
void paintShape(QPainter &p, const QPainterPath &shape, const QColor &color)
{
    const QRectF box = shape.boundingRect();
    QLinearGradient shade(box.topLeft(), box.bottomLeft());
    shade.setColorAt(0, color.lighter(120));
    shade.setColorAt(1, color);
    p.setPen(edgePen(p, color));
    p.setBrush(shade);
    p.drawPath(shape);
}

// A plain filled shape with no edge, for marks on top of a shape (the exclamation, the dots).
void paintMark(QPainter &p, const QPainterPath &shape, const QColor &color)
{
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawPath(shape);
}

// A thick line with round ends, for marks drawn as strokes (the check, the seams of the ball).
void strokeMark(QPainter &p, const QPainterPath &line, const QColor &color, qreal width)
{
    p.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(Qt::NoBrush);
    p.drawPath(line);
}

QPainterPath circle(QPointF centre, qreal radius)
{
    QPainterPath path;
    path.addEllipse(centre, radius, radius);
    return path;
}

QPainterPath roundedRect(const QRectF &rect, qreal radius)
{
    QPainterPath path;
    path.addRoundedRect(rect, radius, radius);
    return path;
}

// `shape` grown by `radius` all round, its corners rounded: friendlier than sharp points.
QPainterPath rounded(const QPainterPath &shape, qreal radius)
{
    QPainterPathStroker stroker;
    stroker.setWidth(radius * 2);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(shape).united(shape).simplified();
}

// A regular polygon of `corners` points around `centre`, the first one at `angle` degrees.
QPainterPath regularPolygon(QPointF centre, qreal radius, int corners, qreal angle)
{
    QPolygonF points;
    for (int i = 0; i < corners; ++i) {
        const qreal a = qDegreesToRadians(angle + i * 360.0 / corners);
        points << centre + QPointF(radius * qCos(a), radius * qSin(a));
    }
    QPainterPath path;
    path.addPolygon(points);
    path.closeSubpath();
    return path;
}

QPointF pointAt(QPointF centre, qreal radius, qreal degrees)
{
    const qreal a = qDegreesToRadians(degrees);
    return centre + QPointF(radius * qCos(a), radius * qSin(a));
}

void drawStar(QPainter &p)
{
    QPolygonF points;
    for (int i = 0; i < 10; ++i)
        points << pointAt(QPointF(50, 54), i % 2 ? 19 : 46, -90 + i * 36);
    QPainterPath star;
    star.addPolygon(points);
    star.closeSubpath();
    paintShape(p, rounded(star, 1.5), QColor(0xFF, 0xC5, 0x31));
}

void drawHeart(QPainter &p)
{
    QPainterPath heart(QPointF(50, 90));
    heart.cubicTo(20, 68, 6, 50, 6, 33);
    heart.cubicTo(6, 19, 17, 10, 29, 10);
    heart.cubicTo(39, 10, 46, 16, 50, 24);
    heart.cubicTo(54, 16, 61, 10, 71, 10);
    heart.cubicTo(83, 10, 94, 19, 94, 33);
    heart.cubicTo(94, 50, 80, 68, 50, 90);
    paintShape(p, heart, QColor(0xE8, 0x36, 0x4F));
}

void drawBirthday(QPainter &p)
{
    paintShape(p, roundedRect(QRectF(45, 22, 10, 26), 2), QColor(0x5C, 0x9D, 0xFF));
    QPainterPath flame(QPointF(50, 3));
    flame.cubicTo(59, 11, 59, 20, 50, 20);
    flame.cubicTo(41, 20, 41, 11, 50, 3);
    paintShape(p, flame, QColor(0xFF, 0x9A, 0x1F));
    paintMark(p, circle(QPointF(50, 15), 3), QColor(0xFF, 0xEB, 0x80));
    paintShape(p, roundedRect(QRectF(12, 48, 76, 42), 7), QColor(0xF4, 0x8F, 0xB1));
    QPainterPath icing = roundedRect(QRectF(12, 44, 76, 16), 8);
    for (qreal x : {27.0, 50.0, 73.0})
        icing = icing.united(circle(QPointF(x, 61), 6));
    paintShape(p, icing, QColor(0xFF, 0xF4, 0xE0));
    for (QPointF dot : {QPointF(28, 79), QPointF(50, 82), QPointF(72, 79)})
        paintMark(p, circle(dot, 3.5), QColor(0xFF, 0xFF, 0xFF));
}

void drawDone(QPainter &p)
{
    paintShape(p, circle(QPointF(50, 50), 44), QColor(0x2F, 0xB3, 0x5B));
    QPainterPath check(QPointF(29, 52));
    check.lineTo(44, 67);
    check.lineTo(72, 35);
    strokeMark(p, check, Qt::white, 12);
}

void drawImportant(QPainter &p)
{
    paintShape(p, rounded(ClosedPolygon({{50, 15}, {88, 82}, {12, 82}}), 6), QColor(0xFF, 0x8F, 0x1F));
    paintMark(p, roundedRect(QRectF(44.5, 33, 11, 31), 5.5), Qt::white);
    paintMark(p, circle(QPointF(50, 74), 6), Qt::white);
}

void drawHoliday(QPainter &p)
{
    const QPointF centre(50, 50);
    QPainterPath rays;
    for (int i = 0; i < 8; ++i) {
        const qreal a = i * 45.0;
        rays = rays.united(
            ClosedPolygon({pointAt(centre, 30, a - 13), pointAt(centre, 44, a), pointAt(centre, 30, a + 13)}));
    }
    paintShape(p, rounded(rays, 2), QColor(0xFF, 0xA7, 0x26));
    paintShape(p, circle(centre, 26), QColor(0xFF, 0xD4, 0x3B));
}

void drawReminder(QPainter &p)
{
    // Tilted, as a bell that is ringing.
    p.translate(50, 50);
    p.rotate(-14);
    p.translate(-50, -50);
    paintShape(p, circle(QPointF(50, 84), 8), QColor(0xFF, 0xC5, 0x31));
    QPainterPath bell(QPointF(20, 76));
    bell.cubicTo(28, 66, 26, 48, 28, 38);
    bell.cubicTo(31, 22, 42, 17, 50, 17);
    bell.cubicTo(58, 17, 69, 22, 72, 38);
    bell.cubicTo(74, 48, 72, 66, 80, 76);
    bell.closeSubpath();
    bell = bell.united(roundedRect(QRectF(14, 70, 72, 10), 5)).united(circle(QPointF(50, 13), 6));
    paintShape(p, bell, QColor(0x8C, 0x6B, 0xDF));
}

// A rounded bubble with a tail from `tailBase` towards `tailTip`.
QPainterPath speechBubble(const QRectF &body, QPointF tailBase, QPointF tailTip)
{
    return roundedRect(body, 14).united(
        ClosedPolygon({tailBase - QPointF(7, 0), tailBase + QPointF(7, 0), tailTip}));
}

void drawMeeting(QPainter &p)
{
    paintShape(p, speechBubble(QRectF(6, 10, 56, 40), QPointF(22, 46), QPointF(12, 62)),
               QColor(0x4A, 0x90, 0xE2));
    paintShape(p, speechBubble(QRectF(38, 38, 56, 40), QPointF(78, 74), QPointF(88, 91)),
               QColor(0xFF, 0xA7, 0x26));
    for (qreal x : {53.0, 66.0, 79.0})
        paintMark(p, circle(QPointF(x, 58), 4.5), Qt::white);
}

void drawSport(QPainter &p)
{
    const QPointF centre(50, 50);
    const QColor patch(0x2B, 0x2B, 0x2B);
    const QPainterPath ball = circle(centre, 44);
    paintShape(p, ball, QColor(0xF2, 0xF2, 0xF2));
    p.save();
    p.setClipPath(ball);
    paintMark(p, regularPolygon(centre, 15, 5, -90), patch);
    // The ring of patches round the middle one, joined to it and to each other by seams.
    for (int i = 0; i < 5; ++i) {
        const qreal a = -90 + i * 72;
        const QPointF ring = pointAt(centre, 41, a);
        paintMark(p, regularPolygon(ring, 14, 5, a + 180), patch);
        QPainterPath seams(pointAt(centre, 15, a));
        seams.lineTo(pointAt(centre, 27, a));
        seams.moveTo(pointAt(ring, 14, a + 108));
        seams.lineTo(pointAt(pointAt(centre, 41, a + 72), 14, a + 72 - 108));
        strokeMark(p, seams, patch, 2.5);
    }
    p.restore();
    p.setPen(edgePen(p, QColor(0x9A, 0x9A, 0x9A)));
    p.setBrush(Qt::NoBrush);
    p.drawPath(ball);
}

void drawTravel(QPainter &p)
{
    // An aeroplane seen from above, heading up and to the right.
    p.translate(50, 50);
    p.rotate(45);
    p.translate(-50, -50);
    QPainterPath plane = roundedRect(QRectF(43.5, 6, 13, 84), 6.5);
    plane = plane.united(ClosedPolygon({{50, 34}, {92, 58}, {92, 66}, {50, 56}, {8, 66}, {8, 58}}));
    plane = plane.united(ClosedPolygon({{50, 74}, {68, 87}, {68, 93}, {50, 88}, {32, 93}, {32, 87}}));
    paintShape(p, rounded(plane, 1.5), QColor(0x2F, 0x80, 0xED));
}

void drawGift(QPainter &p)
{
    const QColor ribbon(0xEF, 0x53, 0x50);
    for (qreal sign : {-1.0, 1.0}) {
        p.save();
        p.translate(50 + sign * 14, 22);
        p.rotate(sign * 22);
        QPainterPath loop;
        loop.addEllipse(QPointF(), 15, 10);
        paintShape(p, loop, ribbon);
        p.restore();
    }
    paintShape(p, roundedRect(QRectF(16, 46, 68, 44), 4), QColor(0x26, 0xA6, 0x9A));
    paintShape(p, roundedRect(QRectF(10, 33, 80, 16), 4), QColor(0x2E, 0xBF, 0xB0));
    paintShape(p, roundedRect(QRectF(44, 33, 12, 57), 1), ribbon);
    paintShape(p, circle(QPointF(50, 30), 6.5), ribbon);
}

void drawFlag(QPainter &p)
{
    paintShape(p, roundedRect(QRectF(18, 10, 7, 84), 3.5), QColor(0x6D, 0x4C, 0x41));
    paintShape(p, circle(QPointF(21.5, 9), 5), QColor(0xFF, 0xC5, 0x31));
    QPainterPath cloth(QPointF(25, 16));
    cloth.cubicTo(45, 7, 62, 24, 88, 15);
    cloth.lineTo(88, 56);
    cloth.cubicTo(62, 65, 45, 48, 25, 57);
    cloth.closeSubpath();
    paintShape(p, cloth, QColor(0xE5, 0x39, 0x35));
}

struct Sticker
{
    const char *name;
    void (*draw)(QPainter &);
};

const std::array<Sticker, 12> kStickers = {{
    {QT_TRANSLATE_NOOP("CalendarSticker", "Star"), drawStar},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Heart"), drawHeart},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Birthday"), drawBirthday},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Done"), drawDone},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Important"), drawImportant},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Holiday"), drawHoliday},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Reminder"), drawReminder},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Meeting"), drawMeeting},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Sport"), drawSport},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Travel"), drawTravel},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Gift"), drawGift},
    {QT_TRANSLATE_NOOP("CalendarSticker", "Flag"), drawFlag},
}};

bool validIndex(int index)
{
    return index >= 0 && index < CalendarStickerCount();
}

} // namespace

int CalendarStickerCount()
{
    return int(kStickers.size());
}

QString CalendarStickerName(int index)
{
    if (!validIndex(index))
        return QString();
    return QCoreApplication::translate("CalendarSticker", kStickers[index].name);
}

QImage CalendarStickerImage(int index, int side)
{
    if (!validIndex(index) || side < 1)
        return QImage();
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(side / 100.0, side / 100.0);
    kStickers[index].draw(p);
    return image;
}
