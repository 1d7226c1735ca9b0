#include "notes/document_tab_bar.h"

#include "themes/theme_painter.h"

#include <QEvent>
#include <QPainter>
#include <QToolButton>

namespace {
QColor Blend(const QColor &a, const QColor &b, int weight)
{
    return ResolveColor(BlendColor(ToOleColor(a), ToOleColor(b), weight));
}
} // namespace

DocumentTabBar::DocumentTabBar(QWidget *parent) : QTabBar(parent)
{
    setUsesScrollButtons(true);
    // Room for the two scroll buttons, which QTabBar makes with itself.
    setStyleSheet(QStringLiteral("QTabBar::scroller { width: 48px; }"));
    for (QToolButton *scroll : findChildren<QToolButton *>())
        scroll->installEventFilter(this);
}

void DocumentTabBar::setScrollButtonColours(QWidget *page, const QColor &frame)
{
    m_page = page;
    m_frame = frame;
    for (QToolButton *button : findChildren<QToolButton *>())
        button->update();
}

bool DocumentTabBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint) {
        if (auto *button = qobject_cast<QToolButton *>(watched); button && button->parent() == this) {
            paintScrollButton(button);
            return true;
        }
    }
    return QTabBar::eventFilter(watched, event);
}

void DocumentTabBar::paintScrollButton(QToolButton *button) const
{
    const QPalette page = m_page ? m_page->palette() : palette();
    const QColor ink = page.color(QPalette::Text);
    const QColor paper = page.color(QPalette::Base);
    QPainter painter(button);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(button->rect()).adjusted(1.5, 2.5, -1.5, -2.5);
    painter.setPen(QPen(button->underMouse() && button->isEnabled() ? ink : m_frame, 1));
    painter.setBrush(button->isDown() ? Blend(ink, paper, 40) : paper);
    painter.drawRoundedRect(box, 3, 3);

    const qreal half = qMin(box.width(), box.height()) * 0.22;
    const QPointF centre = box.center();
    const Qt::ArrowType type = button->arrowType();
    const qreal direction = type == Qt::LeftArrow || type == Qt::UpArrow ? -1 : 1;
    QPolygonF triangle;
    if (type == Qt::UpArrow || type == Qt::DownArrow)
        triangle << centre + QPointF(-half * 1.3, -half * direction) << centre + QPointF(half * 1.3, -half * direction)
                 << centre + QPointF(0, half * direction);
    else
        triangle << centre + QPointF(-half * direction, -half * 1.3) << centre + QPointF(-half * direction, half * 1.3)
                 << centre + QPointF(half * direction, 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(button->isEnabled() ? ink : Blend(ink, paper, 80));
    painter.drawPolygon(triangle);
}
