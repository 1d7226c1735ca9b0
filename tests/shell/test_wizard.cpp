#include "core/platform/autostart.h"
#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/application_start.h"
#include "shell/dashboard_window.h"
#include "shell/program_settings_dialog.h"
#include "shell/program_settings_model.h"
#include "shell/startup_decisions.h"
#include "shell/tray_icon.h"
#include "shell/widget_registry.h"
#include "shell/wizard_dialog.h"
#include "support/test_home.h"
#include "themes/widget_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFile>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

class TestWizard : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void everyOfferedWidgetOpens();
    void everyBuiltWidgetIsOffered();
    void launchBoxSetsAutostart_data();
    void launchBoxSetsAutostart();
    void enterInEachField_data();
    void enterInEachField();

private:
    std::unique_ptr<TestHome> m_home;
};

namespace {

QList<int> offeredWidgets(const WizardDialog &wizard)
{
    QList<int> offered;
    for (int i = 0; i < WidgetCount; ++i) {
        if (wizard.findChild<QRadioButton *>(QStringLiteral("optUSE_%1").arg(i)))
            offered.append(i);
    }
    return offered;
}

// Picks the widget in the modal wizard once it is up and presses Start.
void answerWizard(int choice)
{
    QTimer::singleShot(0, [choice] {
        QWidget *wizard = QApplication::activeModalWidget();
        if (!wizard || wizard->objectName() != QLatin1String("msg_WIZ")) {
            answerWizard(choice);
            return;
        }
        wizard->findChild<QAbstractButton *>(QStringLiteral("optUSE_%1").arg(choice))->click();
        wizard->findChild<QAbstractButton *>(QStringLiteral("btnStart"))->click();
    });
}

// The autostart entry starts the program with the session.
bool autostartIsOn()
{
    QFile entry(Autostart::desktopEntryPath());
    return entry.open(QIODevice::ReadOnly) && entry.readAll().contains("Hidden=false");
}

} // namespace

void TestWizard::initTestCase()
{
    ApplicationStart::registerWidgetsOnce(); // the real widgets of this build
}

void TestWizard::init()
{
    m_home = std::make_unique<TestHome>();
    TrayIcon::setAvailableForTesting(1);
}

void TestWizard::cleanup()
{
    WidgetRegistry::instance().closeAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    TrayIcon::setAvailableForTesting(-1);
    m_home.reset();
}

void TestWizard::everyOfferedWidgetOpens()
{
    QList<int> offered;
    {
        WizardDialog wizard;
        offered = offeredWidgets(wizard);
    }
    for (int index : {WidgetClock, WidgetCalculator, WidgetStopwatch, WidgetTimer})
        QVERIFY2(offered.contains(index), qPrintable(WidgetDisplayName(index)));

    DashboardWindow dashboard;
    for (int index : offered) {
        answerWizard(index);
        QVERIFY(dashboard.openWizard());
        QVERIFY2(WidgetRegistry::instance().isOpen(index), qPrintable(WidgetDisplayName(index)));
        QVERIFY(!dashboard.isVisible());
        QCOMPARE(StartupDecisions::readProgramChoice(), index);
    }
}

void TestWizard::everyBuiltWidgetIsOffered()
{
    QList<int> built;
    for (int index = 0; index < WidgetCount; ++index) {
        if (WidgetRegistry::instance().isAvailable(index))
            built.append(index);
    }
    QCOMPARE(built.size(), int(WidgetCount)); // this build has every widget
    WizardDialog wizard;
    QCOMPARE(offeredWidgets(wizard), built);
}

void TestWizard::launchBoxSetsAutostart_data()
{
    QTest::addColumn<QString>("stored"); // "Program Launch" before; null: nothing stored
    QTest::addColumn<bool>("shown");     // the box as the wizard opens
    QTest::addColumn<bool>("ticked");    // the box as Start is pressed

    QTest::newRow("first run, left ticked") << QString() << true << true;
    QTest::newRow("first run, unticked") << QString() << true << false;
    QTest::newRow("stored off, ticked again") << "0" << false << true;
}

void TestWizard::launchBoxSetsAutostart()
{
    QFETCH(QString, stored);
    QFETCH(bool, shown);
    QFETCH(bool, ticked);
    if (!stored.isNull())
        WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("Program Launch"), stored);

    WizardDialog wizard;
    auto *launch = wizard.findChild<QCheckBox *>(QStringLiteral("chkLAUNCH"));
    QVERIFY(launch);
    QCOMPARE(launch->isChecked(), shown);
    launch->setChecked(ticked);
    wizard.show();
    wizard.findChild<QAbstractButton *>(QStringLiteral("btnStart"))->click();

    QCOMPARE(autostartIsOn(), ticked);
    QCOMPARE(ProgramSettingsModel::load().launchWithSystem, ticked);
    ProgramSettingsDialog settings;
    QCOMPARE(settings.findChild<QCheckBox *>(QStringLiteral("chkLAUNCH"))->isChecked(), ticked);
}

void TestWizard::enterInEachField_data()
{
    QTest::addColumn<QString>("field");
    // Enter presses Start from every field; it neither picks the focused option nor flips the
    // box.
    for (const char *field : {"optUSE_8", "optUSE_1", "chkLAUNCH", "btnStart"})
        QTest::newRow(field) << QString::fromLatin1(field);
}

void TestWizard::enterInEachField()
{
    QFETCH(QString, field);
    WizardDialog wizard;
    wizard.setChoice(WidgetStopwatch);
    wizard.findChild<QCheckBox *>(QStringLiteral("chkLAUNCH"))->setChecked(false);
    wizard.show();
    QVERIFY(QTest::qWaitForWindowExposed(&wizard));
    auto *widget = wizard.findChild<QWidget *>(field);
    QVERIFY(widget);
    widget->setFocus();

    QTest::keyClick(widget, Qt::Key_Return);

    QVERIFY(!wizard.isVisible());
    QCOMPARE(wizard.result(), int(QDialog::Accepted));
    QCOMPARE(StartupDecisions::readProgramChoice(), int(WidgetStopwatch));
    QVERIFY(!wizard.findChild<QCheckBox *>(QStringLiteral("chkLAUNCH"))->isChecked());
    QVERIFY(!autostartIsOn());
}

QTEST_MAIN(TestWizard)
#include "test_wizard.moc"
