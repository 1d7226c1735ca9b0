#include "core/clock_source.h"
#include "core/widget_frame.h"
#include "support/test_home.h"
#include "time/alarm_scheduler.h"

#include <QSignalSpy>
#include <QTest>
#include <QTimeZone>

namespace {
const QDate kDay(2026, 3, 10);

void armPreset(int index, const QString &time, const QString &message)
{
    AlarmPreset p;
    p.armed = true;
    p.time = time;
    p.message = message;
    p.save(index);
}
} // namespace

class TestAlarmScheduler : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void quarterHourTimes();
    void normalizedTime_data();
    void normalizedTime();
    void midnightPreset_data();
    void midnightPreset();
    void twoPresetsInOneSecond();
    void otherSoundFile();
    void changeCountsOnlyAfterReload();
    void indexFiveIsNeverArmed();
    void daylightSavingChanges_data();
    void daylightSavingChanges();

private:
    TestHome *m_home = nullptr;
    QStringList m_sounds;
};

void TestAlarmScheduler::init()
{
    m_home = new TestHome; // a fresh settings file for every test
    m_sounds.clear();
    SetSoundRecorderForTesting([this](const QString &sound) { m_sounds << sound; });
}

void TestAlarmScheduler::cleanup()
{
    SetSoundRecorderForTesting(nullptr);
    ClockSource::clearNowForTesting();
    delete m_home;
}

void TestAlarmScheduler::quarterHourTimes()
{
    const QStringList times = AlarmScheduler::quarterHourTimes();
    QCOMPARE(times.size(), 96);
    QCOMPARE(times.first(), QStringLiteral("00:00:00"));
    QCOMPARE(times.at(1), QStringLiteral("00:15:00"));
    QCOMPARE(times.at(4 * 9 + 3), QStringLiteral("09:45:00"));
    QCOMPARE(times.last(), QStringLiteral("23:45:00"));
}

void TestAlarmScheduler::normalizedTime_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("expected");
    QTest::newRow("already right") << "07:15:00"
                                   << "07:15:00";
    QTest::newRow("short hour") << "7:15:00"
                                << "07:15:00";
    QTest::newRow("no seconds") << " 7:15 "
                                << "07:15:00";
    QTest::newRow("not a time") << "tea time"
                                << "tea time";
    QTest::newRow("out of range") << "25:00:00"
                                  << "25:00:00";
    QTest::newRow("empty") << ""
                           << "";
}

void TestAlarmScheduler::normalizedTime()
{
    QFETCH(QString, stored);
    QFETCH(QString, expected);
    QCOMPARE(AlarmScheduler::normalizedTime(stored), expected);
}

void TestAlarmScheduler::midnightPreset_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<bool>("fires");
    QTest::newRow("on the stroke") << QDateTime(kDay, QTime(0, 0, 0, 0)) << true;
    QTest::newRow("late in the second") << QDateTime(kDay, QTime(0, 0, 0, 950)) << true;
    QTest::newRow("the next day too") << QDateTime(kDay.addDays(1), QTime(0, 0, 0, 400)) << true;
    QTest::newRow("a tenth early") << QDateTime(kDay, QTime(23, 59, 59, 900)) << false;
    QTest::newRow("a second late") << QDateTime(kDay, QTime(0, 0, 1, 0)) << false;
    QTest::newRow("noon") << QDateTime(kDay, QTime(12, 0, 0, 0)) << false;
}

void TestAlarmScheduler::midnightPreset()
{
    QFETCH(QDateTime, now);
    QFETCH(bool, fires);
    armPreset(0, QStringLiteral("00:00:00"), QStringLiteral("Midnight"));
    AlarmScheduler scheduler;
    scheduler.loadPresets();
    QSignalSpy spy(&scheduler, &AlarmScheduler::alarmFired);
    ClockSource::setNowForTesting(now);
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), fires ? 1 : 0);
    QCOMPARE(m_sounds, fires ? QStringList{QStringLiteral("BELL")} : QStringList());
    if (fires)
        QCOMPARE(spy.first().at(1).toString(), QStringLiteral("Midnight"));
}

