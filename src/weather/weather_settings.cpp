#include "weather/weather_settings.h"

#include "core/settings_store.h"
#include "weather/live_weather_adapter.h"

namespace {
const QString kWorld = QStringLiteral("Weather location-world");
const QString kCountry = QStringLiteral("Weather location-country-name");
const QString kArea = QStringLiteral("Weather location-country-area");
const QString kTemp = QStringLiteral("Temp-Selected");
const QString kHost = QStringLiteral("Weather Feed Host");
} // namespace

WeatherSettings WeatherSettings::load()
{
    const QString window = windowName();
    WeatherSettings s;
    s.catalogue = ReadDetail(window, kWorld, QStringLiteral("0")) == QLatin1String("1") ? LocationCatalogue::UnitedStates
                                                                                        : LocationCatalogue::World;
    s.countryName = ReadDetail(window, kCountry, s.countryName);
    s.countryArea = ReadDetail(window, kArea, s.countryArea);
    s.fahrenheit = ReadDetail(window, kTemp, QStringLiteral("0")) != QLatin1String("0");
    s.feedHost = ReadDetail(window, kHost, QString::fromLatin1(LiveWeatherAdapter::BuiltInHost)).trimmed();
    if (s.feedHost.isEmpty())
        s.feedHost = QString::fromLatin1(LiveWeatherAdapter::BuiltInHost);
    return s;
}

void WeatherSettings::save() const
{
    const QString window = windowName();
    WriteDetail(window, kTemp, fahrenheit ? QStringLiteral("1") : QStringLiteral("0"));
    WriteDetail(window, kWorld, catalogue == LocationCatalogue::UnitedStates ? QStringLiteral("1") : QStringLiteral("0"));
    WriteDetail(window, kCountry, countryName);
    WriteDetail(window, kArea, countryArea);
}

QString WeatherSettings::resolvedCode() const
{
    return LocationCatalogue::ResolveLocationCode(catalogue, countryName, countryArea,
                                                  QString::fromLatin1(LocationCatalogue::DefaultCode));
}
