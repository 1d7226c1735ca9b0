#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

// Making a picture the desktop wallpaper. Styles: 0 centres the picture, 1 tiles it, 2 stretches
// it over the screen; any other value counts as 0.
//
// On Windows the style goes into the user's "Control Panel\Desktop" registry values and the
// system is told of the new picture. Elsewhere the desktop is recognised from
// XDG_CURRENT_DESKTOP (else XDG_SESSION_DESKTOP, else DESKTOP_SESSION) and its own settings tool
// is run; when that fails, or the desktop is not one of those known, feh sets the root window
// instead. Not in a Wayland session: there the X root window is not what the desktop shows, and
// feh would report a success nobody sees.

// The desktops whose wallpaper the program knows how to set.
enum class DesktopFamily
{
    Gnome,
    KdePlasma,
    Xfce,
    Mate,
    Cinnamon,
    Other
};

// One program to run, with its arguments. An optional command's failure does not make the
// whole attempt fail (a settings key only newer desktops have, for instance).
struct WallpaperCommand
{
    QString program;
    QStringList arguments;
    bool optional = false;

    bool operator==(const WallpaperCommand &other) const
    {
        return program == other.program && arguments == other.arguments;
    }
};

// What running a command gave: whether it started at all, its exit code and what it printed.
struct WallpaperCommandResult
{
    bool started = false;
    int exitCode = -1;
    QByteArray output;

    bool succeeded() const { return started && exitCode == 0; }
};

using WallpaperRunner = std::function<WallpaperCommandResult(const WallpaperCommand &)>;

// The outcome. `desktop` is the desktop text as found in the environment ("an unknown desktop"
// when there was none); `message` tells the user what went wrong when `ok` is false.
struct WallpaperResult
{
    bool ok = false;
    QString desktop;
    QString message;
};

// The texts of the "WallpaperStyle" and "TileWallpaper" registry values for a style.
struct WallpaperRegistryValues
{
    QString wallpaperStyle;
    QString tileWallpaper;
};
WallpaperRegistryValues WallpaperRegistryValuesFor(int style);

// The desktop's text from the environment: XDG_CURRENT_DESKTOP, else XDG_SESSION_DESKTOP, else
// DESKTOP_SESSION.
QString CurrentDesktopText();

// The family of a desktop text such as "ubuntu:GNOME" or "X-Cinnamon": the first entry of the
// colon-separated list that names a known desktop decides.
DesktopFamily DesktopFamilyOf(const QString &desktopText);

// The commands that set `file` as the wallpaper on GNOME, Cinnamon, MATE or KDE Plasma, in
// order; for a desktop not among those, the feh command. Empty for XFCE, which needs its
// property list first (see XfceWallpaperCommands).
QList<WallpaperCommand> WallpaperCommandsFor(DesktopFamily family, int style, const QString &file);

// The command that lists the XFCE desktop properties.
WallpaperCommand XfcePropertyListCommand();

// The XFCE commands for the property list `listOutput` printed: the picture and the style of
// every backdrop that has a last-image property. Empty when there is none.
QList<WallpaperCommand> XfceWallpaperCommands(const QString &listOutput, int style, const QString &file);

// Plasma's own command, tried when its shell does not take the script (it cannot place the
// picture, so the style is left as it was).
WallpaperCommand PlasmaApplyWallpaperCommand(const QString &file);

// The feh command that sets the root window's picture.
WallpaperCommand FehWallpaperCommand(int style, const QString &file);

// Runs a command and waits up to five seconds for it. A program that is not installed did not
// start; one still running after the wait is stopped and counts as failed.
WallpaperCommandResult RunWallpaperCommand(const WallpaperCommand &command);

// Sets the wallpaper on this system's desktop.
WallpaperResult SetWallpaper(int style, const QString &file);

// Sets the wallpaper through the commands for the desktop `desktopText` names, run one after
// another by `run`. Used on every platform other than Windows, and by tests. Whether the session
// is a Wayland one is read from the environment.
WallpaperResult SetWallpaper(int style, const QString &file, const QString &desktopText,
                             const WallpaperRunner &run = RunWallpaperCommand);
