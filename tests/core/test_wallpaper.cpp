#include "core/platform/wallpaper.h"
#include "support/scoped_environment.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <memory>

namespace {

bool writePicture(const QString &path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    return image.save(path, "PNG");
}

QString familyName(DesktopFamily family)
{
    switch (family) {
    case DesktopFamily::Gnome:
        return QStringLiteral("GNOME");
    case DesktopFamily::KdePlasma:
        return QStringLiteral("KDE");
    case DesktopFamily::Xfce:
        return QStringLiteral("XFCE");
    case DesktopFamily::Mate:
        return QStringLiteral("MATE");
    case DesktopFamily::Cinnamon:
        return QStringLiteral("Cinnamon");
    case DesktopFamily::Other:
        break;
    }
    return QStringLiteral("other");
}

// A command as one line, with the picture's URI and path written as <uri> and <path>.
QString lineOf(const WallpaperCommand &command, const QString &path)
{
    const QString uri = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded);
    QStringList words{command.program};
    for (const QString &argument : command.arguments)
        words << (argument == uri    ? QStringLiteral("<uri>")
                  : argument == path ? QStringLiteral("<path>")
                                     : argument);
    return words.join(QLatin1Char(' '));
}

// A short name for a command: the program, and the key for gsettings.
QString labelOf(const WallpaperCommand &command)
{
    if (command.program == QLatin1String("gsettings"))
        return command.program + QLatin1Char(' ') + command.arguments.value(2);
    return command.program;
}

const QByteArray kTwoMonitors = "/backdrop/screen0/monitorHDMI-1/workspace0/color-style\n"
                                "/backdrop/screen0/monitorHDMI-1/workspace0/image-style\n"
                                "/backdrop/screen0/monitorHDMI-1/workspace0/last-image\n"
                                "/backdrop/screen0/monitoreDP-1/workspace0/image-style\n"
                                "/backdrop/screen0/monitoreDP-1/workspace0/last-image\n"
                                "/desktop-icons/style\n";

// A runner that runs nothing: it records the commands and answers as an installed program
// would, except that programs in `missing` do not start and commands whose line contains one
// of `failing` exit with 1. The XFCE property list prints `xfceList`.
struct FakeRunner
{
    QStringList missing;
    QStringList failing;
    QByteArray xfceList = kTwoMonitors;
    std::shared_ptr<QList<WallpaperCommand>> calls = std::make_shared<QList<WallpaperCommand>>();

    WallpaperCommandResult operator()(const WallpaperCommand &command) const
    {
        calls->append(command);
        if (missing.contains(command.program))
            return {};
        const QString line = (QStringList{command.program} + command.arguments).join(QLatin1Char(' '));
        for (const QString &part : failing) {
            if (line.contains(part))
                return {true, 1, {}};
        }
        const QByteArray output = command == XfcePropertyListCommand() ? xfceList : QByteArray();
        return {true, 0, output};
    }
};

} // namespace

class TestWallpaper : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void registryValues_data();
    void registryValues();
    void desktopFamily_data();
    void desktopFamily();
    void commandsPerDesktop_data();
    void commandsPerDesktop();
    void plasmaScript_data();
    void plasmaScript();
    void xfceCommandsFromProperties_data();
    void xfceCommandsFromProperties();
    void outcomes_data();
    void outcomes();
    void missingPictureRunsNothing_data();
    void missingPictureRunsNothing();
    void programNotInstalledDidNotStart();
    void gnomeSettingsForReal_data();
    void gnomeSettingsForReal();

private:
    TestHome m_home;
    QString m_picture;
};

void TestWallpaper::initTestCase()
{
    m_picture = m_home.filePath(QStringLiteral("pictures/picture.png"));
    QVERIFY(writePicture(m_picture));
}

void TestWallpaper::registryValues_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("wallpaperStyle");
    QTest::addColumn<QString>("tileWallpaper");

    QTest::newRow("centre") << 0 << "0" << "0";
    QTest::newRow("tile") << 1 << "0" << "1";
    QTest::newRow("stretch") << 2 << "2" << "0";
    QTest::newRow("unknown style centres") << 3 << "0" << "0";
    QTest::newRow("negative style centres") << -1 << "0" << "0";
}

