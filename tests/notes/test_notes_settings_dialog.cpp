#include "core/settings_store.h"
#include "notes/notes_settings.h"
#include "notes/notes_settings_dialog.h"
#include "support/test_home.h"

#include <QComboBox>
#include <QFontComboBox>
#include <QPushButton>
#include <QTest>

class TestNotesSettingsDialog : public QObject
{
    Q_OBJECT
private slots:
    void savesOnlyOnOk_data();
    void savesOnlyOnOk();
    void defaultColourIsWindowText();
};

void TestNotesSettingsDialog::savesOnlyOnOk_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("sizeText");
    QTest::addColumn<int>("size"); // 0: nothing saved

    QTest::newRow("ok") << "btnOK"
                        << "20" << 20;
    QTest::newRow("ok, size out of range keeps the old") << "btnOK"
                                                         << "0" << 12;
    QTest::newRow("cancel") << "btnCANCEL"
                            << "20" << 0;
}

void TestNotesSettingsDialog::savesOnlyOnOk()
{
    QFETCH(QString, button);
    QFETCH(QString, sizeText);
    QFETCH(int, size);
    TestHome home;
    NotesSettingsDialog dialog;
    dialog.findChild<QComboBox *>(QStringLiteral("cboDOCTYPE"))
        ->setCurrentText(QLatin1String(kPlainTextChoice));
    // A font this system lacks keeps its name.
    dialog.findChild<QFontComboBox *>(QStringLiteral("cboFONTNAME"))
        ->setEditText(QStringLiteral("Nowhere Sans"));
    dialog.findChild<QComboBox *>(QStringLiteral("cboFONTSIZE"))->setEditText(sizeText);
    dialog.setFontColor(0x0000FFu);
    dialog.findChild<QPushButton *>(button)->click();

    if (size == 0) {
        QCOMPARE(ReadDetail(QLatin1String(kNotesSettingsName), QStringLiteral("Font Name"),
                            QStringLiteral("unset")),
                 QStringLiteral("unset"));
        return;
    }
    const NewDocumentSettings s = NewDocumentSettings::load();
    QCOMPARE(s.documentType, QLatin1String(kPlainTextChoice));
    QCOMPARE(s.fontName, QStringLiteral("Nowhere Sans"));
    QCOMPARE(s.fontSize, size);
    QCOMPARE(s.fontColor, OleColor(0x0000FFu));
}

void TestNotesSettingsDialog::defaultColourIsWindowText()
{
    TestHome home;
    WriteDetail(QLatin1String(kNotesSettingsName), QStringLiteral("Font Color"), QStringLiteral("255"));
    NotesSettingsDialog dialog;
    QCOMPARE(dialog.fontColor(), OleColor(255));
    dialog.findChild<QPushButton *>(QStringLiteral("btnDEFAULTCOLOR"))->click();
    dialog.findChild<QPushButton *>(QStringLiteral("btnOK"))->click();
    QCOMPARE(NewDocumentSettings::load().fontColor, NewDocumentSettings::kDefaultFontColor);
}

QTEST_MAIN(TestNotesSettingsDialog)
#include "test_notes_settings_dialog.moc"
