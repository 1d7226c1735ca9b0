#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "weather/weather_settings_dialog.h"
#include "weather/weather_station.h"
#include "weather/weather_widget.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>

namespace {
QByteArray FeedDocument(const QString &title, int code, const QString &text, int fahrenheit)
{
    return QStringLiteral(
               "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<rss version=\"2.0\"><channel><item><title><![CDATA["
               "Current Weather Conditions In %1]]></title><description><![CDATA[<img src=\"http://feed/images/"
               "open-meteo/%2.gif?a=1\" alt=\"\" /> %3, and %4 F. <br/>For more details see the source.]]>"
               "</description></item></channel></rss>")
        .arg(title)
        .arg(code)
        .arg(text)
        .arg(fahrenheit)
        .toUtf8();
}

const QByteArray kLondonPath = "/wxdata/weather/rss/local/UKXX0085";

QString LabelText(QWidget *window, const char *name)
{
    auto *label = window->findChild<QLabel *>(QString::fromLatin1(name));
    return label ? label->text() : QStringLiteral("<missing %1>").arg(QString::fromLatin1(name));
}
} // namespace

class TestWeatherWidget : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void buildsTheFeedAddress_data();
    void buildsTheFeedAddress();
    void showsTheReportInEitherUnit_data();
    void showsTheReportInEitherUnit();
    void keepsItsLabelsWhenTheFetchFails_data();
    void keepsItsLabelsWhenTheFetchFails();
    void aHangingSourceIsGivenUp();
    void aNoteCalledWebTxtSurvivesAFetch();
    void refreshRedrawsAndSaysUpdated();
    void applyStoresThePlaceAndFetchesIt();
    void findNarrowsThePlaceList();
    void switchingCataloguesWaitsForLoadCountry();

private:
    void useServer() { WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather Feed Host"),
                                   QStringLiteral("127.0.0.1:%1").arg(m_server->serverPort())); }

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
    QStringList m_messages;
};

void TestWeatherWidget::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    m_messages.clear();
    SetMessageResponderForTesting([this](bool, int number, const QString &text) {
        m_messages << QStringLiteral("%1 %2").arg(number).arg(text);
        return int(AnswerYes);
    });
}

void TestWeatherWidget::cleanup()
{
    SetMessageResponderForTesting({});
    m_server.reset();
    m_home.reset();
}

void TestWeatherWidget::buildsTheFeedAddress_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("url");
    QTest::newRow("built-in adapter") << QString() << "UKXX0085"
                                      << "http://weather.vantora.invalid/wxdata/weather/rss/local/UKXX0085"
                                         "?lngCM_ven=LWO&lngCM_cat=rss";
    QTest::newRow("another host") << "feeds.example.org:8080" << "USAK0001"
                                  << "http://feeds.example.org:8080/wxdata/weather/rss/local/USAK0001"
                                     "?lngCM_ven=LWO&lngCM_cat=rss";
}

void TestWeatherWidget::buildsTheFeedAddress()
{
    QFETCH(QString, host);
    QFETCH(QString, code);
    QFETCH(QString, url);
    if (!host.isEmpty())
        WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather Feed Host"), host);
    QCOMPARE(WeatherStation::BuildFeedUrl(code), url);
}

void TestWeatherWidget::showsTheReportInEitherUnit_data()
{
    QTest::addColumn<QString>("tempSelected");
    QTest::addColumn<QString>("number");
    QTest::newRow("Celsius") << "0" << "14C";
    QTest::newRow("Fahrenheit") << "1" << "57F ";
}

