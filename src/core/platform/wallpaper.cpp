#include "core/platform/wallpaper.h"

#include "core/platform/session_platform.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QUrl>

#ifdef Q_OS_WIN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string>
#endif

namespace {

constexpr int kCommandWaitMs = 5000;

// 0 centre, 1 tile, 2 stretch; anything else is taken as centre.
int knownStyle(int style)
{
    return style == 1 || style == 2 ? style : 0;
}

QString unknownDesktopText()
{
    return QStringLiteral("an unknown desktop");
}

QString fileUri(const QString &path)
{
    return QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
}

// The picture-options value GNOME, Cinnamon and MATE share.
QString pictureOption(int style)
{
    static const char *const options[] = {"centered", "wallpaper", "stretched"};
    return QLatin1String(options[knownStyle(style)]);
}

WallpaperCommand gsettingsSet(const QString &schema, const QString &key, const QString &value)
{
    return {QStringLiteral("gsettings"), {QStringLiteral("set"), schema, key, value}};
}

QList<WallpaperCommand> gnomeCommands(int style, const QString &path)
{
    const QString schema = QStringLiteral("org.gnome.desktop.background");
    WallpaperCommand dark = gsettingsSet(schema, QStringLiteral("picture-uri-dark"), fileUri(path));
    dark.optional = true; // the key exists only on newer GNOME
    return {gsettingsSet(schema, QStringLiteral("picture-uri"), fileUri(path)), dark,
            gsettingsSet(schema, QStringLiteral("picture-options"), pictureOption(style))};
}

QList<WallpaperCommand> cinnamonCommands(int style, const QString &path)
{
    const QString schema = QStringLiteral("org.cinnamon.desktop.background");
    return {gsettingsSet(schema, QStringLiteral("picture-uri"), fileUri(path)),
            gsettingsSet(schema, QStringLiteral("picture-options"), pictureOption(style))};
}

QList<WallpaperCommand> mateCommands(int style, const QString &path)
{
    const QString schema = QStringLiteral("org.mate.background");
    return {gsettingsSet(schema, QStringLiteral("picture-filename"), path),
            gsettingsSet(schema, QStringLiteral("picture-options"), pictureOption(style))};
}

// `text` as a double-quoted JavaScript string literal (a JSON string is one).
QString scriptString(const QString &text)
{
    const QByteArray json = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(json.mid(1, json.size() - 2)); // drop the array's brackets
}

QString plasmaScript(int style, const QString &path)
{
    static const int fillModes[] = {6, 3, 0}; // centred on a padded background, tiled, stretched
    return QStringLiteral("var all = desktops();"
                          " for (var i = 0; i < all.length; i++) {"
                          " var d = all[i];"
                          " d.wallpaperPlugin = \"org.kde.image\";"
                          " d.currentConfigGroup = [\"Wallpaper\", \"org.kde.image\", \"General\"];"
                          " d.writeConfig(\"Image\", %1);"
                          " d.writeConfig(\"FillMode\", %2);"
                          " }")
        .arg(scriptString(fileUri(path)), QString::number(fillModes[knownStyle(style)]));
}

// --print-reply makes dbus-send wait for the answer, so a missing shell or a script error
// shows in its exit code.
WallpaperCommand plasmaCommand(int style, const QString &path)
{
    return {QStringLiteral("dbus-send"),
            {QStringLiteral("--session"), QStringLiteral("--print-reply"),
             QStringLiteral("--dest=org.kde.plasmashell"), QStringLiteral("--type=method_call"),
             QStringLiteral("/PlasmaShell"), QStringLiteral("org.kde.PlasmaShell.evaluateScript"),
             QStringLiteral("string:") + plasmaScript(style, path)}};
}

WallpaperCommand xfconfCommand(const QStringList &arguments)
{
    return {QStringLiteral("xfconf-query"),
            QStringList{QStringLiteral("-c"), QStringLiteral("xfce4-desktop")} + arguments};
}

DesktopFamily familyOfEntry(const QString &entry)
{
    static const struct
    {
        const char *prefix;
        DesktopFamily family;
    } known[] = {
        {"gnome", DesktopFamily::Gnome},      {"unity", DesktopFamily::Gnome},
        {"budgie", DesktopFamily::Gnome},     {"pantheon", DesktopFamily::Gnome},
        {"ubuntu", DesktopFamily::Gnome},     {"kde", DesktopFamily::KdePlasma},
        {"plasma", DesktopFamily::KdePlasma}, {"xfce", DesktopFamily::Xfce},
        {"mate", DesktopFamily::Mate},        {"cinnamon", DesktopFamily::Cinnamon},
    };
    QString name = entry.trimmed().toLower();
    if (name.startsWith(QLatin1String("x-"))) // "X-Cinnamon"
        name.remove(0, 2);
    // Prefixes, so that session names such as "gnome-xorg" or "plasmawayland" match too.
    for (const auto &k : known) {
        if (name.startsWith(QLatin1String(k.prefix)))
            return k.family;
    }
    return DesktopFamily::Other;
}

// Runs the commands in order and stops at the first required one that fails.
bool runAll(const QList<WallpaperCommand> &commands, const WallpaperRunner &run)
{
    for (const WallpaperCommand &command : commands) {
        if (!run(command).succeeded() && !command.optional)
            return false;
    }
    return !commands.isEmpty();
}

bool runXfce(int style, const QString &path, const WallpaperRunner &run)
{
    const WallpaperCommandResult list = run(XfcePropertyListCommand());
    if (!list.succeeded())
        return false;
    return runAll(XfceWallpaperCommands(QString::fromLocal8Bit(list.output), style, path), run);
}

QString failureMessage(const QString &desktopText, DesktopFamily family, bool wayland)
{
    const QString where =
        desktopText.isEmpty() ? unknownDesktopText() : QStringLiteral("the desktop \"%1\"").arg(desktopText);
    if (family == DesktopFamily::Other && wayland)
        return QStringLiteral("The wallpaper could not be set on %1: it is not a desktop Vantora knows, and in "
                              "a Wayland session feh cannot set it.")
            .arg(where);
    if (family == DesktopFamily::Other)
        return QStringLiteral("The wallpaper could not be set on %1: it is not a desktop Vantora knows, and "
                              "feh, which sets the wallpaper there, is not installed or did not work.")
            .arg(where);
    if (wayland)
        return QStringLiteral("The wallpaper could not be set on %1: its own settings did not accept the "
                              "picture.")
            .arg(where);
    return QStringLiteral("The wallpaper could not be set on %1: neither its own settings nor feh "
                          "accepted the picture.")
        .arg(where);
}

QString missingFileMessage(const QString &file)
{
    return QStringLiteral("The wallpaper could not be set: the picture \"%1\" does not exist.")
        .arg(QDir::toNativeSeparators(file));
}

#ifdef Q_OS_WIN
// Writes a text value under HKEY_CURRENT_USER\Control Panel\Desktop, creating the key if needed.
bool writeDesktopValue(const wchar_t *name, const QString &value)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", 0, nullptr, REG_OPTION_NON_VOLATILE,
                        KEY_SET_VALUE, nullptr, &key, nullptr) != ERROR_SUCCESS)
        return false;
    const std::wstring text = value.toStdWString();
    // The count covers the characters without a terminating zero, as the values have always been
    // written; the system reads them either way.
    const LONG rc = RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                                   DWORD(text.size() * sizeof(wchar_t)));
    RegCloseKey(key);
    return rc == ERROR_SUCCESS;
}

