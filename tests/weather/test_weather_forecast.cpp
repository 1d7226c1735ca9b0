#include "weather/forecast_painter.h"
#include "weather/forecast_replies.h"
#include "weather/weather_conditions.h"
#include "weather/weather_feed_parser.h"
#include "weather/weather_forecast.h"
#include "weather/weather_problem.h"

#include <QFile>
#include <QImage>
#include <QJsonDocument>
#include <QPainter>
#include <QTest>
#include <climits>
#include <cmath>

namespace {

QByteArray recorded(const QString &name)
{
    QFile file(QStringLiteral(WEATHER_TEST_DATA "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

constexpr int NoOffset = INT_MIN;

// The forecast of a saved reply; a met.no reply when metNoOffset is given.
WeatherForecast forecastOf(const QString &file, int metNoOffset)
{
    const QJsonObject root = QJsonDocument::fromJson(recorded(file)).object();
    return metNoOffset == NoOffset ? ParseOpenMeteoForecast(root) : ParseMetNoForecast(root, metNoOffset);
}

bool near(double actual, double expected)
{
    return (std::isnan(actual) && std::isnan(expected)) || std::abs(actual - expected) < 0.051;
}

QDateTime utc(const char *text)
{
    QDateTime time = QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate);
    return time.toUTC();
}

const double NaN = qQNaN();

} // namespace

class TestWeatherForecast : public QObject
{
    Q_OBJECT

private slots:
    void sourceReplies_data();
    void sourceReplies();
    void blockRoundTrip_data();
    void blockRoundTrip();
    void damagedBlock_data();
    void damagedBlock();
    void feedWithForecastReadsTheSame_data();
    void feedWithForecastReadsTheSame();
    void feedTextEncoding_data();
    void feedTextEncoding();
    void failureLines_data();
    void failureLines();
    void valuesUnderThePointer_data();
    void valuesUnderThePointer();
    void hourMarksFollowThePlacesClock_data();
    void hourMarksFollowThePlacesClock();
    void drawingShowsTheCurveAndTheDays_data();
    void drawingShowsTheCurveAndTheDays();
};

void TestWeatherForecast::sourceReplies_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("metNoOffset");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<int>("hours");
    QTest::addColumn<QDateTime>("firstHour");
    QTest::addColumn<QString>("localTime");
    QTest::addColumn<double>("celsius");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("chance");
    QTest::addColumn<double>("rain");
    QTest::addColumn<double>("wind");
    QTest::addColumn<int>("days");
    QTest::addColumn<QDate>("firstDay");
    QTest::addColumn<int>("dayCode");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("dayRain");
    QTest::addColumn<int>("dayChance");

    const QDateTime noon = utc("2024-05-18T12:00:00Z");
    // Fahrenheit replies come back in Celsius; WMO 61 by day is classic 11.
    QTest::newRow("Open-Meteo, London in summer time")
        << "openmeteo_forecast_london.json" << NoOffset << noon << 48 << noon << "13:00" << 15.0 << 11 << 40
        << 0.4 << 14.4 << 7 << QDate(2024, 5, 18) << 26 << 18.0 << 6.0 << 5.2 << 60;
    QTest::newRow("Open-Meteo, fields left out and gaps")
        << "openmeteo_forecast_missing_fields.json" << NoOffset << noon << 48 << noon << "14:00" << NaN << 26
        << -1 << 0.0 << NaN << 7 << QDate(2024, 5, 18) << 26 << 17.2 << 6.0 << 4.8 << -1;
    QTest::newRow("Open-Meteo, three days only, in Celsius")
        << "openmeteo_forecast_three_days.json" << NoOffset << noon << 48 << noon << "08:00" << 21.5 << 32
        << 0 << 0.0 << 10.0 << 3 << QDate(2024, 5, 18) << 26 << 21.5 << 6.0 << 4.8 << 60;
    // Local hours of a half-hour zone start at half past in UTC.
    QTest::newRow("Open-Meteo, half an hour off UTC")
        << "openmeteo_forecast_kolkata.json" << NoOffset << utc("2024-05-18T12:40:00Z") << 48
        << utc("2024-05-18T12:30:00Z") << "18:00" << 35.0 << 4 << 70 << 3.5 << 20.0 << 7 << QDate(2024, 5, 18)
        << 26 << 35.0 << 6.0 << 8.3 << 70;
    // Past the date line the place's today is UTC's tomorrow; its night hour has the night code.
    QTest::newRow("Open-Meteo, across the date line")
        << "openmeteo_forecast_apia.json" << NoOffset << noon << 48 << noon << "01:00" << 25.0 << 29 << 10
        << 0.1 << 9.0 << 6 << QDate(2024, 5, 19) << 11 << 25.0 << 6.1 << 3.7 << 60;
    // met.no: UTC hours, wind in m/s, no chance of rain; the last day it only touches is left out.
    QTest::newRow("met.no, Oslo in summer time")
        << "metno_forecast_oslo.json" << 7200 << noon << 48 << noon << "14:00" << 14.0 << 11 << -1 << 0.4
        << 14.4 << 6 << QDate(2024, 5, 18) << 32 << 15.0 << 8.7 << 0.4 << -1;
    QTest::newRow("met.no, the same series across the date line")
        << "metno_forecast_oslo.json" << 46800 << noon << 48 << noon << "01:00" << 14.0 << 11 << -1 << 0.4
        << 14.4 << 6 << QDate(2024, 5, 19) << 30 << 15.0 << 5.0 << 4.9 << -1;
    QTest::newRow("met.no, in UTC") << "metno_forecast_oslo.json" << 0 << noon << 48 << noon << "12:00"
                                    << 14.0 << 11 << -1 << 0.4 << 14.4 << 6 << QDate(2024, 5, 18) << 32
                                    << 15.0 << 6.5 << 0.4 << -1;
}

void TestWeatherForecast::sourceReplies()
{
    QFETCH(QString, file);
    QFETCH(int, metNoOffset);
    QFETCH(QDateTime, now);
    const WeatherForecast forecast = forecastOf(file, metNoOffset);
    const QList<ForecastHour> hours = forecast.hoursFrom(now);
    const QList<ForecastDay> days = forecast.daysFrom(now);

    QTEST(int(hours.size()), "hours");
    QVERIFY(!hours.isEmpty());
    const ForecastHour &h = hours.first();
    QTEST(h.time, "firstHour");
    QTEST(forecast.local(h.time).toString(QStringLiteral("HH:mm")), "localTime");
    QFETCH(double, celsius);
    QVERIFY2(near(h.celsius, celsius), qPrintable(QString::number(h.celsius)));
    QTEST(h.code, "code");
    QTEST(h.rainChance, "chance");
    QFETCH(double, rain);
    QVERIFY2(near(h.rainMm, rain), qPrintable(QString::number(h.rainMm)));
    QFETCH(double, wind);
    QVERIFY2(near(h.windKmh, wind), qPrintable(QString::number(h.windKmh)));
    for (qsizetype i = 1; i < hours.size(); ++i)
        QCOMPARE(hours.at(i - 1).time.secsTo(hours.at(i).time) > 0, true);

    QTEST(int(days.size()), "days");
    const ForecastDay &d = days.first();
    QTEST(d.date, "firstDay");
    QTEST(d.code, "dayCode");
    QFETCH(double, high);
    QVERIFY2(near(d.highCelsius, high), qPrintable(QString::number(d.highCelsius)));
    QFETCH(double, low);
    QVERIFY2(near(d.lowCelsius, low), qPrintable(QString::number(d.lowCelsius)));
    QFETCH(double, dayRain);
    QVERIFY2(near(d.rainMm, dayRain), qPrintable(QString::number(d.rainMm)));
    QTEST(d.rainChance, "dayChance");
}

void TestWeatherForecast::blockRoundTrip_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("metNoOffset");
    QTest::newRow("London") << "openmeteo_forecast_london.json" << NoOffset;
    QTest::newRow("gaps") << "openmeteo_forecast_missing_fields.json" << NoOffset;
    QTest::newRow("half-hour zone") << "openmeteo_forecast_kolkata.json" << NoOffset;
    QTest::newRow("met.no") << "metno_forecast_oslo.json" << 7200;
}

