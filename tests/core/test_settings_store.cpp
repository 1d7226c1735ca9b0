#include "core/app_paths.h"
#include "core/platform/settings_backend.h"
#include "core/settings_store.h"
#include "support/file_text.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

const QString kSection = QStringLiteral("[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\falc_SET\\Details]");

void writeSettingsFile(const QString &text)
{
    const QString path = AppPaths::settingsFile();
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text.toUtf8());
}

QString settingsFileText()
{
    return FileText(AppPaths::settingsFile());
}

QString fileWith(const QString &lines)
{
    return QStringLiteral("Windows Registry Editor Version 5.00\n\n") + kSection + QLatin1Char('\n') + lines +
           QLatin1Char('\n');
}

// Points the store at another file for a moment, so that the next read in the test's own home
// loads the file from disk again, as the next start of the program would.
void forgetLoadedFile()
{
    TestHome elsewhere;
    ReadDetail(QStringLiteral("x"), QStringLiteral("y"), QString());
}

} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT

private slots:
    void storedDataReadsByType_data();
    void storedDataReadsByType();
    void writtenTextReadsBack_data();
    void writtenTextReadsBack();
    void keysAndNamesIgnoreCase();
    void goodValuesSurviveGarbage();
    void changeByAnotherProcessIsSeen();
    void writeMergesWithAnotherProcess();
    void readOnlyFolderLeavesFileIntact();
    void fileIsReplacedNotRewritten();
    void newHomeLoadsItsOwnFile();
    void hivesAreSeparate();
    void intConversion_data();
    void intConversion();
    void boolConversion_data();
    void boolConversion();
};

void TestSettingsStore::storedDataReadsByType_data()
{
    QTest::addColumn<QString>("fileData"); // what follows "Value"= in the file
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("expected");

    QTest::newRow("string") << "\"word\""
                            << "dflt"
                            << "word";
    QTest::newRow("blanks trimmed") << "\"  two words  \""
                                    << "dflt"
                                    << "two words";
    QTest::newRow("empty string is not the default") << "\"\""
                                                     << "dflt"
                                                     << "";
    QTest::newRow("escapes") << R"("C:\\dir\\\"q\"")"
                             << "dflt"
                             << R"(C:\dir\"q")";
    QTest::newRow("hand-typed lone backslash") << R"("C:\temp")"
                                               << "dflt"
                                               << R"(C:\temp)";
    QTest::newRow("dword reads as default") << "dword:0000000a"
                                            << "7"
                                            << "7";
    QTest::newRow("binary reads as default") << "hex:01,02,03"
                                             << "7"
                                             << "7";
    QTest::newRow("expandable string") << "hex(2):61,00,62,00,00,00"
                                       << "dflt"
                                       << "ab";
    QTest::newRow("garbage data reads as default") << "banana"
                                                   << "dflt"
                                                   << "dflt";
    QTest::newRow("unterminated string") << "\"abc"
                                         << "dflt"
                                         << "dflt";
    QTest::newRow("default is trimmed too") << "dword:00000001"
                                            << "  padded "
                                            << "padded";
}

void TestSettingsStore::storedDataReadsByType()
{
    QFETCH(QString, fileData);
    QFETCH(QString, defaultValue);
    QFETCH(QString, expected);
    TestHome home;
    writeSettingsFile(fileWith(QStringLiteral("\"Value\"=") + fileData));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("Value"), defaultValue), expected);
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("Missing"), defaultValue),
             defaultValue.trimmed());
}

void TestSettingsStore::writtenTextReadsBack_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("expected");

    QTest::newRow("254 characters") << QString(254, QLatin1Char('x')) << QString(254, QLatin1Char('x'));
    QTest::newRow("255 characters") << QString(255, QLatin1Char('x')) << "dflt";
    QTest::newRow("254 with blanks outside")
        << " " + QString(252, QLatin1Char('y')) + " " << QString(252, QLatin1Char('y'));
    QTest::newRow("tabs are not blanks") << "\tx\t"
                                         << "\tx\t";
    QTest::newRow("line breaks") << "one\ntwo\r\nthree"
                                 << "one\ntwo\r\nthree";
    QTest::newRow("quotes and backslashes") << R"(a\"b\\c")"
                                            << R"(a\"b\\c")";
    QTest::newRow("unicode") << QString::fromUtf8("Größe ☂") << QString::fromUtf8("Größe ☂");
}

