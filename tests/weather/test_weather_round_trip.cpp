// The whole way from the weather sources to the labels: the station reads the feed from the
// built-in adapter, which asks the (local) sources and renders the feed document; the reply is
// normalised and parsed as any feed reply is.
#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "weather/live_weather_adapter.h"
#include "weather/weather_station.h"

#include <QSignalSpy>
#include <QTest>

namespace {
const QByteArray kOpenMeteoPath = "/v1/forecast";
const QByteArray kMetNoPath = "/weatherapi/locationforecast/2.0/compact";

QByteArray OpenMeteo(double fahrenheit, int wmo, int isDay)
{
    return QStringLiteral("{\"latitude\":51.5,\"longitude\":-0.12,\"generationtime_ms\":0.03,"
                          "\"utc_offset_seconds\":0,\"timezone\":\"Europe/London\",\"timezone_abbreviation\":\"GMT\","
                          "\"elevation\":23.0,\"current_units\":{\"time\":\"iso8601\",\"interval\":\"seconds\","
                          "\"temperature_2m\":\"\u00b0F\",\"weather_code\":\"wmo code\",\"is_day\":\"\"},"
                          "\"current\":{\"time\":\"2026-11-25T10:00\",\"interval\":900,\"temperature_2m\":%1,"
                          "\"weather_code\":%2,\"is_day\":%3}}")
        .arg(fahrenheit)
        .arg(wmo)
        .arg(isDay)
        .toUtf8();
}

QByteArray MetNo(double celsius, const char *symbol)
{
    return QStringLiteral("{\"type\":\"Feature\",\"geometry\":{\"type\":\"Point\",\"coordinates\":[-0.12,51.5,23]},"
                          "\"properties\":{\"meta\":{\"updated_at\":\"2026-11-25T09:30:00Z\",\"units\":"
                          "{\"air_temperature\":\"celsius\"}},\"timeseries\":[{\"time\":\"2026-11-25T10:00:00Z\","
                          "\"data\":{\"instant\":{\"details\":{\"air_pressure_at_sea_level\":1012.3,"
                          "\"air_temperature\":%1,\"cloud_area_fraction\":99.0}},\"next_1_hours\":{\"summary\":"
                          "{\"symbol_code\":\"%2\"},\"details\":{\"precipitation_amount\":0.6}}}}]}}")
        .arg(celsius)
        .arg(QString::fromLatin1(symbol))
        .toUtf8();
}

LocalHttpServer::Response Reply(int status, const QByteArray &body, const QByteArray &type = "application/json")
{
    LocalHttpServer::Response r;
    r.status = status;
    r.body = body;
    r.contentType = type;
    return r;
}
} // namespace

class TestWeatherRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void sourcesReachTheLabels_data();
    void sourcesReachTheLabels();
    void failuresKeepTheLabels();

private:
    void place(const QString &world, const QString &country, const QString &area);
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
};

void TestWeatherRoundTrip::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    LiveWeatherAdapter::shared()->setSourceAddressesForTesting(m_server->url(QString()), m_server->url(QString()));
    LiveWeatherAdapter::shared()->clearCacheForTesting();
}

void TestWeatherRoundTrip::cleanup()
{
    m_server.reset();
    m_home.reset();
}

void TestWeatherRoundTrip::place(const QString &world, const QString &country, const QString &area)
{
    const QString window = QStringLiteral("fwth_SET");
    WriteDetail(window, QStringLiteral("Weather location-world"), world);
    WriteDetail(window, QStringLiteral("Weather location-country-name"), country);
    WriteDetail(window, QStringLiteral("Weather location-country-area"), area);
}

