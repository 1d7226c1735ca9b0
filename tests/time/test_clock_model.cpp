#include "core/clock_source.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "time/clock_model.h"
#include "time/date_time_formatter.h"

#include <QSignalSpy>
#include <QTest>

namespace {
const QDate kMonday(2026, 1, 5);
} // namespace

class TestClockModel : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void cleanup() { ClockSource::clearNowForTesting(); }

    void hourText_data();
    void hourText();
    void modernTexts();
    void classicSuffixes_data();
    void classicSuffixes();
    void customDateFormats_data();
    void customDateFormats();
    void settingsAreReadOnEveryRefresh();
    void signalsOnlyOnChange_data();
    void signalsOnlyOnChange();
};

void TestClockModel::hourText_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<bool>("hour24");
    QTest::addColumn<QString>("expected");

    QTest::newRow("24h midnight") << QTime(0, 0) << true << "12";
    QTest::newRow("24h half past midnight") << QTime(0, 30) << true << "12";
    QTest::newRow("24h one in the morning") << QTime(1, 0) << true << "01";
    QTest::newRow("24h before noon") << QTime(11, 59) << true << "11";
    QTest::newRow("24h noon") << QTime(12, 0) << true << "12";
    QTest::newRow("24h five past one pm") << QTime(13, 5) << true << "13";
    QTest::newRow("24h last hour") << QTime(23, 59) << true << "23";
    QTest::newRow("12h midnight") << QTime(0, 0) << false << "12";
    QTest::newRow("12h half past midnight") << QTime(0, 30) << false << "12";
    QTest::newRow("12h one in the morning") << QTime(1, 0) << false << "1";
    QTest::newRow("12h before noon") << QTime(11, 59) << false << "11";
    QTest::newRow("12h noon") << QTime(12, 0) << false << "12";
    QTest::newRow("12h five past one pm") << QTime(13, 5) << false << "1";
    QTest::newRow("12h last hour") << QTime(23, 59) << false << "11";
}

void TestClockModel::hourText()
{
    QFETCH(QTime, time);
    QFETCH(bool, hour24);
    QFETCH(QString, expected);
    QCOMPARE(ClockModel::hourText(time, hour24), expected);
}

void TestClockModel::modernTexts()
{
    ClockSettings s;
    const auto d = ClockModel::compose(QDateTime(kMonday, QTime(0, 30, 7)), s);
    // Seconds never appear in the panel text of the modern layout.
    QCOMPARE(d.panel, QStringLiteral("12:30"));
    QCOMPARE(d.secs, QStringLiteral("07"));
    QCOMPARE(d.style, QStringLiteral("AM"));

    s.hour24 = false;
    const auto pm = ClockModel::compose(QDateTime(kMonday, QTime(13, 5, 59)), s);
    QCOMPARE(pm.panel, QStringLiteral("1:05"));
    QCOMPARE(pm.secs, QStringLiteral("59"));
    QCOMPARE(pm.style, QStringLiteral("PM"));
}

void TestClockModel::classicSuffixes_data()
{
    QTest::addColumn<bool>("secs");
    QTest::addColumn<bool>("ampm");
    QTest::addColumn<QString>("expected");

    QTest::newRow("seconds and marker") << true << true << "12:30:07 AM ";
    QTest::newRow("seconds only") << true << false << "12:30:07 ";
    QTest::newRow("marker only") << false << true << "12:30 AM ";
    QTest::newRow("hours and minutes") << false << false << "12:30 ";
}

void TestClockModel::classicSuffixes()
{
    QFETCH(bool, secs);
    QFETCH(bool, ampm);
    QFETCH(QString, expected);
    ClockSettings s;
    s.modern = false;
    s.secsShow = secs;
    s.ampmShow = ampm;
    const auto d = ClockModel::compose(QDateTime(kMonday, QTime(0, 30, 7)), s);
    QCOMPARE(d.panel, expected);
    QVERIFY(d.secs.isEmpty());
    QVERIFY(d.style.isEmpty());
}

