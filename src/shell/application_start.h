#pragma once

#include "shell/launch_request.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

class DashboardWindow;
class SchedulerWindow;
class TrayIcon;
class WidgetContextMenu;

// The entry routine: prepares the program-wide values, the theme and the data folders, loads
// the hidden scheduler window, the dashboard and the tray icon, shows the first-run wizard when
// no choice has been made, and hands over to the dashboard or the one chosen widget. The
// scheduler waits for the first frame; a start that names only widgets builds the dashboard and
// tray icon after it too. The program ends when the dashboard unloads (its Exit command).
class ApplicationStart : public QObject
{
    Q_OBJECT
public:
    explicit ApplicationStart(QObject *parent = nullptr);
    ~ApplicationStart() override;

    // Runs the start-up steps in order. The event loop is the caller's (QApplication::exec).
    // A request from the command line that names windows shows those instead of the usual
    // hand-over (and puts off the first-run wizard to a plain start); --hidden leaves the
    // dashboard in the tray.
    void run(const LaunchRequest &request = {});

    // A request from a later launch, as SingleInstance delivers it (it may come while run() is
    // still in the first-run wizard). The answer is sent at once
    // and lists the windows showing when the request came; the windows asked for are shown
    // from the event loop right after, so that a message box they raise never keeps the
    // other launch waiting.
    QByteArray answerLaunch(const QByteArray &request);

    // Shows what a launch asked for; with nothing named, the dashboard comes forward.
    void showRequested(const LaunchRequest &request);

    // objectNames of the top-level windows now showing, sorted.
    static QStringList visibleWindowNames();

    // Registers the built-in widgets with the WidgetRegistry the first time it is called in the
    // process; run() calls it. Tests call it first and then put their own factories in place.
    static void registerWidgetsOnce();

    // The first-run choice the start ended with (after the wizard, when it ran).
    int choice() const { return m_choice; }
    DashboardWindow *dashboard() const;
    TrayIcon *tray() const;
    WidgetContextMenu *contextMenu() const;
    SchedulerWindow *scheduler() const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    // Every window is closed and the event loop has been asked to end.
    void ended();

private:
    void prepareValues();
    void prepareData();
    // The hidden scheduler window with the shared context menu, the first time; the menu.
    WidgetContextMenu *loadScheduler();
    // The dashboard and the tray icon, the first time; the dashboard.
    DashboardWindow *loadDashboard();
    static bool namesShellWindow(const LaunchRequest &request);
    // Gives the shared context menu to the dashboard and the tray once both are there.
    void attachMenu();
    void tellNoticesFromTray();
    void popUpContextMenu(QWidget *window, const QPoint &globalPos);
    void keepSomethingOnScreen();
    void end();
    void finishStartAfterFirstWindow();
    // Problems found at start or later (settings file, shipped data): on the dashboard, and
    // from the tray while the dashboard is hidden.
    void addNotice(const QString &message);
    static void registerTools();

    QPointer<DashboardWindow> m_dashboard;
    QPointer<SchedulerWindow> m_scheduler;
    QPointer<WidgetContextMenu> m_menu;
    QPointer<TrayIcon> m_tray;
    QStringList m_notices;
    QList<LaunchRequest> m_waitingLaunches;
    bool m_started = false;
    int m_choice = -1;
    bool m_startFinished = false;
    bool m_ended = false;
};
