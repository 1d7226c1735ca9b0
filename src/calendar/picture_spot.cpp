#include "calendar/picture_spot.h"

#include <QList>

namespace {

// Kept clear between the picture, the text and the day's edges, as a part of the day's height.
constexpr qreal kGapShare = 0.03;
// The smallest side of a free part, in page pixels; below it the part counts as no room.
constexpr qreal kSmallestSide = 6;
// The size of a picture that finds no room at all.
constexpr qreal kCornerShare = 0.3;

QSizeF fitted(const QSizeF &picture, const QSizeF &room)
{
    if (picture.width() <= room.width() && picture.height() <= room.height())
        return picture;
    return picture.scaled(room, Qt::KeepAspectRatio);
}

} // namespace

QRectF ClearSpotForPicture(const QRectF &day, const QRectF &text, const QSizeF &picture, qreal share)
{
    if (day.isEmpty() || picture.isEmpty())
        return {};
    const qreal gap = day.height() * kGapShare;
    const QRectF inside = day.adjusted(gap, gap, -gap, -gap);
    const QSizeF most = day.size() * share;
    QList<QRectF> parts;
    if (text.isEmpty() || !text.intersects(inside)) {
        parts << inside;
    } else {
        parts << QRectF(QPointF(text.right() + gap, inside.top()), inside.bottomRight())
              << QRectF(QPointF(inside.left(), text.bottom() + gap), inside.bottomRight());
    }
    QRectF best;
    for (const QRectF &part : parts) {
        if (part.width() < kSmallestSide || part.height() < kSmallestSide)
            continue;
        const QSizeF size = fitted(picture, part.size().boundedTo(most));
        if (size.width() * size.height() > best.width() * best.height())
            best = QRectF(part.center() - QPointF(size.width() / 2, size.height() / 2), size);
    }
    if (!best.isEmpty())
        return best;
    const QSizeF size = fitted(picture, day.size() * kCornerShare);
    return QRectF(inside.bottomRight() - QPointF(size.width(), size.height()), size);
}
