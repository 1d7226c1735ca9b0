#include "core/app_paths.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/preset_file.h"
#include "themes/share_theme_dialog.h"
#include "themes/theme_editor.h"
#include "themes/theme_painter.h"
#include "themes/theme_presets.h"
#include "themes/themed_chrome.h"

#include <QApplication>
#include <QDir>
#include <QFontInfo>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QTreeWidget>
#include <memory>

class TestThemeEditor : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_home.reset();
        m_home.reset(new TestHome);
        QCOMPARE(AppPaths::dataFolder(), QDir::cleanPath(m_home->path()));
        SetCurrentTheme(Theme());
        m_messages.clear();
        m_questions.clear();
        m_answer = AnswerNo;
        SetMessageResponderForTesting([this](bool, int number, const QString &text) {
            m_messages << number;
            if (number == 0) // a question before a destructive action
                m_questions << text;
            return number == 0 ? m_answer : 0;
        });
        m_editor = new ThemeEditor();
        m_editor->show();
        // An open widget that should follow every change at once.
        m_widget.reset(new QWidget);
        m_widgetPanel = new PaintedFrame(QStringLiteral("pfrPANEL"), m_widget.get());
        m_widget->show();
    }

    void cleanup()
    {
        delete m_editor;
        m_widget.reset();
        SetMessageResponderForTesting(nullptr);
        ThemeEditor::setColorChooserForTesting(nullptr);
        ShareThemeDialog::setFileChooserForTesting(nullptr);
    }

    void rangesAndNames_data()
    {
        QTest::addColumn<QString>("slider");
        QTest::addColumn<int>("min");
        QTest::addColumn<int>("max");
        QTest::newRow("opacity") << "hsbOPACITY" << 10 << 255;
        QTest::newRow("contrast") << "hsbCONTRAST" << 0 << 255;
        QTest::newRow("panel angle") << "hsbPANELANGLE" << 0 << 360;
        QTest::newRow("bar angle") << "hsbBARANGLE" << 0 << 360;
    }

    void rangesAndNames()
    {
        QFETCH(QString, slider);
        QFETCH(int, min);
        QFETCH(int, max);
        QCOMPARE(m_editor->objectName(), QStringLiteral("mdb_THM"));
        QCOMPARE(m_editor->windowTitle(), QStringLiteral("Vantora Theme Editor"));
        auto *s = m_editor->findChild<QSlider *>(slider);
        QVERIFY(s);
        QCOMPARE(s->minimum(), min);
        QCOMPARE(s->maximum(), max);
    }

    void editsShowLiveOnOpenWindows()
    {
        m_editor->findChild<QSlider *>("hsbCONTRAST")->setValue(0);
        QCOMPARE(CurrentTheme().MainContrast, 0);
        // Contrast 0: a flat panel, both colours the main colour.
        QCOMPARE(m_widgetPanel->endColor(), CurrentTheme().MainColor);
        m_editor->findChild<QSlider *>("hsbPANELANGLE")->setValue(200);
        QCOMPARE(m_widgetPanel->angle(), 200);

        ThemeEditor::setColorChooserForTesting(
            [](const QColor &, const QString &) { return QColor(255, 0, 0); });
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnBARCOLOR"), Qt::LeftButton);
        QCOMPARE(CurrentTheme().BarColor, OleColor(0x000000FF));
        QCOMPARE(m_editor->findChild<QPushButton *>("btnBARCOLOR")->text(), QStringLiteral("#FF0000"));
        // A cancelled colour dialog changes nothing.
        ThemeEditor::setColorChooserForTesting([](const QColor &, const QString &) { return QColor(); });
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnMAINCOLOR"), Qt::LeftButton);
        QCOMPARE(CurrentTheme().MainColor, Theme().MainColor);
    }

    void clickingAPresetAppliesIt()
    {
        Theme preset;
        preset.MainColor = 0x00102030;
        preset.BarAngle = 45;
        preset.PanelFont = QStringLiteral("DejaVu Serif");
        QCOMPARE(SavePreset("retro", "Dusk", preset), SavePresetResult::Saved);
        m_editor->selectGroup("retro");
        auto *list = m_editor->findChild<QTreeWidget *>("lvwPRESETS");
        QCOMPARE(list->topLevelItemCount(), 1);
        QCOMPARE(list->topLevelItem(0)->text(2), QStringLiteral("1K"));
        const QRect row = list->visualItemRect(list->topLevelItem(0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QCOMPARE(CurrentTheme(), preset);
        QCOMPARE(m_editor->findChild<QSlider *>("hsbBARANGLE")->value(), 45);
        QCOMPARE(m_editor->findChild<QLineEdit *>("txtNAME")->text(), QStringLiteral("Dusk"));

        // After an edit, a click on the same preset brings its values back.
        m_editor->findChild<QSlider *>("hsbBARANGLE")->setValue(90);
        QCOMPARE(CurrentTheme().BarAngle, 90);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row.center());
        QCOMPARE(CurrentTheme().BarAngle, 45);
    }

    // The labels of the share window take the panel's text colour on every change of theme,
    // not only the first; the editor's own labels keep the desktop's, whatever the theme.
    void labelsFollowEachTheme_data()
    {
        QTest::addColumn<bool>("share");
        QTest::newRow("editor") << false;
        QTest::newRow("share") << true;
    }

    void labelsFollowEachTheme()
    {
        QFETCH(bool, share);
        std::unique_ptr<ShareThemeDialog> shareDialog(share ? new ShareThemeDialog : nullptr);
        QDialog *dialog = share ? static_cast<QDialog *>(shareDialog.get()) : m_editor;
        dialog->show();
        for (OleColor text : {OleColor(0x00FFC34F), OleColor(0x00203040), OleColor(0x0000FFFF)}) {
            Theme t;
            t.MainColor = 0x00100A05;
            t.PanelColor = text;
            SetCurrentTheme(t);
            const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
            int checked = 0;
            // The panel's colour, or black or white where it would not read on the main colour.
            const QColor expected = share ? ThemedChrome::panelTextColour(t)
                                          : QApplication::palette().color(QPalette::WindowText);
            for (QLabel *label : labels) {
                if (label->objectName() == QLatin1String("lablTITLE") || label->text().isEmpty() ||
                    label->objectName().startsWith(QLatin1String("lblPREVIEW")) ||
                    label->objectName() == QLatin1String("lblCONTRAST")) // a warning's own colours
                    continue;
                QCOMPARE(label->palette().color(QPalette::WindowText), expected);
                ++checked;
            }
            QVERIFY(checked > 0);
        }
    }

    void savingNeedsAName()
    {
        m_editor->selectGroup("flat");
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnSAVE"), Qt::LeftButton);
        QCOMPARE(m_messages, QList<int>{12});
        QVERIFY(ListPresets("flat", Theme()).isEmpty());

        m_editor->findChild<QLineEdit *>("txtNAME")->setText("Evening");
        m_editor->findChild<QSlider *>("hsbOPACITY")->setValue(150);
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnSAVE"), Qt::LeftButton);
        QVERIFY(QFile::exists(PresetFilePath("flat", "Evening.dcp")));
        QCOMPARE(ReadPreset(PresetFilePath("flat", "Evening.dcp"), Theme()).MainOpacity, 150);
        QCOMPARE(m_editor->findChild<QTreeWidget *>("lvwPRESETS")->topLevelItemCount(), 1);
    }

    void deletingOneAndAll()
    {
        for (const char *name : {"a", "b", "c"})
            SavePreset("glass", QString::fromLatin1(name), Theme());
        m_editor->selectGroup("glass");
        auto *list = m_editor->findChild<QTreeWidget *>("lvwPRESETS");
        list->setCurrentItem(list->topLevelItem(1));
        // Each delete asks first; cancelled, nothing goes.
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnDELETE"), Qt::LeftButton);
        QCOMPARE(list->topLevelItemCount(), 3);
        QVERIFY(m_questions.value(0).contains("\"b\""));
        m_answer = AnswerYes;
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnDELETE"), Qt::LeftButton);
        QCOMPARE(list->topLevelItemCount(), 2);
        QVERIFY(!QFile::exists(PresetFilePath("glass", "b.dcp")));
        // The list is what is on disk, once each.
        QCOMPARE(list->topLevelItem(0)->text(1), QStringLiteral("a"));
        QCOMPARE(list->topLevelItem(1)->text(1), QStringLiteral("c"));

        m_answer = AnswerNo;
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnDELETEALL"), Qt::LeftButton);
        QVERIFY(m_questions.last().contains("Glass"));
        QCOMPARE(list->topLevelItemCount(), 2);
        m_answer = AnswerYes;
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnDELETEALL"), Qt::LeftButton);
        QCOMPARE(list->topLevelItemCount(), 0);
        QVERIFY(QDir(PresetFolderPath("glass")).entryList({"*.dcp"}).isEmpty());
    }

    // Enter in any control of the editor deletes and replaces nothing: no button is the
    // default, and the name field's own Enter (save) asks before replacing a preset.
    void enterInEachFieldKeepsThePresets()
    {
        SavePreset("flat", "Snow", Theme());
        SavePreset("flat", "Cloud", Theme());
        m_editor->selectGroup("flat");
        auto *list = m_editor->findChild<QTreeWidget *>("lvwPRESETS");
        list->setCurrentItem(list->topLevelItem(1)); // "Snow" applied, its name in the name field
        const QStringList before = QDir(PresetFolderPath("flat")).entryList({"*.dcp"});
        QStringList fields;
        for (QWidget *w : m_editor->findChildren<QWidget *>()) {
            if ((w->focusPolicy() & Qt::TabFocus) && !qobject_cast<QPushButton *>(w) && w->isVisibleTo(m_editor))
                fields << w->objectName();
        }
        QVERIFY(fields.contains("cboPANELFONT") && fields.contains("txtNAME") && fields.contains("txtOPACITY"));
        for (const QString &name : std::as_const(fields)) {
            QWidget *field = m_editor->findChild<QWidget *>(name);
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Return);
            QVERIFY2(QDir(PresetFolderPath("flat")).entryList({"*.dcp"}) == before, qPrintable(name));
            QVERIFY2(m_editor->isVisible(), qPrintable(name));
        }
        QCOMPARE(m_questions.size(), 1); // "Replace Snow?", from the name field, answered no
    }

    void defaultThemeAsksFirst_data()
    {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("opacity");
        QTest::newRow("cancelled") << int(AnswerNo) << 99;
        QTest::newRow("confirmed") << int(AnswerYes) << Theme().MainOpacity;
    }

    void defaultThemeAsksFirst()
    {
        QFETCH(int, answer);
        QFETCH(int, opacity);
        m_editor->findChild<QSlider *>("hsbOPACITY")->setValue(99);
        m_answer = answer;
        QTest::mouseClick(m_editor->findChild<QPushButton *>("btnDEFAULT"), Qt::LeftButton);
        QCOMPARE(m_questions.size(), 1);
        QCOMPARE(CurrentTheme().MainOpacity, opacity);
    }

    // The editor warns when the theme's text would be hard to read, and says which font is
    // drawn for a face this system lacks.
    void warnsAboutUnreadableThemes_data()
    {
        QTest::addColumn<OleColor>("panelText");
        QTest::addColumn<OleColor>("barText");
        QTest::addColumn<QString>("font");
        QTest::addColumn<bool>("warning");
        QTest::addColumn<bool>("fontNote");
        const Theme standard;
        QTest::newRow("default theme") << standard.PanelColor << standard.BarColor << "DejaVu Sans" << false << false;
        QTest::newRow("panel text like its panel")
            << standard.MainColor << standard.BarColor << "DejaVu Sans" << true << false;
        QTest::newRow("bar text like its bar")
            << standard.PanelColor << standard.MainColor << "DejaVu Sans" << true << false;
        QTest::newRow("missing font") << standard.PanelColor << standard.BarColor << "No Such Face 42" << false << true;
    }

    void warnsAboutUnreadableThemes()
    {
        QFETCH(OleColor, panelText);
        QFETCH(OleColor, barText);
        QFETCH(QString, font);
        QFETCH(bool, warning);
        QFETCH(bool, fontNote);
        Theme t;
        t.PanelColor = panelText;
        t.BarColor = barText;
        t.PanelFont = font;
        SetCurrentTheme(t);
        auto *label = m_editor->findChild<QLabel *>("lblCONTRAST");
        QCOMPARE(label->isVisibleTo(m_editor), warning);
        auto *note = m_editor->findChild<QLabel *>("lblPANELFONTNOTE");
        QCOMPARE(note->isVisibleTo(m_editor), fontNote);
        if (fontNote)
            QVERIFY(note->text().contains(font) && note->text().contains(QFontInfo(QFont(font)).family()));
        // Whatever the theme, the editor's labels read on its body.
        const QColor body = m_editor->findChild<QWidget *>("pfrEDITOR")->palette().color(QPalette::Window);
        QVERIFY(ContrastRatio(label->palette().color(QPalette::WindowText), body) >= 4.5);
    }

    void closingSavesToTheSettings()
    {
        m_editor->findChild<QSlider *>("hsbOPACITY")->setValue(99);
        QCOMPARE(ReadDetail("mdb_THM", "Theme Main-Opacity", "none"), QStringLiteral("none"));
        m_editor->close();
        QCOMPARE(ReadDetail("mdb_THM", "Theme Main-Opacity", "none"), QStringLiteral("99"));
        QCOMPARE(CurrentTheme().MainOpacity, 99);
    }

    void showEditorReusesTheWindow()
    {
        ThemeEditor *a = ThemeEditor::showEditor();
        QCOMPARE(ThemeEditor::showEditor(), a);
        delete a;
        QVERIFY(!ThemeEditor::instance());
    }

    void shareExportAndImport()
    {
        Theme shared;
        shared.MainColor = 0x00ABCDEF;
        shared.BarFont = QStringLiteral("Noto Sans");
        SetCurrentTheme(shared);
        ShareThemeDialog dialog;
        const QString exported = m_home->filePath("out/gift");
        QDir().mkpath(m_home->filePath("out"));
        ShareThemeDialog::setFileChooserForTesting(
            [&](bool save, const QString &) { return save ? exported : m_importFrom; });
        dialog.exportTheme();
        QVERIFY(QFile::exists(exported + ".dcp"));
        SetPresetFile(exported + ".dcp");
        QCOMPARE(PresetRead("preset", "caption", QString()), QStringLiteral("gift"));

        // Importing: the shared file is copied into "custom" and applied; the source stays as it was.
        SetCurrentTheme(Theme());
        m_importFrom = exported + ".dcp";
        QFile source(m_importFrom);
        QVERIFY(source.open(QIODevice::ReadOnly));
        const QByteArray before = source.readAll();
        source.close();
        dialog.importTheme();
        QCOMPARE(CurrentTheme(), shared);
        QCOMPARE(ReadDetail("mdb_THM", "Theme Bar-Font", QString()), QStringLiteral("Noto Sans"));
        QVERIFY(QFile::exists(PresetFilePath("custom", "gift.dcp")));
        QVERIFY(source.open(QIODevice::ReadOnly));
        QCOMPARE(source.readAll(), before);
        source.close();
        // The editor, open all along, shows the imported values.
        QCOMPARE(m_editor->editedTheme(), shared);

        // A second import of the same file gets a free name.
        dialog.importTheme();
        QVERIFY(QFile::exists(PresetFilePath("custom", "gift (2).dcp")));
    }

    void importRefusesOtherFiles_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("text") << QByteArray("hello\nworld\n");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("keys without prefix") << QByteArray("[main]\nMain-Color=1\n");
        QTest::newRow("large") << QByteArray("[main]\n> Main-Color=1\n") + QByteArray(70000, ';');
    }

    void importRefusesOtherFiles()
    {
        QFETCH(QByteArray, content);
        m_importFrom = m_home->filePath("notes.txt");
        QFile f(m_importFrom);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
        f.close();
        ShareThemeDialog::setFileChooserForTesting([&](bool, const QString &) { return m_importFrom; });
        ShareThemeDialog dialog;
        dialog.importTheme();
        QVERIFY(dialog.statusText().contains("is not a theme preset"));
        QCOMPARE(CurrentTheme(), Theme());
        QVERIFY(QDir(PresetFolderPath("custom")).entryList({"*.dcp"}).isEmpty());
    }

private:
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<QWidget> m_widget;
    PaintedFrame *m_widgetPanel = nullptr;
    QPointer<ThemeEditor> m_editor;
    QList<int> m_messages;
    QStringList m_questions;
    int m_answer = AnswerNo;
    QString m_importFrom;
};

QTEST_MAIN(TestThemeEditor)
#include "test_theme_editor.moc"
