#include "core/platform/reg_file_backend.h"
#include "core/safe_file_write.h"
#include "support/file_size_limit.h"
#include "support/file_text.h"
#include "support/test_home.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStringEncoder>
#include <QStringList>
#include <QTest>

namespace {

const QString kKey = QStringLiteral("SOFTWARE\\Vantora\\falc_SET\\Details");

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray utf16le(const QString &text)
{
    QStringEncoder encoder(QStringConverter::Utf16LE);
    return encoder.encode(text);
}

QString textOf(RegFileBackend &backend, const QString &name, Hive hive = Hive::CurrentUser)
{
    const SettingsValue v = backend.read(hive, kKey, name);
    return v.isText() ? v.text : QStringLiteral("<%1>").arg(int(v.type));
}

} // namespace

class TestRegFileBackend : public QObject
{
    Q_OBJECT

private slots:
    void writesRegeditLayout();
    void lineBreaksStayOnOneLine();
    void readsUtf16ExportWithCrLf();
    void continuationLinesAndDeletions();
    void missingFileIsCreatedOnWrite();
    void unusableFileKeepsValuesInMemory();
    void vanishedFileKeepsValues();
    void readsDoNotLookAtTheFileEveryTime();
    void unreadableFileIsKeptAside_data();
    void unreadableFileIsKeptAside();
    void failedSaveIsReportedOnce();
    void fullDiskKeepsTheOldFile();
    void valuesAndKeysSurviveTheFile_data();
    void valuesAndKeysSurviveTheFile();
    void staleTemporaryFilesAreRemoved();
    void twoRunningCopiesKeepEachOthersValues();
};

void TestRegFileBackend::writesRegeditLayout()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    RegFileBackend backend(path);
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("Quote \"q\""),
                          SettingsValue::fromText(R"(C:\a "b")")));
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("Count"), SettingsValue::fromNumber(10)));
    QVERIFY(backend.write(Hive::LocalMachine, QStringLiteral("Software\\Run\\"), QString(),
                          SettingsValue::fromText(QStringLiteral("x"))));
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("count"),
                          SettingsValue::fromNumber(0xabcdef01)));
    // As the registry editor writes its exports: UTF-16LE, byte-order mark, CR LF.
    const QString expected = QStringLiteral("Windows Registry Editor Version 5.00\r\n"
                                            "\r\n"
                                            "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\r\n"
                                            "\"Quote \\\"q\\\"\"=\"C:\\\\a \\\"b\\\"\"\r\n"
                                            "\"Count\"=dword:abcdef01\r\n"
                                            "\r\n"
                                            "[HKEY_LOCAL_MACHINE\\Software\\Run]\r\n"
                                            "@=\"x\"\r\n"
                                            "\r\n");
    QCOMPARE(readBytes(path), QByteArray("\xff\xfe") + utf16le(expected));
    QCOMPARE(backend.read(Hive::CurrentUser, kKey, QStringLiteral("COUNT")),
             SettingsValue::fromNumber(0xabcdef01));
}

void TestRegFileBackend::lineBreaksStayOnOneLine()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    const QString text = QStringLiteral("line one\r\nline two\n");
    {
        RegFileBackend backend(path);
        QVERIFY(
            backend.write(Hive::CurrentUser, kKey, QStringLiteral("Message"), SettingsValue::fromText(text)));
        QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("After"),
                              SettingsValue::fromText(QStringLiteral("ok"))));
    }
    const QString written = FileText(path);
    QVERIFY2(written.contains(QStringLiteral("\"Message\"=hex(1):6c,00,69,00")), qPrintable(written));
    QCOMPARE(written.count(QLatin1Char('\n')), 6); // header, blank, section, two values, blank
    RegFileBackend reloaded(path);
    QCOMPARE(textOf(reloaded, QStringLiteral("Message")), text);
    QCOMPARE(textOf(reloaded, QStringLiteral("After")), QStringLiteral("ok"));
}

