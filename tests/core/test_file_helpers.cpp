#include "core/file_helpers.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

void makeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly | QIODevice::Truncate), qPrintable(path));
    file.write(content);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

void makeReadOnly(const QString &path)
{
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther);
}

} // namespace

class TestFileHelpers : public QObject
{
    Q_OBJECT

private slots:
    void fieldOf_data();
    void fieldOf();
    void fileNameOf_data();
    void fileNameOf();
    void existenceTests();
    void moveOntoMissingFolder();
    void moveOverExistingFolder();
    void moveReplacesReadOnlyFiles();
    void moveWithoutSourceDoesNothing();
    void failedCopyKeepsSource();
    void moveIntoItselfIsRefused();
};

void TestFileHelpers::fieldOf_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QChar>("delimiter");
    QTest::addColumn<int>("n");
    QTest::addColumn<QString>("expected");
    QTest::newRow("first") << "a,b,,d" << QChar(',') << 1 << "a";
    QTest::newRow("last") << "a,b,,d" << QChar(',') << 4 << "d";
    QTest::newRow("empty middle field") << "a,b,,d" << QChar(',') << 3 << "";
    QTest::newRow("past the end") << "a,b,,d" << QChar(',') << 5 << "";
    QTest::newRow("zero") << "a,b" << QChar(',') << 0 << "";
    QTest::newRow("no delimiter, field 1") << "whole" << QChar(',') << 1 << "whole";
    QTest::newRow("no delimiter, field 2") << "whole" << QChar(',') << 2 << "";
    QTest::newRow("leading delimiter") << "|x|y" << QChar('|') << 2 << "x";
    QTest::newRow("trailing delimiter") << "x|" << QChar('|') << 2 << "";
    QTest::newRow("trailing delimiter, beyond") << "x|" << QChar('|') << 3 << "";
}

void TestFileHelpers::fieldOf()
{
    QFETCH(QString, text);
    QFETCH(QChar, delimiter);
    QFETCH(int, n);
    QFETCH(QString, expected);
    QCOMPARE(FieldOf(text, delimiter, n), expected);
}

void TestFileHelpers::fileNameOf_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("backslashes") << R"(C:\notes\list.rtf)"
                                 << "list.rtf";
    QTest::newRow("slashes") << "/home/u/list.txt"
                             << "list.txt";
    QTest::newRow("mixed, backslash last") << R"(a/b\c.bmp)"
                                           << "c.bmp";
    QTest::newRow("mixed, slash last") << R"(a\b/c.bmp)"
                                       << "c.bmp";
    QTest::newRow("bare name") << "name.dcp"
                               << "name.dcp";
    QTest::newRow("folder") << "themes/"
                            << "";
}

void TestFileHelpers::fileNameOf()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(FileNameOf(path), expected);
}

void TestFileHelpers::existenceTests()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("themes/flat/a.dcp")), "x");
    const QString themes = home.filePath(QStringLiteral("themes"));
    QVERIFY(FolderExists(themes));
    QVERIFY(!FileExists(themes));
    QVERIFY(FileExists(themes + QStringLiteral("\\flat\\a.dcp"))); // joined with backslashes
    QVERIFY(!FolderExists(themes + QStringLiteral("/flat/a.dcp")));
    QVERIFY(!FileExists(home.filePath(QStringLiteral("nothing"))));
    QVERIFY(!FileExists(QString()));
    QVERIFY(!FolderExists(QString()));

    QVERIFY(CreateFolderIfMissing(themes + QStringLiteral("\\custom")));
    QVERIFY(QFileInfo(themes + QStringLiteral("/custom")).isDir());
    QVERIFY(CreateFolderIfMissing(themes));                                      // already there: fine
    QVERIFY(!CreateFolderIfMissing(themes + QStringLiteral("/flat/a.dcp/sub"))); // a file in the way
}

void TestFileHelpers::moveOntoMissingFolder()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("old/one.bmp")), "1");
    makeFile(home.filePath(QStringLiteral("old/deep/er/two.bmp")), "2");
    makeFile(home.filePath(QStringLiteral("old/.hidden")), "h");
    QDir().mkpath(home.filePath(QStringLiteral("old/empty")));

    QVERIFY(MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("new"))));
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("old"))));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/one.bmp"))), QByteArray("1"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/deep/er/two.bmp"))), QByteArray("2"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/.hidden"))), QByteArray("h"));
    QVERIFY(QFileInfo(home.filePath(QStringLiteral("new/empty"))).isDir());
}

void TestFileHelpers::moveOverExistingFolder()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("old/same.bmp")), "from old");
    makeFile(home.filePath(QStringLiteral("old/sub/same.bmp")), "from old sub");
    makeFile(home.filePath(QStringLiteral("new/same.bmp")), "from new, a longer text");
    makeFile(home.filePath(QStringLiteral("new/sub/only-new.bmp")), "kept");

    QVERIFY(MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("new"))));
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("old"))));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/same.bmp"))), QByteArray("from old"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/sub/same.bmp"))), QByteArray("from old sub"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/sub/only-new.bmp"))), QByteArray("kept"));
}

void TestFileHelpers::moveReplacesReadOnlyFiles()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("old/locked.bmp")), "old locked");
    makeFile(home.filePath(QStringLiteral("old/ro/inner.bmp")), "inner");
    makeFile(home.filePath(QStringLiteral("new/locked.bmp")), "new locked");
    makeReadOnly(home.filePath(QStringLiteral("old/locked.bmp")));
    makeReadOnly(home.filePath(QStringLiteral("new/locked.bmp")));
    QFile::setPermissions(home.filePath(QStringLiteral("old/ro")),
                          QFileDevice::ReadOwner | QFileDevice::ExeOwner);

    QVERIFY(MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("new"))));
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("old"))));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/locked.bmp"))), QByteArray("old locked"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/ro/inner.bmp"))), QByteArray("inner"));
    // let TestHome clean up
    QFile::setPermissions(home.filePath(QStringLiteral("new/ro")),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void TestFileHelpers::moveWithoutSourceDoesNothing()
{
    TestHome home;
    QVERIFY(MoveFolder(home.filePath(QStringLiteral("absent")), home.filePath(QStringLiteral("new"))));
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("new"))));
}

void TestFileHelpers::failedCopyKeepsSource()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("old/clash")), "a file");
    makeFile(home.filePath(QStringLiteral("old/fine.bmp")), "fine");
    makeFile(home.filePath(QStringLiteral("new/clash/inside.bmp")), "a folder where the file should go");

    QVERIFY(!MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("new"))));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("old/clash"))), QByteArray("a file"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("old/fine.bmp"))), QByteArray("fine"));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("new/clash/inside.bmp"))),
             QByteArray("a folder where the file should go"));
}

void TestFileHelpers::moveIntoItselfIsRefused()
{
    TestHome home;
    makeFile(home.filePath(QStringLiteral("old/a.bmp")), "a");
    QVERIFY(!MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("old/inner"))));
    QVERIFY(!MoveFolder(home.filePath(QStringLiteral("old")), home.filePath(QStringLiteral("old/"))));
    QCOMPARE(contentOf(home.filePath(QStringLiteral("old/a.bmp"))), QByteArray("a"));
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("old/inner"))));
}

QTEST_GUILESS_MAIN(TestFileHelpers)
#include "test_file_helpers.moc"
