#include "shell/tray_icon.h"

#include "shell/shell_tools.h"
#include "shell/tray_dispatch.h"
#include "shell/widget_context_menu.h"

#include <QApplication>
#include <QCursor>
#include <QLoggingCategory>
#include <QWidget>

namespace {
Q_LOGGING_CATEGORY(lcTray, "vantora.tray", QtWarningMsg)
int g_availableOverride = -1;
constexpr int kMaxTipLength = 63;
} // namespace

TrayIcon::TrayIcon(QObject *parent) : QObject(parent), m_icon(new QSystemTrayIcon(this))
{
    setObjectName(QStringLiteral("mdb_TRY"));
    m_icon->setToolTip(m_tooltip);
    connect(m_icon, &QSystemTrayIcon::activated, this, &TrayIcon::onActivated);
}

TrayIcon::~TrayIcon()
{
    m_icon->hide();
}

void TrayIcon::TraySetIcon(QWidget *window)
{
    m_dashboard = window;
    if (window)
        m_icon->setIcon(window->windowIcon());
    if (isAvailable())
        m_icon->show();
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
