#pragma once

#include <QImage>
#include <QString>

// The small coloured pictures a user can put on a day of the calendar. They are drawn rather
// than loaded, so that they look the same on every system and stay sharp at any size: bold
// shapes in clear colours with a thin darker edge that shows on light and dark pages alike.

// How many stickers are offered; indexes run from 0 in the order the insert dialog shows them.
int CalendarStickerCount();

// The translated name of sticker `index` ("Star", "Birthday"); empty for an index out of range.
QString CalendarStickerName(int index);

// Sticker `index` drawn on a transparent `side` x `side` ARGB32_Premultiplied image; a null
// image for an index out of range or a side below one pixel.
QImage CalendarStickerImage(int index, int side);
