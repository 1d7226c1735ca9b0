#include "calculator/calculator_key.h"

#include "core/painted_accessible.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

CalculatorKey::CalculatorKey(const QString &objectName, const QString &caption, Role role, QWidget *parent)
    : QLabel(caption, parent), m_role(role)
{
    PaintedAccessible::registerButtonClass(staticMetaObject.className());
    setObjectName(objectName);
    setAlignment(Qt::AlignCenter);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::NoFocus); // the window takes the keyboard for all keys
    setAccessibleName(caption.trimmed());
}

void CalculatorKey::setPressed(bool pressed)
{
    if (m_pressed == pressed)
        return;
    m_pressed = pressed;
    update();
}

qreal CalculatorKey::tintStrength() const
{
    qreal strength = 0.0;
    switch (m_role) {
    case Role::Digit:
        strength = 0.10;
        break;
    case Role::Function:
        strength = 0.16;
        break;
    case Role::Operator:
        strength = 0.22;
        break;
    case Role::Equals:
        strength = 0.34;
        break;
    case Role::Memory:
        strength = 0.0;
        break;
    }
    if (m_hovered)
        strength += 0.08;
    if (m_pressed)
        strength += 0.16;
    return std::min(strength, 0.6);
}

void CalculatorKey::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink = palette().color(foregroundRole());
    const QRectF tile = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = std::clamp(std::min(tile.width(), tile.height()) * 0.16, 2.0, 8.0);
    QPainterPath shape;
    shape.addRoundedRect(tile, radius, radius);

    QColor fill = ink;
    fill.setAlphaF(float(tintStrength()));
    p.fillPath(shape, fill);
    if (m_pressed) {
        // A shade over the tile reads as pushed in on light and dark themes alike.
        p.fillPath(shape, QColor(0, 0, 0, 40));
    } else if (m_role != Role::Memory) {
        // A faint light along the top edge lifts the tile off the gradient.
        p.save();
        p.setClipPath(shape);
        p.setPen(QPen(QColor(255, 255, 255, 46), 1.0));
        p.drawLine(tile.topLeft() + QPointF(radius, 0.5), tile.topRight() + QPointF(-radius, 0.5));
        p.restore();
    }
    if (m_role != Role::Memory || m_hovered || m_pressed) {
        QColor edge = ink;
        edge.setAlphaF(m_pressed ? 0.40f : 0.22f);
        p.setPen(QPen(edge, 1.0));
        p.drawPath(shape);
    }

    p.setPen(ink);
    p.setFont(font());
    p.drawText(rect().translated(0, m_pressed ? 1 : 0), Qt::AlignCenter, text());
}

void CalculatorKey::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore(); // the window's menu
        return;
    }
    m_mouseDown = true;
    setPressed(true);
}

void CalculatorKey::mouseMoveEvent(QMouseEvent *event)
{
    if (m_mouseDown)
        setPressed(rect().contains(event->position().toPoint()));
}

void CalculatorKey::mouseReleaseEvent(QMouseEvent *event)
{
    if (!m_mouseDown || event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_mouseDown = false;
    setPressed(false);
    if (rect().contains(event->position().toPoint()))
        emit clicked();
}

void CalculatorKey::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QLabel::enterEvent(event);
}

void CalculatorKey::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QLabel::leaveEvent(event);
}