void TestSettingsStore::writtenTextReadsBack()
{
    QFETCH(QString, written);
    QFETCH(QString, expected);
    TestHome home;
    WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Text"), written);
    QCOMPARE(ReadDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Text"), QStringLiteral("dflt")),
             expected);

    forgetLoadedFile();
    QCOMPARE(ReadDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Text"), QStringLiteral("dflt")),
             expected);
}

void TestSettingsStore::keysAndNamesIgnoreCase()
{
    TestHome home;
    writeSettingsFile(QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n"
                                     "[hkey_current_user\\software\\VANTORA\\Falc_Set\\DETAILS]\r\n"
                                     "\"ALARM Sound\"=\"bell\"\r\n"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("Alarm sound"), QString()),
             QStringLiteral("bell"));

    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("alarm sound"), QStringLiteral("chime"));
    const QString text = settingsFileText();
    QVERIFY2(text.contains(QStringLiteral("[hkey_current_user\\software\\VANTORA\\Falc_Set\\DETAILS]")),
             qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("\"ALARM Sound\"=\"chime\"")), qPrintable(text));
    QCOMPARE(text.count(QStringLiteral("chime")), 1);
    QCOMPARE(text.count(QLatin1Char('[')), 1);
}

void TestSettingsStore::goodValuesSurviveGarbage()
{
    TestHome home;
    writeSettingsFile(fileWith(QStringLiteral("\"A\"=\"1\"\n"
                                              "this line is nonsense\n"
                                              "\"Count\"=dword:00000010\n"
                                              "\"Blob\"=hex:00,01,\\\n"
                                              "  02,03\n"
                                              "\"B\"=\"2\"\n"
                                              "=\"nameless garbage\"\n"
                                              "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\fclc_IDX\\Details]\n"
                                              "\"Memory\"=\"42\"")));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("C"), QStringLiteral("3"));
    forgetLoadedFile();
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("A"), QString()), QStringLiteral("1"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("B"), QString()), QStringLiteral("2"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("C"), QString()), QStringLiteral("3"));
    QCOMPARE(ReadDetail(QStringLiteral("fclc_IDX"), QStringLiteral("Memory"), QString()),
             QStringLiteral("42"));
    const QString text = settingsFileText();
    QVERIFY2(text.contains(QStringLiteral("\"Count\"=dword:00000010")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("\"Blob\"=hex:00,01,02,03")), qPrintable(text));
    QVERIFY(text.startsWith(QStringLiteral("Windows Registry Editor Version 5.00\r\n")));
}

void TestSettingsStore::changeByAnotherProcessIsSeen()
{
    TestHome home;
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Value"), QStringLiteral("mine"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("Value"), QString()),
             QStringLiteral("mine"));
    writeSettingsFile(fileWith(QStringLiteral("\"Value\"=\"theirs, longer\"")));
    QTRY_COMPARE_WITH_TIMEOUT(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("Value"), QString()),
                              QStringLiteral("theirs, longer"), 3000);
}

void TestSettingsStore::writeMergesWithAnotherProcess()
{
    TestHome home;
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Shared"), QStringLiteral("mine"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Kept"), QStringLiteral("mine"));
    writeSettingsFile(
        fileWith(QStringLiteral("\"Shared\"=\"theirs\"\n\"Kept\"=\"mine\"\n\"New\"=\"theirs\"")));
    // no waiting: a write always looks at the file first
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Shared"), QStringLiteral("last"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("New"), QString()),
             QStringLiteral("theirs"));
    const QString text = settingsFileText();
    QVERIFY2(text.contains(QStringLiteral("\"Shared\"=\"last\"")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("\"New\"=\"theirs\"")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("\"Kept\"=\"mine\"")), qPrintable(text));
}