void TestRegFileBackend::readsUtf16ExportWithCrLf()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    const QString content = QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n"
                                           "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\r\n"
                                           "\"City\"=\"Zürich\"\r\n");
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    writeBytes(path, encoder.encode(content));
    RegFileBackend backend(path);
    QCOMPARE(textOf(backend, QStringLiteral("city")), QString::fromUtf8("Zürich"));
}

void TestRegFileBackend::continuationLinesAndDeletions()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    writeBytes(path, "Windows Registry Editor Version 5.00\n\n"
                     "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\n"
                     "\"Long\"=hex(2):61,00,\\\n"
                     "  62,00,00,00\n"
                     "\"Cut\"=hex:01,02,\\\n"
                     "\"Next\"=\"kept\"\n"
                     "garbage that ends in a backslash \\\n"
                     "\"Later\"=\"also kept\"\n"
                     "\"Gone\"=-\n"
                     "[-HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\n"
                     "\"Deleted\"=\"ignored\"\n");
    RegFileBackend backend(path);
    QCOMPARE(textOf(backend, QStringLiteral("Long")), QStringLiteral("ab"));
    QCOMPARE(backend.read(Hive::CurrentUser, kKey, QStringLiteral("Cut")).type, SettingsValueType::Other);
    QCOMPARE(textOf(backend, QStringLiteral("Next")), QStringLiteral("kept"));
    QCOMPARE(textOf(backend, QStringLiteral("Later")), QStringLiteral("also kept"));
    QCOMPARE(backend.read(Hive::CurrentUser, kKey, QStringLiteral("Gone")).type, SettingsValueType::Missing);
    QCOMPARE(backend.read(Hive::CurrentUser, kKey, QStringLiteral("Deleted")).type,
             SettingsValueType::Missing);
}

void TestRegFileBackend::missingFileIsCreatedOnWrite()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("config/Vantora/settings.reg"));
    RegFileBackend backend(path);
    QCOMPARE(backend.read(Hive::CurrentUser, kKey, QStringLiteral("A")).type, SettingsValueType::Missing);
    QVERIFY(!QFileInfo::exists(home.filePath(QStringLiteral("config"))));
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                          SettingsValue::fromText(QStringLiteral("1"))));
    QVERIFY(FileText(path).contains(QStringLiteral("\"A\"=\"1\"")));
}

void TestRegFileBackend::unusableFileKeepsValuesInMemory()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    QVERIFY(QDir().mkpath(path)); // a folder where the file should be
    RegFileBackend backend(path);
    QVERIFY(!backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                           SettingsValue::fromText(QStringLiteral("1"))));
    QVERIFY(!backend.lastError().isEmpty());
    QCOMPARE(textOf(backend, QStringLiteral("A")), QStringLiteral("1"));
    QVERIFY(!backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                           SettingsValue::fromText(QStringLiteral("1"))));

    QVERIFY(QDir(path).removeRecursively());
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("B"),
                          SettingsValue::fromText(QStringLiteral("2"))));
    QVERIFY(backend.lastError().isEmpty());
    RegFileBackend reloaded(path);
    QCOMPARE(textOf(reloaded, QStringLiteral("A")), QStringLiteral("1"));
    QCOMPARE(textOf(reloaded, QStringLiteral("B")), QStringLiteral("2"));
}

void TestRegFileBackend::vanishedFileKeepsValues()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    RegFileBackend backend(path);
    backend.setRecheckInterval(0);
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                          SettingsValue::fromText(QStringLiteral("1"))));
    QVERIFY(QFile::remove(path));
    QCOMPARE(textOf(backend, QStringLiteral("A")), QStringLiteral("1"));
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                          SettingsValue::fromText(QStringLiteral("1"))));
    QVERIFY(
        FileText(path).contains(QStringLiteral("\"A\"=\"1\""))); // written again although unchanged in memory
}

