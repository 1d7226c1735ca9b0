#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/application_start.h"
#include "shell/dashboard_window.h"
#include "shell/startup_decisions.h"
#include "shell/tray_icon.h"
#include "shell/widget_context_menu.h"
#include "shell/widget_registry.h"
#include "support/test_home.h"
#include "themes/widget_window.h"
#include "time/alarm_popup.h"
#include "time/scheduler_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using HandOver = StartupDecisions::HandOver;

class TestStartup : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void programChoice_data();
    void programChoice();
    void dashboardLoadPlan_data();
    void dashboardLoadPlan();
    void closeBox_data();
    void closeBox();
    void minimise_data();
    void minimise();

    void singleWidgetStartsAlone();
    void allWidgetsStartWithLoadFlagsInOrder_data();
    void allWidgetsStartWithLoadFlagsInOrder();
    void hiddenStartNeedsTray_data();
    void hiddenStartNeedsTray();
    void firstRunShowsWizard_data();
    void firstRunShowsWizard();
    void damagedSettingsFileIsToldOnTheDashboard();
    void exitEndsTheProgram();
    void exitFromTheSharedMenuLeavesTheMenuAliveUntilItReturns();
    void withoutTrayLastWidgetClosedShowsDashboard();
    void commandLineReplacesHandOver_data();
    void commandLineReplacesHandOver();
    void laterLaunchShowsWhatItAsks_data();
    void laterLaunchShowsWhatItAsks();
    void laterLaunchDuringWizardWaitsForIt();
    void dashboardAskedForBeforeItIsBuiltIsBuiltOnce();

private:
    std::unique_ptr<TestHome> m_home;
};

namespace {

class FakeWidget : public WidgetWindow
{
public:
    explicit FakeWidget(int index)
        : WidgetWindow(WidgetWindowName(index), index, QStringLiteral("Vantora Test"))
    {
    }
};

// Answers the modal wizard once it is up: picks `choice` (or leaves the pre-selection when -1)
// and presses Start. Reports what was pre-selected.
void answerWizard(int choice, bool *allPreselected)
{
    QTimer::singleShot(0, [choice, allPreselected] {
        QWidget *wizard = QApplication::activeModalWidget();
        if (!wizard || wizard->objectName() != QLatin1String("msg_WIZ")) {
            answerWizard(choice, allPreselected);
            return;
        }
        *allPreselected = wizard->findChild<QAbstractButton *>(QStringLiteral("optUSE_8"))->isChecked();
        if (choice >= 0)
            wizard->findChild<QAbstractButton *>(QStringLiteral("optUSE_%1").arg(choice))->click();
        wizard->findChild<QAbstractButton *>(QStringLiteral("btnStart"))->click();
    });
}

void setDetail(const char *name, const QString &value)
{
    WriteDetail(QStringLiteral("mdb_SET"), QString::fromLatin1(name), value);
}
} // namespace

void TestStartup::initTestCase()
{
    // The built-in widgets are registered once; fakes take their places.
    ApplicationStart::registerWidgetsOnce();
    for (int i = 0; i < WidgetCount; ++i)
        WidgetRegistry::instance().registerWidget(i, [i] { return new FakeWidget(i); });
}

void TestStartup::init()
{
    m_home = std::make_unique<TestHome>();
    TrayIcon::setAvailableForTesting(1);
}

void TestStartup::cleanup()
{
    WidgetRegistry::instance().closeAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    TrayIcon::setAvailableForTesting(-1);
    m_home.reset();
}

void TestStartup::programChoice_data()
{
    QTest::addColumn<QString>("stored"); // null: nothing stored
    QTest::addColumn<int>("choice");
    QTest::addColumn<bool>("wizard");
    QTest::addColumn<int>("handOver");

    const int dashboard = int(HandOver::Dashboard);
    const int single = int(HandOver::SingleWidget);
    QTest::newRow("first run") << QString() << -1 << true << dashboard;
    QTest::newRow("non-numeric") << "calculator" << -1 << true << dashboard;
    QTest::newRow("clock") << "0" << 0 << false << single;
    QTest::newRow("calculator") << "1" << 1 << false << single;
    QTest::newRow("weather") << "7" << 7 << false << single;
    QTest::newRow("all widgets") << "8" << 8 << false << dashboard;
    QTest::newRow("nine behaves as eight") << "9" << 9 << false << dashboard;
}

