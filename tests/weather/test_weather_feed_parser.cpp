#include "support/test_home.h"
#include "weather/weather_feed_parser.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

namespace {

QByteArray feedBytes(const QString &name)
{
    if (name.isEmpty())
        return {};
    QFile file(QDir(QStringLiteral(WEATHER_TEST_DATA)).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing recorded feed %s", qPrintable(name));
    return file.readAll();
}

} // namespace

class TestWeatherFeedParser : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TestHome> m_home;

    // A recorded reply the way the download handler passes it on: normalised through the
    // scratch file, then parsed.
    WeatherFeedParser::Outcome parse(WeatherFeedParser &parser, const QString &feed, bool fahrenheit)
    {
        const QString text = NormaliseFeedReply(feedBytes(feed), m_home->filePath(QStringLiteral("web.txt")));
        return parser.DataCurrent(text, fahrenheit);
    }

private slots:
    void initTestCase()
    {
        m_home = std::make_unique<TestHome>();
        QVERIFY(m_home->isValid());
    }

    void commaSeparatedItems_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("items");
        QTest::newRow("comma becomes a line break") << "London, United Kingdom\r\n" << "London\r\nUnited Kingdom\r\n";
        QTest::newRow("blanks around an item") << " \ta b \t,\t c\r\n" << "a b\r\nc\r\n";
        QTest::newRow("quoted item") << "\"x, y\" dropped,z\r\n" << "x, y\r\nz\r\n";
        QTest::newRow("quoted item across a line end") << "\"a\r\nb\"\r\nc\r\n" << "a\r\nb\r\nc\r\n";
        QTest::newRow("unterminated quote") << "\"abc, d" << "abc, d\r\n";
        QTest::newRow("quotes inside an item") << "src=\"26.gif\" alt=\"\",x\n" << "src=\"26.gif\" alt=\"\"\r\nx\r\n";
        QTest::newRow("empty items") << "a,,b,\r\n" << "a\r\n\r\nb\r\n\r\n";
        QTest::newRow("empty line") << "a\r\n\r\nb\r\n" << "a\r\n\r\nb\r\n";
        QTest::newRow("LF and CR line ends") << "a\nb\rc" << "a\r\nb\r\nc\r\n";
        QTest::newRow("nothing") << "" << "";
    }

    void commaSeparatedItems()
    {
        QFETCH(QString, text);
        QFETCH(QString, items);
        QCOMPARE(CommaSeparatedItems(text), items);
    }

    void normaliseFeedReply_data()
    {
        QTest::addColumn<bool>("writable");
        QTest::newRow("scratch file") << true;
        QTest::newRow("scratch file cannot be written") << false;
    }

    void normaliseFeedReply()
    {
        QFETCH(bool, writable);
        const QString scratch = writable ? m_home->filePath(QStringLiteral("web.txt"))
                                         : m_home->filePath(QStringLiteral("missing/web.txt"));
        const QString text = NormaliseFeedReply(QStringLiteral("Tromsø, Norway").toLatin1(), scratch);
        QCOMPARE(text, QStringLiteral("Tromsø\r\nNorway\r\n"));
        QVERIFY(!QFile::exists(scratch));
        // An empty reply still reads as one empty line.
        QCOMPARE(NormaliseFeedReply({}, scratch), QStringLiteral("\r\n"));
    }

    void celsiusFromFahrenheit_data()
    {
        QTest::addColumn<double>("fahrenheit");
        QTest::addColumn<double>("celsius");
        QTest::newRow("57") << 57.0 << 13.9;
        QTest::newRow("100") << 100.0 << 37.8;
        QTest::newRow("20") << 20.0 << -6.7;
        QTest::newRow("32") << 32.0 << 0.0;
        QTest::newRow("0") << 0.0 << -17.8;
        QTest::newRow("-40") << -40.0 << -40.0;
        QTest::newRow("41, exact hundredths") << 41.0 << 5.0;
        QTest::newRow("10") << 10.0 << -12.2;
    }

    void celsiusFromFahrenheit()
    {
        QFETCH(double, fahrenheit);
        QFETCH(double, celsius);
        QCOMPARE(CelsiusFromFahrenheit(fahrenheit), celsius);
    }

    void foldIconNumber_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("folded");
        const QList<std::pair<int, int>> table = {
            {36, 32}, {30, 28}, {34, 28}, {2, 1}, {4, 3}, {47, 3}, {6, 5}, {18, 5}, {14, 13},
            {46, 13}, {11, 9}, {45, 9}, {20, 19}, {22, 19}, {29, 27}, {33, 27}, {44, 25},
            {0, 0}, {1, 1}, {26, 26}, {32, 32}, {3200, 3200}};
        for (const auto &[code, folded] : table)
            QTest::addRow("%d", code) << code << folded;
    }

    void foldIconNumber()
    {
        QFETCH(int, code);
        QFETCH(int, folded);
        QCOMPARE(FoldIconNumber(code), folded);
    }

    void recordedFeed_data()
    {
        QTest::addColumn<QString>("feed");
        QTest::addColumn<bool>("fahrenheit");
        QTest::addColumn<int>("icon");
        QTest::addColumn<QString>("location");
        QTest::addColumn<QString>("place");
        QTest::addColumn<QString>("description");
        QTest::addColumn<QString>("temperatureText");
        QTest::addColumn<QString>("number");
        QTest::newRow("UK, Celsius") << "feed_london.xml" << false << 26 << "London, United Kingdom"
                                     << "London" << "Cloudy" << "57F 13.9C" << "14C";
        QTest::newRow("UK, Fahrenheit") << "feed_london.xml" << true << 26 << "London, United Kingdom"
                                        << "London" << "Cloudy" << "57F 13.9C" << "57F ";
        QTest::newRow("US, state dropped") << "feed_boulder_us.xml" << false << 32 << "Boulder, United States"
                                           << "Boulder" << "Sunny" << "75F 23.9C" << "24C";
        QTest::newRow("first reply 0 F") << "feed_tromso_zero.xml" << false << 13 << "Tromsø, Norway"
                                         << "Tromsø" << "Light Snow" << "0" << "-18C";
        QTest::newRow("first reply 0 F, Fahrenheit") << "feed_tromso_zero.xml" << true << 13 << "Tromsø, Norway"
                                                     << "Tromsø" << "Light Snow" << "0" << "0F ";
        QTest::newRow("44.gif") << "feed_code_44.xml" << false << 25 << "Dublin, Ireland"
                                << "Dublin" << "No Description" << "50F 10C" << "10C";
        QTest::newRow("25.gif") << "feed_code_25.xml" << false << 25 << "Moscow, Russia"
                                << "Moscow" << "None" << "10F -12.2C" << "-12C";
        QTest::newRow("No Description with code 29") << "feed_no_description_29.xml" << false << 27
                                                     << "Paris, France" << "Paris" << "Partly Cloudy"
                                                     << "48F 8.9C" << "9C";
        QTest::newRow("blank description") << "feed_blank_description.xml" << false << 28 << "Madrid, Spain"
                                           << "Madrid" << "None" << "68F 20C" << "20C";
        QTest::newRow("no temperature") << "feed_no_temperature.xml" << false << 19 << "Lisbon, Portugal"
                                        << "Lisbon" << "Fog" << "No Temp" << "-";
    }

    void recordedFeed()
    {
        QFETCH(QString, feed);
        QFETCH(bool, fahrenheit);
        WeatherFeedParser parser;
        const WeatherFeedParser::Outcome outcome = parse(parser, feed, fahrenheit);
        QVERIFY(outcome.picture && outcome.labels);
        const WeatherReadout &shown = parser.readout();
        QTEST(shown.iconNumber, "icon");
        QTEST(shown.location, "location");
        QTEST(shown.place, "place");
        QCOMPARE(shown.country, shown.location.section(QStringLiteral(", "), 1));
        QTEST(shown.description, "description");
        QTEST(shown.temperatureText, "temperatureText");
        QTEST(shown.number, "number");
    }

    void summaryKeepsTheTitleAsRead()
    {
        WeatherFeedParser parser;
        parse(parser, QStringLiteral("feed_boulder_us.xml"), false);
        QCOMPARE(parser.readout().summary,
                 QStringLiteral("Boulder, \nUnited States\r\n\r\nSunny\r\n\r\n75F 23.9C"));
        QCOMPARE(parser.readout().glyph, QString(QChar(0xF00D)));
        QCOMPARE(parser.iconAddress(), QStringLiteral("http://weather.vantora.invalid/images/32.gif"));
        parse(parser, QStringLiteral("feed_no_temperature.xml"), false);
        QCOMPARE(parser.readout().summary, QStringLiteral("Lisbon, Portugal\r\n\r\nFog\r\n\r\n"));
    }

    void lowReadingKeepsEarlierFahrenheit_data()
    {
        QTest::addColumn<QString>("feed");
        QTest::addColumn<bool>("fahrenheit");
        QTest::addColumn<QString>("temperatureText");
        QTest::addColumn<QString>("number");
        QTest::newRow("0 F, Fahrenheit") << "feed_tromso_zero.xml" << true << "0" << "57F ";
        QTest::newRow("-5 F, Celsius") << "feed_oslo_below_zero.xml" << false << "-5" << "14C";
    }

    void lowReadingKeepsEarlierFahrenheit()
    {
        QFETCH(QString, feed);
        QFETCH(bool, fahrenheit);
        WeatherFeedParser parser;
        parse(parser, QStringLiteral("feed_london.xml"), fahrenheit);
        QVERIFY(parse(parser, feed, fahrenheit).labels);
        QTEST(parser.readout().temperatureText, "temperatureText");
        QTEST(parser.readout().number, "number");
        QCOMPARE(parser.fahrenheit(), 57.0);
    }

    void unreadableReplyKeepsLabels_data()
    {
        QTest::addColumn<QString>("feed");
        QTest::addColumn<int>("icon"); // the picture afterwards
        QTest::newRow("empty reply") << "" << 26;
        QTest::newRow("no title marker") << "feed_no_title_marker.xml" << 26;
        QTest::newRow("no query after the picture's quote") << "feed_no_query.xml" << 26;
        QTest::newRow("no 'For more details': picture only") << "feed_no_details.xml" << 28;
    }

    void unreadableReplyKeepsLabels()
    {
        QFETCH(QString, feed);
        QFETCH(int, icon);
        WeatherFeedParser parser;
        parse(parser, QStringLiteral("feed_london.xml"), false);
        const WeatherReadout before = parser.readout();
        const WeatherFeedParser::Outcome outcome = parse(parser, feed, false);
        QVERIFY(!outcome.labels);
        QCOMPARE(outcome.picture, icon != before.iconNumber);
        const WeatherReadout &after = parser.readout();
        QTEST(after.iconNumber, "icon");
        QCOMPARE(after.location, before.location);
        QCOMPARE(after.description, before.description);
        QCOMPARE(after.temperatureText, before.temperatureText);
        QCOMPARE(after.number, before.number);
        QCOMPARE(after.summary, before.summary);
    }

    void emptyTextStopsAtOnce()
    {
        WeatherFeedParser parser;
        const WeatherFeedParser::Outcome outcome = parser.DataCurrent(QString(), false);
        QVERIFY(!outcome.picture && !outcome.labels);
        QCOMPARE(parser.readout().iconNumber, -1);
    }
};

QTEST_MAIN(TestWeatherFeedParser)
#include "test_weather_feed_parser.moc"
