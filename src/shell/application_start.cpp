#include "shell/application_start.h"

#include "core/data_folders.h"
#include "core/dialog_focus_return.h"
#include "core/platform/autostart.h"
#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "core/startup_trace.h"
#include "core/widget_frame.h"
#include "core/widget_index.h"
#include "notes/notes_editor.h"
#include "shell/builtin_widgets.h"
#include "shell/dashboard_window.h"
#include "shell/program_settings_model.h"
#include "shell/shell_tools.h"
#include "shell/startup_decisions.h"
#include "shell/tray_icon.h"
#include "shell/widget_context_menu.h"
#include "shell/widget_registry.h"
#include "themes/share_theme_dialog.h"
#include "themes/theme.h"
#include "themes/theme_editor.h"
#include "themes/theme_presets.h"
#include "time/scheduler_window.h"
#include "webcam/webcam_viewer.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>
#include <QWindow>

#include <utility>

namespace {
// Dialogs and the hidden windows' texts never go below this size.
constexpr int kMinimumFontPoints = 8;
constexpr int kFinishStartDelayMs = 1000;
} // namespace

ApplicationStart::ApplicationStart(QObject *parent) : QObject(parent) {}

ApplicationStart::~ApplicationStart()
{
    SetSettingsProblemHandler({});
    SetContextMenuHandler({});
    delete m_tray;
    delete m_dashboard;
    delete m_scheduler; // the context menu is its child
}

DashboardWindow *ApplicationStart::dashboard() const
{
    return m_dashboard;
}

TrayIcon *ApplicationStart::tray() const
{
    return m_tray;
}

WidgetContextMenu *ApplicationStart::contextMenu() const
{
    return m_menu;
}

SchedulerWindow *ApplicationStart::scheduler() const
{
    return m_scheduler;
}

void ApplicationStart::run(const LaunchRequest &request)
{
    DialogFocusReturn::install();
    // From the first read on: a settings file that is partly unreadable, or cannot be saved.
    SetSettingsProblemHandler([this](const QString &message) { addNotice(message); });
    prepareValues();
    StartupTrace::mark("program settings read");
    QCoreApplication::processEvents();
    prepareData();
    StartupTrace::mark("theme and data folders ready");
    m_choice = StartupDecisions::readProgramChoice();
    // Notes a crash left unsaved are offered back at once, whichever widgets start.
    if (NotesEditor::hasRecoveredDocuments())
        WidgetRegistry::instance().open(WidgetNotes);
    connect(&WidgetRegistry::instance(), &WidgetRegistry::widgetClosed, this,
            &ApplicationStart::keepSomethingOnScreen);
    // A start that names only widgets shows them first: the dashboard and the tray icon, which
    // it does not show, are built once the first window has been painted. So is the hidden
    // scheduler window with the shared context menu, in every start: alarms are checked every
    // few seconds, and the first check comes no later for that.
    if (!request.asksForWindows() || request.hidden || namesShellWindow(request)) {
        loadDashboard();
        StartupTrace::mark("dashboard and tray built");
    }

    // Without a tray a hidden start would leave the program out of reach.
    const bool startHidden = request.hidden && TrayIcon::isAvailable();
    const bool usualStart = !request.asksForWindows() && !startHidden;
    bool handedOver = false;
    if (usualStart && StartupDecisions::showsWizard(m_choice)) {
        handedOver = m_dashboard->openWizard();
        m_choice = m_dashboard->IndxSel();
    }
    QCoreApplication::processEvents();
    // The wizard's Start has already handed over; a wizard closed without a choice leaves
    // -1, which shows the dashboard.
    if (usualStart && !handedOver)
        m_dashboard->handOverAtStart(m_choice);
    else if (request.asksForWindows())
        showRequested(request);
    m_started = true;
    StartupTrace::mark("first windows shown");
    for (const LaunchRequest &waiting : std::exchange(m_waitingLaunches, {}))
        showRequested(waiting);
    if (m_dashboard)
        tellNoticesFromTray();
}

bool ApplicationStart::namesShellWindow(const LaunchRequest &request)
{
    return request.open.contains(QLatin1String("dashboard")) || request.open.contains(QLatin1String("webcam"));
}

void ApplicationStart::tellNoticesFromTray()
{
    if (!m_notices.isEmpty() && m_tray && !m_dashboard->isVisible() && TrayIcon::isAvailable())
        m_tray->systemTrayIcon()->showMessage(QStringLiteral("Vantora"), m_notices.join(QLatin1Char(' ')),
                                              QSystemTrayIcon::Warning);
}