void TestWeatherForecast::blockRoundTrip()
{
    QFETCH(QString, file);
    QFETCH(int, metNoOffset);
    WeatherForecast forecast = forecastOf(file, metNoOffset);
    QVERIFY(!forecast.hours.isEmpty());
    // The block keeps one decimal, as the sources give.
    const auto tenths = [](double &value) { value = std::round(value * 10) / 10; };
    for (ForecastHour &h : forecast.hours) {
        tenths(h.celsius);
        tenths(h.rainMm);
        tenths(h.windKmh);
    }
    for (ForecastDay &d : forecast.days) {
        tenths(d.highCelsius);
        tenths(d.lowCelsius);
        tenths(d.rainMm);
    }
    const QByteArray block = RenderForecastBlock(forecast);
    // The feed's reader turns commas into line breaks and reads quoted items: none inside.
    const QByteArray body = block.mid(block.indexOf('>') + 1);
    QVERIFY(!body.contains(',') && !body.contains('"'));
    QVERIFY(ParseForecastBlock("<rss>" + block + "</rss>") == forecast);
}

void TestWeatherForecast::damagedBlock_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<int>("hours");
    QTest::addColumn<int>("days");
    QTest::addColumn<int>("offset");
    const QByteArray good = "H 2024-05-18T12:00Z 15.0 26 10 0.0 12.0\n";
    QTest::newRow("whole") << QByteArray(
                                  "<forecast offset=\"3600\" zone=\"Europe/London\">\n" + good +
                                  "H 2024-05-18T13:00Z 16.0 26 - - -\nD 2024-05-18 26 17.0 9.0 1.0 40\n"
                                  "</forecast>")
                           << 2 << 1 << 3600;
    QTest::newRow("no end") << QByteArray("<forecast offset=\"3600\">\n" + good) << 0 << 0 << 0;
    QTest::newRow("no block") << QByteArray("<rss><item></item></rss>") << 0 << 0 << 0;
    QTest::newRow("short and bad lines skipped")
        << QByteArray(
               "<forecast offset=\"0\">\nH 2024-05-18T11:00Z 1\nH yesterday 1 2 3 4 5\nX 1 2 3 4 5 6\n" +
               good + "D 2024-13-40 26 1 1 1 1\n</forecast>")
        << 1 << 0 << 0;
    QTest::newRow("hours out of order skipped")
        << QByteArray("<forecast offset=\"0\">\n" + good + "H 2024-05-18T10:00Z 1 26 1 1 1\n</forecast>") << 1
        << 0 << 0;
    QTest::newRow("offset beyond any zone")
        << QByteArray("<forecast offset=\"999999\">\n" + good + "</forecast>") << 1 << 0 << 0;
}