void TestStartup::programChoice()
{
    QFETCH(QString, stored);
    QFETCH(int, choice);
    QFETCH(bool, wizard);
    QFETCH(int, handOver);

    if (!stored.isNull())
        WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), stored);
    const int read = StartupDecisions::readProgramChoice();
    QCOMPARE(read, choice);
    QCOMPARE(StartupDecisions::showsWizard(read), wizard);
    QCOMPARE(int(StartupDecisions::handOverFor(read)), handOver);
}

void TestStartup::dashboardLoadPlan_data()
{
    QTest::addColumn<int>("choice");
    QTest::addColumn<QStringList>("settings"); // "name=value"
    QTest::addColumn<QList<int>>("opened");
    QTest::addColumn<bool>("minimised");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("webcam");

    const QStringList calcAndNotes{"Start-Load-Notes=True", "Start-Load-Calc=True",
                                   "Program Minimize on Start=1"};
    QTest::newRow("defaults") << 8 << QStringList() << QList<int>() << false << false << false;
    QTest::newRow("all widgets: calculator then notes")
        << 8 << calcAndNotes << QList<int>{1, 3} << true << false << false;
    QTest::newRow("nine as eight") << 9 << calcAndNotes << QList<int>{1, 3} << true << false << false;
    QTest::newRow("single widget ignores flags")
        << 1 << calcAndNotes << QList<int>() << false << false << false;
    QTest::newRow("first run ignores flags") << -1 << calcAndNotes << QList<int>() << false << false << false;
    QTest::newRow("every flag, index order")
        << 8
        << QStringList{"Start-Load-Weather=true", "Start-Load-Clock=1",      "Start-Load-Whiteboard=True",
                       "Start-Load-Timer=True",   "Start-Load-Stopwatch=-1", "Start-Load-Calendar=TRUE"}
        << QList<int>{0, 2, 4, 5, 6, 7} << false << false << false;
    QTest::newRow("false flags and junk") << 8 << QStringList{"Start-Load-Clock=False", "Start-Load-Calc=yes"}
                                          << QList<int>() << false << false << false;
    QTest::newRow("minimise only when exactly 1")
        << 8 << QStringList{"Program Minimize on Start=2"} << QList<int>() << false << false << false;
    QTest::newRow("hidden start") << 8 << QStringList{"Start-Show or Hide=Hidden"} << QList<int>() << false
                                  << true << false;
    QTest::newRow("webcam in any mode")
        << 1 << QStringList{"Start-Webcam=True"} << QList<int>() << false << false << true;
}

void TestStartup::dashboardLoadPlan()
{
    QFETCH(int, choice);
    QFETCH(QStringList, settings);
    QFETCH(QList<int>, opened);
    QFETCH(bool, minimised);
    QFETCH(bool, hidden);
    QFETCH(bool, webcam);

    for (const QString &s : settings)
        setDetail(s.section(QLatin1Char('='), 0, 0).toLatin1().constData(), s.section(QLatin1Char('='), 1));
    const StartupDecisions::DashboardLoadPlan plan = StartupDecisions::dashboardLoadPlan(choice);
    QCOMPARE(plan.widgetsToOpen, opened);
    QCOMPARE(plan.startMinimised, minimised);
    QCOMPARE(plan.startHidden, hidden);
    QCOMPARE(plan.openWebcam, webcam);
}

void TestStartup::closeBox_data()
{
    QTest::addColumn<QString>("stored"); // "Program Minimize on Close"; null: default
    QTest::addColumn<bool>("userClose");
    QTest::addColumn<bool>("tray");
    QTest::addColumn<bool>("hides");

    QTest::newRow("default hides") << QString() << true << true << true;
    QTest::newRow("0 ends") << "0" << true << true << false;
    QTest::newRow("2 ends") << "2" << true << true << false;
    QTest::newRow("no tray: never hide") << QString() << true << false << false;
    QTest::newRow("program's own close") << "1" << false << true << false;
}

void TestStartup::closeBox()
{
    QFETCH(QString, stored);
    QFETCH(bool, userClose);
    QFETCH(bool, tray);
    QFETCH(bool, hides);
    if (!stored.isNull())
        setDetail("Program Minimize on Close", stored);
    QCOMPARE(StartupDecisions::closeBoxHides(userClose, tray), hides);
}

