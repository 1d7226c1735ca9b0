// Placeholder until the theme module lands.
#include "themes/themed_button.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>

ThemedButton::ThemedButton(QWidget *parent)
    : QWidget(parent)
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::TabFocus);
}

void ThemedButton::setPictures(const QPixmap &normal, const QPixmap &highlight, const QPixmap &pressed)
{
    m_normal = normal;
    m_highlight = highlight;
    m_pressed = pressed;
    update();
}

void ThemedButton::setCloseGlyph(const QColor &color)
{
    QPixmap pm(16, 16);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setPen(QPen(color, 2));
    p.drawLine(4, 4, 12, 12);
    p.drawLine(12, 4, 4, 12);
    p.end();
    setPictures(pm, pm, pm);
}

void ThemedButton::CloseRefresh()
{
    showPicture(&m_normal);
}

QSize ThemedButton::sizeHint() const
{
    return QSize(16, 16);
}

void ThemedButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.drawPixmap(rect(), *m_shown);
}

void ThemedButton::enterEvent(QEnterEvent *) { showPicture(&m_highlight); }
void ThemedButton::mousePressEvent(QMouseEvent *) { showPicture(&m_pressed); }
void ThemedButton::mouseMoveEvent(QMouseEvent *) {}
void ThemedButton::keyPressEvent(QKeyEvent *e) { QWidget::keyPressEvent(e); }

void ThemedButton::mouseReleaseEvent(QMouseEvent *e)
{
    showPicture(&m_highlight);
    if (rect().contains(e->position().toPoint()))
        emit clicked();
}

void ThemedButton::showPicture(const QPixmap *picture)
{
    if (m_shown != picture) {
        m_shown = picture;
        update();
    }
}

void ThemedButton::checkMouseLeft() {}