void TestWeatherForecast::damagedBlock()
{
    QFETCH(QByteArray, document);
    const WeatherForecast forecast = ParseForecastBlock(document);
    QTEST(int(forecast.hours.size()), "hours");
    QTEST(int(forecast.days.size()), "days");
    QTEST(forecast.utcOffsetSeconds, "offset");
    for (const ForecastHour &h : forecast.hours)
        QVERIFY(h.code == 3200 || (h.code >= 0 && h.code <= 47));
}

void TestWeatherForecast::feedWithForecastReadsTheSame_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("Open-Meteo") << "openmeteo_forecast_london.json";
    QTest::newRow("Open-Meteo, gaps") << "openmeteo_forecast_missing_fields.json";
}

void TestWeatherForecast::feedWithForecastReadsTheSame()
{
    QFETCH(QString, file);
    QString problem;
    const std::optional<CurrentConditions> now = ParseOpenMeteoReply(recorded(file), &problem);
    QVERIFY2(now, qPrintable(problem));
    QVERIFY(!now->forecast.isEmpty());
    CurrentConditions bare = *now;
    bare.forecast = {};
    const QString host = QStringLiteral("weather.vantora.invalid");
    const QByteArray with =
        RenderFeedDocument(QStringLiteral("London"), QStringLiteral("United Kingdom"), *now, host);
    const QByteArray without =
        RenderFeedDocument(QStringLiteral("London"), QStringLiteral("United Kingdom"), bare, host);
    WeatherFeedParser a;
    WeatherFeedParser b;
    QVERIFY(a.DataCurrent(CommaSeparatedItems(DecodeFeedText(with)), false).labels);
    b.DataCurrent(CommaSeparatedItems(DecodeFeedText(without)), false);
    QCOMPARE(a.readout().summary, b.readout().summary);
    QCOMPARE(a.readout().number, b.readout().number);
    QCOMPARE(a.readout().glyph, b.readout().glyph);
    QVERIFY(ParseForecastBlock(with).hours.size() == now->forecast.hours.size());
}