void TestWeatherWidget::showsTheReportInEitherUnit()
{
    QFETCH(QString, tempSelected);
    QFETCH(QString, number);
    useServer();
    WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Temp-Selected"), tempSelected);
    m_server->setBody(kLondonPath, FeedDocument(QStringLiteral("London, United Kingdom"), 26,
                                                QStringLiteral("Cloudy"), 57));
    WeatherStation station;
    QCOMPARE(station.locationCode(), QStringLiteral("UKXX0085"));
    QSignalSpy changed(&station, &WeatherStation::readoutChanged);
    station.GetWeatherData();
    QVERIFY(changed.wait(5000));
    const WeatherReadout &r = station.readout();
    QCOMPARE(r.number, number);
    QCOMPARE(r.location, QStringLiteral("London, United Kingdom"));
    QCOMPARE(r.description, QStringLiteral("Cloudy"));
    QCOMPARE(r.temperatureText, QStringLiteral("57F 13.9C"));
    QCOMPARE(r.glyph, ShippedData::weatherGlyph(26));
    QCOMPARE(station.dataSource(), QStringLiteral("Open-Meteo"));
    // A feed host of the user's own is credited to no source, whatever its pictures' addresses say.
    QCOMPARE(station.creditedSource(), QString());
    QVERIFY2(station.statusText().startsWith(QStringLiteral("Updated at")), qPrintable(station.statusText()));
    // The reading's scratch file is not left in the data folder, where the user keeps notes.
    QVERIFY(!QFile::exists(m_home->filePath(QStringLiteral("web.txt"))));
    QCOMPARE(m_server->requests().size(), 1);
    QCOMPARE(m_server->requests().constFirst().headers.value("cache-control"), QByteArray("no-cache"));
}

void TestWeatherWidget::keepsItsLabelsWhenTheFetchFails_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("problem");
    QTest::newRow("server error") << 500 << QByteArray("oops") << "500";
    QTest::newRow("not a feed") << 200 << QByteArray("<html>maintenance</html>") << "no weather report";
}

void TestWeatherWidget::keepsItsLabelsWhenTheFetchFails()
{
    QFETCH(int, status);
    QFETCH(QByteArray, body);
    QFETCH(QString, problem);
    useServer();
    LocalHttpServer::Response response;
    response.status = status;
    response.body = body;
    m_server->setResponse(kLondonPath, response);
    WeatherWidget widget; // loading it fetches
    QCOMPARE(LabelText(&widget, "lblDESC"), QStringLiteral("Please wait..."));
    QCOMPARE(LabelText(&widget, "lblNUMBERDESC"), QStringLiteral("Accessing Weather"));
    WeatherStation *station = WeatherStation::shared();
    QVERIFY(station->isFetching());
    QTRY_VERIFY_WITH_TIMEOUT(!station->isFetching(), 5000);
    QCOMPARE(LabelText(&widget, "lblDESC"), QStringLiteral("Please wait..."));
    QCOMPARE(LabelText(&widget, "lblNUMBERDESC"), QStringLiteral("Accessing Weather"));
    const QString tip = widget.panel()->toolTip();
    QVERIFY2(tip.contains(QStringLiteral("could not be updated")) && tip.contains(problem), qPrintable(tip));
}

void TestWeatherWidget::aHangingSourceIsGivenUp()
{
    useServer();
    LocalHttpServer::Response hanging;
    hanging.hang = true;
    m_server->setResponse(kLondonPath, hanging);
    WeatherStation station;
    station.setFetchTimeLimitForTesting(300);
    QSignalSpy status(&station, &WeatherStation::statusChanged);
    station.GetWeatherData();
    QVERIFY(station.isFetching());
    QTRY_VERIFY_WITH_TIMEOUT(!station.isFetching(), 5000);
    QVERIFY2(station.statusText().contains(QStringLiteral("did not answer within")), qPrintable(station.statusText()));
    QVERIFY(!station.statusText().contains(QStringLiteral("Fetching")));

    // The next fetch is not held up by the one given up.
    m_server->setBody(kLondonPath, FeedDocument(QStringLiteral("London, United Kingdom"), 26,
                                                QStringLiteral("Cloudy"), 57));
    QSignalSpy changed(&station, &WeatherStation::readoutChanged);
    station.GetWeatherData();
    QVERIFY(changed.wait(5000));
    QCOMPARE(station.readout().description, QStringLiteral("Cloudy"));
}

void TestWeatherWidget::aNoteCalledWebTxtSurvivesAFetch()
{
    const QString note = m_home->filePath(QStringLiteral("web.txt"));
    QFile file(note);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Sites to read: a list of my own");
    file.close();

    useServer();
    m_server->setBody(kLondonPath, FeedDocument(QStringLiteral("London, United Kingdom"), 26,
                                                QStringLiteral("Cloudy"), 57));
    WeatherStation station;
    QSignalSpy changed(&station, &WeatherStation::readoutChanged);
    station.GetWeatherData();
    QVERIFY(changed.wait(5000));
    QVERIFY(QFile::exists(note));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("Sites to read: a list of my own"));
}