void TestWallpaper::registryValues()
{
    QFETCH(int, style);
    QFETCH(QString, wallpaperStyle);
    QFETCH(QString, tileWallpaper);

    const WallpaperRegistryValues values = WallpaperRegistryValuesFor(style);
    QCOMPARE(values.wallpaperStyle, wallpaperStyle);
    QCOMPARE(values.tileWallpaper, tileWallpaper);
}

void TestWallpaper::desktopFamily_data()
{
    QTest::addColumn<QString>("currentDesktop");
    QTest::addColumn<QString>("session");
    QTest::addColumn<QString>("sessionDesktop"); // XDG_SESSION_DESKTOP
    QTest::addColumn<QString>("family");

    QTest::newRow("GNOME") << "GNOME" << "" << "" << "GNOME";
    QTest::newRow("Ubuntu") << "ubuntu:GNOME" << "" << "" << "GNOME";
    QTest::newRow("Budgie") << "Budgie:GNOME" << "" << "" << "GNOME";
    QTest::newRow("Unity") << "Unity" << "" << "" << "GNOME";
    QTest::newRow("Pantheon") << "Pantheon" << "" << "" << "GNOME";
    QTest::newRow("first entry unknown") << "Pop:GNOME" << "" << "" << "GNOME";
    QTest::newRow("KDE") << "KDE" << "" << "" << "KDE";
    QTest::newRow("XFCE") << "XFCE" << "" << "" << "XFCE";
    QTest::newRow("MATE") << "MATE" << "" << "" << "MATE";
    QTest::newRow("Cinnamon") << "X-Cinnamon" << "" << "" << "Cinnamon";
    QTest::newRow("lower case") << "kde" << "" << "" << "KDE";
    QTest::newRow("unknown") << "LXQt" << "" << "" << "other";
    QTest::newRow("nothing") << "" << "" << "" << "other";
    QTest::newRow("desktop wins over session") << "XFCE" << "gnome" << "" << "XFCE";
    QTest::newRow("session plasma") << "" << "plasmawayland" << "" << "KDE";
    QTest::newRow("session gnome-xorg") << "" << "gnome-xorg" << "" << "GNOME";
    QTest::newRow("session mate") << "" << "mate" << "" << "MATE";
    QTest::newRow("GNOME's session desktop") << "" << "" << "gnome" << "GNOME";
    QTest::newRow("Plasma's session desktop") << "" << "" << "KDE" << "KDE";
    QTest::newRow("desktop wins over session desktop") << "ubuntu:GNOME" << "" << "KDE" << "GNOME";
    QTest::newRow("session desktop wins over session") << "" << "plasmawayland" << "ubuntu" << "GNOME";
}

void TestWallpaper::desktopFamily()
{
    QFETCH(QString, currentDesktop);
    QFETCH(QString, session);
    QFETCH(QString, sessionDesktop);
    QFETCH(QString, family);

    ScopedEnvironment environment;
    environment.set("XDG_CURRENT_DESKTOP", currentDesktop.toUtf8());
    environment.set("DESKTOP_SESSION", session.toUtf8());
    environment.set("XDG_SESSION_DESKTOP", sessionDesktop.toUtf8());
    QCOMPARE(familyName(DesktopFamilyOf(CurrentDesktopText())), family);
}

