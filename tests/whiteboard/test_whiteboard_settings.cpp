#include "core/app_paths.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/theme_painter.h"
#include "whiteboard/whiteboard_settings.h"
#include "whiteboard/whiteboard_settings_dialog.h"

#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {

const QString kUnset = QStringLiteral("<unset>");

QString window()
{
    return QLatin1String(kWhiteboardSettingsName);
}

QString stored(const char *valueName)
{
    return ReadDetail(window(), QLatin1String(valueName), kUnset);
}

QColor windowBackground()
{
    return ResolveColor(kWindowBackground);
}

void touch(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("x");
}

QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result << list->item(i)->text();
    return result;
}

// A message the dialog showed: its number (0 for a notice) and the text it spliced in.
struct Shown
{
    int number;
    QString text;
};

} // namespace

class TestWhiteboardSettings : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void colorOfName_data();
    void colorOfName();
    void parsesColorText_data();
    void parsesColorText();
    void loadRepairsFolder_data();
    void loadRepairsFolder();
    void saves_data();
    void saves();
    void readBackMeansWindowBackground_data();
    void readBackMeansWindowBackground();

    void listsColorsAndSelectsStored_data();
    void listsColorsAndSelectsStored();
    void okWritesColorCancelNothing_data();
    void okWritesColorCancelNothing();
    void choosingAFolderFillsLocation();
    void okWithChangedFolder_data();
    void okWithChangedFolder();
    void refusesUnusableFolderText_data();
    void refusesUnusableFolderText();

private:
    QList<Shown> m_shown;
};

void TestWhiteboardSettings::initTestCase()
{
    SetMessageResponderForTesting([this](bool, int number, const QString &text) {
        m_shown.append({number, text});
        return int(AnswerYes);
    });
}

void TestWhiteboardSettings::init()
{
    m_shown.clear();
}

void TestWhiteboardSettings::colorOfName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("rgb"); // empty: the window background

    QTest::newRow("White") << "White"
                           << "&H00FFFFFF"
                           << "#FFFFFF";
    QTest::newRow("Window") << "Window"
                            << ""
                            << "";
    QTest::newRow("Purple") << "Purple"
                            << "&H00C88FA6"
                            << "#A68FC8";
    QTest::newRow("Pink") << "Pink"
                          << "&H00B87CC7"
                          << "#C77CB8";
    QTest::newRow("Cherry") << "Cherry"
                            << "&H006D64D2"
                            << "#D2646D";
    QTest::newRow("Red") << "Red"
                         << "&H006A53A7"
                         << "#A7536A";
    QTest::newRow("Brown") << "Brown"
                           << "&H003E3E5C"
                           << "#5C3E3E";
    QTest::newRow("Grey") << "Grey"
                          << "&H00343434"
                          << "#343434";
    QTest::newRow("Stone") << "Stone"
                           << "&H006C6668"
                           << "#68666C";
    QTest::newRow("Slate") << "Slate"
                           << "&H00CAA294"
                           << "#94A2CA";
    QTest::newRow("Blue") << "Blue"
                          << "&H009B5432"
                          << "#32549B";
    QTest::newRow("Turquoise") << "Turquoise"
                               << "&H009D9954"
                               << "#54999D";
    QTest::newRow("Green") << "Green"
                           << "&H0023452B"
                           << "#2B4523";
    QTest::newRow("Lime") << "Lime"
                          << "&H007FBE9F"
                          << "#9FBE7F";
    QTest::newRow("Yellow") << "Yellow"
                            << "&H006CD0CB"
                            << "#CBD06C";
    QTest::newRow("unknown") << "Magenta"
                             << ""
                             << "";
    QTest::newRow("names match exactly") << "white"
                                         << ""
                                         << "";
    QTest::newRow("the whiteboard's own default") << "vbWindowBackground"
                                                  << ""
                                                  << "";
}

void TestWhiteboardSettings::colorOfName()
{
    QFETCH(QString, name);
    QFETCH(QString, value);
    QFETCH(QString, rgb);
    QCOMPARE(BoardColorValue(name), value);
    // The stored text reads back as the colour the table names, red in the low byte.
    QCOMPARE(BoardColorOfName(name), rgb.isEmpty() ? windowBackground() : QColor(rgb));
}

