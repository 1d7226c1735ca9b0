#pragma once

#include "weather/weather_forecast.h"

#include <QByteArray>
#include <QString>
#include <optional>

// The pure half of the live weather adapter: the sources' condition codes, their replies and
// the feed document made from them.

// Current conditions read from one of the open weather sources.
struct CurrentConditions
{
    double fahrenheit = 0;
    int code = 3200; // classic condition code (0-47, 3200 = not available)
    QString text;    // "Partly Cloudy"; never contains a comma
    QString source;  // "Open-Meteo" or "met.no"
    WeatherForecast forecast; // the hours and days ahead, from the same reply
};

// The classic code and text of a condition.
struct ClassicCondition
{
    int code = 3200;
    QString text = QStringLiteral("Not Available");
};

// Open-Meteo's WMO weather code to the classic code and text, by day or by night.
ClassicCondition ConditionFromWmo(int wmoCode, bool day);
// met.no's symbol code ("partlycloudy_day", "lightssleetshowersandthunder") to the classic one.
ClassicCondition ConditionFromMetNoSymbol(const QString &symbolCode);

// The sources' replies; nullopt with a sentence for the user in *problem when the reply is
// not what the source sends (an error document, not JSON, a missing field).
std::optional<CurrentConditions> ParseOpenMeteoReply(const QByteArray &json, QString *problem);
// met.no gives UTC times only; its days are grouped by `utcOffsetSeconds`, the place's offset.
std::optional<CurrentConditions> ParseMetNoReply(const QByteArray &json, QString *problem,
                                                 int utcOffsetSeconds = 0);

// The RSS document the feed parser expects, for a place ("London") in a region
// ("United Kingdom", or a state code), with `host` in the picture's address and the forecast
// in a block of its own after the description.
QByteArray RenderFeedDocument(const QString &place, const QString &region, const CurrentConditions &now,
                              const QString &host);