void TestRegFileBackend::readsDoNotLookAtTheFileEveryTime()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    RegFileBackend backend(path);
    backend.setRecheckInterval(60 * 60 * 1000);
    QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                          SettingsValue::fromText(QStringLiteral("mine"))));
    writeBytes(path, "Windows Registry Editor Version 5.00\n\n"
                     "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\n"
                     "\"A\"=\"theirs\"\n\"B\"=\"theirs\"\n");
    QCOMPARE(textOf(backend, QStringLiteral("A")), QStringLiteral("mine")); // not looked at yet
    backend.setRecheckInterval(0);
    QCOMPARE(textOf(backend, QStringLiteral("A")), QStringLiteral("theirs"));
}

void TestRegFileBackend::unreadableFileIsKeptAside_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("kept");
    QTest::addColumn<QString>("readable"); // the value "A" still read from it; empty: none

    const QByteArray head = "Windows Registry Editor Version 5.00\n\n"
                            "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\n";
    QTest::newRow("random bytes") << QByteArray("\x80\x81\x01 junk\n\x02\xfe\n", 11) << true << QString();
    QTest::newRow("hand edit without quotes") << head + "\"A\"=\"1\"\nB=2\n" << true << "1";
    QTest::newRow("value before any section") << QByteArray("\"A\"=\"1\"\n") << true << QString();
    QTest::newRow("latin-1 text") << head + "\"A\"=\"1\"\n\"C\"=\"Caf\xe9\"\n" << true << "1";
    QTest::newRow("utf-8 cut off at the end") << head + "\"A\"=\"1\"\n\"C\"=\"Caf\xc3" << true << "1";
    QTest::newRow("utf-16 cut off at the end")
        << QByteArray("\xff\xfe") + utf16le(QString::fromLatin1(head) + QStringLiteral("\"A\"=\"1\"\r\n")) +
               'x'
        << true << "1";
    QTest::newRow("comments and blanks") << head + "; kept by hand\n\n\"A\"=\"1\"\n" << false << "1";
    QTest::newRow("deleted key") << head + "\"A\"=\"1\"\n[-HKEY_CURRENT_USER\\Old]\n\"X\"=\"y\"\n"
                                 << false << "1";
    QTest::newRow("other value types") << head + "\"A\"=\"1\"\n\"Q\"=hex(b):01,02\n" << false << "1";
}

void TestRegFileBackend::unreadableFileIsKeptAside()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, kept);
    QFETCH(QString, readable);
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    writeBytes(path, bytes);
    QStringList reports;
    const auto reporter = [&reports](const QString &message) { reports << message; };
    {
        RegFileBackend backend(path, reporter);
        if (!readable.isEmpty())
            QCOMPARE(textOf(backend, QStringLiteral("A")), readable);
        RegFileBackend again(path, reporter); // a second look at the same file keeps no second copy
        QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("Z"),
                              SettingsValue::fromText(QStringLiteral("z"))));
    }
    const QString copy = path + QStringLiteral(".damaged");
    QCOMPARE(QFileInfo::exists(copy), kept);
    QVERIFY(!QFileInfo::exists(copy + QStringLiteral("-2")));
    QCOMPARE(reports.size(), kept ? 2 : 0);
    if (kept) {
        QCOMPARE(readBytes(copy), bytes);
        QVERIFY2(reports.first().contains(QDir::toNativeSeparators(copy)), qPrintable(reports.first()));
    }
    RegFileBackend rewritten(path, reporter); // what this program saved reads cleanly
    QCOMPARE(reports.size(), kept ? 2 : 0);
}

void TestRegFileBackend::failedSaveIsReportedOnce()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    QVERIFY(QDir().mkpath(path)); // a folder where the file should be
    QStringList reports;
    RegFileBackend backend(path, [&reports](const QString &message) { reports << message; });
    for (const char *value : {"1", "2"})
        QVERIFY(!backend.write(Hive::CurrentUser, kKey, QStringLiteral("A"),
                               SettingsValue::fromText(QString::fromLatin1(value))));
    QCOMPARE(reports.size(), 1);
    QVERIFY(reports.first().contains(QDir::toNativeSeparators(path)));
}