QByteArray ApplicationStart::answerLaunch(const QByteArray &request)
{
    LaunchRequest launch;
    QJsonObject answer;
    if (!LaunchRequest::fromJson(request, &launch)) {
        answer.insert(QStringLiteral("error"), QStringLiteral("not a request this version understands"));
        return QJsonDocument(answer).toJson(QJsonDocument::Compact);
    }
    // Checked again here: the file may have changed since the launch looked, and anything of
    // this user can write to the socket. A pipe or a device would block this thread for good.
    const QString problem = launch.documentsProblem();
    if (!problem.isEmpty()) {
        answer.insert(QStringLiteral("error"), problem);
        return QJsonDocument(answer).toJson(QJsonDocument::Compact);
    }
    answer.insert(QStringLiteral("visible"), QJsonArray::fromStringList(visibleWindowNames()));
    // While the start is still running (the first-run wizard waits for the user), requests wait
    // for it to finish. Otherwise they run once the answer is out: opening a large document
    // takes a while.
    if (m_started)
        QTimer::singleShot(0, this, [this, launch] { showRequested(launch); });
    else
        m_waitingLaunches.append(launch);
    return QJsonDocument(answer).toJson(QJsonDocument::Compact);
}

void ApplicationStart::showRequested(const LaunchRequest &request)
{
    if (m_ended || (m_dashboard && m_dashboard->isUnloading()))
        return;
    if (!request.asksForWindows()) {
        // A plain launch while running: the user is looking for the program.
        if (!request.hidden)
            loadDashboard()->showDashboard();
        return;
    }
    WidgetRegistry &registry = WidgetRegistry::instance();
    for (const QString &name : request.open) {
        if (name == QLatin1String("dashboard"))
            loadDashboard()->showDashboard();
        else if (name == QLatin1String("webcam"))
            loadDashboard()->openWebcam();
        else
            registry.open(LaunchRequest::widgetIndexOf(name));
    }
    if (!request.documents.isEmpty()) {
        if (auto *editor = qobject_cast<NotesEditor *>(registry.open(WidgetNotes))) {
            // Looked at once more just before: the file may have been swapped for a pipe since.
            for (const QString &path : request.documents) {
                if (LaunchRequest::documentProblem(path, path).isEmpty())
                    editor->openFile(path);
            }
        }
    }
    // Nothing the request named could open (a widget this build lacks): the dashboard shows.
    if (visibleWindowNames().isEmpty())
        loadDashboard()->showDashboard();
}

QStringList ApplicationStart::visibleWindowNames()
{
    QStringList names;
    for (const QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && !widget->objectName().isEmpty())
            names.append(widget->objectName());
    }
    names.sort();
    return names;
}

void ApplicationStart::prepareValues()
{
    // Widgets stand alone while the dashboard waits in the tray: closing the last visible
    // window must not end the program; only the dashboard's Exit does.
    QApplication::setQuitOnLastWindowClosed(false);
    QFont font = QApplication::font();
    if (font.pointSizeF() > 0 && font.pointSizeF() < kMinimumFontPoints) {
        font.setPointSize(kMinimumFontPoints);
        QApplication::setFont(font);
    }
    const ProgramSettingsModel::Values settings = ProgramSettingsModel::load();
    ProgramSettingsModel::setWebcamIntervalSeconds(
        ProgramSettingsModel::intervalSeconds(settings.timerInterval));
    // The spell checker and the print engine are made by the notes editor that first needs
    // them, not here: the first window shows neither.
}

void ApplicationStart::prepareData()
{
    LoadThemeFromRegistry();
    PrepareAllDataFolders();
    registerWidgetsOnce();
    registerTools();
    SetContextMenuHandler([this](QWidget *window, const QPoint &pos) { popUpContextMenu(window, pos); });
    // Copying the shipped presets and dictionaries takes longer than everything else on a first
    // run, and nothing needs them (nor the autostart entry) before the user acts: they wait for
    // the first window (or a second, when the start shows none).
    qApp->installEventFilter(this);
    QTimer::singleShot(kFinishStartDelayMs, this, &ApplicationStart::finishStartAfterFirstWindow);
}

void ApplicationStart::registerTools()
{
    ShellTools::setLauncher(ShellTools::ThemeEditor, [](QWidget *) { ThemeEditor::showEditor(); });
    ShellTools::setLauncher(ShellTools::ShareTheme, [](QWidget *) { ShareThemeDialog::showDialog(); });
    ShellTools::setLauncher(ShellTools::WebcamViewer, [](QWidget *) { WebcamViewer::showViewer(); });
}

