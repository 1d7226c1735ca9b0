#pragma once

#include <QByteArray>
#include <QString>

// Which of Qt's window-system platforms the program asks for. A Wayland compositor places its
// clients' windows itself and need not keep one above the others, so the widgets' stored places
// and keep-on-top would be lost there. Most Wayland sessions also run an X server for older
// programs (XWayland); the program then runs as an X client, where both work. The user can still
// ask for Wayland itself with VANTORA_PLATFORM=wayland, and QT_QPA_PLATFORM (or -platform) set
// by hand is always obeyed.
namespace SessionPlatform {

// The environment variables the choice depends on, as found at start.
struct Environment
{
    QByteArray waylandDisplay; // WAYLAND_DISPLAY
    QByteArray sessionType;    // XDG_SESSION_TYPE
    QByteArray x11Display;     // DISPLAY
    QByteArray qtPlatform;     // QT_QPA_PLATFORM
    QByteArray choice;         // VANTORA_PLATFORM: "wayland", "xcb" (or "x11"), or unset

    static Environment ofProcess();
};

// True in a Wayland session, whichever platform the program itself runs on.
bool isWaylandSession(const Environment &environment);

// What to put in QT_QPA_PLATFORM before the application object is made; empty to leave Qt's own
// choice (not a Wayland session, or the user already chose).
QByteArray chooseQtPlatform(const Environment &environment);

// A line for standard error when VANTORA_PLATFORM holds something the program does not know;
// empty otherwise.
QString choiceProblem(const Environment &environment);

// True when the running platform (QGuiApplication::platformName()) is a Wayland one, where the
// compositor decides where windows go and moves them when the user drags.
bool compositorPlacesWindows(const QString &platformName);

} // namespace SessionPlatform
