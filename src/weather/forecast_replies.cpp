#include "weather/forecast_replies.h"

#include "weather/weather_conditions.h"

#include <QJsonArray>
#include <QMap>
#include <cmath>

namespace {

QJsonValue at(QJsonValue value, std::initializer_list<const char *> path)
{
    for (const char *key : path)
        value = value.toObject().value(QLatin1String(key));
    return value;
}

double numberAt(const QJsonArray &values, qsizetype i, double scale = 1.0)
{
    const QJsonValue v = values.at(i);
    return v.isDouble() && std::isfinite(v.toDouble()) ? v.toDouble() * scale : qQNaN();
}

int chanceAt(const QJsonArray &values, qsizetype i)
{
    const double v = numberAt(values, i);
    return std::isnan(v) ? -1 : qBound(0, int(std::lround(v)), 100);
}

double temperatureCelsius(double value, const QString &unit)
{
    return unit.contains(QLatin1Char('F')) ? CelsiusFromFahrenheitExact(value) : value;
}

double rainScale(const QString &unit)
{
    return unit.startsWith(QLatin1String("inch")) ? 25.4 : 1.0;
}

double windScale(const QString &unit)
{
    if (unit == QLatin1String("m/s"))
        return 3.6;
    if (unit == QLatin1String("mp/h") || unit == QLatin1String("mph"))
        return 1.609344;
    if (unit == QLatin1String("kn"))
        return 1.852;
    return 1.0;
}

// "2024-05-18T23:00" in the place's time, to UTC.
QDateTime placeTime(const QString &text, int offset)
{
    const QDate date = QDate::fromString(text.left(10), Qt::ISODate);
    const QTime time = QTime::fromString(text.mid(11, 5), QStringLiteral("HH:mm"));
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(date, time, Qt::OffsetFromUTC, offset).toUTC();
}

QList<ForecastHour> openMeteoHours(const QJsonObject &root, int offset)
{
    const QJsonObject hourly = root.value(QLatin1String("hourly")).toObject();
    const QJsonObject units = root.value(QLatin1String("hourly_units")).toObject();
    const QJsonArray times = hourly.value(QLatin1String("time")).toArray();
    const QJsonArray temperature = hourly.value(QLatin1String("temperature_2m")).toArray();
    const QJsonArray code = hourly.value(QLatin1String("weather_code")).toArray();
    const QJsonArray isDay = hourly.value(QLatin1String("is_day")).toArray();
    const QJsonArray chance = hourly.value(QLatin1String("precipitation_probability")).toArray();
    const QJsonArray rain = hourly.value(QLatin1String("precipitation")).toArray();
    const QJsonArray wind = hourly.value(QLatin1String("wind_speed_10m")).toArray();
    const QString temperatureUnit = units.value(QLatin1String("temperature_2m")).toString();
    const double rainFactor = rainScale(units.value(QLatin1String("precipitation")).toString());
    const double windFactor = windScale(units.value(QLatin1String("wind_speed_10m")).toString());

    QList<ForecastHour> hours;
    for (qsizetype i = 0; i < times.size(); ++i) {
        ForecastHour hour;
        hour.time = placeTime(times.at(i).toString(), offset);
        if (!hour.time.isValid() || (!hours.isEmpty() && hour.time <= hours.last().time))
            continue;
        const double value = numberAt(temperature, i);
        hour.celsius = std::isnan(value) ? value : temperatureCelsius(value, temperatureUnit);
        if (code.at(i).isDouble()) {
            // Without is_day, the place's daytime hours count as day.
            const int localHour = hour.time.toOffsetFromUtc(offset).time().hour();
            const bool day =
                isDay.at(i).isDouble() ? isDay.at(i).toInt() != 0 : localHour >= 6 && localHour < 18;
            hour.code = ConditionFromWmo(code.at(i).toInt(), day).code;
        }
        hour.rainChance = chanceAt(chance, i);
        hour.rainMm = numberAt(rain, i, rainFactor);
        hour.windKmh = numberAt(wind, i, windFactor);
        hours.append(hour);
    }
    return hours;
}

QList<ForecastDay> openMeteoDays(const QJsonObject &root)
{
    const QJsonObject daily = root.value(QLatin1String("daily")).toObject();
    const QJsonObject units = root.value(QLatin1String("daily_units")).toObject();
    const QJsonArray times = daily.value(QLatin1String("time")).toArray();
    const QJsonArray code = daily.value(QLatin1String("weather_code")).toArray();
    const QJsonArray high = daily.value(QLatin1String("temperature_2m_max")).toArray();
    const QJsonArray low = daily.value(QLatin1String("temperature_2m_min")).toArray();
    const QJsonArray rain = daily.value(QLatin1String("precipitation_sum")).toArray();
    const QJsonArray chance = daily.value(QLatin1String("precipitation_probability_max")).toArray();
    const QString highUnit = units.value(QLatin1String("temperature_2m_max")).toString();
    const QString lowUnit = units.value(QLatin1String("temperature_2m_min")).toString();
    const double rainFactor = rainScale(units.value(QLatin1String("precipitation_sum")).toString());

    QList<ForecastDay> days;
    for (qsizetype i = 0; i < times.size(); ++i) {
        ForecastDay day;
        day.date = QDate::fromString(times.at(i).toString(), Qt::ISODate);
        if (!day.date.isValid() || (!days.isEmpty() && day.date <= days.last().date))
            continue;
        if (code.at(i).isDouble())
            day.code = ConditionFromWmo(code.at(i).toInt(), true).code;
        const double h = numberAt(high, i);
        const double l = numberAt(low, i);
        day.highCelsius = std::isnan(h) ? h : temperatureCelsius(h, highUnit);
        day.lowCelsius = std::isnan(l) ? l : temperatureCelsius(l, lowUnit);
        day.rainMm = numberAt(rain, i, rainFactor);
        day.rainChance = chanceAt(chance, i);
        days.append(day);
    }
    return days;
}

double detail(const QJsonValue &entry, const char *period, const char *name)
{
    const QJsonValue v = at(entry, {"data", period, "details", name});
    return v.isDouble() && std::isfinite(v.toDouble()) ? v.toDouble() : qQNaN();
}

QString symbol(const QJsonValue &entry, const char *period)
{
    return at(entry, {"data", period, "summary", "symbol_code"}).toString();
}

// What the hours of one of the place's days add up to.
struct DayTally
{
    double high = qQNaN();
    double low = qQNaN();
    double rain = qQNaN();
    int chance = -1;
    int samples = 0;
    int middayDistance = 24 * 60; // minutes from 12:00 of the entry whose symbol the day takes
    QString symbol;
};

void tally(DayTally &day, const QDateTime &local, const QJsonValue &entry, double celsius, double rain,
           int chance)
{
    if (!std::isnan(celsius)) {
        day.high = std::isnan(day.high) ? celsius : qMax(day.high, celsius);
        day.low = std::isnan(day.low) ? celsius : qMin(day.low, celsius);
    }
    if (!std::isnan(rain))
        day.rain = (std::isnan(day.rain) ? 0.0 : day.rain) + rain;
    day.chance = qMax(day.chance, chance);
    ++day.samples;
    // The day's picture is that of the entry nearest its midday.
    QString picture = symbol(entry, "next_6_hours");
    if (picture.isEmpty())
        picture = symbol(entry, "next_1_hours");
    const int distance = std::abs(local.time().hour() * 60 + local.time().minute() - 12 * 60);
    if (!picture.isEmpty() && distance < day.middayDistance) {
        day.middayDistance = distance;
        day.symbol = picture;
    }
}

} // namespace