void TestAlarmScheduler::twoPresetsInOneSecond()
{
    armPreset(1, QStringLiteral("07:30:00"), QStringLiteral("first"));
    armPreset(3, QStringLiteral("07:30:00"), QStringLiteral("second"));
    armPreset(2, QStringLiteral("07:30:00"), QStringLiteral("not armed"));
    AlarmPreset p = AlarmPreset::load(2);
    p.armed = false;
    p.save(2);

    AlarmScheduler scheduler;
    scheduler.loadPresets();
    QString shown;
    QList<int> order;
    connect(&scheduler, &AlarmScheduler::alarmFired, this, [&](int index, const QString &message) {
        order << index;
        shown = message; // the one pop-up is refilled each time
    });
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(7, 30, 0, 300)));
    scheduler.AlarmRefresh();
    QCOMPARE(order, (QList<int>{1, 3}));
    QCOMPARE(shown, QStringLiteral("second"));
    QCOMPARE(m_sounds.size(), 2);

    // Every check within the second fires again: there is no memory of having fired.
    ClockSource::advanceForTesting(100);
    scheduler.AlarmRefresh();
    QCOMPARE(order.size(), 4);
}

void TestAlarmScheduler::otherSoundFile()
{
    armPreset(4, QStringLiteral("18:00:00"), QStringLiteral("Dinner"));
    AlarmScheduler scheduler;
    scheduler.loadPresets();
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(18, 0, 0)));
    // The sound choice is read when the alarm fires, not when the presets load.
    const QString wav = m_home->filePath(QStringLiteral("gong.wav"));
    AlarmScheduler::saveSound(false, wav);
    scheduler.AlarmRefresh();
    QCOMPARE(m_sounds, QStringList{wav});
}

void TestAlarmScheduler::changeCountsOnlyAfterReload()
{
    armPreset(0, QStringLiteral("08:00:00"), QStringLiteral("old"));
    AlarmScheduler scheduler;
    scheduler.loadPresets();
    QSignalSpy spy(&scheduler, &AlarmScheduler::alarmFired);

    armPreset(0, QStringLiteral("09:15:00"), QStringLiteral("new"));
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(9, 15, 0)));
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), 0);
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(8, 0, 0)));
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), 1);

    scheduler.loadPresets();
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), 1);
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(9, 15, 0)));
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.last().at(1).toString(), QStringLiteral("new"));
}

void TestAlarmScheduler::indexFiveIsNeverArmed()
{
    // Values stored under an index past the last preset are never looked at.
    armPreset(5, QStringLiteral("10:00:00"), QStringLiteral("ghost"));
    AlarmScheduler scheduler;
    scheduler.loadPresets();
    QVERIFY(!scheduler.preset(5).armed);
    QSignalSpy spy(&scheduler, &AlarmScheduler::alarmFired);
    ClockSource::setNowForTesting(QDateTime(kDay, QTime(10, 0, 0)));
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), 0);
}