void TestWeatherRoundTrip::sourcesReachTheLabels_data()
{
    QTest::addColumn<QString>("world");
    QTest::addColumn<QString>("country");
    QTest::addColumn<QString>("area");
    QTest::addColumn<LocalHttpServer::Response>("openMeteo");
    QTest::addColumn<LocalHttpServer::Response>("metNo");
    QTest::addColumn<QString>("tempSelected");
    QTest::addColumn<QStringList>("labels"); // location, description, temperature text, number
    QTest::addColumn<int>("icon");
    QTest::addColumn<QString>("source");

    QTest::newRow("Open-Meteo, partly cloudy day")
        << "0" << "United Kingdom" << "London" << Reply(200, OpenMeteo(57.2, 2, 1)) << Reply(500, "unused") << "0"
        << QStringList{"London, United Kingdom", "Partly Cloudy", "57F 13.9C", "14C"} << 28 << "Open-Meteo";
    QTest::newRow("Open-Meteo, clear night below 0 F, first reply")
        << "0" << "United Kingdom" << "London" << Reply(200, OpenMeteo(-3.4, 0, 0)) << Reply(500, "unused") << "0"
        << QStringList{"London, United Kingdom", "Clear", "-3", "-18C"} << 31 << "Open-Meteo";
    QTest::newRow("Open-Meteo, thunderstorms, Fahrenheit")
        << "1" << "AK" << "Adak" << Reply(200, OpenMeteo(71.6, 95, 1)) << Reply(500, "unused") << "1"
        << QStringList{"Adak, AK", "Thunderstorms", "72F 22.2C", "72F "} << 3 << "Open-Meteo";
    QTest::newRow("over the limit, met.no answers")
        << "0" << "United Kingdom" << "London" << Reply(429, "{\"reason\":\"limit\",\"error\":true}")
        << Reply(200, MetNo(10.0, "rain")) << "0" << QStringList{"London, United Kingdom", "Rain", "50F 10C", "10C"}
        << 12 << "met.no";
    QTest::newRow("not JSON, met.no answers with a night symbol")
        << "0" << "United Kingdom" << "London" << Reply(200, "<html>busy</html>", "text/html")
        << Reply(200, MetNo(-1.5, "lightsnowshowers_night")) << "0"
        << QStringList{"London, United Kingdom", "Light Snow Showers", "29F -1.7C", "-2C"} << 13 << "met.no";
}

void TestWeatherRoundTrip::sourcesReachTheLabels()
{
    QFETCH(QString, world);
    QFETCH(QString, country);
    QFETCH(QString, area);
    QFETCH(LocalHttpServer::Response, openMeteo);
    QFETCH(LocalHttpServer::Response, metNo);
    QFETCH(QString, tempSelected);
    QFETCH(QStringList, labels);
    QFETCH(int, icon);
    QFETCH(QString, source);
    place(world, country, area);
    WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Temp-Selected"), tempSelected);
    m_server->setResponse(kOpenMeteoPath, openMeteo);
    m_server->setResponse(kMetNoPath, metNo);

    WeatherStation station;
    QSignalSpy changed(&station, &WeatherStation::readoutChanged);
    station.GetWeatherData();
    QTRY_VERIFY_WITH_TIMEOUT(!station.isFetching(), 10000);
    const WeatherReadout &r = station.readout();
    QCOMPARE((QStringList{r.location, r.description, r.temperatureText, r.number}), labels);
    QCOMPARE(r.iconNumber, icon);
    QCOMPARE(r.glyph, ShippedData::weatherGlyph(icon));
    QCOMPARE(station.dataSource(), source);
}

void TestWeatherRoundTrip::failuresKeepTheLabels()
{
    place("0", "United Kingdom", "London");
    m_server->setResponse(kOpenMeteoPath, Reply(429, "{\"reason\":\"Too many requests\",\"error\":true}"));
    m_server->setResponse(kMetNoPath, Reply(200, "<html>not weather</html>", "text/html"));
    WeatherStation station;
    station.GetWeatherData();
    QTRY_VERIFY_WITH_TIMEOUT(!station.isFetching(), 10000);
    QVERIFY(!station.hasReadout());
    const QString status = station.statusText();
    QVERIFY2(status.contains(QStringLiteral("could not be updated")) && status.contains(QStringLiteral("Open-Meteo")) &&
                 status.contains(QStringLiteral("met.no")),
             qPrintable(status));
}

QTEST_MAIN(TestWeatherRoundTrip)
#include "test_weather_round_trip.moc"