void TestWhiteboardSettings::parsesColorText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("readable");
    QTest::addColumn<quint32>("color");

    QTest::newRow("hex") << "&H00C88FA6" << true << 0x00C88FA6u;
    QTest::newRow("hex, lower case") << "&h00c88fa6" << true << 0x00C88FA6u;
    QTest::newRow("hex, system colour") << "&H80000005" << true << 0x80000005u;
    QTest::newRow("decimal") << "13143974" << true << 0x00C88FA6u;
    QTest::newRow("negative decimal system colour") << "-2147483643" << true << 0x80000005u;
    QTest::newRow("unsigned decimal system colour") << "2147483653" << true << 0x80000005u;
    QTest::newRow("empty") << "" << false << 0u;
    QTest::newRow("garbage") << "purple" << false << 0u;
    QTest::newRow("hex without digits") << "&H" << false << 0u;
    QTest::newRow("hex with a stray letter") << "&H00C88FAG" << false << 0u;
    QTest::newRow("hex too long") << "&H100C88FA6" << false << 0u;
    QTest::newRow("decimal too large") << "4294967296" << false << 0u;
    QTest::newRow("digits then text") << "12abc" << false << 0u;
}

void TestWhiteboardSettings::parsesColorText()
{
    QFETCH(QString, text);
    QFETCH(bool, readable);
    QFETCH(quint32, color);
    const std::optional<OleColor> parsed = ParseBoardColorText(text);
    QCOMPARE(parsed.has_value(), readable);
    if (readable)
        QCOMPARE(*parsed, OleColor(color));
    else
        QCOMPARE(BoardColorFromText(text), windowBackground());
}

void TestWhiteboardSettings::loadRepairsFolder_data()
{
    QTest::addColumn<QString>("stored"); // kUnset: nothing stored
    QTest::addColumn<QString>("loaded"); // "<data>" stands for the data folder

    QTest::newRow("default gets its separator") << kUnset << "<data>/wboard/";
    QTest::newRow("already ends in a separator") << "/x/boards/"
                                                 << "/x/boards/";
    QTest::newRow("separator added") << "/x/boards"
                                     << "/x/boards/";
    QTest::newRow("doubled, backslashes") << "C:\\Boards\\wboard\\wboard\\"
                                          << "C:\\Boards\\wboard";
    QTest::newRow("doubled, slashes") << "/x/wboard/wboard/"
                                      << "/x/wboard";
    QTest::newRow("doubled, no separator at the end") << "/x/wboard/wboard"
                                                      << "/x/wboard";
    QTest::newRow("doubled in the middle") << "/x/wboard/wboard/2024/"
                                           << "/x/wboard2024/";
    QTest::newRow("a single wboard stays") << "/x/wboard/"
                                           << "/x/wboard/";
}

void TestWhiteboardSettings::loadRepairsFolder()
{
    QFETCH(QString, stored);
    QFETCH(QString, loaded);
    TestHome home;
    if (stored != kUnset)
        WriteDetail(window(), QStringLiteral("Board Folder Location"), stored);
    loaded.replace(QStringLiteral("<data>"), AppPaths::dataFolder());
    QCOMPARE(WhiteboardSettings::load().folder, loaded);
    ReloadWhiteboardSettings();
    QCOMPARE(CurrentWhiteboardSettings().folder, loaded);
}

void TestWhiteboardSettings::saves_data()
{
    QTest::addColumn<QString>("folder"); // under the test home; "file.txt/..." cannot be created
    QTest::addColumn<bool>("exists");
    QTest::addColumn<bool>("changed");
    QTest::addColumn<QString>("colorName");
    QTest::addColumn<QString>("colorValue");
    QTest::addColumn<bool>("ready");

    QTest::newRow("changed, missing: created and written") << "new/boards/" << false << true << "Purple"
                                                           << "&H00C88FA6" << true;
    QTest::newRow("changed, existing: written") << "old/" << true << true << "Green"
                                                << "&H0023452B" << true;
    QTest::newRow("unchanged: neither created nor written") << "new/boards/" << false << false << "Window"
                                                            << "-2147483643" << true;
    QTest::newRow("changed, cannot be created: written all the same")
        << "file.txt/boards/" << false << true << "White"
        << "&H00FFFFFF" << false;
    QTest::newRow("unknown name stores the window background") << "old/" << true << false << "Magenta"
                                                               << "-2147483643" << true;
}

void TestWhiteboardSettings::saves()
{
    QFETCH(QString, folder);
    QFETCH(bool, exists);
    QFETCH(bool, changed);
    QFETCH(QString, colorName);
    QFETCH(QString, colorValue);
    QFETCH(bool, ready);
    TestHome home;
    touch(home.filePath(QStringLiteral("file.txt")));
    if (exists)
        QVERIFY(QDir().mkpath(home.filePath(folder)));

    WhiteboardSettings s;
    s.folder = home.filePath(folder);
    s.colorName = colorName;
    QCOMPARE(s.save(changed), ready);

    QCOMPARE(stored("Board Folder Location"), changed ? s.folder : kUnset);
    QCOMPARE(QFileInfo(s.folder).isDir(), exists || (changed && ready));
    QCOMPARE(stored("board-Color-name"), colorName);
    QCOMPARE(stored("board-Color-value"), colorValue);
    // The open whiteboard sees the new colour at once.
    QCOMPARE(CurrentWhiteboardSettings().colorValue, colorValue);
    QCOMPARE(CurrentWhiteboardSettings().boardColor(), BoardColorOfName(colorName));
}

