#include "weather/weather_conditions.h"

#include "weather/forecast_replies.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <cmath>

namespace {

struct WmoRow
{
    int wmo;
    int dayCode;
    int nightCode;
    const char *text;
};

constexpr WmoRow WmoTable[] = {
    {0, 32, 31, nullptr}, // "Sunny" by day, "Clear" by night: see ConditionFromWmo
    {1, 34, 33, nullptr},
    {2, 30, 29, "Partly Cloudy"},
    {3, 26, 26, "Cloudy"},
    {45, 20, 20, "Fog"},
    {48, 20, 20, "Freezing Fog"},
    {51, 9, 9, "Light Drizzle"},
    {53, 9, 9, "Drizzle"},
    {55, 9, 9, "Heavy Drizzle"},
    {56, 8, 8, "Freezing Drizzle"},
    {57, 8, 8, "Freezing Drizzle"},
    {61, 11, 11, "Light Rain"},
    {63, 12, 12, "Rain"},
    {65, 12, 12, "Heavy Rain"},
    {66, 10, 10, "Freezing Rain"},
    {67, 10, 10, "Heavy Freezing Rain"},
    {71, 13, 13, "Light Snow"},
    {73, 16, 16, "Snow"},
    {75, 41, 41, "Heavy Snow"},
    {77, 13, 13, "Snow Grains"},
    {80, 40, 40, "Scattered Showers"},
    {81, 11, 11, "Showers"},
    {82, 12, 12, "Heavy Showers"},
    {85, 14, 42, "Light Snow Showers"},
    {86, 46, 46, "Heavy Snow Showers"},
    {95, 4, 4, "Thunderstorms"},
    {96, 4, 4, "Thunderstorms with Hail"},
    {99, 3, 3, "Severe Thunderstorms"},
};

struct MetNoRow
{
    const char *symbol; // without the _day/_night/_polartwilight suffix
    int dayCode;
    int nightCode;
    const char *text;
};

constexpr MetNoRow MetNoTable[] = {
    {"clearsky", 32, 31, "Clear"},
    {"fair", 34, 33, "Fair"},
    {"partlycloudy", 30, 29, "Partly Cloudy"},
    {"cloudy", 26, 26, "Cloudy"},
    {"fog", 20, 20, "Fog"},
    {"lightrain", 11, 11, "Light Rain"},
    {"rain", 12, 12, "Rain"},
    {"heavyrain", 12, 12, "Heavy Rain"},
    {"lightrainshowers", 40, 40, "Light Rain Showers"},
    {"rainshowers", 11, 11, "Rain Showers"},
    {"heavyrainshowers", 12, 12, "Heavy Rain Showers"},
    {"lightsleet", 18, 18, "Light Sleet"},
    {"sleet", 18, 18, "Sleet"},
    {"heavysleet", 18, 18, "Heavy Sleet"},
    {"lightsleetshowers", 18, 18, "Light Sleet Showers"},
    {"sleetshowers", 18, 18, "Sleet Showers"},
    {"heavysleetshowers", 18, 18, "Heavy Sleet Showers"},
    {"lightsnow", 13, 13, "Light Snow"},
    {"snow", 16, 16, "Snow"},
    {"heavysnow", 41, 41, "Heavy Snow"},
    {"lightsnowshowers", 14, 42, "Light Snow Showers"},
    {"snowshowers", 46, 46, "Snow Showers"},
    {"heavysnowshowers", 43, 43, "Heavy Snow Showers"},
};

const MetNoRow *metNoRow(const QString &symbol)
{
    for (const MetNoRow &row : MetNoTable)
        if (symbol == QLatin1String(row.symbol))
            return &row;
    return nullptr;
}

double fahrenheitFromCelsius(double celsius)
{
    return celsius * 9.0 / 5.0 + 32.0;
}

// A place or region as it may stand in the feed: the parser turns every comma into a line
// break, cuts the title at the first "]" and reads a double quote at an item's start as a
// quoted item, so "Washington, D.C." becomes "Washington - D.C.", brackets become parentheses
// and double quotes single ones. Line breaks fold to blanks; very long names are cut so the
// whole item stays within the parser's 1,000-character window.
QString feedSafeName(QString name)
{
    static const QRegularExpression comma(QStringLiteral("\\s*,\\s*"));
    static const QRegularExpression space(QStringLiteral("\\s+"));
    name.replace(comma, QStringLiteral(" - "));
    name.replace(QLatin1Char('['), QLatin1Char('('));
    name.replace(QLatin1Char(']'), QLatin1Char(')'));
    name.replace(QLatin1Char('"'), QLatin1Char('\''));
    name.replace(space, QStringLiteral(" "));
    return name.trimmed().left(100);
}

QJsonValue at(QJsonValue value, std::initializer_list<const char *> path)
{
    for (const char *key : path)
        value = value.toObject().value(QLatin1String(key));
    return value;
}

std::optional<QJsonObject> jsonObject(const QByteArray &json, QString *problem)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject()) {
        if (problem)
            *problem = QStringLiteral("The reply is not JSON.");
        return std::nullopt;
    }
    return document.object();
}