void TestStartup::minimise_data()
{
    QTest::addColumn<QString>("stored"); // "Window Minimize"; null: default
    QTest::addColumn<bool>("tray");
    QTest::addColumn<bool>("hides");

    QTest::newRow("default keeps") << QString() << true << false;
    QTest::newRow("1 hides") << "1" << true << true;
    QTest::newRow("1 without tray keeps") << "1" << false << false;
}

void TestStartup::minimise()
{
    QFETCH(QString, stored);
    QFETCH(bool, tray);
    QFETCH(bool, hides);
    if (!stored.isNull())
        setDetail("Window Minimize", stored);
    QCOMPARE(StartupDecisions::minimiseHides(tray), hides);
}

void TestStartup::singleWidgetStartsAlone()
{
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("1"));
    setDetail("Start-Load-Notes", QStringLiteral("True"));
    ApplicationStart start;
    start.run();

    QCOMPARE(WidgetRegistry::instance().openWidgets(), QList<int>{WidgetCalculator});
    QVERIFY(start.dashboard());
    QVERIFY(!start.dashboard()->isVisible());
    QCOMPARE(start.dashboard()->IndxSel(), int(WidgetCalculator));
    QVERIFY(start.tray());
    // The hidden scheduler comes after the first frame.
    QTRY_VERIFY(start.scheduler());
    QCOMPARE(start.scheduler()->objectName(), QStringLiteral("mdb_STR"));
    QCOMPARE(start.contextMenu()->parent(), start.scheduler());
}

void TestStartup::allWidgetsStartWithLoadFlagsInOrder_data()
{
    QTest::addColumn<QString>("choice");
    QTest::newRow("8") << "8";
    QTest::newRow("9 behaves as 8") << "9";
}

void TestStartup::allWidgetsStartWithLoadFlagsInOrder()
{
    QFETCH(QString, choice);
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), choice);
    setDetail("Start-Load-Notes", QStringLiteral("True"));
    setDetail("Start-Load-Calc", QStringLiteral("True"));
    QSignalSpy opened(&WidgetRegistry::instance(), &WidgetRegistry::widgetOpened);
    ApplicationStart start;
    start.run();

    QCOMPARE(opened.count(), 2);
    QCOMPARE(opened.at(0).first().toInt(), int(WidgetCalculator));
    QCOMPARE(opened.at(1).first().toInt(), int(WidgetNotes));
    QVERIFY(start.dashboard()->isVisible());
    QVERIFY(!start.dashboard()->isMinimized());
}

void TestStartup::hiddenStartNeedsTray_data()
{
    QTest::addColumn<bool>("tray");
    QTest::newRow("with tray: hidden") << true;
    QTest::newRow("no tray: shown") << false;
}

void TestStartup::hiddenStartNeedsTray()
{
    QFETCH(bool, tray);
    TrayIcon::setAvailableForTesting(tray ? 1 : 0);
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));
    setDetail("Start-Show or Hide", QStringLiteral("Hidden"));
    ApplicationStart start;
    start.run();
    QCOMPARE(start.dashboard()->isVisible(), !tray);
}

void TestStartup::firstRunShowsWizard_data()
{
    QTest::addColumn<int>("pick"); // -1: keep the pre-selection
    QTest::addColumn<int>("stored");
    QTest::addColumn<bool>("dashboardShown");
    QTest::addColumn<QList<int>>("opened");
    QTest::newRow("all widgets") << -1 << 8 << true << QList<int>();
    QTest::newRow("calculator alone") << 1 << 1 << false << QList<int>{WidgetCalculator};
}

void TestStartup::firstRunShowsWizard()
{
    QFETCH(int, pick);
    QFETCH(int, stored);
    QFETCH(bool, dashboardShown);
    QFETCH(QList<int>, opened);
    bool allPreselected = false;
    answerWizard(pick, &allPreselected);
    ApplicationStart start;
    start.run();

    QVERIFY(allPreselected);
    QCOMPARE(StartupDecisions::readProgramChoice(), stored);
    QCOMPARE(start.choice(), stored);
    QCOMPARE(start.dashboard()->isVisible(), dashboardShown);
    QCOMPARE(WidgetRegistry::instance().openWidgets(), opened);
    // A clean profile gets its data folders.
    const QDir home(m_home->path());
    for (const char *folder : {"wboard", "calendar", "webcam", "themes/custom", "themes/white"})
        QVERIFY2(home.exists(QString::fromLatin1(folder)), folder);
}