void TestWeatherWidget::refreshRedrawsAndSaysUpdated()
{
    WeatherWidget widget;
    widget.refreshClicked();
    QCOMPARE(m_messages, QStringList{QStringLiteral("0 Updated")});
}

void TestWeatherWidget::applyStoresThePlaceAndFetchesIt()
{
    useServer();
    WeatherSettingsDialog dialog;
    dialog.findChild<QRadioButton *>(QStringLiteral("optLOCATIONS_1"))->click();
    auto *country = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRY"));
    QCOMPARE(country->itemText(0), QStringLiteral("AA")); // the state list now
    country->setCurrentText(QStringLiteral("AK"));
    dialog.findChild<QPushButton *>(QStringLiteral("btnSEARCH"))->click();
    auto *place = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRYAREA"));
    QCOMPARE(place->itemText(0), QStringLiteral("Adak"));
    place->setCurrentText(QStringLiteral("Adak"));
    dialog.findChild<QRadioButton *>(QStringLiteral("optTEMP_0"))->click();
    dialog.findChild<QPushButton *>(QStringLiteral("btnLOCATE"))->click();

    QCOMPARE(ReadDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather location-world"), QString()), QStringLiteral("1"));
    QCOMPARE(ReadDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather location-country-name"), QString()), QStringLiteral("AK"));
    QCOMPARE(ReadDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather location-country-area"), QString()), QStringLiteral("Adak"));
    QCOMPARE(ReadDetail(QStringLiteral("fwth_SET"), QStringLiteral("Temp-Selected"), QString()), QStringLiteral("1"));
    QCOMPARE(WeatherStation::shared()->locationCode(), QStringLiteral("USAK0001"));
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/wxdata/weather/rss/local/USAK0001"), 1, 5000);
}

void TestWeatherWidget::findNarrowsThePlaceList()
{
    WeatherSettingsDialog dialog;
    auto *place = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRYAREA"));
    const int all = place->count();
    QVERIFY(all > 20); // the United Kingdom's places
    dialog.findChild<QLineEdit *>(QStringLiteral("txtFIND"))->setText(QStringLiteral("london"));
    QVERIFY(place->count() < all && place->count() >= 2);
    QCOMPARE(place->currentText(), QStringLiteral("London"));
    for (int i = 0; i < place->count(); ++i)
        QVERIFY(place->itemText(i).contains(QStringLiteral("London"), Qt::CaseInsensitive));
}

// The option refills only the country list; the places are read again when the user asks.
void TestWeatherWidget::switchingCataloguesWaitsForLoadCountry()
{
    WeatherSettingsDialog dialog;
    auto *country = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRY"));
    auto *place = dialog.findChild<QComboBox *>(QStringLiteral("cboCOUNTRYAREA"));
    const QStringList britishPlaces = [place] {
        QStringList items;
        for (int i = 0; i < place->count(); ++i)
            items << place->itemText(i);
        return items;
    }();
    QVERIFY(britishPlaces.contains(QStringLiteral("London")));

    dialog.findChild<QRadioButton *>(QStringLiteral("optLOCATIONS_1"))->click();
    QCOMPARE(country->count(), 62);
    QCOMPARE(country->itemText(0), QStringLiteral("AA"));
    QCOMPARE(place->count(), britishPlaces.size());
    QCOMPARE(place->itemText(0), britishPlaces.first());

    country->setCurrentText(QStringLiteral("CO"));
    dialog.findChild<QPushButton *>(QStringLiteral("btnSEARCH"))->click();
    QVERIFY(place->findText(QStringLiteral("Boulder")) >= 0);
    QCOMPARE(place->findText(QStringLiteral("London")), -1);

    // Back to the world: the Colorado places stay until Load Country is pressed again.
    dialog.findChild<QRadioButton *>(QStringLiteral("optLOCATIONS_0"))->click();
    QCOMPARE(country->itemText(0), QStringLiteral("Aruba"));
    QVERIFY(place->findText(QStringLiteral("Boulder")) >= 0);
}

QTEST_MAIN(TestWeatherWidget)
#include "test_weather_widget.moc"
