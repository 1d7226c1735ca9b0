// The weather sources' replies and the feed's forecast block: whatever a reply holds, the
// forecast read from it keeps its hours and days in order with values that can be drawn, and
// writing it into the feed and reading it back changes nothing a second time round.
#include "fuzz_check.h"
#include "weather/forecast_replies.h"
#include "weather/weather_conditions.h"
#include "weather/weather_feed_parser.h"
#include "weather/weather_forecast.h"

#include <QJsonDocument>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace {

bool drawable(double value)
{
    return std::isnan(value) || std::isfinite(value);
}

void checkForecast(const WeatherForecast &forecast)
{
    FUZZ_CHECK(std::abs(forecast.utcOffsetSeconds) <= 14 * 3600);
    for (qsizetype i = 0; i < forecast.hours.size(); ++i) {
        const ForecastHour &h = forecast.hours.at(i);
        FUZZ_CHECK(h.time.isValid());
        FUZZ_CHECK(i == 0 || forecast.hours.at(i - 1).time < h.time);
        FUZZ_CHECK(drawable(h.celsius) && drawable(h.rainMm) && drawable(h.windKmh));
        FUZZ_CHECK(h.rainChance >= -1 && h.rainChance <= 100);
    }
    for (qsizetype i = 0; i < forecast.days.size(); ++i) {
        const ForecastDay &d = forecast.days.at(i);
        FUZZ_CHECK(d.date.isValid());
        FUZZ_CHECK(i == 0 || forecast.days.at(i - 1).date < d.date);
        FUZZ_CHECK(drawable(d.highCelsius) && drawable(d.lowCelsius) && drawable(d.rainMm));
        FUZZ_CHECK(d.rainChance >= -1 && d.rainChance <= 100);
    }
}

void checkRoundTrip(const WeatherForecast &forecast)
{
    checkForecast(forecast);
    const WeatherForecast once = ParseForecastBlock(RenderForecastBlock(forecast));
    checkForecast(once);
    FUZZ_CHECK(once.hours.size() <= forecast.hours.size() && once.days.size() <= forecast.days.size());
    FUZZ_CHECK(ParseForecastBlock(RenderForecastBlock(once)) == once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    checkRoundTrip(ParseForecastBlock(input));
    const QJsonDocument document = QJsonDocument::fromJson(input);
    if (document.isObject()) {
        checkRoundTrip(ParseOpenMeteoForecast(document.object()));
        const int offset = size > 0 ? (int(data[0]) - 128) * 400 : 0;
        checkRoundTrip(ParseMetNoForecast(document.object(), offset));
        QString problem;
        if (const std::optional<CurrentConditions> now = ParseOpenMeteoReply(input, &problem))
            checkForecast(now->forecast);
    }
    // The feed's text in either encoding: no reply is lost or cut short by its decoding.
    FUZZ_CHECK(DecodeFeedText(input).size() >= DecodeFeedText(input, "text/xml; charset=utf-8").size() / 2);
    return 0;
}
