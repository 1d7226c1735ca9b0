#pragma once

#include <QPoint>
#include <QString>
#include <QUrl>
#include <functional>

class QKeySequence;
class QWidget;

// Shared behaviour of every borderless widget window: frame, dragging, keep-on-top, the corner
// resize grip, links and sounds. Each widget calls these from its own event handlers.

// No caption, no border, no taskbar button (a frameless tool window).
void MakeBorderless(QWidget *window);
void HideFromTaskbar(QWidget *window);
// Keeps the window above others (or not) without activating or moving it.
void SetKeepOnTop(QWidget *window, bool on);

// Left button: drag the window unless it is minimised or maximised. Right button: the shared
// widget context menu for this window, at globalPos.
void WidgetMouseDown(QWidget *window, Qt::MouseButton button, const QPoint &globalPos);
void DragWindow(QWidget *window);
// False when the window system refused (no window manager): the caller then resizes by hand.
bool ResizeFromCorner(QWidget *window);
bool IsCursorOverWindow(const QWidget *window);
void SetHandCursor(QWidget *widget);

// Plays a sound from the program's resources by name ("BELL"). No audio device means no sound
// and no error; a sound already playing is not restarted.
void PlayBuiltInSound(const QString &resourceName);
// Plays a sound file without waiting. A missing or unreadable file plays nothing.
void PlaySoundFile(const QString &path);

// Opens a web, mail, news or ftp address as it stands, or a local file (relative to folder).
void OpenLink(QWidget *owner, const QString &target, const QString &folder = QString());
// The address OpenLink hands to the desktop for a target; empty for an empty target.
QUrl LinkTargetToUrl(const QString &target, const QString &folder = QString());

// Moves the window the least needed to lie wholly on the screen under its centre (the primary
// screen when none is). A window larger than the screen keeps its top-left corner visible.
void KeepInsideScreen(QWidget *window);

// A keyboard shortcut that runs `action` wherever the focus is in `window`.
void AddWindowShortcut(QWidget *window, const QKeySequence &keys, const std::function<void()> &action);

// Puts the window's close button ("picCLOSE" or "CloseRefresh") at the top right, 10 pixels in.
void PlaceCloseButton(QWidget *window);

// The handler that pops up the shared widget context menu; set once by start-up.
using ContextMenuHandler = std::function<void(QWidget *window, const QPoint &globalPos)>;
void SetContextMenuHandler(ContextMenuHandler handler);

// Tests only: while set, sounds are not played but reported here ("BELL" or the file path).
using SoundRecorder = std::function<void(const QString &sound)>;
void SetSoundRecorderForTesting(SoundRecorder recorder);