void TestWallpaper::commandsPerDesktop_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<int>("style");
    QTest::addColumn<QStringList>("commands");

    const QString gnome = QStringLiteral("gsettings set org.gnome.desktop.background ");
    const auto gnomeRun = [&](const char *options) {
        return QStringList{gnome + "picture-uri <uri>", gnome + "picture-uri-dark <uri>",
                           gnome + "picture-options " + options};
    };
    QTest::newRow("GNOME centre") << "GNOME" << 0 << gnomeRun("centered");
    QTest::newRow("GNOME tile") << "ubuntu:GNOME" << 1 << gnomeRun("wallpaper");
    QTest::newRow("GNOME stretch") << "GNOME" << 2 << gnomeRun("stretched");
    QTest::newRow("GNOME unknown style") << "GNOME" << 9 << gnomeRun("centered");

    const QString cinnamon = QStringLiteral("gsettings set org.cinnamon.desktop.background ");
    QTest::newRow("Cinnamon tile") << "X-Cinnamon" << 1
                                   << QStringList{cinnamon + "picture-uri <uri>",
                                                  cinnamon + "picture-options wallpaper"};

    const QString mate = QStringLiteral("gsettings set org.mate.background ");
    QTest::newRow("MATE takes a path") << "MATE" << 2
                                       << QStringList{mate + "picture-filename <path>",
                                                      mate + "picture-options stretched"};

    const QString xfconf = QStringLiteral("xfconf-query -c xfce4-desktop ");
    const QString hdmi = QStringLiteral("-p /backdrop/screen0/monitorHDMI-1/workspace0/");
    const QString edp = QStringLiteral("-p /backdrop/screen0/monitoreDP-1/workspace0/");
    QTest::newRow("XFCE, every monitor") << "XFCE" << 1
                                         << QStringList{xfconf + "-l",
                                                        xfconf + hdmi + "last-image -s <path>",
                                                        xfconf + hdmi + "image-style -s 2",
                                                        xfconf + edp + "last-image -s <path>",
                                                        xfconf + edp + "image-style -s 2"};

    QTest::newRow("feh centre") << "LXQt" << 0 << QStringList{"feh --bg-center <path>"};
    QTest::newRow("feh tile") << "LXQt" << 1 << QStringList{"feh --bg-tile <path>"};
    QTest::newRow("feh stretch") << "" << 2 << QStringList{"feh --bg-scale <path>"};
}

void TestWallpaper::commandsPerDesktop()
{
    QFETCH(QString, desktop);
    QFETCH(int, style);
    QFETCH(QStringList, commands);

    FakeRunner runner;
    const WallpaperResult result = SetWallpaper(style, m_picture, desktop, runner);
    QVERIFY2(result.ok, qPrintable(result.message));
    QVERIFY(result.message.isEmpty());

    QStringList ran;
    for (const WallpaperCommand &command : *runner.calls)
        ran << lineOf(command, m_picture);
    QCOMPARE(ran, commands);
}

void TestWallpaper::plasmaScript_data()
{
    QTest::addColumn<QString>("relativePath");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("encodedName");
    QTest::addColumn<int>("fillMode");

    QTest::newRow("centre") << "plain/picture.png" << 0 << "plain/picture.png" << 6;
    QTest::newRow("tile") << "plain/picture.png" << 1 << "plain/picture.png" << 3;
    QTest::newRow("stretch") << "plain/picture.png" << 2 << "plain/picture.png" << 0;
#ifndef Q_OS_WIN
    // Quotes, blanks and a backslash are characters a path may hold on Unix.
    QTest::newRow("quote, blank, backslash") << "it's \"mine\"/a b\\c.png" << 0
                                             << "it's%20%22mine%22/a%20b%5Cc.png" << 6;
#endif
}