WeatherForecast ParseOpenMeteoForecast(const QJsonObject &root)
{
    WeatherForecast forecast;
    const int offset = root.value(QLatin1String("utc_offset_seconds")).toInt(0);
    forecast.utcOffsetSeconds = qBound(-14 * 3600, offset, 14 * 3600);
    forecast.timeZone = root.value(QLatin1String("timezone")).toString();
    forecast.hours = openMeteoHours(root, forecast.utcOffsetSeconds);
    forecast.days = openMeteoDays(root);
    return forecast;
}

WeatherForecast ParseMetNoForecast(const QJsonObject &root, int utcOffsetSeconds)
{
    WeatherForecast forecast;
    forecast.utcOffsetSeconds = qBound(-14 * 3600, utcOffsetSeconds, 14 * 3600);
    const QJsonArray series = at(root, {"properties", "timeseries"}).toArray();
    QMap<QDate, DayTally> days;
    QDateTime coveredUntil; // six-hour amounts count only where no hourly one did
    for (const QJsonValue &entry : series) {
        ForecastHour hour;
        hour.time =
            QDateTime::fromString(entry.toObject().value(QLatin1String("time")).toString(), Qt::ISODate);
        if (!hour.time.isValid() ||
            (!forecast.hours.isEmpty() && hour.time.toUTC() <= forecast.hours.last().time))
            continue;
        hour.time = hour.time.toUTC();
        hour.celsius = detail(entry, "instant", "air_temperature");
        const double wind = detail(entry, "instant", "wind_speed");
        hour.windKmh = std::isnan(wind) ? wind : wind * 3.6;
        QString picture = symbol(entry, "next_1_hours");
        if (picture.isEmpty())
            picture = symbol(entry, "next_6_hours");
        if (!picture.isEmpty())
            hour.code = ConditionFromMetNoSymbol(picture).code;
        hour.rainMm = detail(entry, "next_1_hours", "precipitation_amount");
        const double chance = detail(entry, "next_1_hours", "probability_of_precipitation");
        hour.rainChance = std::isnan(chance) ? -1 : qBound(0, int(std::lround(chance)), 100);
        forecast.hours.append(hour);

        double dayRain = hour.rainMm;
        if (!std::isnan(dayRain)) {
            coveredUntil = hour.time.addSecs(3600);
        } else if (!coveredUntil.isValid() || hour.time >= coveredUntil) {
            dayRain = detail(entry, "next_6_hours", "precipitation_amount");
            if (!std::isnan(dayRain))
                coveredUntil = hour.time.addSecs(6 * 3600);
        }
        const QDateTime local = forecast.local(hour.time);
        tally(days[local.date()], local, entry, hour.celsius, dayRain, hour.rainChance);
    }
    for (auto it = days.cbegin(); it != days.cend(); ++it) {
        // A day the series only touches (its last entry at midnight) says nothing of its high
        // and low.
        if (it.value().samples < 2)
            continue;
        ForecastDay day;
        day.date = it.key();
        day.code = ConditionFromMetNoSymbol(it.value().symbol).code;
        day.highCelsius = it.value().high;
        day.lowCelsius = it.value().low;
        day.rainMm = it.value().rain;
        day.rainChance = it.value().chance;
        forecast.days.append(day);
    }
    return forecast;
}

int SolarOffsetSeconds(double longitude)
{
    if (!std::isfinite(longitude))
        return 0;
    return qBound(-12, int(std::lround(longitude / 15.0)), 12) * 3600;
}
