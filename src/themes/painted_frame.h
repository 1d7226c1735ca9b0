#pragma once

#include "themes/gradient_painter.h"
#include "themes/theme.h"

#include <QImage>
#include <QWidget>

// A rectangle filled with the theme's angled two-colour gradient: the "pfrBAR" and "pfrPANEL"
// areas of every themed window. The gradient's lines are worked out once and kept until the
// colours, the angle or the size change; a paint fills the background and draws them. No
// picture of the whole frame is kept: the lines are few (none at all for the gradients' usual
// turn, see gradient_painter.h), and an image the size of the window cost its memory, and at
// the first paint more time to fault in than to paint.
class PaintedFrame : public QWidget
{
    Q_OBJECT
public:
    explicit PaintedFrame(const QString &objectName, QWidget *parent = nullptr);

    void setGradient(int angle, OleColor start, OleColor end);
    int angle() const { return m_angle; }
    OleColor startColor() const { return m_start; }
    OleColor endColor() const { return m_end; }

    // The colour under the gradient (the theme's main colour).
    void setBackgroundColor(OleColor color);
    OleColor backgroundColor() const { return m_background; }

    // The frame as it paints itself at its current size (rendered now if not cached).
    QImage renderedImage();
    // How many times the gradient's lines have been worked out; a repaint with the kept ones
    // does not count.
    int renderCount() const { return m_renderCount; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void invalidate();
    void ensureLines();
    void paintFrame(QPainter &painter, const QRect &area);

    int m_angle = 0;
    OleColor m_start = 0;
    OleColor m_end = 0;
    OleColor m_background = 13855252;
    QList<GradientLine> m_lines;
    QSize m_linesSize;
    bool m_linesValid = false;
    int m_renderCount = 0;
};
