#pragma once

#include "themes/theme.h"

#include <QImage>
#include <QWidget>

// A rectangle filled with the theme's angled two-colour gradient: the "pfrBAR" and "pfrPANEL"
// areas of every themed window. The gradient is rendered once into an image and reused until
// the colours, the angle or the size change.
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
    // How many times the gradient has been rendered; a repaint from the cache does not count.
    int renderCount() const { return m_renderCount; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void invalidate();
    void ensureRendered();

    int m_angle = 0;
    OleColor m_start = 0;
    OleColor m_end = 0;
    OleColor m_background = 13855252;
    QImage m_cache;
    bool m_cacheValid = false;
    int m_renderCount = 0;
};
