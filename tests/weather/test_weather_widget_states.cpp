#include "core/clock_source.h"
#include "core/settings_store.h"
#include "core/web_downloader.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "weather/forecast_view.h"
#include "weather/live_weather_adapter.h"
#include "weather/weather_conditions.h"
#include "weather/weather_settings_dialog.h"
#include "weather/weather_station.h"
#include "weather/weather_widget.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QHelpEvent>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QToolTip>

namespace {

const QByteArray kLondonPath = "/wxdata/weather/rss/local/UKXX0085";
const QDateTime kNoon(QDate(2024, 5, 18), QTime(12, 0), Qt::UTC);

QByteArray recorded(const QString &name)
{
    QFile file(QStringLiteral(WEATHER_TEST_DATA "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The feed document the built-in source makes from a saved Open-Meteo reply, forecast and all.
QByteArray LondonFeed()
{
    const std::optional<CurrentConditions> now =
        ParseOpenMeteoReply(recorded(QStringLiteral("openmeteo_forecast_london.json")), nullptr);
    return now ? RenderFeedDocument(QStringLiteral("London"), QStringLiteral("United Kingdom"), *now,
                                    QStringLiteral("feed"))
               : QByteArray();
}

// A port on this machine where nothing listens: a connection to it is refused.
quint16 RefusingPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    const quint16 port = server.serverPort();
    server.close();
    return port;
}

QLabel *Label(QWidget *window, const char *name)
{
    return window->findChild<QLabel *>(QString::fromLatin1(name));
}

void SetHost(const QString &host)
{
    WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather Feed Host"), host);
}

} // namespace

class TestWeatherWidgetStates : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    // First: the shared station has not had a reading yet.
    void offlineBeforeAnyReading();
    void failureKeepsTheReadingAndSaysWhy_data();
    void failureKeepsTheReadingAndSaysWhy();
    void offlineIsRetriedAfterAMinute();
    void feedTextIsDecodedAsDeclared_data();
    void feedTextIsDecodedAsDeclared();
    void forecastPanelOpensWithTheWidget();
    void labelsFitTheirText_data();
    void labelsFitTheirText();
    void loadCountryClearsThePlace();
    void creditNamesTheSourceUsed_data();
    void creditNamesTheSourceUsed();

private:
    void useServer() { SetHost(QStringLiteral("127.0.0.1:%1").arg(m_server->serverPort())); }
    // Fetches through the shared station and waits for the answer.
    void fetch();

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
};

void TestWeatherWidgetStates::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    ClockSource::setNowForTesting(kNoon);
    SetMessageResponderForTesting([](bool, int, const QString &) { return int(AnswerYes); });
}

void TestWeatherWidgetStates::cleanup()
{
    SetMessageResponderForTesting({});
    ClockSource::clearNowForTesting();
    m_server.reset();
    m_home.reset();
}

void TestWeatherWidgetStates::fetch()
{
    WeatherStation *station = WeatherStation::shared();
    QTRY_VERIFY_WITH_TIMEOUT(!station->isFetching(), 5000);
    station->GetWeatherData();
    QTRY_VERIFY_WITH_TIMEOUT(!station->isFetching(), 5000);
}

void TestWeatherWidgetStates::failureKeepsTheReadingAndSaysWhy_data()
{
    QTest::addColumn<int>("status"); // 0: the server refuses the connection
    QTest::addColumn<QString>("line");
    QTest::newRow("server refusing") << 0 << "Offline: no network";
    QTest::newRow("place unknown") << 404 << "Place not found";
    QTest::newRow("source refused") << 429 << "Source refused: ";
}

