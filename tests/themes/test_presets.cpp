#include "core/app_paths.h"
#include "preset_saver_themes.h"
#include "support/file_size_limit.h"
#include "support/test_home.h"
#include "themes/ini_file.h"
#include "themes/message_box.h"
#include "themes/preset_file.h"
#include "themes/theme_painter.h"
#include "themes/theme_presets.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QStringEncoder>
#include <QTest>
#include <QThread>
#include <cmath>

#ifdef Q_OS_UNIX
#include <csignal>
#endif

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

Theme sampleTheme()
{
    Theme t;
    t.MainColor = 0x00445566;
    t.MainOpacity = 200;
    t.MainContrast = 40;
    t.PanelFont = QStringLiteral("DejaVu Serif");
    t.PanelAngle = 90;
    t.PanelColor = 0x00FFFFFF;
    t.BarFont = QStringLiteral("DejaVu Sans Mono");
    t.BarAngle = 180;
    t.BarColor = 0x80000009u;
    return t;
}

} // namespace

class TestPresets : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_home.reset(); // the old folder goes first, so VANTORA_HOME ends on the new one
        m_home.reset(new TestHome);
        QCOMPARE(AppPaths::dataFolder(), QDir::cleanPath(m_home->path()));
        m_messages.clear();
        SetMessageResponderForTesting([this](bool question, int number, const QString &) {
            m_messages.append((question ? QStringLiteral("Q") : QStringLiteral("I")) +
                              QString::number(number));
            return 0;
        });
    }

    void cleanup() { SetMessageResponderForTesting(nullptr); }

    // What PresetRead finds in a file: the "> " prefix, case-insensitive names, trimming.
    void presetRead_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("expected");

        const QByteArray file = "[main]\r\n> Main-Color=255\r\n[text]\r\n> Bar-Color = 16777215 \r\n"
                                "> Bar-Font=\"DejaVu Sans\"\r\nPanel-Font=Hand Written\r\n";
        QTest::newRow("prefixed key") << file << "main"
                                      << "Main-Color"
                                      << "255";
        QTest::newRow("other case") << file << "TEXT"
                                    << "bar-Color"
                                    << "16777215";
        QTest::newRow("quotes removed") << file << "text"
                                        << "Bar-Font"
                                        << "DejaVu Sans";
        QTest::newRow("key without prefix not found") << file << "text"
                                                      << "Panel-Font"
                                                      << "default";
        QTest::newRow("key in another section not found") << file << "main"
                                                          << "Bar-Color"
                                                          << "default";
        QTest::newRow("empty value takes the default") << QByteArray("[main]\n> Main-Color=\n") << "main"
                                                       << "Main-Color"
                                                       << "default";
    }

    void presetRead()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, expected);
        const QString path = m_home->filePath(QStringLiteral("p.dcp"));
        writeFile(path, content);
        SetPresetFile(QStringLiteral("  ") + path + QStringLiteral(" "));
        QCOMPARE(PresetRead(section, key, QStringLiteral(" default ")), expected);
    }

    void missingValueIsWrittenBack()
    {
        const QString path = m_home->filePath(QStringLiteral("p.dcp"));
        writeFile(path, "[text]\r\nPanel-Font=Hand Written\r\n");
        SetPresetFile(path);
        QCOMPARE(
            PresetRead(QStringLiteral("text"), QStringLiteral("Panel-Font"), QStringLiteral(" Noto Sans ")),
            QStringLiteral("Noto Sans"));
        // The hand-written line stays; the prefixed key joins the section, CRLF kept.
        QCOMPARE(readFile(path),
                 QByteArray("[text]\r\nPanel-Font=Hand Written\r\n> Panel-Font=Noto Sans\r\n"));
        QCOMPARE(PresetRead(QStringLiteral("text"), QStringLiteral("panel-font"), QStringLiteral("x")),
                 QStringLiteral("Noto Sans"));
    }

    void missingFileIsCreated()
    {
        const QString path = m_home->filePath(QStringLiteral("new.dcp"));
        SetPresetFile(path);
        QVERIFY(PresetWrite(QStringLiteral("main"), QStringLiteral("Main-Color"), QStringLiteral("5")));
        QCOMPARE(readFile(path), QByteArray("[main]\r\n> Main-Color=5\r\n"));
    }

    void otherLinesAreKept()
    {
        const QString path = m_home->filePath(QStringLiteral("p.dcp"));
        const QByteArray before = "; my favourite\n[Main]\nnote = keep me\n> MAIN-COLOR=1\n\n[other]\nx=y\n";
        writeFile(path, before);
        SetPresetFile(path);
        PresetWrite(QStringLiteral("main"), QStringLiteral("Main-Color"), QStringLiteral("2"));
        PresetWrite(QStringLiteral("main"), QStringLiteral("Main-Opacity"), QStringLiteral("3"));
        PresetWrite(QStringLiteral("text"), QStringLiteral("Bar-Angle"), QStringLiteral("4"));
        QCOMPARE(readFile(path), QByteArray("; my favourite\n[Main]\nnote = keep me\n> Main-Color=2\n"
                                            "> Main-Opacity=3\n\n[other]\nx=y\n\n[text]\n> Bar-Angle=4\n"));
    }

    void longValuesAreCut()
    {
        const QString path = m_home->filePath(QStringLiteral("p.dcp"));
        writeFile(path, "[text]\n> Bar-Font=" + QByteArray(500, 'a') + "\n");
        SetPresetFile(path);
        QCOMPARE(PresetRead(QStringLiteral("text"), QStringLiteral("Bar-Font"), QString()).size(), 399);
    }

    // A preset holding only its caption keeps every current value and is completed.
    void applyingCompletesAPreset()
    {
        const QString path = m_home->filePath(QStringLiteral("only.dcp"));
        writeFile(path, "[preset]\n> caption=Only a name\n");
        const Theme current = sampleTheme();
        QCOMPARE(ReadPreset(path, current), current);

        IniFile file(path);
        QVERIFY(file.load());
        const QStringList mainKeys{"Main-Color", "Main-Opacity", "Main-Contrast"};
        const QStringList textKeys{"Bar-Font",    "Bar-Color",  "Bar-Angle",
                                   "Panel-Angle", "Panel-Font", "Panel-Color"};
        for (const QString &k : mainKeys)
            QVERIFY2(!file.value("main", "> " + k).isEmpty(), qPrintable(k));
        for (const QString &k : textKeys)
            QVERIFY2(!file.value("text", "> " + k).isEmpty(), qPrintable(k));
        QCOMPARE(file.value("text", "> Bar-Color"), QStringLiteral("-2147483639"));
        QCOMPARE(file.value("preset", "> caption"), QStringLiteral("Only a name"));
        QCOMPARE(ReadPreset(path, Theme()), current); // now it carries the values
    }

    // Values a preset lacks are added in the order they are read, each to its own section.
    void completionFollowsTheReadOrder()
    {
        const QString path = m_home->filePath(QStringLiteral("order.dcp"));
        writeFile(path, "[preset]\r\n> caption=Order\r\n");
        ReadPreset(path, sampleTheme());
        QCOMPARE(readFile(path),
                 QByteArray("[preset]\r\n> caption=Order\r\n\r\n[main]\r\n> Main-Opacity=200\r\n"
                            "> Main-Contrast=40\r\n> Main-Color=4478310\r\n\r\n[text]\r\n"
                            "> Panel-Font=DejaVu Serif\r\n> Panel-Color=16777215\r\n> Panel-Angle=90\r\n"
                            "> Bar-Font=DejaVu Sans Mono\r\n> Bar-Color=-2147483639\r\n> Bar-Angle=180\r\n"));
    }

    void applyingTakesTheFilesValues()
    {
        const QString path = m_home->filePath(QStringLiteral("full.dcp"));
        const Theme saved = sampleTheme();
        QVERIFY(WritePreset(path, saved, QStringLiteral("Full")));
        QCOMPARE(ReadPreset(path, Theme()), saved);
        // A value that is not a number keeps the current one; an empty face the current face.
        writeFile(path, "[main]\n> Main-Contrast=lots\n[text]\n> Bar-Font=\n");
        const Theme result = ReadPreset(path, saved);
        QCOMPARE(result.MainContrast, saved.MainContrast);
        QCOMPARE(result.BarFont, saved.BarFont);
        SetPresetFile(path);
        QCOMPARE(PresetRead("text", "Bar-Font", QString()), saved.BarFont);
    }

    void savingReplacesTheFile()
    {
        QString path;
        QCOMPARE(SavePreset(QStringLiteral("custom"), QStringLiteral("Mine"), Theme(), &path),
                 SavePresetResult::Saved);
        Theme second = sampleTheme();
        QCOMPARE(SavePreset(QStringLiteral("custom"), QStringLiteral("Mine"), second),
                 SavePresetResult::Saved);
        QCOMPARE(path, AppPaths::dataPath(QStringLiteral("themes/custom/Mine.dcp")));
        const QByteArray text = readFile(path);
        QCOMPARE(text.count("Main-Color"), 1);
        QVERIFY(!text.contains("13855252"));
        QCOMPARE(text,
                 QByteArray("[main]\r\n> Main-Color=4478310\r\n> Main-Opacity=200\r\n> Main-Contrast=40\r\n"
                            "\r\n[text]\r\n> Bar-Font=DejaVu Sans Mono\r\n> Bar-Color=-2147483639\r\n"
                            "> Bar-Angle=180\r\n> Panel-Angle=90\r\n> Panel-Font=DejaVu Serif\r\n"
                            "> Panel-Color=16777215\r\n\r\n[preset]\r\n> caption=Mine\r\n"));
        QVERIFY(m_messages.isEmpty());
    }

    void savingWithoutANameShowsTheMessage_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("empty") << QString();
        QTest::newRow("blanks") << QStringLiteral("   ");
    }

    void savingWithoutANameShowsTheMessage()
    {
        QFETCH(QString, name);
        QCOMPARE(SavePreset(QStringLiteral("custom"), name, Theme()), SavePresetResult::NoName);
        QCOMPARE(m_messages, QStringList{QStringLiteral("I12")});
        QVERIFY(QDir(PresetFolderPath("custom")).entryList(QDir::Files).isEmpty());
    }

    void awkwardNamesMakeSafeFiles()
    {
        QString path;
        QCOMPARE(SavePreset(QString(), QStringLiteral("../a/b:c"), Theme(), &path), SavePresetResult::Saved);
        QCOMPARE(QFileInfo(path).fileName(), QStringLiteral("_._a_b_c.dcp"));
        QCOMPARE(QFileInfo(path).absolutePath(), PresetFolderPath(QStringLiteral("custom")));
        SetPresetFile(path);
        QCOMPARE(PresetRead("preset", "caption", QString()), QStringLiteral("../a/b:c"));
    }

    void listingShowsSwatchesAndSizes()
    {
        Theme t = sampleTheme();
        QCOMPARE(SavePreset(QStringLiteral("flat"), QStringLiteral("b second"), t), SavePresetResult::Saved);
        QCOMPARE(SavePreset(QStringLiteral("flat"), QStringLiteral("A first"), Theme()),
                 SavePresetResult::Saved);
        writeFile(PresetFilePath("flat", "empty.dcp"), QByteArray());
        writeFile(PresetFilePath("flat", "notes.txt"), "not a preset");

        const QList<PresetListEntry> list = ListPresets(QStringLiteral("flat"), Theme());
        QCOMPARE(list.size(), 3);
        QCOMPARE(list[0].fileName, QStringLiteral("A first.dcp"));
        QCOMPARE(list[1].fileName, QStringLiteral("b second.dcp"));
        QCOMPARE(list[1].caption, QStringLiteral("b second"));
        QCOMPARE(list[1].mainSwatch, BlendColor(t.MainColor, kShadowGrey, 250));
        QCOMPARE(list[1].panelColor, t.PanelColor);
        QCOMPARE(list[1].barColor, t.BarColor);
        QCOMPARE(list[1].sizeText, QStringLiteral("1K"));
        // The empty file was completed by the listing reads.
        QCOMPARE(list[2].caption, QStringLiteral("empty"));
        QVERIFY(list[2].bytes > 0);
    }

    void sizeText_data()
    {
        QTest::addColumn<qint64>("bytes");
        QTest::addColumn<QString>("expected");
        QTest::newRow("0") << qint64(0) << "0K";
        QTest::newRow("1") << qint64(1) << "1K";
        QTest::newRow("1024") << qint64(1024) << "1K";
        QTest::newRow("1025") << qint64(1025) << "2K";
    }

    void sizeText()
    {
        QFETCH(qint64, bytes);
        QFETCH(QString, expected);
        QCOMPARE(PresetSizeText(bytes), expected);
    }

    void deletingOneOrAll()
    {
        for (const char *name : {"one", "two", "three"})
            SavePreset(QStringLiteral("retro"), QString::fromLatin1(name), Theme());
        writeFile(PresetFilePath("retro", "keep.txt"), "x");
        QVERIFY(DeletePreset(QStringLiteral("retro"), QStringLiteral("two.dcp")));
        QVERIFY(!DeletePreset(QStringLiteral("retro"), QStringLiteral("two.dcp")));
        QVERIFY(!DeletePreset(QStringLiteral("retro"), QStringLiteral("../retro/one.dcp")));
        QCOMPARE(DeleteAllPresets(QStringLiteral("retro")), 2);
        QCOMPARE(QDir(PresetFolderPath("retro")).entryList(QDir::Files), QStringList{"keep.txt"});
    }

    void shippedPresetsAreCompleteAndInstalledOnce()
    {
        QCOMPARE(InstallMissingPresets(), countShipped());
        for (const QString &group : PresetGroups()) {
            if (group == QLatin1String("custom"))
                continue;
            const QList<PresetListEntry> list = ListPresets(group, Theme());
            QVERIFY2(list.size() >= 3 && list.size() <= 5, qPrintable(group));
            for (const PresetListEntry &e : list)
                QVERIFY(!e.caption.isEmpty());
        }
        // A user's edit stays, a deleted preset stays deleted.
        const QString edited = PresetFilePath("classic", "Slate.dcp");
        writeFile(edited, "[preset]\n> caption=My slate\n");
        QVERIFY(DeletePreset(QStringLiteral("led"), QStringLiteral("Red LED.dcp")));
        QCOMPARE(InstallMissingPresets(), 0);
        QCOMPARE(readFile(edited), QByteArray("[preset]\n> caption=My slate\n"));
        QVERIFY(!QFile::exists(PresetFilePath("led", "Red LED.dcp")));
        // Installed copies can be edited.
        SetPresetFile(PresetFilePath("glass", "Frost.dcp"));
        PresetWrite("main", "Main-Opacity", "150");
        QVERIFY(LastPresetWriteSucceeded());
    }

    void shippedPresetsCarryEveryValue()
    {
        QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                        QDirIterator::Subdirectories);
        int count = 0;
        while (it.hasNext()) {
            IniFile file(it.next());
            QVERIFY(file.load());
            for (const char *k : {"Main-Color", "Main-Opacity", "Main-Contrast"})
                QVERIFY2(!file.value("main", QStringLiteral("> ") + k).isEmpty(), qPrintable(file.path()));
            for (const char *k :
                 {"Bar-Font", "Bar-Color", "Bar-Angle", "Panel-Angle", "Panel-Font", "Panel-Color"})
                QVERIFY2(!file.value("text", QStringLiteral("> ") + k).isEmpty(), qPrintable(file.path()));
            QVERIFY(!file.value("preset", "> caption").isEmpty());
            const int opacity = file.value("main", "> Main-Opacity").toInt();
            QVERIFY(opacity >= 10 && opacity <= 255);
            ++count;
        }
        QVERIFY(count >= 21);
    }

    // Every shipped preset must stay readable on the widgets: the text colours of panel and bar
    // against the flat main colour they are drawn on, at the usual 4.5:1 for small text.
    void shippedPresetsAreReadable_data()
    {
        QTest::addColumn<QString>("path");
        QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            QTest::newRow(qPrintable(path.mid(9))) << path;
        }
    }

    void shippedPresetsAreReadable()
    {
        QFETCH(QString, path);
        IniFile file(path);
        QVERIFY(file.load());
        const OleColor main = TextToColor(file.value("main", "> Main-Color"), 0);
        for (const char *key : {"> Panel-Color", "> Bar-Color"}) {
            const OleColor text = TextToColor(file.value("text", key), 0);
            if (text & kSystemColorFlag)
                continue; // a desktop colour follows the user's own scheme
            const double ratio = contrastRatio(main, text);
            QVERIFY2(ratio >= 4.5, qPrintable(QStringLiteral("%1 %2:1").arg(key).arg(ratio, 0, 'f', 2)));
        }
    }

