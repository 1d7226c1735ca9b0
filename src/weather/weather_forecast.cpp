#include "weather/weather_forecast.h"

#include <QRegularExpression>
#include <cmath>

namespace {

// The longest block read back: a week of hours and days is about 8 KB.
constexpr int MaxLines = 400;

bool sameNumber(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || a == b;
}

QByteArray number(double value)
{
    return std::isfinite(value) ? QByteArray::number(value, 'f', 1) : QByteArray("-");
}

QByteArray chance(int value)
{
    return value >= 0 ? QByteArray::number(value) : QByteArray("-");
}

double readNumber(const QByteArray &text)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    return ok && std::isfinite(value) && std::abs(value) < 1e6 ? value : qQNaN();
}

int readChance(const QByteArray &text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && value >= 0 && value <= 100 ? value : -1;
}

int readCode(const QByteArray &text)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    return ok && ((value >= 0 && value <= 47) || value == 3200) ? value : 3200;
}

// A zone name as it may stand in an attribute: letters, digits and _ / + -.
QByteArray safeZone(const QString &zone)
{
    static const QRegularExpression unsafe(QStringLiteral("[^A-Za-z0-9_/+\\-]"));
    return QString(zone).remove(unsafe).left(64).toLatin1();
}

QByteArray attribute(const QByteArray &tag, const char *name)
{
    const QByteArray key = QByteArray(name) + "=\"";
    const qsizetype start = tag.indexOf(key);
    if (start < 0)
        return {};
    const qsizetype from = start + key.size();
    const qsizetype end = tag.indexOf('"', from);
    return end < 0 ? QByteArray() : tag.mid(from, end - from);
}

bool readHour(const QList<QByteArray> &fields, ForecastHour *hour)
{
    if (fields.size() < 7)
        return false;
    hour->time = QDateTime::fromString(QString::fromLatin1(fields.at(1)), Qt::ISODate);
    if (!hour->time.isValid())
        return false;
    hour->time = hour->time.toUTC();
    hour->celsius = readNumber(fields.at(2));
    hour->code = readCode(fields.at(3));
    hour->rainChance = readChance(fields.at(4));
    hour->rainMm = readNumber(fields.at(5));
    hour->windKmh = readNumber(fields.at(6));
    return true;
}

bool readDay(const QList<QByteArray> &fields, ForecastDay *day)
{
    if (fields.size() < 7)
        return false;
    day->date = QDate::fromString(QString::fromLatin1(fields.at(1)), Qt::ISODate);
    if (!day->date.isValid())
        return false;
    day->code = readCode(fields.at(2));
    day->highCelsius = readNumber(fields.at(3));
    day->lowCelsius = readNumber(fields.at(4));
    day->rainMm = readNumber(fields.at(5));
    day->rainChance = readChance(fields.at(6));
    return true;
}

} // namespace

QList<ForecastHour> WeatherForecast::hoursFrom(const QDateTime &now, int count) const
{
    QList<ForecastHour> shown;
    const QDateTime from = now.toUTC().addSecs(-3600);
    for (const ForecastHour &hour : hours) {
        if (hour.time <= from)
            continue;
        if (shown.size() >= count)
            break;
        shown.append(hour);
    }
    return shown;
}

QList<ForecastDay> WeatherForecast::daysFrom(const QDateTime &now, int count) const
{
    QList<ForecastDay> shown;
    const QDate today = local(now.toUTC()).date();
    for (const ForecastDay &day : days) {
        if (day.date < today)
            continue;
        if (shown.size() >= count)
            break;
        shown.append(day);
    }
    return shown;
}

bool WeatherForecast::operator==(const WeatherForecast &other) const
{
    if (utcOffsetSeconds != other.utcOffsetSeconds || timeZone != other.timeZone ||
        hours.size() != other.hours.size() || days.size() != other.days.size())
        return false;
    for (qsizetype i = 0; i < hours.size(); ++i) {
        const ForecastHour &a = hours.at(i);
        const ForecastHour &b = other.hours.at(i);
        if (a.time != b.time || !sameNumber(a.celsius, b.celsius) || a.code != b.code ||
            a.rainChance != b.rainChance || !sameNumber(a.rainMm, b.rainMm) ||
            !sameNumber(a.windKmh, b.windKmh))
            return false;
    }
    for (qsizetype i = 0; i < days.size(); ++i) {
        const ForecastDay &a = days.at(i);
        const ForecastDay &b = other.days.at(i);
        if (a.date != b.date || a.code != b.code || !sameNumber(a.highCelsius, b.highCelsius) ||
            !sameNumber(a.lowCelsius, b.lowCelsius) || !sameNumber(a.rainMm, b.rainMm) ||
            a.rainChance != b.rainChance)
            return false;
    }
    return true;
}

QByteArray RenderForecastBlock(const WeatherForecast &forecast)
{
    if (forecast.isEmpty())
        return {};
    QByteArray block = "<forecast offset=\"" + QByteArray::number(forecast.utcOffsetSeconds) + "\" zone=\"" +
                       safeZone(forecast.timeZone) + "\">\n";
    for (const ForecastHour &h : forecast.hours) {
        block += "H " + h.time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm'Z'")).toLatin1() + ' ' +
                 number(h.celsius) + ' ' + QByteArray::number(h.code) + ' ' + chance(h.rainChance) + ' ' +
                 number(h.rainMm) + ' ' + number(h.windKmh) + '\n';
    }
    for (const ForecastDay &d : forecast.days) {
        block += "D " + d.date.toString(Qt::ISODate).toLatin1() + ' ' + QByteArray::number(d.code) + ' ' +
                 number(d.highCelsius) + ' ' + number(d.lowCelsius) + ' ' + number(d.rainMm) + ' ' +
                 chance(d.rainChance) + '\n';
    }
    return block + "</forecast>";
}

WeatherForecast ParseForecastBlock(const QByteArray &document)
{
    WeatherForecast forecast;
    const qsizetype open = document.indexOf("<forecast ");
    if (open < 0)
        return forecast;
    const qsizetype tagEnd = document.indexOf('>', open);
    const qsizetype close = document.indexOf("</forecast>", open);
    if (tagEnd < 0 || close < tagEnd)
        return forecast;
    const QByteArray tag = document.mid(open, tagEnd - open);
    bool ok = false;
    const int offset = attribute(tag, "offset").toInt(&ok);
    // Real offsets lie between -12 and +14 hours.
    forecast.utcOffsetSeconds = ok && offset >= -14 * 3600 && offset <= 14 * 3600 ? offset : 0;
    forecast.timeZone = QString::fromLatin1(safeZone(QString::fromLatin1(attribute(tag, "zone"))));
    const QList<QByteArray> lines = document.mid(tagEnd + 1, close - tagEnd - 1).split('\n');
    int read = 0;
    for (const QByteArray &line : lines) {
        if (++read > MaxLines)
            break;
        const QList<QByteArray> fields = line.simplified().split(' ');
        ForecastHour hour;
        ForecastDay day;
        if (fields.first() == "H" && readHour(fields, &hour) &&
            (forecast.hours.isEmpty() || forecast.hours.last().time < hour.time))
            forecast.hours.append(hour);
        else if (fields.first() == "D" && readDay(fields, &day) &&
                 (forecast.days.isEmpty() || forecast.days.last().date < day.date))
            forecast.days.append(day);
    }
    return forecast;
}

double FahrenheitFromCelsius(double celsius)
{
    return celsius * 9.0 / 5.0 + 32.0;
}

double CelsiusFromFahrenheitExact(double fahrenheit)
{
    return (fahrenheit - 32.0) * 5.0 / 9.0;
}