void TestWallpaper::plasmaScript()
{
    QFETCH(QString, relativePath);
    QFETCH(int, style);
    QFETCH(QString, encodedName);
    QFETCH(int, fillMode);

    const QString path = m_home.filePath(relativePath);
    QVERIFY(writePicture(path));
    FakeRunner runner;
    QVERIFY(SetWallpaper(style, path, QStringLiteral("KDE"), runner).ok);
    QCOMPARE(runner.calls->size(), 1);

    const WallpaperCommand command = runner.calls->first();
    QCOMPARE(command.program, QStringLiteral("dbus-send"));
    QCOMPARE(command.arguments.mid(0, 6),
             QStringList({"--session", "--print-reply", "--dest=org.kde.plasmashell", "--type=method_call",
                          "/PlasmaShell", "org.kde.PlasmaShell.evaluateScript"}));
    QCOMPARE(command.arguments.size(), 7);
    const QString script = command.arguments.last();
    QVERIFY(script.startsWith(QLatin1String("string:")));

    const QString folderUri = QUrl::fromLocalFile(m_home.path()).toString(QUrl::FullyEncoded);
    const QString image =
        QStringLiteral("writeConfig(\"Image\", \"%1/%2\");").arg(folderUri, encodedName);
    QVERIFY2(script.contains(image), qPrintable(script));
    QVERIFY2(script.contains(QStringLiteral("writeConfig(\"FillMode\", %1);").arg(fillMode)),
             qPrintable(script));
    QVERIFY(script.contains(QLatin1String("wallpaperPlugin = \"org.kde.image\";")));
    QVERIFY(script.contains(
        QLatin1String("currentConfigGroup = [\"Wallpaper\", \"org.kde.image\", \"General\"];")));
    QVERIFY(script.contains(QLatin1String("desktops()")));
}

void TestWallpaper::xfceCommandsFromProperties_data()
{
    QTest::addColumn<QString>("listOutput");
    QTest::addColumn<int>("style");
    QTest::addColumn<QStringList>("commands");

    const QString set = QStringLiteral("xfconf-query -c xfce4-desktop -p ");
    QTest::newRow("one backdrop, centred")
        << "/backdrop/screen0/monitor0/image-path\n"
           "/backdrop/screen0/monitor0/last-image\n"
        << 0
        << QStringList{set + "/backdrop/screen0/monitor0/last-image -s <path>",
                       set + "/backdrop/screen0/monitor0/image-style -s 1"};
    QTest::newRow("stretched, trailing blanks, listed twice")
        << "/backdrop/screen1/monitor1/workspace2/last-image  \r\n"
           "/backdrop/screen1/monitor1/workspace2/last-image\n"
        << 2
        << QStringList{set + "/backdrop/screen1/monitor1/workspace2/last-image -s <path>",
                       set + "/backdrop/screen1/monitor1/workspace2/image-style -s 3"};
    QTest::newRow("no last-image") << "/backdrop/screen0/monitor0/image-style\n/desktop-icons/style\n" << 1
                                   << QStringList{};
    QTest::newRow("nothing listed") << "" << 1 << QStringList{};
}

void TestWallpaper::xfceCommandsFromProperties()
{
    QFETCH(QString, listOutput);
    QFETCH(int, style);
    QFETCH(QStringList, commands);

    QStringList lines;
    for (const WallpaperCommand &command : XfceWallpaperCommands(listOutput, style, m_picture))
        lines << lineOf(command, m_picture);
    QCOMPARE(lines, commands);
}

