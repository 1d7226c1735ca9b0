// Placeholder until the theme module lands.
#include "themes/painted_frame.h"

#include "themes/theme_painter.h"

#include <QLinearGradient>
#include <QPainter>

PaintedFrame::PaintedFrame(const QString &objectName, QWidget *parent)
    : QWidget(parent)
{
    setObjectName(objectName);
}

void PaintedFrame::setGradient(int angle, OleColor start, OleColor end)
{
    m_angle = angle;
    m_start = start;
    m_end = end;
    m_cacheValid = false;
    update();
}

void PaintedFrame::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    QLinearGradient g(rect().topLeft(), rect().bottomLeft());
    g.setColorAt(0, ResolveColor(m_start));
    g.setColorAt(1, ResolveColor(m_end));
    p.fillRect(rect(), g);
}