std::optional<CurrentConditions> missing(const char *field, QString *problem)
{
    if (problem)
        *problem = QStringLiteral("The reply has no %1.").arg(QLatin1String(field));
    return std::nullopt;
}

// The picture's file name. The feed's reader takes the first two characters of the name as
// the condition code, so "not available" (3200) would read as 32, sunny; it gets a two-digit
// code that no picture has instead, and the reader shows its "not available" symbol.
QString pictureName(int code)
{
    return code >= 0 && code <= 47 ? QString::number(code) : QStringLiteral("99");
}

} // namespace

ClassicCondition ConditionFromWmo(int wmoCode, bool day)
{
    for (const WmoRow &row : WmoTable) {
        if (row.wmo != wmoCode)
            continue;
        QString text = QLatin1String(row.text);
        if (wmoCode == 0)
            text = day ? QStringLiteral("Sunny") : QStringLiteral("Clear");
        else if (wmoCode == 1)
            text = day ? QStringLiteral("Mostly Sunny") : QStringLiteral("Mostly Clear");
        return {day ? row.dayCode : row.nightCode, text};
    }
    return {};
}

ClassicCondition ConditionFromMetNoSymbol(const QString &symbolCode)
{
    QString symbol = symbolCode.trimmed().toLower();
    bool night = false;
    // Polar twilight counts as day: the sun is below the horizon but it is not dark.
    for (const QLatin1String suffix :
         {QLatin1String("_day"), QLatin1String("_polartwilight"), QLatin1String("_night")}) {
        if (symbol.endsWith(suffix)) {
            night = suffix == QLatin1String("_night");
            symbol.chop(suffix.size());
            break;
        }
    }

    const QLatin1String thunder("andthunder");
    if (!symbol.endsWith(thunder)) {
        const MetNoRow *row = metNoRow(symbol);
        return row ? ClassicCondition{night ? row->nightCode : row->dayCode, QLatin1String(row->text)}
                   : ClassicCondition{};
    }

    symbol.chop(thunder.size());
    // Two of met.no's codes carry an extra "s": lightssleetshowersandthunder and
    // lightssnowshowersandthunder.
    if (symbol == QLatin1String("lightssleetshowers") || symbol == QLatin1String("lightssnowshowers"))
        symbol.remove(5, 1);
    const MetNoRow *row = metNoRow(symbol);
    // Only precipitation comes with thunder; "clearskyandthunder" is not a code.
    static const QRegularExpression precipitation(QStringLiteral("rain|sleet|snow"));
    if (!row || !symbol.contains(precipitation))
        return {};
    const int code = symbol.startsWith(QLatin1String("heavy")) ? 3 : 4;
    return {code, QLatin1String(row->text) + QLatin1String(" and Thunder")};
}

