#include "core/drawing/pen_cursor.h"

#include <QPainter>
#include <QPixmap>

#include <cmath>

namespace {
// Pointer images larger than this are cut by some window systems; the mark then shows its
// edge only, which is what matters for aiming.
constexpr int kLargestSide = 96;
// Below this a mark is too small to aim with; a cross around it shows where it lands.
constexpr qreal kSmallestMark = 6;

void paintCross(QPainter &painter, const QPointF &centre, qreal reach)
{
    for (const QColor &colour : {QColor(255, 255, 255, 220), QColor(0, 0, 0, 220)}) {
        painter.setPen(QPen(colour, colour == Qt::black ? 1 : 3, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(QPointF(centre.x() - reach, centre.y()), QPointF(centre.x() - 3, centre.y()));
        painter.drawLine(QPointF(centre.x() + 3, centre.y()), QPointF(centre.x() + reach, centre.y()));
        painter.drawLine(QPointF(centre.x(), centre.y() - reach), QPointF(centre.x(), centre.y() - 3));
        painter.drawLine(QPointF(centre.x(), centre.y() + 3), QPointF(centre.x(), centre.y() + reach));
    }
}
} // namespace

QCursor PenCursor(const InkPen &pen, qreal diameter, qreal pixelRatio)
{
    const qreal mark = qBound(1.0, diameter, qreal(kLargestSide - 4));
    const bool small = mark < kSmallestMark;
    const int side = small ? 21 : int(std::ceil(mark)) + 5;
    QPixmap pixmap(QSize(side, side) * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    const QPointF centre(side / 2.0, side / 2.0);
    const QRectF area(centre - QPointF(mark / 2, mark / 2), QSizeF(mark, mark));

    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing, true);
    QColor fill = pen.color;
    switch (pen.kind) {
    case InkKind::Pen:
        painter.setPen(QPen(fill.lightness() > 128 ? Qt::black : Qt::white, 1));
        painter.setBrush(fill);
        painter.drawEllipse(area.adjusted(-0.5, -0.5, 0.5, 0.5));
        break;
    case InkKind::Highlighter:
        fill.setAlphaF(InkPen::kHighlighterOpacity);
        painter.setPen(QPen(QColor(0, 0, 0, 160), 1));
        painter.setBrush(fill);
        painter.drawRoundedRect(area.adjusted(-0.5, -0.5, 0.5, 0.5), 2, 2);
        break;
    case InkKind::Eraser:
        painter.setPen(QPen(Qt::white, 3));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(area);
        painter.setPen(QPen(Qt::black, 1));
        painter.drawEllipse(area);
        break;
    }
    if (small)
        paintCross(painter, centre, side / 2.0);
    painter.end();
    return QCursor(pixmap, side / 2, side / 2);
}