void TestStartup::damagedSettingsFileIsToldOnTheDashboard()
{
    QFile file(m_home->filePath(QStringLiteral("settings.reg")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Windows Registry Editor Version 5.00\n\n"
               "[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\msg_WIZ\\Details]\n"
               "\"Program-Choice\"=\"8\"\n"
               "typed by hand\n");
    file.close();
    ApplicationStart start;
    start.run();

    QCOMPARE(start.choice(), 8); // what could be read is used
    auto *notice = start.dashboard()->findChild<QLabel *>(QStringLiteral("lblNOTICE"));
    QVERIFY(notice->isVisibleTo(start.dashboard()));
    QVERIFY2(notice->text().contains(QStringLiteral("settings.reg.damaged")), qPrintable(notice->text()));
}

void TestStartup::exitEndsTheProgram()
{
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));
    ApplicationStart start;
    start.run();
    WidgetRegistry::instance().open(WidgetClock);
    QSignalSpy ended(&start, &ApplicationStart::ended);

    start.dashboard()->exitProgram();

    QCOMPARE(ended.count(), 1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!start.tray());
    QVERIFY(!start.scheduler());
    QVERIFY(WidgetRegistry::instance().openWidgets().isEmpty());
}

void TestStartup::exitFromTheSharedMenuLeavesTheMenuAliveUntilItReturns()
{
    // The menu's own key and mouse handlers go on using it after the Exit item's signal
    // returns; deleting it from inside that signal crashed the program on every exit.
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));
    ApplicationStart start;
    start.run();
    QTRY_VERIFY(start.contextMenu());
    QPointer<WidgetContextMenu> menu = start.contextMenu();
    QSignalSpy ended(&start, &ApplicationStart::ended);

    menu->item(QStringLiteral("mnuDCEXIT"))->trigger();

    QCOMPARE(ended.count(), 1);
    QVERIFY(menu);
    QVERIFY(!start.tray()->systemTrayIcon()->isVisible());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!menu);
    QVERIFY(!start.scheduler());
}

void TestStartup::withoutTrayLastWidgetClosedShowsDashboard()
{
    TrayIcon::setAvailableForTesting(0);
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("1"));
    ApplicationStart start;
    start.run();
    QVERIFY(!start.dashboard()->isVisible());

    WidgetRegistry::instance().close(WidgetCalculator);
    QVERIFY(start.dashboard()->isVisible());
}

void TestStartup::commandLineReplacesHandOver_data()
{
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QStringList>("open");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<bool>("tray");
    QTest::addColumn<bool>("dashboardShown");
    QTest::addColumn<QList<int>>("opened");
    // The start-load flag for the calculator is set in every row.
    QTest::newRow("first run: no wizard, the widget alone")
        << "" << QStringList{"timer"} << false << true << false << QList<int>{WidgetTimer};
    QTest::newRow("single-widget choice gives way")
        << "1" << QStringList{"dashboard", "clock"} << false << true << true << QList<int>{WidgetClock};
    QTest::newRow("all widgets: load flags and the one asked for")
        << "8" << QStringList{"notes"} << false << true << false << QList<int>{WidgetCalculator, WidgetNotes};
    QTest::newRow("--hidden: dashboard in the tray")
        << "8" << QStringList{} << true << true << false << QList<int>{WidgetCalculator};
    QTest::newRow("--hidden without a tray: the usual start")
        << "8" << QStringList{} << true << false << true << QList<int>{WidgetCalculator};
}