std::optional<CurrentConditions> ParseOpenMeteoReply(const QByteArray &json, QString *problem)
{
    const std::optional<QJsonObject> root = jsonObject(json, problem);
    if (!root)
        return std::nullopt;
    if (root->value(QLatin1String("error")).toBool()) {
        if (problem) {
            const QString reason = root->value(QLatin1String("reason")).toString().trimmed();
            *problem = reason.isEmpty() ? QStringLiteral("The request was refused.") : reason;
        }
        return std::nullopt;
    }
    const QJsonValue temperature = at(*root, {"current", "temperature_2m"});
    if (!temperature.isDouble())
        return missing("current temperature", problem);
    const QJsonValue code = at(*root, {"current", "weather_code"});
    if (!code.isDouble())
        return missing("weather code", problem);

    CurrentConditions now;
    now.source = QStringLiteral("Open-Meteo");
    now.fahrenheit = temperature.toDouble();
    // The request asks for Fahrenheit; should the service ever answer in Celsius it says so
    // in the units.
    if (at(*root, {"current_units", "temperature_2m"}).toString().contains(QLatin1Char('C')))
        now.fahrenheit = fahrenheitFromCelsius(now.fahrenheit);
    // is_day is part of the request; without it the day's codes are the safer guess.
    const bool day = at(*root, {"current", "is_day"}).toInt(1) != 0;
    const ClassicCondition condition = ConditionFromWmo(code.toInt(), day);
    now.code = condition.code;
    now.text = condition.text;
    now.forecast = ParseOpenMeteoForecast(*root);
    return now;
}

std::optional<CurrentConditions> ParseMetNoReply(const QByteArray &json, QString *problem, int utcOffsetSeconds)
{
    const std::optional<QJsonObject> root = jsonObject(json, problem);
    if (!root)
        return std::nullopt;
    const QJsonValue first = at(*root, {"properties", "timeseries"}).toArray().at(0);
    const QJsonValue celsius = at(first, {"data", "instant", "details", "air_temperature"});
    if (!celsius.isDouble())
        return missing("current temperature", problem);

    QJsonValue symbol = at(first, {"data", "next_1_hours", "summary", "symbol_code"});
    if (!symbol.isString())
        symbol = at(first, {"data", "next_6_hours", "summary", "symbol_code"});

    CurrentConditions now;
    now.source = QStringLiteral("met.no");
    now.fahrenheit = fahrenheitFromCelsius(celsius.toDouble());
    // Without a symbol the temperature is still worth showing; the condition is then
    // "Not Available".
    const ClassicCondition condition = ConditionFromMetNoSymbol(symbol.toString());
    now.code = condition.code;
    now.text = condition.text;
    now.forecast = ParseMetNoForecast(*root, utcOffsetSeconds);
    return now;
}

QByteArray RenderFeedDocument(const QString &place, const QString &region, const CurrentConditions &now,
                              const QString &host)
{
    const QString where = feedSafeName(place) + QStringLiteral(", ") + feedSafeName(region);
    const bool metNo = now.source == QLatin1String("met.no");
    const QString sourceTag = metNo ? QStringLiteral("met.no") : QStringLiteral("open-meteo");
    const QString details = metNo ? QStringLiteral("met.no") : QStringLiteral("open-meteo.com");
    QString text = now.text;
    text.remove(QLatin1Char(','));
    // std::lround rounds half away from zero.
    const long fahrenheit = std::lround(now.fahrenheit);

    const QString document =
        QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                       "<rss version=\"2.0\"><channel><title>Vantora Weather - %1</title><item>"
                       "<title><![CDATA[Current Weather Conditions In %1]]></title>"
                       "<description><![CDATA[<img src=\"http://%2/images/%4/%3.gif?\" alt=\"\" /> "
                       "%5, and %6 F. <br/>For more details see %7.]]></description>\n"
                       "%8\n</item></channel></rss>\n")
            .arg(where, host, pictureName(now.code), sourceTag, text, QString::number(fahrenheit), details,
                 QString::fromLatin1(RenderForecastBlock(now.forecast)));
    return document.toUtf8();
}