void TestWeatherWidgetStates::failureKeepsTheReadingAndSaysWhy()
{
    QFETCH(int, status);
    QFETCH(QString, line);
    useServer();
    m_server->setBody(kLondonPath, LondonFeed(), "application/rss+xml");
    WeatherWidget widget;
    widget.show();
    fetch();
    QCOMPARE(Label(&widget, "lblDESC")->text(), QStringLiteral("Cloudy"));
    QVERIFY(Label(&widget, "lblSTATE")->isHidden());

    if (status == 0) {
        SetHost(QStringLiteral("127.0.0.1:%1").arg(RefusingPort()));
    } else {
        LocalHttpServer::Response refusal;
        refusal.status = status;
        m_server->setResponse(kLondonPath, refusal);
    }
    ClockSource::setNowForTesting(kNoon.addSecs(20 * 60));
    fetch();
    QLabel *state = Label(&widget, "lblSTATE");
    QVERIFY(!state->isHidden());
    QVERIFY2(state->text().startsWith(line), qPrintable(state->text()));
    // The last good reading stays, with the time it was fetched.
    QVERIFY2(state->text().contains(QStringLiteral("as of")), qPrintable(state->text()));
    QCOMPARE(Label(&widget, "lblDESC")->text(), QStringLiteral("Cloudy"));
    QVERIFY(!WeatherStation::shared()->forecast().isEmpty());

    // A good answer takes the line away again.
    useServer();
    m_server->setBody(kLondonPath, LondonFeed(), "application/rss+xml");
    fetch();
    QVERIFY(Label(&widget, "lblSTATE")->isHidden());
}

void TestWeatherWidgetStates::offlineBeforeAnyReading()
{
    SetHost(QStringLiteral("127.0.0.1:%1").arg(RefusingPort()));
    WeatherWidget widget;
    widget.show();
    QTRY_VERIFY_WITH_TIMEOUT(!WeatherStation::shared()->isFetching(), 5000);
    QLabel *state = Label(&widget, "lblSTATE");
    QVERIFY(!state->isHidden());
    QCOMPARE(state->text(), QStringLiteral("Offline: no network"));
    QCOMPARE(Label(&widget, "lblNUMBERDESC")->text(), QStringLiteral("Accessing Weather"));
}

void TestWeatherWidgetStates::offlineIsRetriedAfterAMinute()
{
    const QString refusing = QStringLiteral("127.0.0.1:%1").arg(RefusingPort());
    SetHost(refusing);
    WeatherStation *station = WeatherStation::shared();
    fetch();
    QCOMPARE(station->problemLine(), QStringLiteral("Offline: no network"));

    // The network is back, but within the minute the redraw tick does not fetch.
    useServer();
    m_server->setBody(kLondonPath, LondonFeed(), "application/rss+xml");
    ClockSource::setNowForTesting(kNoon.addSecs(30));
    station->DataCurrent();
    QVERIFY(!station->isFetching());
    QCOMPARE(m_server->requestCount(kLondonPath), 0);

    ClockSource::setNowForTesting(kNoon.addSecs(61));
    station->DataCurrent();
    QTRY_VERIFY_WITH_TIMEOUT(m_server->requestCount(kLondonPath) == 1 && !station->isFetching(), 5000);
    QVERIFY(station->problemLine().isEmpty());
    QCOMPARE(station->readout().description, QStringLiteral("Cloudy"));
}

void TestWeatherWidgetStates::feedTextIsDecodedAsDeclared_data()
{
    QTest::addColumn<QByteArray>("declaration");
    QTest::addColumn<QByteArray>("contentType");
    QTest::addColumn<bool>("utf8");
    QTest::newRow("declared ISO-8859-1")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>") << QByteArray("text/xml") << false;
    QTest::newRow("no declaration") << QByteArray() << QByteArray("text/xml") << false;
    QTest::newRow("declared UTF-8") << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>")
                                    << QByteArray("text/xml") << true;
    QTest::newRow("UTF-8 charset") << QByteArray() << QByteArray("text/xml; charset=utf-8") << true;
}

void TestWeatherWidgetStates::feedTextIsDecodedAsDeclared()
{
    QFETCH(QByteArray, declaration);
    QFETCH(QByteArray, contentType);
    QFETCH(bool, utf8);
    const QString zurich = QStringLiteral("Z\u00FCrich");
    const QByteArray place = utf8 ? zurich.toUtf8() : zurich.toLatin1();
    const QByteArray feed = declaration +
                            "\n<rss version=\"2.0\"><channel><item><title><![CDATA["
                            "Current Weather Conditions In " +
                            place +
                            ", Switzerland]]></title>"
                            "<description><![CDATA[<img src=\"http://feed/images/26.gif?a=1\" alt=\"\" /> "
                            "Cloudy, and 57 F. <br/>For more details see the source.]]></description></item>"
                            "</channel></rss>";
    useServer();
    m_server->setBody(kLondonPath, feed, contentType);
    WeatherWidget widget;
    widget.show();
    QTRY_VERIFY_WITH_TIMEOUT(!WeatherStation::shared()->isFetching(), 5000);
    QCOMPARE(WeatherStation::shared()->readout().location, zurich + QStringLiteral(", Switzerland"));
    QCOMPARE(WeatherStation::shared()->readout().place, zurich);
    QVERIFY(!Label(&widget, "lblLOCATION")->text().contains(QChar(0xFFFD)));
}

