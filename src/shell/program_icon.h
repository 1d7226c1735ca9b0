#pragma once

#include <QIcon>
#include <QPixmap>

// The program's icon, drawn from its SVG without Qt's icon plugins.
//
// A window icon made straight from the SVG is drawn again at seven sizes up to 256 pixels each
// time a window is created, and loads the SVG icon plugin on the way; at start-up that cost more
// than building the dashboard's menus. Windows and the tray get the SVG drawn at build time, at
// the sizes window managers and trays use.
namespace ProgramIcon {
// For QApplication::setWindowIcon and the tray: the SVG drawn at 16 to 64 pixels.
QIcon forWindows();
// The icon drawn at one size, sharp at the screen's pixel ratio (the dashboard, About).
QPixmap drawn(int side, qreal devicePixelRatio);
} // namespace ProgramIcon
