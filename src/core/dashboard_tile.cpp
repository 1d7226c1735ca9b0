#include "core/dashboard_tile.h"

#include "core/widget_glyphs.h"
#include "core/widget_index.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

DashboardTile::DashboardTile(int widgetIndex, QWidget *parent)
    : QAbstractButton(parent)
    , m_index(widgetIndex)
{
    setObjectName(QStringLiteral("btnWIDGET_%1").arg(widgetIndex));
    setText(WidgetDisplayName(widgetIndex));
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    updateDescription();
}

void DashboardTile::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    update();
}

void DashboardTile::setOpenState(bool open)
{
    if (m_open == open)
        return;
    m_open = open;
    updateDescription();
    update();
}

void DashboardTile::setAvailable(bool available)
{
    m_available = available;
    updateDescription();
    update();
}

void DashboardTile::setColors(const QColor &text, const QColor &accent)
{
    m_text = text;
    m_accent = accent;
    update();
}

void DashboardTile::updateDescription()
{
    const QString name = WidgetDisplayName(m_index);
    QString state;
    if (!m_available) {
        setToolTip(tr("%1 is not part of this version").arg(name));
        state = tr("not available");
    } else if (m_open) {
        setToolTip(tr("%1 is open: double-click or press Enter to close it").arg(name));
        state = tr("open");
    } else {
        setToolTip(tr("Double-click or press Enter to open %1").arg(name));
        state = tr("closed");
    }
    setAccessibleName(name);
    setAccessibleDescription(state);
}

QSize DashboardTile::sizeHint() const
{
    const QFontMetrics fm(font());
    const int width = qMax(fm.horizontalAdvance(QStringLiteral("Whiteboard")) + fm.height() * 2, fm.height() * 7);
    return QSize(width, fm.height() * 6);
}

QSize DashboardTile::minimumSizeHint() const
{
    const QFontMetrics fm(font());
    return QSize(fm.height() * 5, fm.height() * 5);
}

void DashboardTile::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics fm(font());
    const qreal radius = fm.height() * 0.45;
    const QRectF box = QRectF(rect()).adjusted(2, 2, -2, -2);

    QColor fill = m_text;
    fill.setAlphaF(m_hovered && m_available ? 0.14 : 0.07);
    if (m_open) {
        fill = m_accent;
        fill.setAlphaF(0.22);
    }
    QPen border(m_selected ? m_accent : QColor(m_text.red(), m_text.green(), m_text.blue(), 60));
    border.setWidthF(m_selected ? 2.5 : 1.0);
    p.setPen(border);
    p.setBrush(fill);
    p.drawRoundedRect(box, radius, radius);

    if (hasFocus()) {
        QPen focus(m_text, 1, Qt::DotLine);
        p.setPen(focus);
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(box.adjusted(4, 4, -4, -4), radius * 0.7, radius * 0.7);
    }

    QColor ink = m_text;
    if (!m_available)
        ink.setAlphaF(0.35);
    const qreal glyphSide = qMin(box.width(), box.height()) * 0.42;
    const QRectF glyphBox(box.center().x() - glyphSide / 2, box.top() + fm.height() * 0.6, glyphSide, glyphSide);
    WidgetGlyphs::paint(p, m_index, glyphBox, m_open ? m_accent.darker(110) : ink);

    p.setPen(ink);
    QFont nameFont = font();
    nameFont.setBold(m_open);
    p.setFont(nameFont);
    const QRectF nameBox(box.left(), glyphBox.bottom() + fm.height() * 0.3, box.width(), fm.height() * 1.2);
    p.drawText(nameBox, Qt::AlignCenter, fm.elidedText(text(), Qt::ElideRight, int(box.width()) - 8));

    // A small dot marks an open widget, so the state does not depend on colour alone.
    if (m_open) {
        const qreal dot = fm.height() * 0.35;
        p.setPen(Qt::NoPen);
        p.setBrush(m_accent);
        p.drawEllipse(QRectF(box.right() - dot * 2.2, box.top() + dot * 1.2, dot, dot));
    }
}

void DashboardTile::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setFocus(Qt::MouseFocusReason);
        emit selectRequested(m_index);
    }
    QAbstractButton::mousePressEvent(event);
}

void DashboardTile::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_available)
        emit toggleRequested(m_index);
}

void DashboardTile::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (m_available)
            emit toggleRequested(m_index);
        return;
    case Qt::Key_Left:
        emit moveRequested(m_index, -1, 0);
        return;
    case Qt::Key_Right:
        emit moveRequested(m_index, 1, 0);
        return;
    case Qt::Key_Up:
        emit moveRequested(m_index, 0, -1);
        return;
    case Qt::Key_Down:
        emit moveRequested(m_index, 0, 1);
        return;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void DashboardTile::focusInEvent(QFocusEvent *event)
{
    QAbstractButton::focusInEvent(event);
    emit selectRequested(m_index);
}

void DashboardTile::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void DashboardTile::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}
