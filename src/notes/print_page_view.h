#pragma once

#include <QImage>
#include <QWidget>

class PrintEngine;

// The preview area of fnte_PRN: the current page as an image on a grey desk, with a shadow,
// placed by the print engine. It sits in a scroll area; at large zooms it grows past it.
// Ctrl with the wheel zooms; the wheel alone scrolls.
class PrintPageView : public QWidget
{
    Q_OBJECT
public:
    explicit PrintPageView(PrintEngine *engine, QWidget *parent = nullptr);

    // Renders the engine's current page again (the page, the zoom or the layout changed).
    void refreshPage();
    // Fits the view to the area it is shown in.
    void setAreaSize(const QSize &area);
    QSize sizeHint() const override;

    qreal dotsPerMm() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    QRect pageRect() const;

    PrintEngine *m_engine;
    QImage m_image;
    QSize m_area;
};