void TestWeatherWidgetStates::forecastPanelOpensWithTheWidget()
{
    useServer();
    m_server->setBody(kLondonPath, LondonFeed(), "application/rss+xml");
    {
        WeatherWidget widget; // loading it fetches
        widget.loadWindow();
        QTRY_VERIFY_WITH_TIMEOUT(!WeatherStation::shared()->forecast().isEmpty(), 5000);
        QVERIFY(!widget.isForecastOpen());
        QVERIFY(widget.forecastView()->isHidden());
        const int closedHeight = widget.height();
        widget.setForecastOpen(true);
        QCOMPARE(widget.height(), closedHeight + WeatherWidget::ForecastHeight);
        QVERIFY(!widget.forecastView()->isHidden());
        QVERIFY(widget.forecastView()->height() >= 120);
        // The values under the pointer: the first hour is 13:00 in London, 15 degrees.
        const QString first = widget.forecastView()->describeAt(QPointF(6, 20));
        QVERIFY2(first.contains(QStringLiteral("13:00")) && first.contains(QStringLiteral("15\u00B0")),
                 qPrintable(first));
        QCOMPARE(widget.forecastView()->painter().days().size(), 7);
        // The tooltip there gives those values, not the panel's own tooltip behind the view.
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        ForecastView *view = widget.forecastView();
        QHelpEvent help(QEvent::ToolTip, QPoint(6, 20), view->mapToGlobal(QPoint(6, 20)));
        QApplication::sendEvent(view, &help);
        QTRY_VERIFY2(QToolTip::text().contains(QStringLiteral("13:00")), qPrintable(QToolTip::text()));
        QToolTip::hideText();
        // The same request brought the forecast: nothing more was asked for it.
        QCOMPARE(m_server->requestCount(kLondonPath), 1);
    }
    // The choice is kept for the next time the widget opens.
    WeatherWidget again;
    QVERIFY(again.isForecastOpen());
    QCOMPARE(again.defaultSize().height(), 160 + WeatherWidget::ForecastHeight);
}

void TestWeatherWidgetStates::labelsFitTheirText_data()
{
    QTest::addColumn<bool>("offline");
    QTest::addColumn<QSize>("size"); // an empty size: the least the widget allows
    QTest::newRow("waiting, least size") << false << QSize();
    QTest::newRow("offline, least size") << true << QSize();
    QTest::newRow("offline, wide and low") << true << QSize(600, 0);
    QTest::newRow("offline, narrow and tall") << true << QSize(0, 400);
}

void TestWeatherWidgetStates::labelsFitTheirText()
{
    QFETCH(bool, offline);
    QFETCH(QSize, size);
    LocalHttpServer::Response hanging;
    hanging.hang = true;
    m_server->setResponse(kLondonPath, hanging);
    SetHost(offline ? QStringLiteral("127.0.0.1:%1").arg(RefusingPort())
                    : QStringLiteral("127.0.0.1:%1").arg(m_server->serverPort()));
    WeatherWidget widget;
    widget.loadWindow();
    widget.show();
    if (offline)
        QTRY_VERIFY_WITH_TIMEOUT(!WeatherStation::shared()->problemLine().isEmpty(), 5000);
    const QSize least = widget.minimumSize();
    widget.resize(qMax(least.width(), size.width()), qMax(least.height(), size.height()));
    QTest::qWait(20);
    for (const char *name : {"lblDESC", "lblNUMBERDESC", "lblSTATE", "lblNUMBER"}) {
        QLabel *label = Label(&widget, name);
        if (label->isHidden() || label->text().isEmpty())
            continue;
        const int needed = QFontMetrics(label->font()).horizontalAdvance(label->text());
        QVERIFY2(needed <= label->width(), qPrintable(QStringLiteral("%1 \"%2\" needs %3 of %4")
                                                          .arg(name, label->text())
                                                          .arg(needed)
                                                          .arg(label->width())));
        QVERIFY2(label->geometry().bottom() <= widget.panel()->height(), name);
    }
    WeatherStation::shared()->downloader()->DownloadCancel();
}

