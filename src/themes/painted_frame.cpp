#include "themes/painted_frame.h"

#include "themes/theme_painter.h"

#include <QEvent>
#include <QPainter>

PaintedFrame::PaintedFrame(const QString &objectName, QWidget *parent) : QWidget(parent)
{
    setObjectName(objectName);
    // The frame covers itself completely, so Qt need not clear it first.
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PaintedFrame::setGradient(int angle, OleColor start, OleColor end)
{
    if (angle == m_angle && start == m_start && end == m_end)
        return;
    m_angle = angle;
    m_start = start;
    m_end = end;
    invalidate();
}

void PaintedFrame::setBackgroundColor(OleColor color)
{
    if (color == m_background)
        return;
    m_background = color;
    invalidate();
}

QImage PaintedFrame::renderedImage()
{
    ensureRendered();
    return m_cache;
}

void PaintedFrame::paintEvent(QPaintEvent *)
{
    ensureRendered();
    QPainter p(this);
    p.drawImage(QPoint(0, 0), m_cache);
}

void PaintedFrame::changeEvent(QEvent *event)
{
    // System-colour references follow the palette.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
        invalidate();
    QWidget::changeEvent(event);
}

void PaintedFrame::invalidate()
{
    m_cacheValid = false;
    update();
}

void PaintedFrame::ensureRendered()
{
    const qreal dpr = devicePixelRatioF();
    const QSize pixels = size() * dpr;
    if (m_cacheValid && m_cache.size() == pixels && qFuzzyCompare(m_cache.devicePixelRatio(), dpr))
        return;
    m_cache = QImage(pixels, QImage::Format_RGB32);
    m_cache.setDevicePixelRatio(dpr);
    m_cache.fill(ResolveColor(m_background));
    // A frame under 2 pixels keeps its plain background.
    PaintGradient(m_cache, m_angle, m_start, m_end);
    m_cacheValid = true;
    ++m_renderCount;
}