void TestClockModel::customDateFormats_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("expected");

    const QTime t(0, 30, 7);
    QTest::newRow("default custom") << t << "dddd, d mmmm"
                                    << "Monday, 5 January";
    QTest::newRow("short names") << t << "ddd d mmm yy"
                                 << "Mon 5 Jan 26";
    QTest::newRow("numeric") << t << "dd/mm/yyyy"
                             << "05/01/2026";
    QTest::newRow("upper case letters") << t << "DDDD D MMMM YYYY"
                                        << "Monday 5 January 2026";
    QTest::newRow("quoted literal") << t << "\"Today is\" dddd!"
                                    << "Today is Monday!";
    QTest::newRow("escaped letters") << t << "\\d\\a\\y d"
                                     << "day 5";
    QTest::newRow("plain literal text") << t << "(week of) d/m"
                                        << "(week of) 5/1";
    QTest::newRow("m after hour is minutes") << t << "hh:mm"
                                             << "00:30";
    QTest::newRow("m before seconds is minutes") << t << "mm:ss"
                                                 << "30:07";
    QTest::newRow("n is minutes") << t << "h:nn"
                                  << "0:30";
    QTest::newRow("ampm makes 12-hour") << QTime(13, 5) << "h:nn ampm"
                                        << "1:05 PM";
    QTest::newRow("ampm at midnight") << QTime(0, 5) << "hh:nn ampm"
                                      << "12:05 AM";
    QTest::newRow("empty format") << t << ""
                                  << "";
}

void TestClockModel::customDateFormats()
{
    QFETCH(QTime, time);
    QFETCH(QString, format);
    QFETCH(QString, expected);
    ClockSettings s;
    s.dateDefault = false;
    s.dateCustom = format;
    QCOMPARE(ClockModel::compose(QDateTime(kMonday, time), s).date, expected);
}

void TestClockModel::settingsAreReadOnEveryRefresh()
{
    TestHome home;
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(13, 5, 9)));
    ClockModel model;
    QSignalSpy settingsSpy(&model, &ClockModel::settingsChanged);
    model.refresh();
    QCOMPARE(model.display().panel, QStringLiteral("13:05"));
    QCOMPARE(settingsSpy.count(), 1);

    // What the settings dialog writes shows at the next tick, with no reload call.
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-modern"), QStringLiteral("0"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-24Hour"), QStringLiteral("False"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("date-default"), QStringLiteral("0"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("date-default-custom"), QStringLiteral("d mmm"));
    model.refresh();
    QCOMPARE(model.display().panel, QStringLiteral("1:05:09 PM "));
    QCOMPARE(model.display().date, QStringLiteral("5 Jan"));
    QCOMPARE(settingsSpy.count(), 2);
}

void TestClockModel::signalsOnlyOnChange_data()
{
    // Ticks of 55 ms from a moment into a second: the texts change at the first tick of the
    // next second and at no other.
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QString>("nextSecs");
    QTest::addColumn<QString>("nextDate");
    QTest::newRow("start of a second") << QDateTime(kMonday, QTime(9, 0, 0)) << "01" << "Monday, January 5, 2026";
    QTest::newRow("last tick early") << QDateTime(kMonday, QTime(9, 0, 0, 944)) << "01" << "Monday, January 5, 2026";
    QTest::newRow("midnight")
        << QDateTime(kMonday, QTime(23, 59, 59, 990)) << "00" << "Tuesday, January 6, 2026";
}

void TestClockModel::signalsOnlyOnChange()
{
    QFETCH(QDateTime, start);
    QFETCH(QString, nextSecs);
    QFETCH(QString, nextDate);
    TestHome home;
    ClockSource::setNowForTesting(start);
    ClockModel model;
    QSignalSpy displaySpy(&model, &ClockModel::displayChanged);
    QSignalSpy settingsSpy(&model, &ClockModel::settingsChanged);
    model.refresh();
    const QString firstSecs = model.display().secs;
    int msIntoSecond = start.time().msec();
    for (; msIntoSecond < 1000; msIntoSecond += 55) {
        QCOMPARE(displaySpy.count(), 1);
        QCOMPARE(model.display().secs, firstSecs);
        ClockSource::advanceForTesting(55);
        model.refresh();
    }
    QCOMPARE(displaySpy.count(), 2);
    QCOMPARE(model.display().secs, nextSecs);
    QCOMPARE(model.display().date, nextDate);
    QCOMPARE(settingsSpy.count(), 1);
}

QTEST_GUILESS_MAIN(TestClockModel)
#include "test_clock_model.moc"