void TestWhiteboardSettings::readBackMeansWindowBackground_data()
{
    QTest::addColumn<bool>("saveUnreadableName");

    QTest::newRow("nothing stored") << false;
    // A name too long for a setting reads back as the default, as a lost value would.
    QTest::newRow("read back after a save") << true;
}

void TestWhiteboardSettings::readBackMeansWindowBackground()
{
    QFETCH(bool, saveUnreadableName);
    TestHome home;
    ReloadWhiteboardSettings();
    if (saveUnreadableName) {
        WhiteboardSettings s = WhiteboardSettings::load();
        s.colorName = QString(kLongestSetting + 1, QLatin1Char('x'));
        s.save(false);
    }
    const WhiteboardSettings &current = CurrentWhiteboardSettings();
    QCOMPARE(current.colorName, QStringLiteral("vbWindowBackground"));
    QCOMPARE(BoardColorOfName(current.colorName), windowBackground());
    QCOMPARE(current.boardColor(), windowBackground());
    // The dialog shows the same thing by its own name.
    QCOMPARE(WhiteboardSettings::load().colorName, QStringLiteral("Window"));
}

void TestWhiteboardSettings::listsColorsAndSelectsStored_data()
{
    QTest::addColumn<QString>("storedName"); // kUnset: nothing stored
    QTest::addColumn<QString>("selected");

    QTest::newRow("stored name") << "Purple"
                                 << "Purple";
    QTest::newRow("nothing stored") << kUnset << "Window";
    QTest::newRow("unknown name") << "Magenta"
                                  << "Window";
    QTest::newRow("the whiteboard's own default") << "vbWindowBackground"
                                                  << "Window";
}

void TestWhiteboardSettings::listsColorsAndSelectsStored()
{
    QFETCH(QString, storedName);
    QFETCH(QString, selected);
    TestHome home;
    if (storedName != kUnset)
        WriteDetail(window(), QStringLiteral("board-Color-name"), storedName);
    WhiteboardSettingsDialog dialog;
    auto *list = dialog.findChild<QListWidget *>(QStringLiteral("lstBOARDCOLOR"));
    QCOMPARE(texts(list), (QStringList{"White", "Window", "Purple", "Pink", "Cherry", "Red", "Brown", "Grey",
                                       "Stone", "Slate", "Blue", "Turquoise", "Green", "Lime", "Yellow"}));
    QVERIFY(list->currentItem());
    QCOMPARE(list->currentItem()->text(), selected);
}

void TestWhiteboardSettings::okWritesColorCancelNothing_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value"); // kUnset: nothing written

    QTest::newRow("ok, Purple") << "btnOK"
                                << "Purple"
                                << "&H00C88FA6";
    QTest::newRow("ok, Window") << "btnOK"
                                << "Window"
                                << "-2147483643";
    QTest::newRow("cancel") << "btnCANCEL"
                            << "Purple" << kUnset;
}

void TestWhiteboardSettings::okWritesColorCancelNothing()
{
    QFETCH(QString, button);
    QFETCH(QString, name);
    QFETCH(QString, value);
    TestHome home;
    WhiteboardSettingsDialog dialog;
    QSignalSpy saved(&dialog, &WhiteboardSettingsDialog::settingsSaved);
    auto *list = dialog.findChild<QListWidget *>(QStringLiteral("lstBOARDCOLOR"));
    list->setCurrentItem(list->findItems(name, Qt::MatchExactly).value(0));
    dialog.findChild<QPushButton *>(button)->click();

    const bool ok = value != kUnset;
    QCOMPARE(stored("board-Color-name"), ok ? name : kUnset);
    QCOMPARE(stored("board-Color-value"), value);
    QCOMPARE(saved.count(), ok ? 1 : 0);
    // The folder was left as loaded, so it is not written either way.
    QCOMPARE(stored("Board Folder Location"), kUnset);
    QCOMPARE(dialog.result(), ok ? int(QDialog::Accepted) : int(QDialog::Rejected));
}

