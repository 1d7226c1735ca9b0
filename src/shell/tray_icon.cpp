#include "shell/tray_icon.h"

#include "shell/shell_tools.h"
#include "shell/tray_dispatch.h"
#include "shell/widget_context_menu.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QLoggingCategory>
#include <QTimer>
#include <QWidget>

namespace {
Q_LOGGING_CATEGORY(lcTray, "vantora.tray", QtWarningMsg)
int g_availableOverride = -1;
constexpr int kMaxTipLength = 63;
constexpr int kRecheckMs = 5000;
// The X11 platform reports a tray (the owner of the tray selection) appearing and going away.
const char *const kTrayChangedSignal = "systemTrayWindowChanged(QScreen*)";
} // namespace

TrayIcon::TrayIcon(QObject *parent)
    : QObject(parent), m_icon(new QSystemTrayIcon(this)), m_recheck(new QTimer(this)),
      m_singleClick(new QTimer(this))
{
    setObjectName(QStringLiteral("mdb_TRY"));
    m_icon->setToolTip(m_tooltip);
    connect(m_icon, &QSystemTrayIcon::activated, this, &TrayIcon::onActivated);
    m_recheck->setInterval(kRecheckMs);
    connect(m_recheck, &QTimer::timeout, this, &TrayIcon::followTray);
    m_singleClick->setSingleShot(true);
    connect(m_singleClick, &QTimer::timeout, this, &TrayIcon::toggleDashboard);
}

TrayIcon::~TrayIcon()
{
    m_icon->hide();
}

void TrayIcon::TraySetIcon(QWidget *window)
{
    if (m_dashboard)
        m_dashboard->removeEventFilter(this);
    m_dashboard = window;
    if (window) {
        m_icon->setIcon(window->windowIcon());
        window->installEventFilter(this); // its showing and hiding decide whether to look
    }
    m_placed = true;
    m_available = isAvailable();
    m_icon->setVisible(m_available);
    if (!m_trayEvents) {
        // The platform's native interface is a QObject whose class is not in Qt's public
        // headers; it is its only base class, so the pointer is the QObject's.
        auto *platform = reinterpret_cast<QObject *>(QGuiApplication::platformNativeInterface());
        if (platform && platform->metaObject()->indexOfSignal(kTrayChangedSignal) >= 0)
            m_trayEvents =
                connect(platform, SIGNAL(systemTrayWindowChanged(QScreen *)), this, SLOT(followTray()));
    }
    updateRecheck();
}

void TrayIcon::setTooltip(const QString &text)
{
    m_tooltip = text.left(kMaxTipLength);
    m_icon->setToolTip(m_tooltip);
}

bool TrayIcon::isAvailable()
{
    if (g_availableOverride >= 0)
        return g_availableOverride == 1;
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void TrayIcon::setAvailableForTesting(int available)
{
    g_availableOverride = available;
}

void TrayIcon::setRecheckInterval(int ms)
{
    m_recheck->setInterval(ms);
}

bool TrayIcon::hasTrayEvents() const
{
    // A forced answer never changes by itself on the desktop's say.
    return m_trayEvents && g_availableOverride < 0;
}

void TrayIcon::updateRecheck()
{
    // Where the desktop reports its tray nothing needs looking at. Elsewhere the tray is looked
    // for every few seconds only while the answer matters: while there is none (the icon waits
    // for one) and while the dashboard is hidden (the icon is then the only way back to it).
    const bool dashboardHidden = m_dashboard && !m_dashboard->isVisible();
    const bool needed = m_placed && !hasTrayEvents() && (!m_available || dashboardHidden);
    if (!needed)
        m_recheck->stop();
    else if (!m_recheck->isActive())
        m_recheck->start();
}

void TrayIcon::followTray()
{
    const bool available = isAvailable();
    if (available != m_available) {
        qCDebug(lcTray) << "tray" << (available ? "appeared" : "went away");
        m_available = available;
        m_icon->setVisible(available);
        // Without the icon a hidden dashboard could never come back.
        if (!available && m_dashboard && !m_dashboard->isVisible())
            showDashboard();
    }
    updateRecheck();
}

bool TrayIcon::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_dashboard && (event->type() == QEvent::Show || event->type() == QEvent::Hide))
        updateRecheck();
    return QObject::eventFilter(watched, event);
}

void TrayIcon::onActivated(QSystemTrayIcon::ActivationReason reason)
{
    qint64 sincePrevious = -1;
    if (reason == QSystemTrayIcon::Context) {
        sincePrevious = m_sinceContext.isValid() ? m_sinceContext.elapsed() : -1;
        m_sinceContext.start();
    }
    const int code = TrayDispatch::codeFor(TrayDispatch::Reason(reason), sincePrevious,
                                           QApplication::doubleClickInterval());
    if (code == TrayDispatch::RightButtonDoubleClick)
        m_sinceContext.invalidate(); // a third click starts a new pair
    dispatch(code);
    // A single click shows or hides the dashboard once no second click has come in time; a
    // double click only brings it back (its first click, and on some desktops its second,
    // arrives as a single click first).
    if (reason == QSystemTrayIcon::Trigger)
        m_singleClick->start(QApplication::doubleClickInterval());
    else if (reason == QSystemTrayIcon::DoubleClick)
        m_singleClick->stop();
}

void TrayIcon::dispatch(int code)
{
    qCDebug(lcTray) << "tray event" << code << TrayDispatch::eventName(code);
    emit Click(code);
    switch (TrayDispatch::actionFor(code)) {
    case TrayDispatch::Action::ShowDashboard:
        showDashboard();
        break;
    case TrayDispatch::Action::PopUpMenu:
        popUpMenu();
        break;
    case TrayDispatch::Action::ShowThemeEditor:
        showThemeEditor();
        break;
    case TrayDispatch::Action::None:
        break;
    }
}

void TrayIcon::toggleDashboard()
{
    if (!m_dashboard)
        return;
    // While a dialog waits for an answer the dashboard stays where the dialog can be seen.
    if (m_dashboard->isVisible() && !m_dashboard->isMinimized() && !QApplication::activeModalWidget())
        m_dashboard->hide();
    else
        showDashboard();
}

void TrayIcon::showDashboard()
{
    if (!m_dashboard)
        return;
    m_dashboard->setWindowState(m_dashboard->windowState() & ~Qt::WindowMinimized);
    m_dashboard->showNormal();
    m_dashboard->raise();
    m_dashboard->activateWindow();
}

void TrayIcon::popUpMenu()
{
    if (m_menu)
        m_menu->popUpFor(nullptr, m_dashboard && m_dashboard->isVisible(), QCursor::pos());
}

void TrayIcon::showThemeEditor()
{
    // The first click of the pair has opened the menu; the editor takes over instead.
    if (m_menu)
        m_menu->close();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ShellTools::launch(ShellTools::ThemeEditor, m_dashboard);
    QApplication::restoreOverrideCursor();
}
