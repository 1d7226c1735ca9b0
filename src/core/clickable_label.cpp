#include "core/clickable_label.h"

#include "core/painted_accessible.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

ClickableLabel::ClickableLabel(const QString &objectName, const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    PaintedAccessible::registerButtonClass(staticMetaObject.className());
    setObjectName(objectName);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void ClickableLabel::setActive(bool active)
{
    if (m_active == active)
        return;
    m_active = active;
    setCursor(active ? Qt::PointingHandCursor : Qt::ArrowCursor);
    update();
}

void ClickableLabel::click()
{
    if (m_active)
        emit clicked();
}

void ClickableLabel::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_active) {
        // Let the window see it: a right click opens the widget menu, a dead button drags.
        event->ignore();
        return;
    }
    m_pressed = true;
    update();
}

void ClickableLabel::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_pressed) {
        event->ignore();
        return;
    }
    m_pressed = false;
    update();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        click();
}

void ClickableLabel::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click();
        break;
    default:
        QLabel::keyPressEvent(event);
    }
}

void ClickableLabel::paintEvent(QPaintEvent *event)
{
    if (m_active && !m_pressed) {
        QLabel::paintEvent(event);
    } else {
        // Dimmed when switched off, nudged down while pressed; the caption is plain text.
        QPainter p(this);
        p.setOpacity(m_active ? 0.75 : 0.45);
        p.setFont(font());
        const QRect area = contentsRect().translated(0, m_pressed ? 1 : 0);
        style()->drawItemText(&p, area, int(alignment()), palette(), true, text(), foregroundRole());
    }
    if (hasFocus()) {
        // A solid frame in the caption's own colour: the theme keeps that colour readable on
        // the bar, so the mark shows on every theme, light or dark.
        QPainter p(this);
        p.setPen(QPen(palette().color(foregroundRole()), 1.5));
        p.setRenderHint(QPainter::Antialiasing);
        p.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 2, 2);
    }
}

void ClickableLabel::focusInEvent(QFocusEvent *event)
{
    QLabel::focusInEvent(event);
    update();
}

void ClickableLabel::focusOutEvent(QFocusEvent *event)
{
    QLabel::focusOutEvent(event);
    update();
}
