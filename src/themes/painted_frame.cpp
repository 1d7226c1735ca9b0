#include "themes/painted_frame.h"

#include "themes/theme_painter.h"

#include <QEvent>
#include <QPaintEvent>
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
    const qreal dpr = devicePixelRatioF();
    QImage image(size() * dpr, QImage::Format_RGB32);
    image.setDevicePixelRatio(dpr);
    QPainter painter(&image);
    paintFrame(painter, rect());
    return image;
}

void PaintedFrame::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    paintFrame(painter, event->rect());
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
    m_linesValid = false;
    update();
}

void PaintedFrame::ensureLines()
{
    if (m_linesValid && m_linesSize == size())
        return;
    // A frame under 2 pixels keeps its plain background.
    m_lines = GradientLines(size(), m_angle, m_start, m_end);
    m_linesSize = size();
    m_linesValid = true;
    ++m_renderCount;
}

void PaintedFrame::paintFrame(QPainter &painter, const QRect &area)
{
    ensureLines();
    painter.fillRect(area, ResolveColor(m_background));
    if (m_lines.isEmpty())
        return;
    painter.setClipRect(area);
    PaintGradientLines(painter, m_lines);
}