private slots:
    // A file goes through load and save unchanged, byte for byte, and keeps its encoding and
    // line ends when a value is added.
    void filesKeepTheirBytes_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected"); // "> Panel-Font" of [text]
        QTest::addColumn<int>("encoding");

        const auto latin1 = int(IniFile::Encoding::Latin1);
        const auto utf8 = int(IniFile::Encoding::Utf8);
        QStringEncoder utf16(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
        QTest::newRow("latin-1, no final line break")
            << QByteArray("[text]\r\n> Panel-Font=Caf\xe9") << "Café" << latin1;
        QTest::newRow("latin-1, CR LF")
            << QByteArray("[text]\r\n> Panel-Font=Gar\xe7on\r\n") << "Garçon" << latin1;
        QTest::newRow("utf-8 cut off at the end")
            << QByteArray("[text]\n> Panel-Font=Caf\xc3") << QStringLiteral("Caf\u00c3") << latin1;
        QTest::newRow("utf-8 with a byte-order mark")
            << QByteArray("\xef\xbb\xbf[text]\n> Panel-Font=Z\xc3\xbcrich\n") << "Zürich"
            << int(IniFile::Encoding::Utf8WithBom);
        QTest::newRow("utf-16 with a byte-order mark")
            << QByteArray(utf16.encode(QStringLiteral("[text]\r\n> Panel-Font=Ελληνικά\r\n"))) << "Ελληνικά"
            << int(IniFile::Encoding::Utf16LE);
        QTest::newRow("CR ending the last line")
            << QByteArray("[text]\n> Panel-Font=Mono\r") << "Mono" << utf8;
        QTest::newRow("CR line ends") << QByteArray("[text]\r> Panel-Font=Mono\r[main]\r") << "Mono" << utf8;
        QTest::newRow("mixed line ends")
            << QByteArray("[main]\r\n> Main-Color=1\n[text]\r> Panel-Font=Mono\r\n\n") << "Mono" << utf8;
        QTest::newRow("NUL in a line")
            << QByteArray("[text]\n> Panel-Font=a\0b\n", 25) << QStringLiteral("a") + QChar(0) + "b" << utf8;
        QTest::newRow("empty file") << QByteArray() << QString() << utf8;
    }

    void filesKeepTheirBytes()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QFETCH(int, encoding);
        const QString path = m_home->filePath(QStringLiteral("p.dcp"));
        writeFile(path, content);
        IniFile file(path);
        QVERIFY(file.load());
        QCOMPARE(file.value(QStringLiteral("text"), QStringLiteral("> Panel-Font")), expected);
        QCOMPARE(int(file.encoding()), encoding);
        QVERIFY(file.save());
        QCOMPARE(readFile(path), content);

        file.setValue(QStringLiteral("main"), QStringLiteral("> Main-Opacity"), QStringLiteral("9"));
        QVERIFY(file.save());
        IniFile reread(path);
        QVERIFY(reread.load());
        QCOMPARE(reread.value(QStringLiteral("text"), QStringLiteral("> Panel-Font")), expected);
        QCOMPARE(reread.value(QStringLiteral("main"), QStringLiteral("> Main-Opacity")), QStringLiteral("9"));
        QCOMPARE(int(reread.encoding()), encoding);
    }

    // A Latin-1 file whose first bytes look like a UTF-16 byte-order mark: an edit that makes
    // the rest read as UTF-16 must not change what the file says (once found by fuzzing).
    void latin1ThatLooksLikeUtf16_data()
    {
        // After the mark, an odd number of bytes: not UTF-16, so Latin-1. Setting a value of
        // odd length makes the count even, and the whole file would then read as UTF-16.
        QTest::addColumn<QString>("value");
        QTest::newRow("edit leaves an odd count") << QStringLiteral("12");
        QTest::newRow("edit makes the count even") << QStringLiteral("1");
    }

    void latin1ThatLooksLikeUtf16()
    {
        QFETCH(QString, value);
        IniFile file(QString{});
        file.setBytes(QByteArray("\xff\xfe\n[text]\n> Panel-Font=Caf\xe9 \n"));
        QCOMPARE(file.encoding(), IniFile::Encoding::Latin1);
        file.setValue(QStringLiteral("main"), QStringLiteral("> Main-Color"), value);
        IniFile reread(QString{});
        reread.setBytes(file.bytes());
        QCOMPARE(reread.value(QStringLiteral("text"), QStringLiteral("> Panel-Font")),
                 QStringLiteral("Café"));
        QCOMPARE(reread.value(QStringLiteral("main"), QStringLiteral("> Main-Color")), value);
    }

    // Neither applying a preset that lacks values (which completes it) nor saving over one may
    // empty it when the disk is full.
    void fullDiskKeepsThePreset()
    {
#ifndef Q_OS_UNIX
        QSKIP("the disk is filled with a file size limit, which only Unix systems have");
#else
        const QString path = PresetFilePath(QStringLiteral("custom"), QStringLiteral("Only.dcp"));
        writeFile(path, "[preset]\r\n> caption=Only a name\r\n");
        const QByteArray before = readFile(path);
        const Theme current = sampleTheme();
        {
            FileSizeLimit full(before.size());
            QVERIFY(full.isActive());
            QCOMPARE(ReadPreset(path, current), current); // applied all the same
            QVERIFY(!WritePreset(path, Theme(), QStringLiteral("Other")));
            QString why;
            QCOMPARE(SavePreset(QStringLiteral("custom"), QStringLiteral("Only"), Theme(), nullptr, &why),
                     SavePresetResult::WriteFailed);
            QVERIFY2(!why.isEmpty(), "the reason is given for the user");
        }
        QCOMPARE(readFile(path), before);
        QCOMPARE(QDir(QFileInfo(path).absolutePath()).entryList(QDir::Files), QStringList{"Only.dcp"});
#endif
    }

    // Killed at any moment of a save over an existing preset, the file is one of the two
    // presets, whole.
    void killedSaveLeavesAWholePreset()
    {
#ifndef Q_OS_UNIX
        QSKIP("needs a way to kill a process outright");
#else
        const QString first = m_home->filePath(QStringLiteral("first.dcp"));
        const QString second = m_home->filePath(QStringLiteral("second.dcp"));
        QVERIFY(WritePreset(first, FirstSavedTheme(), QStringLiteral("First")));
        QVERIFY(WritePreset(second, SecondSavedTheme(), QStringLiteral("Second")));
        const QSet<QByteArray> whole{readFile(first), readFile(second)};
        const QString path = m_home->filePath(QStringLiteral("saved.dcp"));
        QVERIFY(QFile::copy(first, path));

        QRandomGenerator random(20261124);
        constexpr int kKills = 100;
        int broken = 0;
        for (int kill = 0; kill < kKills; ++kill) {
            QProcess saver;
            saver.start(QStringLiteral(PRESET_SAVER), {path});
            QVERIFY(saver.waitForReadyRead(10000)); // its first save is done: now mid-loop
            QThread::usleep(random.bounded(3000));
            ::kill(pid_t(saver.processId()), SIGKILL);
            QVERIFY(saver.waitForFinished(10000));
            if (!whole.contains(readFile(path)))
                ++broken;
        }
        QCOMPARE(broken, 0);
        QCOMPARE(ReadPreset(path, Theme()) == FirstSavedTheme() ||
                     ReadPreset(path, Theme()) == SecondSavedTheme(),
                 true);
#endif
    }

private:
    // The contrast of two plain colours as accessibility guidelines measure it (1 to 21).
    static double contrastRatio(OleColor a, OleColor b)
    {
        auto luminance = [](OleColor c) {
            auto channel = [](int v) {
                const double x = v / 255.0;
                return x <= 0.03928 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4);
            };
            return 0.2126 * channel(int(c & 0xFF)) + 0.7152 * channel(int((c >> 8) & 0xFF)) +
                   0.0722 * channel(int((c >> 16) & 0xFF));
        };
        const double la = luminance(a);
        const double lb = luminance(b);
        return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
    }

    static int countShipped()
    {
        int n = 0;
        QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            it.next();
            ++n;
        }
        return n;
    }

    std::unique_ptr<TestHome> m_home;
    QStringList m_messages;
};

QTEST_GUILESS_MAIN(TestPresets)
#include "test_presets.moc"