void TestSettingsStore::readOnlyFolderLeavesFileIntact()
{
    TestHome home;
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("A"), QStringLiteral("saved"));
    const QString before = settingsFileText();
    QFile::setPermissions(home.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    if (QFileInfo(home.path()).isWritable()) {
        QFile::setPermissions(home.path(),
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        QSKIP("running with rights that ignore folder permissions");
    }
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("A"), QStringLiteral("unsaved"));
    QCOMPARE(ReadDetail(QStringLiteral("falc_SET"), QStringLiteral("A"), QString()),
             QStringLiteral("unsaved"));
    QCOMPARE(settingsFileText(), before);
    QFile::setPermissions(home.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void TestSettingsStore::fileIsReplacedNotRewritten()
{
    TestHome home;
    for (int i = 0; i < 50; ++i)
        WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Item %1").arg(i),
                    QString(200, QLatin1Char('z')));
    QFile reader(AppPaths::settingsFile());
    QVERIFY(reader.open(QIODevice::ReadOnly));
    const QByteArray before = reader.peek(reader.size());

    WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Item 0"), QStringLiteral("short"));
    // a reader that opened the file before the save still sees the whole old file
    QCOMPARE(reader.readAll(), before);
    QCOMPARE(QDir(home.path()).entryList(QDir::Files | QDir::Hidden),
             QStringList{QStringLiteral("settings.reg")});
}

void TestSettingsStore::newHomeLoadsItsOwnFile()
{
    TestHome first;
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("3"));
    {
        TestHome second;
        QCOMPARE(
            ReadDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("-1")),
            QStringLiteral("-1"));
        WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("5"));
    }
    QCOMPARE(ReadDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("-1")),
             QStringLiteral("3"));
}

void TestSettingsStore::hivesAreSeparate()
{
    TestHome home;
    const QString run = QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run");
    WriteSetting(Hive::LocalMachine, run, QStringLiteral("Vantora"), QStringLiteral("machine"));
    QCOMPARE(ReadSetting(Hive::CurrentUser, run, QStringLiteral("Vantora"), QStringLiteral("none")),
             QStringLiteral("none"));
    QCOMPARE(ReadSetting(Hive::LocalMachine, run, QStringLiteral("Vantora"), QString()),
             QStringLiteral("machine"));
    // doubled separators from joined names find the same key
    const QString untidy = QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\\\Run\\");
    QCOMPARE(ReadSetting(Hive::LocalMachine, untidy, QStringLiteral("vantora"), QString()),
             QStringLiteral("machine"));
}

void TestSettingsStore::intConversion_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("expected");
    QTest::newRow("plain") << "12" << 12;
    QTest::newRow("negative") << "-1" << -1;
    QTest::newRow("padded") << "  8 " << 8;
    QTest::newRow("trailing letters") << "12abc" << 99;
    QTest::newRow("empty") << "" << 99;
    QTest::newRow("half to even down") << "2.5" << 2;
    QTest::newRow("half to even up") << "3.5" << 4;
    QTest::newRow("twips") << "1234.4" << 1234;
    QTest::newRow("too large") << "99999999999" << 99;
    QTest::newRow("not a number") << "nan" << 99;
}

void TestSettingsStore::intConversion()
{
    QFETCH(QString, stored);
    QFETCH(int, expected);
    TestHome home;
    WriteDetail(QStringLiteral("fclc_IDX"), QStringLiteral("N"), stored);
    QCOMPARE(ReadIntDetail(QStringLiteral("fclc_IDX"), QStringLiteral("N"), 99), expected);
}

void TestSettingsStore::boolConversion_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("defaultValue");
    QTest::addColumn<bool>("expected");
    QTest::newRow("True") << "True" << false << true;
    QTest::newRow("FALSE") << "FALSE" << true << false;
    QTest::newRow("one") << "1" << false << true;
    QTest::newRow("zero") << "0" << true << false;
    QTest::newRow("minus one") << "-1" << false << true;
    QTest::newRow("yes is not a boolean") << "yes" << true << true;
    QTest::newRow("empty") << "" << true << true;
}

void TestSettingsStore::boolConversion()
{
    QFETCH(QString, stored);
    QFETCH(bool, defaultValue);
    QFETCH(bool, expected);
    TestHome home;
    WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("Flag"), stored);
    QCOMPARE(ReadBoolDetail(QStringLiteral("mdb_SET"), QStringLiteral("Flag"), defaultValue), expected);
}

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "test_settings_store.moc"
