#pragma once

#include "weather/weather_forecast.h"

#include <QJsonObject>

// The hours and days ahead in the sources' replies, read from the same reply as the current
// conditions (Open-Meteo's "hourly" and "daily"; met.no's whole time series).

// Open-Meteo: times are the place's own (the request asks for timezone=auto) with the offset
// in "utc_offset_seconds"; the units are those named in "hourly_units" and "daily_units".
WeatherForecast ParseOpenMeteoForecast(const QJsonObject &root);

// met.no: times are UTC and the reply says nothing of the place's time zone, so the caller
// gives the offset to group the hours into the place's days.
WeatherForecast ParseMetNoForecast(const QJsonObject &root, int utcOffsetSeconds);

// An offset for a place nobody has named a zone for: its solar time, one hour per 15 degrees.
int SolarOffsetSeconds(double longitude);
