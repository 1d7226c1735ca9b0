#pragma once

#include <QIcon>
#include <QStyle>

// Folder, document, drive and "up" icons drawn with the painter at any size, for the lists of
// files and folders the side panels show in their first frame.
//
// The platform's own pictures for these are read from files: the first one read makes Qt look
// through the icon theme and load every image format plugin, which cost the notes editor more
// than a third of its start. Drawn, they also stay sharp at every screen scale.
namespace DrawnFileIcons {
// The drawn icon for `which`, or a null icon for a standard icon not drawn here.
QIcon icon(QStyle::StandardPixmap which);
} // namespace DrawnFileIcons
