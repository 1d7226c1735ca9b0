#include "core/platform/session_platform.h"

namespace SessionPlatform {

namespace {

enum class Choice
{
    Automatic,
    Wayland,
    X11,
    Unknown
};

Choice choiceOf(const QByteArray &text)
{
    const QByteArray choice = text.trimmed().toLower();
    if (choice.isEmpty())
        return Choice::Automatic;
    if (choice == "wayland")
        return Choice::Wayland;
    if (choice == "xcb" || choice == "x11")
        return Choice::X11;
    return Choice::Unknown;
}

} // namespace

bool isWaylandSession(const Environment &environment)
{
    return !environment.waylandDisplay.isEmpty() || environment.sessionType == "wayland";
}

Environment Environment::ofProcess()
{
    return {qgetenv("WAYLAND_DISPLAY"), qgetenv("XDG_SESSION_TYPE"), qgetenv("DISPLAY"),
            qgetenv("QT_QPA_PLATFORM"), qgetenv("VANTORA_PLATFORM")};
}

QByteArray chooseQtPlatform(const Environment &environment)
{
    if (!environment.qtPlatform.isEmpty() || !isWaylandSession(environment))
        return {};
    const bool hasXWayland = !environment.x11Display.isEmpty();
    switch (choiceOf(environment.choice)) {
    case Choice::Wayland:
        // Qt tries the platforms in turn: without its Wayland plugin the X server still serves.
        return hasXWayland ? QByteArrayLiteral("wayland;xcb") : QByteArrayLiteral("wayland");
    case Choice::X11:
    case Choice::Automatic:
    case Choice::Unknown:
        break;
    }
    return hasXWayland ? QByteArrayLiteral("xcb") : QByteArrayLiteral("wayland");
}

QString choiceProblem(const Environment &environment)
{
    if (choiceOf(environment.choice) != Choice::Unknown)
        return {};
    return QStringLiteral("VANTORA_PLATFORM=%1 is not known (it takes wayland or xcb); the platform is "
                          "chosen as if it were not set")
        .arg(QString::fromLocal8Bit(environment.choice));
}

bool compositorPlacesWindows(const QString &platformName)
{
    return platformName.startsWith(QLatin1String("wayland"));
}

} // namespace SessionPlatform
