#pragma once

#include <QList>
#include <QPainterPath>
#include <QPointF>
#include <QPolygonF>

#include <initializer_list>

// A closed outline through `points`, for shapes drawn from a handful of corners (stickers,
// drawn icons).
inline QPainterPath ClosedPolygon(std::initializer_list<QPointF> points)
{
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}