void TestWallpaper::outcomes_data()
{
    QTest::addColumn<QString>("desktop");
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QStringList>("failing");
    QTest::addColumn<QByteArray>("xfceList");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QStringList>("ran");
    QTest::addColumn<QString>("shownDesktop");
    QTest::addColumn<bool>("wayland"); // a Wayland session, where feh sets nothing anyone sees

    const QStringList gnomeAll{"gsettings picture-uri", "gsettings picture-uri-dark",
                               "gsettings picture-options"};
    QTest::newRow("GNOME without the dark key")
        << "GNOME" << QStringList{} << QStringList{"picture-uri-dark"} << QByteArray() << true << gnomeAll
        << "GNOME" << false;
    QTest::newRow("GNOME without gsettings falls back to feh")
        << "ubuntu:GNOME" << QStringList{"gsettings"} << QStringList{} << QByteArray() << true
        << QStringList{"gsettings picture-uri", "feh"} << "ubuntu:GNOME" << false;
    QTest::newRow("GNOME refusing the picture falls back to feh")
        << "GNOME" << QStringList{} << QStringList{"picture-options"} << QByteArray() << true
        << gnomeAll + QStringList{"feh"} << "GNOME" << false;
    QTest::newRow("nothing works on KDE")
        << "KDE" << QStringList{"dbus-send", "plasma-apply-wallpaperimage", "feh"} << QStringList{}
        << QByteArray() << false << QStringList{"dbus-send", "plasma-apply-wallpaperimage", "feh"} << "KDE"
        << false;
    QTest::newRow("KDE without dbus-send uses Plasma's command")
        << "KDE" << QStringList{"dbus-send"} << QStringList{} << QByteArray() << true
        << QStringList{"dbus-send", "plasma-apply-wallpaperimage"} << "KDE" << false;
    QTest::newRow("nothing works on MATE")
        << "MATE" << QStringList{"feh"} << QStringList{"picture-filename"} << QByteArray() << false
        << QStringList{"gsettings picture-filename", "feh"} << "MATE" << false;
    QTest::newRow("XFCE without a backdrop falls back to feh")
        << "XFCE" << QStringList{} << QStringList{} << QByteArray("/desktop-icons/style\n") << true
        << QStringList{"xfconf-query", "feh"} << "XFCE" << false;
    QTest::newRow("nothing works on XFCE")
        << "XFCE" << QStringList{"xfconf-query", "feh"} << QStringList{} << kTwoMonitors << false
        << QStringList{"xfconf-query", "feh"} << "XFCE" << false;
    QTest::newRow("unknown desktop tries feh once")
        << "" << QStringList{"feh"} << QStringList{} << QByteArray() << false << QStringList{"feh"}
        << "an unknown desktop" << false;

    // Wayland sessions: the desktop's own settings, never feh.
    QTest::newRow("GNOME on Wayland")
        << "ubuntu:GNOME" << QStringList{} << QStringList{} << QByteArray() << true << gnomeAll
        << "ubuntu:GNOME" << true;
    QTest::newRow("GNOME on Wayland refusing the picture")
        << "GNOME" << QStringList{} << QStringList{"picture-uri"} << QByteArray() << false
        << QStringList{"gsettings picture-uri"} << "GNOME" << true;
    QTest::newRow("Plasma on Wayland refusing the script")
        << "KDE" << QStringList{} << QStringList{"evaluateScript"} << QByteArray() << true
        << QStringList{"dbus-send", "plasma-apply-wallpaperimage"} << "KDE" << true;
    QTest::newRow("nothing works on Plasma on Wayland")
        << "KDE" << QStringList{"plasma-apply-wallpaperimage"} << QStringList{"evaluateScript"} << QByteArray()
        << false << QStringList{"dbus-send", "plasma-apply-wallpaperimage"} << "KDE" << true;
    QTest::newRow("unknown Wayland desktop runs nothing")
        << "sway" << QStringList{} << QStringList{} << QByteArray() << false << QStringList{} << "sway" << true;
}

void TestWallpaper::outcomes()
{
    QFETCH(QString, desktop);
    QFETCH(QStringList, missing);
    QFETCH(QStringList, failing);
    QFETCH(QByteArray, xfceList);
    QFETCH(bool, ok);
    QFETCH(QStringList, ran);
    QFETCH(QString, shownDesktop);
    QFETCH(bool, wayland);

    ScopedEnvironment environment;
    environment.set("XDG_SESSION_TYPE", wayland ? "wayland" : "x11");
    environment.set("WAYLAND_DISPLAY", wayland ? "wayland-0" : nullptr);
    FakeRunner runner{missing, failing, xfceList};
    const WallpaperResult result = SetWallpaper(0, m_picture, desktop, runner);

    QStringList labels;
    for (const WallpaperCommand &command : *runner.calls)
        labels << labelOf(command);
    QCOMPARE(labels, ran);
    QCOMPARE(result.ok, ok);
    QCOMPARE(result.desktop, shownDesktop);
    if (ok) {
        QVERIFY(result.message.isEmpty());
    } else {
        const QString where =
            desktop.isEmpty() ? shownDesktop : QLatin1Char('"') + desktop + QLatin1Char('"');
        QVERIFY2(result.message.contains(where), qPrintable(result.message));
        QVERIFY2(result.message.startsWith(QLatin1String("The wallpaper could not be set")),
                 qPrintable(result.message));
    }
}

