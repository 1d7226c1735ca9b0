#include "core/app_paths.h"
#include "core/data_folders.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

const QStringList kAllFolders{
    QStringLiteral("wboard"),          QStringLiteral("calendar"),      QStringLiteral("webcam"),
    QStringLiteral("themes"),          QStringLiteral("themes/custom"), QStringLiteral("themes/classic"),
    QStringLiteral("themes/contrast"), QStringLiteral("themes/flat"),   QStringLiteral("themes/glass"),
    QStringLiteral("themes/led"),      QStringLiteral("themes/retro"),  QStringLiteral("themes/white"),
};

void makeFile(const QString &relative, const QByteArray &content)
{
    const QString path = AppPaths::dataPath(relative);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
}

QByteArray contentOf(const QString &relative)
{
    QFile file(AppPaths::dataPath(relative));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

bool isFolder(const QString &relative)
{
    return QFileInfo(AppPaths::dataPath(relative)).isDir();
}

} // namespace

class TestDataFolders : public QObject
{
    Q_OBJECT

private slots:
    void firstRunCreatesEveryFolder();
    void oldFoldersAreRenamed_data();
    void oldFoldersAreRenamed();
    void bothFoldersMerge();
    void blockedRowDoesNotStopTheRest();
};

void TestDataFolders::firstRunCreatesEveryFolder()
{
    TestHome home;
    const QByteArray previous = qgetenv("VANTORA_HOME");
    qputenv("VANTORA_HOME", home.filePath(QStringLiteral("not/yet/there")).toLocal8Bit());
    PrepareAllDataFolders();
    for (const QString &folder : kAllFolders)
        QVERIFY2(isFolder(folder), qPrintable(folder));
    QCOMPARE(QDir(AppPaths::dataFolder()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 4);
    qputenv("VANTORA_HOME", previous);
}

void TestDataFolders::oldFoldersAreRenamed_data()
{
    QTest::addColumn<QString>("oldName");
    QTest::addColumn<QString>("newName");
    QTest::newRow("whiteboards") << "whiteboards"
                                 << "wboard";
    QTest::newRow("calendars") << "calendars"
                               << "calendar";
    QTest::newRow("wallpaper") << "wallpaper"
                               << "webcam";
}

void TestDataFolders::oldFoldersAreRenamed()
{
    QFETCH(QString, oldName);
    QFETCH(QString, newName);
    TestHome home;
    makeFile(oldName + QStringLiteral("/picture.bmp"), "picture");
    makeFile(oldName + QStringLiteral("/2024/page.bmp"), "page");
    PrepareAllDataFolders();
    QVERIFY(!QFileInfo::exists(AppPaths::dataPath(oldName)));
    QCOMPARE(contentOf(newName + QStringLiteral("/picture.bmp")), QByteArray("picture"));
    QCOMPARE(contentOf(newName + QStringLiteral("/2024/page.bmp")), QByteArray("page"));
}

void TestDataFolders::bothFoldersMerge()
{
    TestHome home;
    makeFile(QStringLiteral("whiteboards/board1.bmp"), "older release");
    makeFile(QStringLiteral("whiteboards/board2.bmp"), "only in old");
    makeFile(QStringLiteral("wboard/board1.bmp"), "newer release, replaced");
    makeFile(QStringLiteral("wboard/board3.bmp"), "only in new");
    QFile::setPermissions(AppPaths::dataPath(QStringLiteral("whiteboards/board2.bmp")),
                          QFileDevice::ReadOwner);

    PrepareDataFolder(QStringLiteral("whiteboards"), QStringLiteral("wboard"));
    QVERIFY(!QFileInfo::exists(AppPaths::dataPath(QStringLiteral("whiteboards"))));
    QCOMPARE(contentOf(QStringLiteral("wboard/board1.bmp")), QByteArray("older release"));
    QCOMPARE(contentOf(QStringLiteral("wboard/board2.bmp")), QByteArray("only in old"));
    QCOMPARE(contentOf(QStringLiteral("wboard/board3.bmp")), QByteArray("only in new"));
}

void TestDataFolders::blockedRowDoesNotStopTheRest()
{
    TestHome home;
    makeFile(QStringLiteral("calendar"), "a file where a folder should be");
    makeFile(QStringLiteral("themes"), "and another");
    PrepareAllDataFolders();
    QCOMPARE(contentOf(QStringLiteral("calendar")), QByteArray("a file where a folder should be"));
    QVERIFY(isFolder(QStringLiteral("wboard")));
    QVERIFY(isFolder(QStringLiteral("webcam")));
    QVERIFY(!isFolder(QStringLiteral("themes/custom")));
}

QTEST_GUILESS_MAIN(TestDataFolders)
#include "test_data_folders.moc"
