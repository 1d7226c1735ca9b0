#include "core/window_dragger.h"

#include "core/platform/session_platform.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

WindowDragger::WindowDragger(QWidget *window) : QObject(window), m_window(window) {}

void WindowDragger::watch(QWidget *handle)
{
    handle->installEventFilter(this);
}

bool WindowDragger::startCompositorMove()
{
    // An X11 window follows the mouse by hand, so that where it lands is exactly where the
    // program stores it; the window manager's move could snap or offset it by its frame. A
    // Wayland client cannot move itself at all: the compositor does it.
    if (!SessionPlatform::compositorPlacesWindows(QGuiApplication::platformName()))
        return false;
    QWindow *handle = m_window->windowHandle();
    return handle && handle->startSystemMove();
}

bool WindowDragger::eventFilter(QObject *, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() != Qt::LeftButton)
            return false;
        // A maximised or minimised window stays where it is.
        const bool normal = !(m_window->windowState() & (Qt::WindowMaximized | Qt::WindowMinimized));
        m_manual = normal && !startCompositorMove();
        m_offset = mouse->globalPosition().toPoint() - m_window->frameGeometry().topLeft();
        return true;
    }
    case QEvent::MouseMove:
        if (m_manual && (static_cast<QMouseEvent *>(event)->buttons() & Qt::LeftButton)) {
            m_window->move(static_cast<QMouseEvent *>(event)->globalPosition().toPoint() - m_offset);
            return true;
        }
        return false;
    case QEvent::MouseButtonRelease:
        m_manual = false;
        return false;
    default:
        return false;
    }
}
