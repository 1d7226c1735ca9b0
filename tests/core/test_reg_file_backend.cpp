#include "core/platform/reg_file_backend.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
    QCOMPARE(QString::fromUtf8(readBytes(path)),
             QStringLiteral("Windows Registry Editor Version 5.00\n"
                            "\n"
                            "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]\n"
                            "\"Quote \\\"q\\\"\"=\"C:\\\\a \\\"b\\\"\"\n"
                            "\"Count\"=dword:abcdef01\n"
                            "\n"
                            "[HKEY_LOCAL_MACHINE\\Software\\Run]\n"
                            "@=\"x\"\n"
                            "\n"));
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
    const QByteArray bytes = readBytes(path);
    QVERIFY2(bytes.contains("\"Message\"=hex(1):6c,00,69,00"), bytes.constData());
    QCOMPARE(bytes.count('\n'), 6); // header, blank, section, two values, blank
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
    QVERIFY(readBytes(path).contains("\"A\"=\"1\""));
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
    QVERIFY(readBytes(path).contains("\"A\"=\"1\"")); // written again although unchanged in memory
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

QTEST_GUILESS_MAIN(TestRegFileBackend)
#include "test_reg_file_backend.moc"