void TestRegFileBackend::fullDiskKeepsTheOldFile()
{
#ifndef Q_OS_UNIX
    QSKIP("the disk is filled with a file size limit, which only Unix systems have");
#else
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    QStringList reports;
    {
        RegFileBackend backend(path, [&reports](const QString &message) { reports << message; });
        QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("Old"),
                              SettingsValue::fromText(QString(2000, QLatin1Char('o')))));
        const QByteArray before = readBytes(path);
        {
            FileSizeLimit full(before.size() / 2);
            QVERIFY(full.isActive());
            QVERIFY(!backend.write(Hive::CurrentUser, kKey, QStringLiteral("New"),
                                   SettingsValue::fromText(QStringLiteral("n"))));
        }
        QCOMPARE(readBytes(path), before);
        QCOMPARE(reports.size(), 1);
        QVERIFY2(!backend.lastError().isEmpty(), "the reason is kept for the user");
        QCOMPARE(textOf(backend, QStringLiteral("New")), QStringLiteral("n")); // kept in memory
        QCOMPARE(QDir(home.path()).entryList({TemporaryFilePattern(path)}, QDir::Files), QStringList());

        QVERIFY(backend.write(Hive::CurrentUser, kKey, QStringLiteral("Later"),
                              SettingsValue::fromText(QStringLiteral("l"))));
    }
    RegFileBackend reloaded(path);
    QCOMPARE(textOf(reloaded, QStringLiteral("New")), QStringLiteral("n"));
    QCOMPARE(textOf(reloaded, QStringLiteral("Later")), QStringLiteral("l"));
    QCOMPARE(textOf(reloaded, QStringLiteral("Old")), QString(2000, QLatin1Char('o')));
#endif
}

void TestRegFileBackend::valuesAndKeysSurviveTheFile_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    const QString nul(QChar(0));
    QTest::newRow("NUL inside") << kKey << "Note" << QStringLiteral("before") + nul + QStringLiteral("after");
    QTest::newRow("NUL at the end") << kKey << "Note" << QStringLiteral("text") + nul;
    QTest::newRow("lone high surrogate") << kKey << "Note" << QString(QChar(0xd83d)) + QStringLiteral("x");
    QTest::newRow("lone low surrogate") << kKey << "Note" << QStringLiteral("x") + QChar(0xde00);
    QTest::newRow("non-ASCII text") << kKey << "Café" << QString::fromUtf8("Café ☕ 😀 Zürich");
    QTest::newRow("control characters") << kKey << "Note" << QStringLiteral("a\x01b\x1f\x7f");
    QTest::newRow("tab, quotes, backslashes") << kKey << "Path" << QStringLiteral("C:\\x \"y\"\t\\\\");
    QTest::newRow("empty text") << kKey << "Empty" << QString();
    QTest::newRow("blanks around a backslash")
        << QStringLiteral("SOFTWARE\\Vantora\\Notes \\ Draft\\Details") << "Note"
        << "x";
    QTest::newRow("blanks ending key names") << QStringLiteral("SOFTWARE\\Vantora \\ Notes ") << "Note"
                                             << "x";
    QTest::newRow("blanks around a value name") << kKey << "  spaced name "
                                                << "x";
}

// What one copy of the program writes, another reads back the same, and so does the writer
// after it has read the file again.
void TestRegFileBackend::valuesAndKeysSurviveTheFile()
{
    QFETCH(QString, key);
    QFETCH(QString, name);
    QFETCH(QString, value);
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    QStringList reports;
    RegFileBackend writer(path, [&reports](const QString &message) { reports << message; });
    QVERIFY(writer.write(Hive::CurrentUser, key, name, SettingsValue::fromText(value)));

    RegFileBackend reader(path, [&reports](const QString &message) { reports << message; });
    QCOMPARE(reader.read(Hive::CurrentUser, key, name), SettingsValue::fromText(value));
    QVERIFY(reader.write(Hive::CurrentUser, kKey, QStringLiteral("Other"),
                         SettingsValue::fromText(QStringLiteral("o"))));
    writer.setRecheckInterval(0);
    QCOMPARE(writer.read(Hive::CurrentUser, kKey, QStringLiteral("Other")).text, QStringLiteral("o"));
    QCOMPARE(writer.read(Hive::CurrentUser, key, name), SettingsValue::fromText(value));
    QCOMPARE(reports, QStringList()); // nothing in the file was unreadable
}