void TestStartup::commandLineReplacesHandOver()
{
    QFETCH(QString, choice);
    QFETCH(QStringList, open);
    QFETCH(bool, hidden);
    QFETCH(bool, tray);
    QFETCH(bool, dashboardShown);
    QFETCH(QList<int>, opened);
    TrayIcon::setAvailableForTesting(tray ? 1 : 0);
    if (!choice.isEmpty())
        WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), choice);
    setDetail("Start-Load-Calc", QStringLiteral("True"));
    // A wizard that came up anyway is noted and closed, so that run() returns.
    bool wizardShown = false;
    QTimer watch;
    connect(&watch, &QTimer::timeout, [&wizardShown] {
        if (QWidget *wizard = QApplication::activeModalWidget()) {
            wizardShown = true;
            wizard->close();
        }
    });
    watch.start(0);
    LaunchRequest request;
    request.open = open;
    request.hidden = hidden;
    ApplicationStart start;
    start.run(request);

    QVERIFY(!wizardShown);
    // Widgets named alone show before the dashboard and tray exist; those come after their
    // first frame, with the widgets the start-load flags open.
    const bool widgetsAlone = !open.isEmpty() && !open.contains(QStringLiteral("dashboard"));
    QCOMPARE(!start.dashboard(), widgetsAlone);
    QTRY_VERIFY(start.dashboard() && start.tray());
    QCOMPARE(start.dashboard()->isVisible(), dashboardShown);
    QList<int> openNow = WidgetRegistry::instance().openWidgets();
    std::sort(openNow.begin(), openNow.end());
    QCOMPARE(openNow, opened);
    // The wizard is only put off: nothing was chosen for the user.
    QCOMPARE(StartupDecisions::readProgramChoice(), choice.isEmpty() ? -1 : choice.toInt());
    QApplication::closeAllWindows();
}

void TestStartup::laterLaunchShowsWhatItAsks_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<bool>("dashboardShown");
    QTest::addColumn<QList<int>>("opened");
    QTest::addColumn<bool>("refused");
    QTest::newRow("plain launch: the dashboard")
        << QByteArray("{}") << true << QList<int>{WidgetCalculator} << false;
    QTest::newRow("--open timer") << LaunchRequest{{"timer"}, {}, false}.toJson() << false
                                  << QList<int>{WidgetCalculator, WidgetTimer} << false;
    QTest::newRow("--hidden changes nothing")
        << LaunchRequest{{}, {}, true}.toJson() << false << QList<int>{WidgetCalculator} << false;
    QTest::newRow("not a request") << QByteArray("hello") << false << QList<int>{WidgetCalculator} << true;
}

void TestStartup::laterLaunchShowsWhatItAsks()
{
    QFETCH(QByteArray, request);
    QFETCH(bool, dashboardShown);
    QFETCH(QList<int>, opened);
    QFETCH(bool, refused);
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("1"));
    ApplicationStart start;
    start.run();

    const QJsonObject answer = QJsonDocument::fromJson(start.answerLaunch(request)).object();
    QCOMPARE(answer.contains(QStringLiteral("error")), refused);
    if (!refused)
        QCOMPARE(answer.value(QStringLiteral("visible")).toArray(),
                 QJsonArray{WidgetWindowName(WidgetCalculator)});
    QTRY_COMPARE(WidgetRegistry::instance().openWidgets(), opened);
    QTest::qWait(10);
    QCOMPARE(start.dashboard()->isVisible(), dashboardShown);
    QApplication::closeAllWindows();
}

void TestStartup::laterLaunchDuringWizardWaitsForIt()
{
    ApplicationStart start;
    QByteArray answer;
    bool allPreselected = false;
    QTimer::singleShot(0, [&] {
        answer = start.answerLaunch(LaunchRequest{{"clock"}, {}, false}.toJson());
        answerWizard(WidgetCalculator, &allPreselected);
    });
    start.run();
    QVERIFY(!answer.isEmpty());
    QTRY_COMPARE(WidgetRegistry::instance().openWidgets(), (QList<int>{WidgetClock, WidgetCalculator}));
}

void TestStartup::dashboardAskedForBeforeItIsBuiltIsBuiltOnce()
{
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("0"));
    ApplicationStart start;
    start.run(LaunchRequest{{"clock"}, {}, false});
    QVERIFY(!start.dashboard());

    start.showRequested(LaunchRequest{});
    QVERIFY(start.dashboard() && start.dashboard()->isVisible());
    QTest::qWait(50); // the first frame has come and gone
    int dashboards = 0;
    for (const QWidget *window : QApplication::topLevelWidgets())
        dashboards += window->objectName() == QStringLiteral("mdb_IDX");
    QCOMPARE(dashboards, 1);
    QVERIFY(start.dashboard()->isVisible());
    QApplication::closeAllWindows();
}

QTEST_MAIN(TestStartup)
#include "test_startup.moc"
