#include "core/dialog_focus_return.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

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
    qApp->installEventFilter(installed);
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

QWidget *DialogFocusReturn::ownerFor(const QWidget *dialog, QWidget *activeWhenShown)
{
    if (QWidget *parent = dialog->parentWidget())
        return parent->window();
    return activeWhenShown != dialog ? activeWhenShown : nullptr;
}

bool DialogFocusReturn::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    if ((type == QEvent::Show || type == QEvent::Hide || type == QEvent::WindowActivate) &&
        watched->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(watched);
        if (type == QEvent::WindowActivate && widget->isWindow())
            windowActivated(widget);
        else if (isDialogWindow(widget))
            type == QEvent::Show ? dialogShown(widget) : type == QEvent::Hide ? dialogHidden(widget) : void();
    }
    return QObject::eventFilter(watched, event);
}

void DialogFocusReturn::dialogShown(QWidget *dialog)
{
    // The dialog is not active yet when it is shown, so the active window is the one it was
    // opened from.
    QWidget *owner = ownerFor(dialog, QApplication::activeWindow());
    if (!owner)
        return;
    if (!m_owners.contains(dialog))
        connect(dialog, &QObject::destroyed, this, [this, dialog] { m_owners.remove(dialog); });
    m_owners.insert(dialog, owner);
}

void DialogFocusReturn::dialogHidden(QWidget *dialog)
{
    const QPointer<QWidget> owner = m_owners.value(dialog);
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
    // after, so the watch goes on until the time is up; another dialog ends it.
    if (window == m_returning)
        return;
    if (isDialogWindow(window)) {
        m_returning = nullptr;
        return;
    }
    if (m_returning->isVisible() && !m_returning->isMinimized())
        m_returning->activateWindow();
}
