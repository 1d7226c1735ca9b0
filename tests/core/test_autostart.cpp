#include "core/platform/autostart.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTest>

class TestAutostart : public QObject
{
    Q_OBJECT
private slots:
    void entryStaysInsideTestHome();
    void switchingOnAndOff_data();
    void switchingOnAndOff();
    void quotesExecutablePaths_data();
    void quotesExecutablePaths();
    void entryFollowsTheInstalledProgram_data();
    void entryFollowsTheInstalledProgram();
};

namespace {
QString readEntry(const QString &path, const QString &key)
{
    QSettings entry(path, QSettings::IniFormat);
    entry.beginGroup(QStringLiteral("Desktop Entry"));
    return entry.value(key).toString();
}
} // namespace

void TestAutostart::entryStaysInsideTestHome()
{
    TestHome home;
    QCOMPARE(Autostart::desktopEntryPath(), home.filePath(QStringLiteral("autostart/vantora.desktop")));
    QVERIFY(!Autostart::isOn()); // nothing written yet
}

void TestAutostart::switchingOnAndOff_data()
{
    QTest::addColumn<QList<bool>>("switches");
    QTest::addColumn<QString>("hidden");

    QTest::newRow("on") << QList<bool>{true} << "false";
    QTest::newRow("off") << QList<bool>{false} << "true";
    // Switching off keeps the file (emptied, not deleted) and switching on again revives it.
    QTest::newRow("on then off") << QList<bool>{true, false} << "true";
    QTest::newRow("off then on") << QList<bool>{false, true} << "false";
}

void TestAutostart::switchingOnAndOff()
{
    QFETCH(QList<bool>, switches);
    QFETCH(QString, hidden);
    TestHome home;

    for (bool on : switches)
        Autostart::apply(on);

    const QString path = Autostart::desktopEntryPath();
    QVERIFY(QFile::exists(path));
    QCOMPARE(readEntry(path, QStringLiteral("Hidden")), hidden);
    QCOMPARE(Autostart::isOn(), hidden == QLatin1String("false"));
    QCOMPARE(readEntry(path, QStringLiteral("Type")), QStringLiteral("Application"));
    QCOMPARE(readEntry(path, QStringLiteral("Exec")),
             Autostart::execLine(QCoreApplication::applicationFilePath()));
}

void TestAutostart::quotesExecutablePaths_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("exec");

    QTest::newRow("plain") << "/usr/bin/vantora"
                           << "/usr/bin/vantora";
    QTest::newRow("blank") << "/opt/My Apps/vantora"
                           << "\"/opt/My Apps/vantora\"";
    QTest::newRow("dollar") << "/home/a$b/vantora"
                            << "\"/home/a\\$b/vantora\"";
    QTest::newRow("percent") << "/opt/100%/vantora"
                             << "/opt/100%%/vantora";
}

void TestAutostart::quotesExecutablePaths()
{
    QFETCH(QString, executable);
    QFETCH(QString, exec);
    QCOMPARE(Autostart::execLine(executable), exec);
    QCOMPARE(Autostart::executableOfExecLine(exec), executable);
}

void TestAutostart::entryFollowsTheInstalledProgram_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<bool>("oldExists");
    QTest::addColumn<bool>("installed");
    QTest::addColumn<bool>("rewritten");
    QTest::newRow("build copy, old one still there: kept") << true << true << false << false;
    QTest::newRow("build copy, old one gone: follows") << true << false << false << true;
    QTest::newRow("installed program: follows") << true << true << true << true;
    QTest::newRow("switched off: left alone") << false << false << true << false;
}

void TestAutostart::entryFollowsTheInstalledProgram()
{
    QFETCH(bool, on);
    QFETCH(bool, oldExists);
    QFETCH(bool, installed);
    QFETCH(bool, rewritten);
    TestHome home;
    const QString old = home.filePath(QStringLiteral("old build/vantora"));
    if (oldExists) {
        QVERIFY(QDir().mkpath(QFileInfo(old).absolutePath()));
        QFile file(old);
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QFile entry(Autostart::desktopEntryPath());
    QVERIFY(QDir().mkpath(QFileInfo(entry).absolutePath()));
    QVERIFY(entry.open(QIODevice::WriteOnly));
    entry.write(Autostart::desktopEntryText(old, on).toUtf8());
    entry.close();

    const QString current = QStringLiteral("/usr/bin/vantora");
    QCOMPARE(Autostart::followExecutable(current, installed), rewritten);
    QVERIFY(entry.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(entry.readAll());
    entry.close();
    const QString exec = text.section(QStringLiteral("\nExec="), 1).section(QLatin1Char('\n'), 0, 0);
    QCOMPARE(Autostart::executableOfExecLine(exec), rewritten ? current : old);
    QCOMPARE(Autostart::isOn(), on);
    // Asked again, nothing changes.
    QVERIFY(!Autostart::followExecutable(current, installed));
}

QTEST_GUILESS_MAIN(TestAutostart)
#include "test_autostart.moc"
