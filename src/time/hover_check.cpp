#include "time/hover_check.h"

#include "core/widget_frame.h"

#include <QLabel>
#include <QTimer>

namespace {
constexpr int kHoverInterval = 100;

void setUnderline(QLabel *label, bool on)
{
    if (label->font().underline() == on)
        return;
    QFont f = label->font();
    f.setUnderline(on);
    label->setFont(f);
}
} // namespace

HoverCheck::HoverCheck(QWidget *window, const QString &timerName, QList<QLabel *> buttons)
    : QObject(window), m_window(window), m_timer(new QTimer(window))
{
    for (QLabel *b : buttons)
        m_buttons << b;
    m_timer->setObjectName(timerName);
    m_timer->setInterval(kHoverInterval);
    connect(m_timer, &QTimer::timeout, this, &HoverCheck::check);
}

void HoverCheck::start()
{
    if (!m_timer->isActive())
        m_timer->start();
}

void HoverCheck::stop()
{
    m_timer->stop();
    for (QLabel *b : std::as_const(m_buttons)) {
        if (b)
            setUnderline(b, false);
    }
}

void HoverCheck::check()
{
    for (QLabel *b : std::as_const(m_buttons)) {
        if (b)
            setUnderline(b, b->isVisible() && b->isEnabled() && IsCursorOverWindow(b));
    }
    if (!m_window->isVisible() || !IsCursorOverWindow(m_window))
        stop();
}
