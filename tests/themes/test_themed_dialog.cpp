#include "core/settings_store.h"
#include "shell/about_dialog.h"
#include "shell/application_start.h"
#include "shell/program_settings_dialog.h"
#include "shell/startup_decisions.h"
#include "shell/wizard_dialog.h"
#include "support/test_home.h"
#include "themes/themed_button.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

// Keyboard use of the themed dialogs: Enter does what the default button says, Escape closes.
class TestThemedDialog : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void enterAndEscape_data();
    void enterAndEscape();
    void enterStartsTheWizardWithTheChoice_data();
    void enterStartsTheWizardWithTheChoice();
};

namespace {

ThemedDialog *makeDialog(const QString &kind)
{
    if (kind == QLatin1String("wizard"))
        return new WizardDialog;
    if (kind == QLatin1String("settings"))
        return new ProgramSettingsDialog;
    return new AboutDialog;
}

} // namespace

void TestThemedDialog::initTestCase()
{
    // The wizard offers only the widgets this build registers.
    ApplicationStart::registerWidgetsOnce();
}

void TestThemedDialog::enterAndEscape_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("result");
    QTest::newRow("wizard: Enter starts") << "wizard" << int(Qt::Key_Return) << int(QDialog::Accepted);
    QTest::newRow("settings: Enter is OK") << "settings" << int(Qt::Key_Return) << int(QDialog::Accepted);
    QTest::newRow("settings: Escape cancels") << "settings" << int(Qt::Key_Escape) << int(QDialog::Rejected);
    QTest::newRow("wizard: Escape closes") << "wizard" << int(Qt::Key_Escape) << int(QDialog::Rejected);
    QTest::newRow("about: Escape closes") << "about" << int(Qt::Key_Escape) << int(QDialog::Rejected);
}

void TestThemedDialog::enterAndEscape()
{
    QFETCH(QString, kind);
    QFETCH(int, key);
    QFETCH(int, result);
    TestHome home;
    std::unique_ptr<ThemedDialog> dialog(makeDialog(kind));
    QSignalSpy finished(dialog.get(), &QDialog::finished);
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));

    QWidget *focused = QApplication::focusWidget();
    QVERIFY(focused);
    // The bar's close button must not be where the keyboard starts.
    QVERIFY(!qobject_cast<ThemedButton *>(focused));
    QTest::keyClick(focused, Qt::Key(key));

    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.first().first().toInt(), result);
}

void TestThemedDialog::enterStartsTheWizardWithTheChoice_data()
{
    QTest::addColumn<int>("stored"); // -1: nothing stored yet
    QTest::addColumn<QString>("keys");
    QTest::addColumn<int>("choice");
    QTest::newRow("first run: all widgets") << -1 << "" << 8;
    QTest::newRow("kept choice") << 5 << "" << 5;
    QTest::newRow("nine shows as all widgets") << 9 << "" << 8;
    QTest::newRow("arrow key moves the choice") << 6 << "u" << 5;
}

void TestThemedDialog::enterStartsTheWizardWithTheChoice()
{
    QFETCH(int, stored);
    QFETCH(QString, keys);
    QFETCH(int, choice);
    TestHome home;
    if (stored >= 0)
        StartupDecisions::writeProgramChoice(stored);
    WizardDialog wizard;
    QSignalSpy started(&wizard, &WizardDialog::started);
    wizard.show();
    QVERIFY(QTest::qWaitForWindowActive(&wizard));
    if (stored >= 0) // the kept option has the keyboard, as a user tabbing to it would
        wizard.findChild<QWidget *>(QStringLiteral("optUSE_%1").arg(qMin(stored, 8)))->setFocus();
    for (const QChar key : keys)
        QTest::keyClick(QApplication::focusWidget(), key == QLatin1Char('d') ? Qt::Key_Down : Qt::Key_Up);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

    QCOMPARE(started.count(), 1);
    QCOMPARE(started.first().first().toInt(), choice);
    QCOMPARE(StartupDecisions::readProgramChoice(), choice);
}

QTEST_MAIN(TestThemedDialog)
#include "test_themed_dialog.moc"