void TestWeatherForecast::feedTextEncoding_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<QString>("text");
    const QByteArray zurich8 = "Z\xFCrich, Switzerland";
    const QByteArray zurichUtf8 = "Z\xC3\xBCrich, Switzerland";
    const QString zurich = QStringLiteral("Z\u00FCrich, Switzerland");
    QTest::newRow("8-bit, no declaration") << zurich8 << QByteArray("text/xml") << zurich;
    QTest::newRow("8-bit, declared ISO-8859-1")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + zurich8) << QByteArray()
        << QStringLiteral("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>") + zurich;
    QTest::newRow("Windows-1252 quotes and euro") << QByteArray("\x93"
                                                                "5 \x80\x97")
                                                  << QByteArray() << QStringLiteral("\u201C5 \u20AC\u2014");
    QTest::newRow("declared UTF-8") << QByteArray("<?xml version='1.0' encoding='utf-8'?>" + zurichUtf8)
                                    << QByteArray("text/xml")
                                    << QStringLiteral("<?xml version='1.0' encoding='utf-8'?>") + zurich;
    QTest::newRow("UTF-8 in the Content-Type")
        << zurichUtf8 << QByteArray("application/rss+xml; charset=\"UTF-8\"") << zurich;
    QTest::newRow("8-bit Content-Type, UTF-8 declaration")
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + zurichUtf8)
        << QByteArray("text/xml; charset=iso-8859-1")
        << QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>") + zurich;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF" + zurichUtf8) << QByteArray() << zurich;
    QTest::newRow("UTF-8 bytes without a word of it stay 8-bit")
        << zurichUtf8 << QByteArray("text/xml") << QStringLiteral("Z\u00C3\u00BCrich, Switzerland");
}

void TestWeatherForecast::feedTextEncoding()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, contentType);
    QTEST(DecodeFeedText(bytes, contentType), "text");
}

void TestWeatherForecast::failureLines_data()
{
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("offline");
    QTest::newRow("refused connection") << 1 << "Connection refused"
                                        << "Offline: no network" << true;
    QTest::newRow("host not found") << 3 << "Host not found"
                                    << "Offline: no network" << true;
    QTest::newRow("built-in source, nothing reached")
        << 7 << "Open-Meteo: server not found; met.no: server not found."
        << "Offline: no network" << true;
    QTest::newRow("given up waiting") << 0 << "did not answer"
                                      << "No answer from the weather source" << true;
    QTest::newRow("no such place") << 404 << "No coordinates are known for the place XXXX0001."
                                   << "Place not found" << false;
    QTest::newRow("sources refused") << 503
                                     << "Open-Meteo: too many requests (429); met.no: access refused (403)."
                                     << "Source refused: too many requests (429)" << false;
    QTest::newRow("host refused") << 403 << "The server refused access (403)."
                                  << "Source refused: The server refused access (403)" << false;
    QTest::newRow("long reason cut")
        << 500 << "The server had an internal error while making the page you asked for."
        << QStringLiteral("Source refused: The server had an internal error while\u2026") << false;
}

void TestWeatherForecast::failureLines()
{
    QFETCH(int, errorNumber);
    QFETCH(QString, description);
    const WeatherProblem problem = DescribeWeatherFailure(errorNumber, description);
    QTEST(problem.line, "line");
    QTEST(problem.offline, "offline");
}

void TestWeatherForecast::valuesUnderThePointer_data()
{
    QTest::addColumn<bool>("fahrenheit");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QStringList>("parts");
    // 600 x 300: the chart's first hour at the left, the day row at the foot.
    QTest::newRow("first hour, Celsius")
        << false << QPointF(3, 40) << QStringList{"13:00", "15\u00B0", "0.4 mm", "40%", "14 km/h"};
    QTest::newRow("first hour, Fahrenheit")
        << true << QPointF(3, 40) << QStringList{"13:00", "59\u00B0", "0.02 in", "9 mph"};
    QTest::newRow("an hour later") << false << QPointF(3 + 600.0 / 48, 40)
                                   << QStringList{"14:00", "18\u00B0"};
    QTest::newRow("first day") << false << QPointF(40, 280)
                               << QStringList{"High 18\u00B0, low 6\u00B0", "5.2 mm", "60%"};
    QTest::newRow("second day, Fahrenheit")
        << true << QPointF(600.0 / 7 + 10, 280) << QStringList{"High 65\u00B0, low 43\u00B0"};
}

