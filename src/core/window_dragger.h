#pragma once

#include <QObject>
#include <QPoint>

class QWidget;

// Lets the user drag a frameless window by the widgets it watches (its bar, its title). On
// Wayland the compositor moves the window; elsewhere the window follows the mouse. A maximised
// window is not moved.
class WindowDragger : public QObject
{
    Q_OBJECT
public:
    explicit WindowDragger(QWidget *window);

    // Presses on `handle` start a drag of the window.
    void watch(QWidget *handle);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // True when the compositor took the drag over.
    bool startCompositorMove();

    QWidget *m_window;
    QPoint m_offset;
    bool m_manual = false;
};