void TestWeatherWidgetStates::loadCountryClearsThePlace()
{
    useServer();
    WeatherSettingsDialog dialog;
    auto *place = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRYAREA"));
    QCOMPARE(place->currentText(), QStringLiteral("London")); // the stored place on opening
    dialog.findChild<QRadioButton *>(QStringLiteral("optLOCATIONS_1"))->click();
    dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRY"))->setCurrentText(QStringLiteral("TX"));
    dialog.findChild<QPushButton *>(QStringLiteral("btnSEARCH"))->click();
    QVERIFY(place->count() > 100); // the Texas list
    QCOMPARE(place->currentText(), QString());

    // Apply without a place says so and keeps everything as it was.
    const QString before = WeatherStation::shared()->locationCode();
    dialog.findChild<QPushButton *>(QStringLiteral("btnLOCATE"))->click();
    QCOMPARE(Label(&dialog, "lblSTATUS")->text(), QStringLiteral("Choose a city or town first."));
    QCOMPARE(WeatherStation::shared()->locationCode(), before);
    QCOMPARE(
        ReadDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather location-country-name"), QString()),
        QString());
    QTest::qWait(50);
    QCOMPARE(m_server->requests().size(), 0);
}

void TestWeatherWidgetStates::creditNamesTheSourceUsed_data()
{
    QTest::addColumn<bool>("builtIn");
    QTest::addColumn<int>("openMeteoStatus");
    QTest::addColumn<QString>("credit"); // empty: no weather credit at all
    QTest::newRow("feed host of the user's own") << false << 200 << QString();
    QTest::newRow("built-in, Open-Meteo answered") << true << 200 << "Weather data by Open-Meteo.com";
    QTest::newRow("built-in, met.no answered") << true << 500 << "Weather data by MET Norway";
}

void TestWeatherWidgetStates::creditNamesTheSourceUsed()
{
    QFETCH(bool, builtIn);
    QFETCH(int, openMeteoStatus);
    QFETCH(QString, credit);
    LocalHttpServer::Response openMeteo;
    openMeteo.status = openMeteoStatus;
    openMeteo.body = recorded(QStringLiteral("openmeteo_forecast_london.json"));
    openMeteo.contentType = "application/json";
    m_server->setResponse("/v1/forecast", openMeteo);
    m_server->setBody("/weatherapi/locationforecast/2.0/compact",
                      recorded(QStringLiteral("metno_forecast_oslo.json")), "application/json");
    m_server->setBody(kLondonPath, LondonFeed(), "application/rss+xml");
    LiveWeatherAdapter::shared()->clearCacheForTesting();
    LiveWeatherAdapter::shared()->setSourceAddressesForTesting(m_server->url({}), m_server->url({}));
    if (builtIn)
        SetHost(QString::fromLatin1(LiveWeatherAdapter::BuiltInHost));
    else
        useServer();
    WeatherSettingsDialog dialog;
    dialog.show(); // the theme, and with it the credit's link colour, comes with the first show
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    fetch();
    QVERIFY(WeatherStation::shared()->problemLine().isEmpty());
    const QString text = Label(&dialog, "lblCREDIT")->text();
    if (credit.isEmpty()) {
        QVERIFY2(!text.contains(QStringLiteral("Open-Meteo")) && !text.contains(QStringLiteral("MET Norway")),
                 qPrintable(text));
    } else {
        QVERIFY2(text.contains(credit), qPrintable(text));
    }
    // Built in or not, the forecast came with the reading.
    QVERIFY(!WeatherStation::shared()->forecast().days.isEmpty());
}

QTEST_MAIN(TestWeatherWidgetStates)
#include "test_weather_widget_states.moc"