void TestWeatherForecast::valuesUnderThePointer()
{
    QFETCH(bool, fahrenheit);
    QFETCH(QPointF, point);
    QFETCH(QStringList, parts);
    ForecastStyle style;
    style.fahrenheit = fahrenheit;
    ForecastPainter painter(forecastOf(QStringLiteral("openmeteo_forecast_london.json"), NoOffset),
                            utc("2024-05-18T12:00:00Z"), style);
    QImage image(600, 300, QImage::Format_ARGB32_Premultiplied);
    QPainter p(&image);
    painter.paint(p, QRectF(0, 0, 600, 300));
    const QString text = painter.describeAt(point);
    for (const QString &part : parts)
        QVERIFY2(text.contains(part), qPrintable(text));
}

void TestWeatherForecast::hourMarksFollowThePlacesClock_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("localTime");
    QTest::newRow("whole-hour zone") << "openmeteo_forecast_london.json" << utc("2024-05-18T12:00:00Z")
                                     << "13:00";
    QTest::newRow("half-hour zone") << "openmeteo_forecast_kolkata.json" << utc("2024-05-18T12:40:00Z")
                                    << "18:00";
    QTest::newRow("across the date line")
        << "openmeteo_forecast_apia.json" << utc("2024-05-18T12:00:00Z") << "01:00";
}

void TestWeatherForecast::hourMarksFollowThePlacesClock()
{
    // The tooltip of the first hour names it in the place's time, not UTC and not this machine's.
    QFETCH(QString, file);
    QFETCH(QDateTime, now);
    ForecastPainter painter(forecastOf(file, NoOffset), now, ForecastStyle());
    painter.layout(QRectF(0, 0, 480, 240));
    const QString text = painter.describeAt(QPointF(2, 30));
    QFETCH(QString, localTime);
    QVERIFY2(text.contains(QLatin1Char(' ') + localTime + QLatin1Char(' ')), qPrintable(text));
}

void TestWeatherForecast::drawingShowsTheCurveAndTheDays_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("metNoOffset");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<qreal>("ratio");
    QTest::newRow("Open-Meteo, wide")
        << "openmeteo_forecast_london.json" << NoOffset << QSize(600, 300) << 1.0;
    QTest::newRow("Open-Meteo, widget size at 2x")
        << "openmeteo_forecast_london.json" << NoOffset << QSize(340, 230) << 2.0;
    QTest::newRow("met.no, three-day source") << "metno_forecast_oslo.json" << 7200 << QSize(340, 230) << 1.0;
}

void TestWeatherForecast::drawingShowsTheCurveAndTheDays()
{
    QFETCH(QString, file);
    QFETCH(int, metNoOffset);
    QFETCH(QSize, size);
    QFETCH(qreal, ratio);
    ForecastStyle style;
    style.ink = Qt::black;
    ForecastPainter painter(forecastOf(file, metNoOffset), utc("2024-05-18T12:00:00Z"), style);
    QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter p(&image);
    painter.paint(p, QRectF(QPointF(0, 0), size));
    p.end();
    // Only the curve and the texts are drawn at (nearly) full strength: every stretch of the
    // chart's width has some of the curve in it.
    const auto strong = [&image, ratio](qreal x, qreal top, qreal bottom) {
        for (int y = int(top * ratio); y < int(bottom * ratio); ++y)
            if (qAlpha(image.pixel(int(x * ratio), y)) > 200)
                return true;
        return false;
    };
    const QRectF chart = painter.chartArea();
    // (The curve runs from the middle of the first hour to the middle of the last.)
    const qreal hour = chart.width() / WeatherForecast::HoursShown;
    for (qreal x = chart.left() + hour; x < chart.right() - hour; x += chart.width() / 25)
        QVERIFY2(strong(x, chart.top(), chart.bottom()),
                 qPrintable(QStringLiteral("no curve at x %1").arg(x)));
    // Each day cell has its texts.
    const qreal cell = size.width() / qreal(WeatherForecast::DaysShown);
    for (qsizetype day = 0; day < painter.days().size(); ++day) {
        bool inked = false;
        for (qreal x = day * cell + 2; x < (day + 1) * cell - 2 && !inked; x += 1)
            inked = strong(x, chart.bottom() + 12, size.height());
        QVERIFY2(inked, qPrintable(QStringLiteral("day %1 is blank").arg(day)));
    }
}

QTEST_MAIN(TestWeatherForecast)
#include "test_weather_forecast.moc"