WallpaperResult setWindowsWallpaper(int style, const QString &path)
{
    WallpaperResult result;
    result.desktop = QStringLiteral("Windows");
    const WallpaperRegistryValues values = WallpaperRegistryValuesFor(style);
    writeDesktopValue(L"WallpaperStyle", values.wallpaperStyle);
    writeDesktopValue(L"TileWallpaper", values.tileWallpaper);
    std::wstring nativePath = QDir::toNativeSeparators(path).toStdWString();
    result.ok = SystemParametersInfoW(SPI_SETDESKWALLPAPER, 0, nativePath.data(),
                                      SPIF_UPDATEINIFILE | SPIF_SENDCHANGE) != FALSE;
    if (!result.ok) {
        result.message =
            QStringLiteral("The wallpaper could not be set: Windows did not accept the picture \"%1\".")
                .arg(QDir::toNativeSeparators(path));
    }
    return result;
}
#endif

} // namespace

WallpaperRegistryValues WallpaperRegistryValuesFor(int style)
{
    switch (knownStyle(style)) {
    case 1:
        return {QStringLiteral("0"), QStringLiteral("1")};
    case 2:
        return {QStringLiteral("2"), QStringLiteral("0")};
    default:
        return {QStringLiteral("0"), QStringLiteral("0")};
    }
}

QString CurrentDesktopText()
{
    for (const char *name : {"XDG_CURRENT_DESKTOP", "XDG_SESSION_DESKTOP", "DESKTOP_SESSION"}) {
        const QString desktop = qEnvironmentVariable(name);
        if (!desktop.isEmpty())
            return desktop;
    }
    return {};
}

