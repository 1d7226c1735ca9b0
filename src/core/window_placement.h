#pragma once

#include <QList>
#include <QPoint>
#include <QRect>

class QWidget;

// A window's placement, kept under SettingsRoot() + objectName() + "\Window" as decimal text
// in twips (1440 to the inch; 15 to a pixel at 96 dots per inch, converted with the dots per
// inch of the window's screen): "Window State" (0 normal, 1 minimised, 2 maximised), "Left",
// "Top", "Width", "Height".

// With size: a minimised or maximised window writes only "Window State", so the last normal
// rectangle stays stored; a normal one writes state 0 and its rectangle. Without size (fixed
// windows, dialogs): "Left" and "Top" only.
void SaveWindowPlacement(QWidget *window, bool withSize);

// Called before the window is shown; a missing or unreadable value leaves that part of the
// window as it is. With size: a stored state other than normal brings the window back
// maximised (never minimised) and nothing else is read; otherwise the stored size is applied.
// Then each axis takes its stored position, or is centred on the screen when the stored
// position starts left of (above) the screen or ends past its right (bottom) edge.
// Returns false when an axis was centred that way (the stored place did not fit the screen),
// so that a caller with a better idea of where the window belongs can move it.
bool RestoreWindowPlacement(QWidget *window, bool withSize);

// True when a place was stored for `window` (it has been closed somewhere before).
bool HasStoredPlacement(const QWidget *window);

// The restore arithmetic for one axis, in twips measured from the screen's left (top) edge:
// the stored position when it lies on the screen, else the centred one.
double PlacementAxis(double stored, double windowSize, double screenSize);

// (screen + window) / 2 - window, rounded to a whole twip with halves to even; a window
// larger than the screen gets 15 (one pixel) instead of a negative position.
double CentredPosition(double windowSize, double screenSize);

// Pixels and twips at a given number of dots per inch.
double PixelsToTwips(double pixels, double dotsPerInch);
int TwipsToPixels(double twips, double dotsPerInch);

// Where a window opened without a stored place goes: the first spot of `size` within `area`,
// from its top-right corner going down and then leftwards, that covers none of `taken`. When
// every spot covers something, the one that covers the least (by area) is taken, so windows
// too large to fit side by side overlap as little as the screen allows instead of piling up
// in its centre. A window larger than the area starts at its top-left corner.
QPoint FreeSpot(const QSize &size, const QRect &area, const QList<QRect> &taken);

// The top-left corner that centres a window of `size` over `owner`.
QPoint CentredOver(const QRect &owner, const QSize &size);

// FreeSpot for `window` on its screen, clear of the program's other visible windows.
QPoint FreeSpotFor(const QWidget *window);