bool ApplicationStart::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Expose) {
        auto *window = qobject_cast<QWindow *>(watched);
        if (window && window->isExposed()) {
            StartupTrace::mark("a window exposed");
            QTimer::singleShot(0, this, &ApplicationStart::finishStartAfterFirstWindow);
        }
    }
    return QObject::eventFilter(watched, event);
}

void ApplicationStart::finishStartAfterFirstWindow()
{
    if (m_startFinished)
        return;
    m_startFinished = true;
    qApp->removeEventFilter(this);
    if (!m_ended) {
        if (!m_dashboard) {
            loadDashboard();
            tellNoticesFromTray();
        }
        loadScheduler();
        StartupTrace::mark("dashboard, tray and scheduler built");
    }
    InstallMissingPresets();
    Autostart::followRunningProgram();
    QString problem;
    if (!InstallMissingDictionaries(&problem))
        addNotice(problem);
    StartupTrace::mark("shipped data and autostart checked");
}

void ApplicationStart::addNotice(const QString &message)
{
    if (message.isEmpty() || m_notices.contains(message))
        return;
    m_notices.append(message);
    if (!m_dashboard)
        return; // shown once the dashboard is loaded
    m_dashboard->setNotice(m_notices.join(QStringLiteral("\n\n")));
    // A hidden dashboard shows nothing: the tray says it instead.
    if (m_tray && !m_dashboard->isVisible() && TrayIcon::isAvailable())
        m_tray->systemTrayIcon()->showMessage(QStringLiteral("Vantora"), message, QSystemTrayIcon::Warning);
}

void ApplicationStart::registerWidgetsOnce()
{
    static bool registered = false;
    if (registered)
        return;
    registered = true;
    RegisterBuiltInWidgets();
}

WidgetContextMenu *ApplicationStart::loadScheduler()
{
    if (m_menu)
        return m_menu;
    // Alarms ring whichever windows show; the shared context menu lives with the scheduler.
    m_scheduler = new SchedulerWindow;
    m_menu = new WidgetContextMenu(m_scheduler);
    attachMenu();
    return m_menu;
}

void ApplicationStart::attachMenu()
{
    if (!m_menu || !m_dashboard)
        return;
    m_dashboard->attachContextMenu(m_menu);
    m_tray->setContextMenu(m_menu);
}

DashboardWindow *ApplicationStart::loadDashboard()
{
    if (m_dashboard)
        return m_dashboard;
    m_dashboard = new DashboardWindow;
    m_dashboard->setIndxSel(m_choice);
    connect(m_dashboard, &DashboardWindow::unloaded, this, &ApplicationStart::end);
    m_dashboard->loadDashboard(m_choice);

    m_tray = new TrayIcon;
    m_tray->setTooltip(QStringLiteral("Vantora"));
    attachMenu();
    m_tray->TraySetIcon(m_dashboard);
    if (!m_notices.isEmpty())
        m_dashboard->setNotice(m_notices.join(QStringLiteral("\n\n")));
    m_dashboard->StartUpdateCheck(false);
    return m_dashboard;
}

void ApplicationStart::popUpContextMenu(QWidget *window, const QPoint &globalPos)
{
    // The menu lives with the scheduler and its commands reach the dashboard, which a start
    // that named only widgets may not have built yet.
    if (!m_ended)
        loadScheduler()->popUpFor(window, loadDashboard()->isVisible(), globalPos);
}

void ApplicationStart::keepSomethingOnScreen()
{
    // Without a tray icon a hidden dashboard and no widget would leave a program nobody can
    // reach; bring the dashboard back instead.
    if (TrayIcon::isAvailable() || !m_dashboard || m_dashboard->isUnloading() || m_dashboard->isVisible())
        return;
    if (WidgetRegistry::instance().openWidgets().isEmpty())
        m_dashboard->showDashboard();
}

void ApplicationStart::end()
{
    m_ended = true;
    SetSettingsProblemHandler({});
    SetContextMenuHandler({});
    // Exit may have been chosen from the shared menu, whose own handler is still running and
    // touches the menu after its signal returns: the scheduler (the menu's parent) and the tray
    // go once control is back in the event loop. The icon leaves the tray at once.
    if (m_tray) {
        m_tray->systemTrayIcon()->hide();
        m_tray->deleteLater();
    }
    if (m_scheduler)
        m_scheduler->deleteLater();
    // Queued: the dashboard is still inside its close handler.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    emit ended();
}