void TestWhiteboardSettings::choosingAFolderFillsLocation()
{
    TestHome home;
    const QString boards = home.filePath(QStringLiteral("boards"));
    QVERIFY(QDir().mkpath(boards + QStringLiteral("/sub")));
    WriteDetail(window(), QStringLiteral("Board Folder Location"), boards + QLatin1Char('/'));
    WhiteboardSettingsDialog dialog;
    auto *location = dialog.findChild<QLineEdit *>(QStringLiteral("txtLOCATION"));
    QCOMPARE(location->text(), boards + QLatin1Char('/'));

    auto *folders = dialog.findChild<QListWidget *>(QStringLiteral("dirFOLDERS"));
    QVERIFY(folders);
    emit folders->itemActivated(folders->findItems(QStringLiteral("sub"), Qt::MatchExactly).value(0));
    QCOMPARE(location->text(), boards + QStringLiteral("/sub/"));

    dialog.findChild<QPushButton *>(QStringLiteral("btnOK"))->click();
    QCOMPARE(stored("Board Folder Location"), boards + QStringLiteral("/sub/"));
    QVERIFY(m_shown.isEmpty());
}

void TestWhiteboardSettings::okWithChangedFolder_data()
{
    QTest::addColumn<QStringList>("files"); // made in the chosen folder; {"-"}: leave it missing
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QList<int>>("messages");

    QTest::newRow("holds a board picture") << QStringList{"board1.png"} << "chosen/" << QList<int>{9};
    QTest::newRow("upper-case JPEG") << QStringList{"OLD.JPEG"} << "chosen/" << QList<int>{9};
    QTest::newRow("other files only") << QStringList{"notes.txt"} << "chosen/" << QList<int>{};
    QTest::newRow("empty folder") << QStringList{} << "chosen/" << QList<int>{};
    QTest::newRow("missing: created quietly") << QStringList{"-"} << "chosen/" << QList<int>{};
    QTest::newRow("cannot be created: a notice") << QStringList{"-"} << "file.txt/chosen/" << QList<int>{0};
}

void TestWhiteboardSettings::okWithChangedFolder()
{
    QFETCH(QStringList, files);
    QFETCH(QString, folder);
    QFETCH(QList<int>, messages);
    TestHome home;
    touch(home.filePath(QStringLiteral("file.txt")));
    const QString path = home.filePath(folder);
    if (files != QStringList{"-"}) {
        QVERIFY(QDir().mkpath(path));
        for (const QString &file : files)
            touch(path + file);
    }
    WhiteboardSettingsDialog dialog;
    QSignalSpy saved(&dialog, &WhiteboardSettingsDialog::settingsSaved);
    dialog.findChild<QLineEdit *>(QStringLiteral("txtLOCATION"))->setText(path);
    dialog.findChild<QPushButton *>(QStringLiteral("btnOK"))->click();

    QList<int> numbers;
    for (const Shown &shown : m_shown) {
        numbers << shown.number;
        if (shown.number == 9)
            QCOMPARE(shown.text, path);
        else
            QVERIFY2(shown.text.contains(path), qPrintable(shown.text));
    }
    QCOMPARE(numbers, messages);
    // The setting is written and the dialog closes whatever became of the folder.
    QCOMPARE(stored("Board Folder Location"), path);
    QCOMPARE(saved.count(), 1);
    QCOMPARE(QFileInfo(path).isDir(), !messages.contains(0));
}

void TestWhiteboardSettings::refusesUnusableFolderText_data()
{
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << "";
    QTest::newRow("not a whole path") << "boards/";
    QTest::newRow("too long to keep") << QStringLiteral("/x/") + QString(kLongestSetting, QLatin1Char('b'));
}

void TestWhiteboardSettings::refusesUnusableFolderText()
{
    QFETCH(QString, text);
    TestHome home;
    WhiteboardSettingsDialog dialog;
    QSignalSpy saved(&dialog, &WhiteboardSettingsDialog::settingsSaved);
    QSignalSpy finished(&dialog, &QDialog::finished);
    dialog.findChild<QLineEdit *>(QStringLiteral("txtLOCATION"))->setText(text);
    dialog.findChild<QPushButton *>(QStringLiteral("btnOK"))->click();

    QCOMPARE(m_shown.size(), 1);
    QCOMPARE(m_shown.first().number, 0);
    // The dialog stays open with the text as typed, and nothing is written.
    QCOMPARE(finished.count(), 0);
    QCOMPARE(saved.count(), 0);
    QCOMPARE(dialog.findChild<QLineEdit *>(QStringLiteral("txtLOCATION"))->text(), text);
    QCOMPARE(stored("Board Folder Location"), kUnset);
    QCOMPARE(stored("board-Color-name"), kUnset);
}

QTEST_MAIN(TestWhiteboardSettings)
#include "test_whiteboard_settings.moc"