void TestWallpaper::missingPictureRunsNothing_data()
{
    QTest::addColumn<QString>("relativePath");

    QTest::newRow("no such file") << "pictures/gone.png";
    QTest::newRow("a folder") << "pictures";
}

void TestWallpaper::missingPictureRunsNothing()
{
    QFETCH(QString, relativePath);

    const QString path = m_home.filePath(relativePath);
    FakeRunner runner;
    const WallpaperResult result = SetWallpaper(1, path, QStringLiteral("GNOME"), runner);
    QVERIFY(!result.ok);
    QVERIFY(runner.calls->isEmpty());
    QVERIFY2(result.message.contains(QDir::toNativeSeparators(path)), qPrintable(result.message));
}

void TestWallpaper::programNotInstalledDidNotStart()
{
    const WallpaperCommandResult result =
        RunWallpaperCommand({QStringLiteral("vantora-no-such-program"), {QStringLiteral("--help")}});
    QVERIFY(!result.started);
    QVERIFY(!result.succeeded());
}

void TestWallpaper::gnomeSettingsForReal_data()
{
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("options");

    QTest::newRow("centre") << 0 << "centered";
    QTest::newRow("tile") << 1 << "wallpaper";
    QTest::newRow("stretch") << 2 << "stretched";
}

namespace {

QString gsettingsOutput(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("gsettings"), arguments);
    if (!process.waitForFinished(10000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return QStringLiteral("<gsettings %1 failed>").arg(arguments.join(QLatin1Char(' ')));
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

} // namespace

void TestWallpaper::gnomeSettingsForReal()
{
    QFETCH(int, style);
    QFETCH(QString, options);

    if (QStandardPaths::findExecutable(QStringLiteral("gsettings")).isEmpty())
        QSKIP("gsettings is not installed");
    const QString schema = QStringLiteral("org.gnome.desktop.background");
    if (!gsettingsOutput({QStringLiteral("list-schemas")}).split(QLatin1Char('\n')).contains(schema))
        QSKIP("the GNOME background settings schema is not installed");

    // Settings go to a key file in a fresh folder, so the user's own desktop is never touched.
    QTemporaryDir config;
    QVERIFY(config.isValid());
    ScopedEnvironment environment;
    environment.set("GSETTINGS_BACKEND", "keyfile");
    environment.set("XDG_CONFIG_HOME", QFile::encodeName(config.path()));
    environment.set("HOME", QFile::encodeName(config.path()));
    environment.set("DBUS_SESSION_BUS_ADDRESS", "disabled:");

    const QString picture = config.filePath(QStringLiteral("my pictures/tiny.png"));
    QVERIFY(writePicture(picture));
    // Only gsettings may run: feh, were it tried, would change the real screen.
    const WallpaperRunner onlyGsettings = [](const WallpaperCommand &command) {
        return command.program == QLatin1String("gsettings") ? RunWallpaperCommand(command)
                                                             : WallpaperCommandResult{};
    };
    const WallpaperResult result = SetWallpaper(style, picture, QStringLiteral("GNOME"), onlyGsettings);
    QVERIFY2(result.ok, qPrintable(result.message));

    const QString uri =
        QStringLiteral("'file://%1'").arg(QString::fromUtf8(QUrl::toPercentEncoding(picture, "/")));
    QCOMPARE(gsettingsOutput({QStringLiteral("get"), schema, QStringLiteral("picture-uri")}), uri);
    QCOMPARE(gsettingsOutput({QStringLiteral("get"), schema, QStringLiteral("picture-options")}),
             QLatin1Char('\'') + options + QLatin1Char('\''));
    if (gsettingsOutput({QStringLiteral("list-keys"), schema})
            .split(QLatin1Char('\n'))
            .contains("picture-uri-dark"))
        QCOMPARE(gsettingsOutput({QStringLiteral("get"), schema, QStringLiteral("picture-uri-dark")}), uri);
    QVERIFY(QFile::exists(config.filePath(QStringLiteral("glib-2.0/settings/keyfile"))));
}

QTEST_GUILESS_MAIN(TestWallpaper)
#include "test_wallpaper.moc"
