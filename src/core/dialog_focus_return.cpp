#include "core/dialog_focus_return.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace {

// How long after a dialog closed a window manager's choice of the next active window is
// taken as its own fallback rather than something the user did.
constexpr qint64 kFallbackMs = 250;

} // namespace

void DialogFocusReturn::install()
{
    static DialogFocusReturn *installed = nullptr;
    if (installed || !qApp)
        return;
    installed = new DialogFocusReturn(qApp);
    connect(qApp, &QGuiApplication::focusWindowChanged, installed, &DialogFocusReturn::focusMoved);
}

DialogFocusReturn::DialogFocusReturn(QObject *parent) : QObject(parent) {}

bool DialogFocusReturn::isDialogWindow(const QWidget *window)
{
    if (!window || !window->isWindow())
        return false;
    const Qt::WindowType type = window->windowType();
    if (type == Qt::Popup || type == Qt::ToolTip || type == Qt::SplashScreen)
        return false;
    return type == Qt::Dialog || type == Qt::Sheet || window->isModal();
}

QWidget *DialogFocusReturn::ownerFor(const QWidget *dialog, QWidget *activeBefore)
{
    if (QWidget *parent = dialog->parentWidget())
        return parent->window();
    return activeBefore != dialog ? activeBefore : nullptr;
}

void DialogFocusReturn::focusMoved()
{
    // The application has already made the window with the focus its active window.
    QWidget *window = QApplication::activeWindow();
    if (!window)
        return; // the keyboard left the program, or went to a window without widgets
    if (isDialogWindow(window))
        dialogFocused(window);
    else
        windowActivated(window);
    m_lastActive = window;
}

void DialogFocusReturn::dialogFocused(QWidget *dialog)
{
    // Another dialog ends any giving back still being watched.
    m_returning = nullptr;
    const auto known = m_owners.constFind(dialog);
    if (known != m_owners.constEnd() && *known)
        return; // back from another window during the same showing: the owner stays
    QWidget *owner = ownerFor(dialog, m_lastActive);
    if (!owner)
        return;
    if (known == m_owners.constEnd()) {
        dialog->installEventFilter(this);
        connect(dialog, &QObject::destroyed, this, [this, dialog] { m_owners.remove(dialog); });
    }
    m_owners.insert(dialog, owner);
}

bool DialogFocusReturn::eventFilter(QObject *watched, QEvent *event)
{
    // Only dialogs that had the keyboard are watched, and only for being hidden.
    if (event->type() == QEvent::Hide && watched->isWidgetType())
        dialogHidden(static_cast<QWidget *>(watched));
    return QObject::eventFilter(watched, event);
}

void DialogFocusReturn::dialogHidden(QWidget *dialog)
{
    const auto known = m_owners.find(dialog);
    if (known == m_owners.end())
        return;
    const QPointer<QWidget> owner = *known;
    *known = nullptr;
    if (!owner || !owner->isVisible() || owner->isMinimized())
        return;
    // Only a dialog that had the keyboard hands it back: one closed while the user works in
    // another window must not pull the keyboard away from there.
    QWidget *active = QApplication::activeWindow();
    if (active && active != dialog && active != owner)
        return;
    owner->activateWindow();
    // The window manager may still hand the keyboard to a window of its choice once it has
    // seen the dialog go; that choice is corrected below.
    m_returning = owner;
    m_sinceHidden.start();
}

void DialogFocusReturn::windowActivated(QWidget *window)
{
    if (!m_returning || m_sinceHidden.elapsed() > kFallbackMs) {
        m_returning = nullptr;
        return;
    }
    // The owner may get the keyboard first and lose it to the window manager's choice just
    // after, so the watch goes on until the time is up.
    if (window == m_returning)
        return;
    if (m_returning->isVisible() && !m_returning->isMinimized())
        m_returning->activateWindow();
}
