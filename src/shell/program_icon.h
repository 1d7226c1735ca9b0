#pragma once

#include <QIcon>
#include <QPixmap>

// The program's icon, from its SVG drawn at build time, without Qt's icon plugins.
//
// A window icon made straight from the SVG is drawn again at seven sizes up to 256 pixels each
// time a window is created, and loads the SVG icon plugin on the way; at start-up that cost more
// than building the dashboard's menus.
namespace ProgramIcon {
// For QApplication::setWindowIcon and the tray: the SVG drawn at 16 to 64 pixels.
QIcon forWindows();
// The icon at one size, sharp at the screen's pixel ratio (the dashboard, About): the nearest
// larger drawing scaled down.
QPixmap drawn(int side, qreal devicePixelRatio);
} // namespace ProgramIcon
