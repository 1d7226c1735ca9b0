#include "calendar/month_page_remap.h"

#include <QPainter>

QImage RemapPageCells(const QImage &page, const MonthLayout &from, const MonthLayout &to)
{
    if (page.isNull() || from.firstDayOfWeek() == to.firstDayOfWeek())
        return page;
    QImage moved(page.size(), QImage::Format_ARGB32_Premultiplied);
    moved.fill(Qt::transparent);
    // The page may have been scaled from another size: cells are found in its own pixels.
    const qreal sx = qreal(page.width()) / MonthLayout::pageSize().width();
    const qreal sy = qreal(page.height()) / MonthLayout::pageSize().height();
    const auto scaled = [sx, sy](const QRectF &r) {
        return QRectF(r.x() * sx, r.y() * sy, r.width() * sx, r.height() * sy).toAlignedRect();
    };
    QPainter painter(&moved);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        for (int column = 0; column < MonthLayout::kColumns; ++column) {
            const QPoint target = to.cellOf(from.dateAt(row, column));
            if (target.x() < 0)
                continue;
            painter.drawImage(scaled(MonthLayout::cellRect(target.y(), target.x())), page,
                              scaled(MonthLayout::cellRect(row, column)));
        }
    }
    return moved;
}
