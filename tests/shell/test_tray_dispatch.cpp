#include "shell/shell_tools.h"
#include "shell/tray_dispatch.h"
#include "shell/tray_icon.h"
#include "shell/widget_context_menu.h"
#include "support/test_home.h"

#include <QSignalSpy>
#include <QStyleHints>
#include <QTest>
#include <QWidget>

class TestTrayDispatch : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void decodesActivations_data();
    void decodesActivations();
    void namesAndActions_data();
    void namesAndActions();
    void doubleClickBringsBackHiddenOrMinimisedDashboard_data();
    void doubleClickBringsBackHiddenOrMinimisedDashboard();
    void rightClickOpensTrayVariantOfMenu();
    void rightDoubleClickOpensThemeEditor();
    void tooltipIsKeptShort();
    void followsTheTray_data();
    void followsTheTray();
    void singleClickTogglesDashboard_data();
    void singleClickTogglesDashboard();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestTrayDispatch::initTestCase()
{
    m_home = std::make_unique<TestHome>();
}

void TestTrayDispatch::decodesActivations_data()
{
    QTest::addColumn<int>("reason");
    QTest::addColumn<qint64>("sincePreviousContext");
    QTest::addColumn<int>("code");

    QTest::newRow("single left click") << int(TrayDispatch::Trigger) << qint64(-1) << 2;
    QTest::newRow("left double click") << int(TrayDispatch::DoubleClick) << qint64(-1) << 3;
    QTest::newRow("first right click") << int(TrayDispatch::Context) << qint64(-1) << 5;
    QTest::newRow("right click long after another") << int(TrayDispatch::Context) << qint64(5000) << 5;
    QTest::newRow("second right click in time") << int(TrayDispatch::Context) << qint64(200) << 6;
    QTest::newRow("right click exactly at the interval") << int(TrayDispatch::Context) << qint64(400) << 6;
    QTest::newRow("middle click") << int(TrayDispatch::MiddleClick) << qint64(-1) << 8;
    QTest::newRow("unknown") << int(TrayDispatch::Unknown) << qint64(-1) << 0;
}

void TestTrayDispatch::decodesActivations()
{
    QFETCH(int, reason);
    QFETCH(qint64, sincePreviousContext);
    QFETCH(int, code);
    QCOMPARE(TrayDispatch::codeFor(TrayDispatch::Reason(reason), sincePreviousContext, 400), code);
}

void TestTrayDispatch::namesAndActions_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("action");

    const int none = int(TrayDispatch::Action::None);
    QTest::newRow("0") << 0 << "MOUSEMOVE" << none;
    QTest::newRow("1") << 1 << "LBUTTONDOWN" << none;
    QTest::newRow("2") << 2 << "LBUTTONUP" << none;
    QTest::newRow("3") << 3 << "LBUTTONDBLCLK" << int(TrayDispatch::Action::ShowDashboard);
    QTest::newRow("4") << 4 << "RBUTTONDOWN" << none;
    QTest::newRow("5") << 5 << "RBUTTONUP" << int(TrayDispatch::Action::PopUpMenu);
    QTest::newRow("6") << 6 << "RBUTTONDBLCLK" << int(TrayDispatch::Action::ShowThemeEditor);
    QTest::newRow("7") << 7 << "MBUTTONDOWN" << none;
    QTest::newRow("8") << 8 << "MBUTTONUP" << none;
    QTest::newRow("9") << 9 << "MBUTTONDBLCLK" << none;
    QTest::newRow("10") << 10 << "10OTHER..." << none;
    QTest::newRow("-3") << -3 << "-3OTHER..." << none;
}

void TestTrayDispatch::namesAndActions()
{
    QFETCH(int, code);
    QFETCH(QString, name);
    QFETCH(int, action);
    QCOMPARE(TrayDispatch::eventName(code), name);
    QCOMPARE(int(TrayDispatch::actionFor(code)), action);
}

void TestTrayDispatch::doubleClickBringsBackHiddenOrMinimisedDashboard_data()
{
    QTest::addColumn<bool>("minimised");
    QTest::newRow("hidden") << false;
    QTest::newRow("minimised") << true;
}

void TestTrayDispatch::doubleClickBringsBackHiddenOrMinimisedDashboard()
{
    QFETCH(bool, minimised);
    QWidget dashboard;
    TrayIcon tray;
    tray.TraySetIcon(&dashboard);
    if (minimised)
        dashboard.showMinimized();

    tray.dispatch(TrayDispatch::LeftButtonDoubleClick);

    QVERIFY(dashboard.isVisible());
    QVERIFY(!(dashboard.windowState() & Qt::WindowMinimized));
}

