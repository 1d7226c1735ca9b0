#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QLabel;
class QTimer;
class QWidget;

// The bar-button hover check of the time widgets (tmrBAR, tmrPANEL): every 100 ms the button
// under the pointer is underlined. It runs only from the moment the pointer enters the window
// until it has left again, so that an idle widget does not wake up for it.
class HoverCheck : public QObject
{
    Q_OBJECT
public:
    HoverCheck(QWidget *window, const QString &timerName, QList<QLabel *> buttons);

    QTimer *timer() const { return m_timer; }

    void start(); // the pointer entered the window
    void stop();  // the window was hidden
    void check(); // one tick

private:
    QWidget *m_window;
    QTimer *m_timer;
    QList<QPointer<QLabel>> m_buttons;
};
