#pragma once

#include "weather/weather_forecast.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QList>
#include <QRectF>
#include <QString>

class QPainter;

// How the forecast is drawn: everything in the panel's text colour at different strengths,
// so it reads on whatever panel the theme paints behind it.
struct ForecastStyle
{
    QColor ink = Qt::black;
    QFont font;
    QString glyphFamily; // the weather symbol font; empty: the condition codes' glyphs are skipped
    bool fahrenheit = false;
};

// Draws the hours and days ahead: a temperature curve over the next 48 hours with the rain as
// bars under it and the hour marks in the place's local time, then a row of day cells with the
// weather symbol, high and low, and rain. Also says what lies under a point of the drawing.
class ForecastPainter
{
public:
    ForecastPainter(const WeatherForecast &forecast, const QDateTime &now, const ForecastStyle &style);

    // Lays the drawing out in `area` (after any call here; cheap while the area is the same).
    void layout(const QRectF &area);
    void paint(QPainter &p, const QRectF &area);
    // The dashboard's brief: the next `days` days side by side, symbol over high and low.
    void paintBrief(QPainter &p, const QRectF &area, int days = 2);

    // The exact values under a point of the last layout, or an empty text.
    QString describeAt(const QPointF &point) const;
    // The x of the hour under a point of the chart; negative when none.
    qreal hourLineAt(const QPointF &point) const;
    // The curve's box in the last layout.
    QRectF chartArea() const { return m_chart; }

    // Texts in the user's units: "14°", "57°"; "2.5 mm" or "0.10 in"; "12 km/h" or "7 mph".
    QString temperature(double celsius) const;
    QString rain(double mm) const;
    QString wind(double kmh) const;

    const QList<ForecastHour> &hours() const { return m_hours; }
    const QList<ForecastDay> &days() const { return m_days; }

private:
    double shown(double celsius) const;
    qreal xOf(const QDateTime &time) const;
    qreal yOf(double celsius) const;
    int hourIndexAt(qreal x) const;
    int dayIndexAt(const QPointF &point) const;
    QString dayName(const QDate &date) const;
    void paintEmpty(QPainter &p, const QRectF &area);
    void paintHourMarks(QPainter &p);
    void paintRain(QPainter &p);
    void paintCurve(QPainter &p);
    // The fonts of the day cells, made once for all cells of a drawing.
    struct CellFonts
    {
        CellFonts(const ForecastStyle &style, qreal line);
        QFont text;
        QFont bold;
        QFont symbol;
        QFontMetricsF textMetrics;
        QFontMetricsF boldMetrics;
        QFontMetricsF symbolMetrics;
    };
    void paintDays(QPainter &p);
    void paintDayCell(QPainter &p, const QRectF &cell, const ForecastDay &day, qreal line,
                      const CellFonts &fonts);
    void paintSymbol(QPainter &p, const QRectF &box, int code, const CellFonts &fonts) const;
    QColor ink(qreal alpha) const;

    WeatherForecast m_forecast;
    QDateTime m_now;
    ForecastStyle m_style;
    QList<ForecastHour> m_hours;
    QList<ForecastDay> m_days;
    QDate m_today; // the place's date now
    QRectF m_area;
    QRectF m_chart;    // the curve's box
    QRectF m_rainBand; // the rain bars' box, at the chart's foot
    QRectF m_dayRow;
    double m_low = 0; // the chart's temperature range, in the shown unit
    double m_high = 1;
    double m_rainTop = 1;
};
