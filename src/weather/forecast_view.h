#pragma once

#include "weather/forecast_painter.h"

#include <QPixmap>
#include <QWidget>
#include <memory>

// The forecast panel inside the weather widget: the drawing of ForecastPainter at the view's
// size, with a line and a tooltip giving the exact values under the pointer.
class ForecastView : public QWidget
{
    Q_OBJECT
public:
    explicit ForecastView(QWidget *parent = nullptr);
    ~ForecastView() override;

    void setForecast(const WeatherForecast &forecast);
    void setStyle(const ForecastStyle &style);
    // Moves the drawing on to `now`; repaints only when that changes the hours or days shown.
    void setNow(const QDateTime &now);

    // The exact values at a point of the view (what the tooltip says there).
    QString describeAt(const QPointF &point);
    const ForecastPainter &painter();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void rebuild();
    QRectF drawingArea() const;

    WeatherForecast m_forecast;
    ForecastStyle m_style;
    QDateTime m_now;
    std::unique_ptr<ForecastPainter> m_painter;
    QPixmap m_drawing; // the last drawing, at the view's size and pixel ratio
    qreal m_hoverX = -1;
};