void TestAlarmScheduler::daylightSavingChanges_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDateTime>("utc"); // the moment of the check
    QTest::addColumn<QString>("time");  // the preset's time of day
    QTest::addColumn<bool>("fires");

    const auto at = [](int y, int mo, int d, int h, int mi, int s, int ms = 300) {
        return QDateTime(QDate(y, mo, d), QTime(h, mi, s, ms), Qt::UTC);
    };
    // New York jumps from 02:00 to 03:00 at 07:00 UTC on 8 March 2026 ...
    const QByteArray ny = "America/New_York";
    QTest::newRow("ordinary day") << ny << at(2026, 3, 7, 12, 30, 0) << "07:30:00" << true;
    QTest::newRow("skipped time rings at 03:00:00") << ny << at(2026, 3, 8, 7, 0, 0) << "02:30:00" << true;
    QTest::newRow("first skipped second too") << ny << at(2026, 3, 8, 7, 0, 0, 900) << "02:00:00" << true;
    QTest::newRow("skipped time, one second later") << ny << at(2026, 3, 8, 7, 0, 1) << "02:30:00" << false;
    QTest::newRow("skipped time, before the jump") << ny << at(2026, 3, 8, 6, 59, 59) << "02:30:00" << false;
    QTest::newRow("time before the gap is not skipped")
        << ny << at(2026, 3, 8, 7, 0, 0) << "01:59:59" << false;
    QTest::newRow("03:00:00 itself") << ny << at(2026, 3, 8, 7, 0, 0) << "03:00:00" << true;
    // ... and turns back from 02:00 to 01:00 at 06:00 UTC on 1 November 2026.
    QTest::newRow("repeated hour, first pass") << ny << at(2026, 11, 1, 5, 30, 0) << "01:30:00" << true;
    QTest::newRow("repeated hour, second pass") << ny << at(2026, 11, 1, 6, 30, 0) << "01:30:00" << false;
    QTest::newRow("start of the second pass") << ny << at(2026, 11, 1, 6, 0, 0) << "01:00:00" << false;
    QTest::newRow("after the repeated hour") << ny << at(2026, 11, 1, 7, 0, 0) << "02:00:00" << true;
    // Half-hour changes: 02:00 back to 01:30, and 02:00 on to 02:30.
    const QByteArray lordHowe = "Australia/Lord_Howe";
    QTest::newRow("half hour repeated, first pass")
        << lordHowe << at(2026, 4, 4, 14, 45, 0) << "01:45:00" << true;
    QTest::newRow("half hour repeated, second pass")
        << lordHowe << at(2026, 4, 4, 15, 15, 0) << "01:45:00" << false;
    QTest::newRow("half hour skipped") << lordHowe << at(2026, 10, 3, 15, 30, 0) << "02:15:00" << true;
    QTest::newRow("after a half hour skip") << lordHowe << at(2026, 10, 3, 15, 30, 0) << "02:30:00" << true;
    // Santiago jumps from midnight to 01:00, and turns back from midnight to 23:00.
    const QByteArray santiago = "America/Santiago";
    QTest::newRow("skipped midnight") << santiago << at(2026, 9, 6, 4, 0, 0) << "00:00:00" << true;
    QTest::newRow("skipped after midnight") << santiago << at(2026, 9, 6, 4, 0, 0) << "00:45:00" << true;
    QTest::newRow("evening before the gap") << santiago << at(2026, 9, 6, 4, 0, 0) << "23:45:00" << false;
    QTest::newRow("late hour, first pass") << santiago << at(2026, 4, 5, 2, 30, 0) << "23:30:00" << true;
    QTest::newRow("late hour, second pass") << santiago << at(2026, 4, 5, 3, 30, 0) << "23:30:00" << false;
}

// Daily alarms across daylight-saving changes: each rings on one pass only, even when the
// clock never shows its time that day.
void TestAlarmScheduler::daylightSavingChanges()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDateTime, utc);
    QFETCH(QString, time);
    QFETCH(bool, fires);
    const QTimeZone tz(zone);
    if (!tz.isValid())
        QSKIP("this system has no data for the time zone");
    armPreset(0, time, QStringLiteral("Alarm"));
    AlarmScheduler scheduler;
    scheduler.loadPresets();
    QSignalSpy spy(&scheduler, &AlarmScheduler::alarmFired);
    ClockSource::setNowForTesting(utc.toTimeZone(tz));
    scheduler.AlarmRefresh();
    QCOMPARE(spy.count(), fires ? 1 : 0);
}

QTEST_GUILESS_MAIN(TestAlarmScheduler)
#include "test_alarm_scheduler.moc"