void TestRegFileBackend::staleTemporaryFilesAreRemoved()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    const QDateTime twoHoursAgo = QDateTime::currentDateTime().addSecs(-7200);
    const auto makeFile = [&home](const QString &name, const QDateTime &modified) {
        QFile file(home.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("partial");
        file.flush(); // before the time is set, which closing would otherwise undo
        if (modified.isValid())
            QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
    };
    makeFile(QStringLiteral("settings.reg"), {});
    makeFile(QStringLiteral("settings.reg.Ab12Cd.tmp"), twoHoursAgo); // a killed save
    makeFile(QStringLiteral("settings.reg.Xy34Zw.tmp"), {});          // a save running now
    makeFile(QStringLiteral("settings.reg.damaged"), twoHoursAgo);
    makeFile(QStringLiteral("notes.rtf.Ab12Cd.tmp"), twoHoursAgo); // another file's
    // Old, but not the name of a temporary file of the settings: kept.
    const QStringList lookAlikes = {"settings.reg.Ab12C.tmp", "settings.reg.Ab12Cde.tmp", "xsettings.reg.Ab12Cd.tmp",
                                    "settings.reg.Ab12Cd.tmp.bak", "settings.reg-Ab12Cd.tmp", "settings.reg.Ab12Cd.tmq"};
    for (const QString &name : lookAlikes)
        makeFile(name, twoHoursAgo);
    makeFile(QStringLiteral(".settings.reg.Ab12Cd.tmp"), twoHoursAgo);
    RegFileBackend backend(path);
    QStringList left = QDir(home.path()).entryList(QDir::Files | QDir::Hidden);
    QStringList expected = lookAlikes + QStringList({".settings.reg.Ab12Cd.tmp", "notes.rtf.Ab12Cd.tmp", "settings.reg",
                                                     "settings.reg.Xy34Zw.tmp", "settings.reg.damaged"});
    left.sort();
    expected.sort();
    QCOMPARE(left, expected);
}

void TestRegFileBackend::twoRunningCopiesKeepEachOthersValues()
{
    TestHome home;
    const QString path = home.filePath(QStringLiteral("settings.reg"));
    constexpr int kEach = 300;
    QProcess first, second;
    QElapsedTimer took;
    took.start();
    first.start(QStringLiteral(SETTINGS_WRITER), {path, QStringLiteral("first"), QString::number(kEach)});
    second.start(QStringLiteral(SETTINGS_WRITER), {path, QStringLiteral("second"), QString::number(kEach)});
    for (QProcess *p : {&first, &second}) {
        QVERIFY(p->waitForFinished(90000));
        QCOMPARE(p->exitStatus(), QProcess::NormalExit);
        QCOMPARE(p->exitCode(), 0);
    }
    qInfo("two writers, %d saves each: %lld ms", kEach, took.elapsed());
    RegFileBackend result(path);
    QStringList missing;
    for (const char *prefix : {"first", "second"}) {
        for (int n = 0; n < kEach; ++n) {
            const QString name = QStringLiteral("%1 %2").arg(QLatin1String(prefix)).arg(n);
            if (result.read(Hive::CurrentUser, kKey, name) != SettingsValue::fromText(name))
                missing << name;
        }
    }
    QVERIFY2(missing.isEmpty(), qPrintable(QStringLiteral("%1 lost: %2")
                                               .arg(missing.size())
                                               .arg(missing.mid(0, 10).join(QStringLiteral(", ")))));
    QVERIFY(!QFileInfo::exists(path + QStringLiteral(".lock")));
}

QTEST_GUILESS_MAIN(TestRegFileBackend)
#include "test_reg_file_backend.moc"