void TestTrayDispatch::rightClickOpensTrayVariantOfMenu()
{
    QWidget dashboard;
    WidgetContextMenu menu;
    TrayIcon tray;
    tray.TraySetIcon(&dashboard);
    tray.setContextMenu(&menu);
    QSignalSpy clicks(&tray, &TrayIcon::Click);

    tray.dispatch(TrayDispatch::RightButtonUp);

    QVERIFY(menu.isVisible());
    QCOMPARE(menu.variant(), WidgetContextMenu::Variant::Tray);
    QVERIFY(!menu.item(QStringLiteral("mnuDCCLOSE"))->isVisible());
    QCOMPARE(clicks.count(), 1);
    QCOMPARE(clicks.first().first().toInt(), 5);
    menu.close();
}

void TestTrayDispatch::rightDoubleClickOpensThemeEditor()
{
    int launched = 0;
    ShellTools::setLauncher(ShellTools::ThemeEditor, [&launched](QWidget *) { ++launched; });
    TrayIcon tray;
    tray.dispatch(TrayDispatch::RightButtonDoubleClick);
    tray.dispatch(TrayDispatch::MiddleButtonUp);
    QCOMPARE(launched, 1);
    ShellTools::setLauncher(ShellTools::ThemeEditor, {});
}

void TestTrayDispatch::tooltipIsKeptShort()
{
    TrayIcon tray;
    QCOMPARE(tray.Tooltip(), QStringLiteral("Vantora"));
    tray.setProperty("Tooltip", QString(100, QLatin1Char('x')));
    QCOMPARE(tray.Tooltip().size(), 63);
    QCOMPARE(tray.systemTrayIcon()->toolTip(), tray.Tooltip());
}

void TestTrayDispatch::followsTheTray_data()
{
    QTest::addColumn<bool>("trayBefore");
    QTest::addColumn<bool>("dashboardShown"); // while the tray comes or goes
    QTest::addColumn<bool>("trayAfter");
    QTest::addColumn<bool>("dashboardShownAfter");

    QTest::newRow("tray starts after the program") << false << true << true << true;
    QTest::newRow("tray starts while only widgets show") << false << false << true << false;
    QTest::newRow("tray goes while the dashboard is hidden") << true << false << false << true;
}

void TestTrayDispatch::followsTheTray()
{
    QFETCH(bool, trayBefore);
    QFETCH(bool, dashboardShown);
    QFETCH(bool, trayAfter);
    QFETCH(bool, dashboardShownAfter);
    TrayIcon::setAvailableForTesting(trayBefore ? 1 : 0);
    QWidget dashboard;
    dashboard.show();
    TrayIcon tray;
    tray.setRecheckInterval(10);
    tray.TraySetIcon(&dashboard);
    QCOMPARE(tray.systemTrayIcon()->isVisible(), trayBefore);
    dashboard.setVisible(dashboardShown);

    TrayIcon::setAvailableForTesting(trayAfter ? 1 : 0);

    QTRY_COMPARE(tray.systemTrayIcon()->isVisible(), trayAfter);
    QCOMPARE(dashboard.isVisible(), dashboardShownAfter);
    TrayIcon::setAvailableForTesting(-1);
}

void TestTrayDispatch::singleClickTogglesDashboard_data()
{
    QTest::addColumn<QList<int>>("activations");
    QTest::addColumn<bool>("shownBefore");
    QTest::addColumn<bool>("shownAfter");

    const int click = QSystemTrayIcon::Trigger;
    const int doubleClick = QSystemTrayIcon::DoubleClick;
    QTest::newRow("click shows") << QList<int>{click} << false << true;
    QTest::newRow("click hides") << QList<int>{click} << true << false;
    // X11 reports both presses of a double click as clicks first; Windows reports only one.
    QTest::newRow("double click shows") << QList<int>{click, click, doubleClick} << false << true;
    QTest::newRow("double click keeps shown") << QList<int>{click, click, doubleClick} << true << true;
    QTest::newRow("double click, one click first") << QList<int>{click, doubleClick} << true << true;
}

void TestTrayDispatch::singleClickTogglesDashboard()
{
    QFETCH(QList<int>, activations);
    QFETCH(bool, shownBefore);
    QFETCH(bool, shownAfter);
    QStyleHints *hints = QGuiApplication::styleHints();
    const int interval = hints->mouseDoubleClickInterval();
    hints->setMouseDoubleClickInterval(50);
    QWidget dashboard;
    dashboard.setVisible(shownBefore);
    TrayIcon tray;
    tray.TraySetIcon(&dashboard);
    QSignalSpy clicks(&tray, &TrayIcon::Click);

    for (int reason : activations) {
        // A click may be the first of a double click: it cannot act yet.
        const bool shown = dashboard.isVisible();
        emit tray.systemTrayIcon()->activated(QSystemTrayIcon::ActivationReason(reason));
        if (reason == QSystemTrayIcon::Trigger)
            QCOMPARE(dashboard.isVisible(), shown);
    }
    QTest::qWait(150);

    QCOMPARE(dashboard.isVisible(), shownAfter);
    QCOMPARE(clicks.count(), activations.size());
    hints->setMouseDoubleClickInterval(interval);
}

QTEST_MAIN(TestTrayDispatch)
#include "test_tray_dispatch.moc"