DesktopFamily DesktopFamilyOf(const QString &desktopText)
{
    for (const QString &entry : desktopText.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        const DesktopFamily family = familyOfEntry(entry);
        if (family != DesktopFamily::Other)
            return family;
    }
    return DesktopFamily::Other;
}

QList<WallpaperCommand> WallpaperCommandsFor(DesktopFamily family, int style, const QString &file)
{
    switch (family) {
    case DesktopFamily::Gnome:
        return gnomeCommands(style, file);
    case DesktopFamily::Cinnamon:
        return cinnamonCommands(style, file);
    case DesktopFamily::Mate:
        return mateCommands(style, file);
    case DesktopFamily::KdePlasma:
        return {plasmaCommand(style, file)};
    case DesktopFamily::Xfce:
        return {};
    case DesktopFamily::Other:
        break;
    }
    return {FehWallpaperCommand(style, file)};
}

WallpaperCommand XfcePropertyListCommand()
{
    return xfconfCommand({QStringLiteral("-l")});
}

QList<WallpaperCommand> XfceWallpaperCommands(const QString &listOutput, int style, const QString &file)
{
    static const QString imageKey = QStringLiteral("/last-image");
    const QString imageStyle = QString::number(knownStyle(style) + 1); // 1 centred, 2 tiled, 3 stretched
    QList<WallpaperCommand> commands;
    QStringList done;
    for (const QString &line : listOutput.split(QLatin1Char('\n'))) {
        const QString property = line.trimmed();
        if (!property.endsWith(imageKey) || done.contains(property))
            continue;
        done << property;
        const QString backdrop = property.chopped(imageKey.size());
        commands << xfconfCommand({QStringLiteral("-p"), property, QStringLiteral("-s"), file})
                 << xfconfCommand({QStringLiteral("-p"), backdrop + QStringLiteral("/image-style"),
                                   QStringLiteral("-s"), imageStyle});
    }
    return commands;
}

WallpaperCommand PlasmaApplyWallpaperCommand(const QString &file)
{
    return {QStringLiteral("plasma-apply-wallpaperimage"), {file}};
}

WallpaperCommand FehWallpaperCommand(int style, const QString &file)
{
    static const char *const modes[] = {"--bg-center", "--bg-tile", "--bg-scale"};
    return {QStringLiteral("feh"), {QLatin1String(modes[knownStyle(style)]), file}};
}

WallpaperCommandResult RunWallpaperCommand(const WallpaperCommand &command)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(command.program, command.arguments);
    WallpaperCommandResult result;
    if (!process.waitForStarted(kCommandWaitMs))
        return result;
    result.started = true;
    if (!process.waitForFinished(kCommandWaitMs)) {
        process.kill();
        process.waitForFinished();
        return result; // exit code stays -1: a hung command failed
    }
    result.output = process.readAllStandardOutput();
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return result;
}

WallpaperResult SetWallpaper(int style, const QString &file)
{
#ifdef Q_OS_WIN
    const QFileInfo info(file);
    if (!info.isFile())
        return {false, QStringLiteral("Windows"), missingFileMessage(file)};
    return setWindowsWallpaper(style, info.absoluteFilePath());
#else
    return SetWallpaper(style, file, CurrentDesktopText());
#endif
}

WallpaperResult SetWallpaper(int style, const QString &file, const QString &desktopText,
                             const WallpaperRunner &run)
{
    WallpaperResult result;
    result.desktop = desktopText.isEmpty() ? unknownDesktopText() : desktopText;
    const QFileInfo info(file);
    if (!info.isFile()) {
        result.message = missingFileMessage(file);
        return result;
    }
    const QString path = info.absoluteFilePath();
    const DesktopFamily family = DesktopFamilyOf(desktopText);
    const bool wayland = SessionPlatform::isWaylandSession(SessionPlatform::Environment::ofProcess());
    if (family == DesktopFamily::Xfce)
        result.ok = runXfce(style, path, run);
    else if (family != DesktopFamily::Other || !wayland) // the unknown desktop's command is feh
        result.ok = runAll(WallpaperCommandsFor(family, style, path), run);
    if (!result.ok && family == DesktopFamily::KdePlasma)
        result.ok = runAll({PlasmaApplyWallpaperCommand(path)}, run);
    // feh as the last resort; for an unknown desktop it was the only thing tried.
    if (!result.ok && family != DesktopFamily::Other && !wayland)
        result.ok = runAll({FehWallpaperCommand(style, path)}, run);
    if (!result.ok)
        result.message = failureMessage(desktopText, family, wayland);
    return result;
}
