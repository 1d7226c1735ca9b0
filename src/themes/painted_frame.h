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

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int m_angle = 0;
    OleColor m_start = 0;
    OleColor m_end = 0;
    QImage m_cache;
    bool m_cacheValid = false;
};
