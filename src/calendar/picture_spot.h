#pragma once

#include <QRectF>
#include <QSizeF>

// Where a sticker or picture put on a day goes: in the largest part of the day that its text
// (number, note, events) leaves free, to the right of the text or below it, scaled to fit there
// with its proportions kept and never beyond `share` of the day or its own size. Only when the
// text leaves no room at all does it go, small, in the day's bottom right-hand corner.
QRectF ClearSpotForPicture(const QRectF &day, const QRectF &text, const QSizeF &picture, qreal share);
