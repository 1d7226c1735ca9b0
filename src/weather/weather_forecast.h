#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QtNumeric>

// The hours and days ahead of one place, as the weather sources give them. Values are kept in
// one set of units (Celsius, millimetres, km/h) whatever the source used; the view converts to
// the user's. A value a source did not give is NaN (numbers) or -1 (chance of rain).
struct ForecastHour
{
    QDateTime time; // UTC, the start of the hour
    double celsius = qQNaN();
    int code = 3200;     // classic condition code
    int rainChance = -1; // percent
    double rainMm = qQNaN();
    double windKmh = qQNaN();
};

struct ForecastDay
{
    QDate date; // the place's own calendar day
    int code = 3200;
    double highCelsius = qQNaN();
    double lowCelsius = qQNaN();
    double rainMm = qQNaN();
    int rainChance = -1;
};

struct WeatherForecast
{
    static constexpr int HoursShown = 48;
    static constexpr int DaysShown = 7;

    int utcOffsetSeconds = 0;  // the place's offset from UTC when the forecast was made
    QString timeZone;          // "Europe/London"; empty when the source did not say
    QList<ForecastHour> hours; // in time order
    QList<ForecastDay> days;   // in date order

    bool isEmpty() const { return hours.isEmpty() && days.isEmpty(); }
    // The place's local time of a moment.
    QDateTime local(const QDateTime &utc) const { return utc.toOffsetFromUtc(utcOffsetSeconds); }
    // Up to `count` hours from the one that holds `now` on.
    QList<ForecastHour> hoursFrom(const QDateTime &now, int count = HoursShown) const;
    // Up to `count` days from the place's date at `now` on.
    QList<ForecastDay> daysFrom(const QDateTime &now, int count = DaysShown) const;

    bool operator==(const WeatherForecast &other) const;
};

// The forecast as a block of the feed document, after the item's description: one line per
// hour and per day, plain ASCII without commas or quotes, so the feed's own reader passes it by.
//   <forecast offset="3600" zone="Europe/London">
//   H 2024-05-18T12:00Z 15.1 26 40 0.2 12.5
//   D 2024-05-18 26 17.0 9.5 2.5 80
//   </forecast>
QByteArray RenderForecastBlock(const WeatherForecast &forecast);
// Reads the block back from a feed document; an empty forecast when there is none. Lines that
// do not read are skipped, so a damaged block loses only those lines.
WeatherForecast ParseForecastBlock(const QByteArray &document);

// Unit conversions for display.
double FahrenheitFromCelsius(double celsius);
double CelsiusFromFahrenheitExact(double fahrenheit);
