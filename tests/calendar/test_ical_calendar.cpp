// Reading .ics files as other calendars write them: whole-day and timed events, time zones
// from the file and from the system, yearly, monthly and weekly recurrences with exceptions,
// and files that cannot be read.
#include "calendar/ical_calendar.h"
#include "calendar/ical_module.h"
#include "calendar_test_data.h"

#include <QFile>
#include <QScopeGuard>
#include <QTest>

namespace {

// "2026-11-10 21:00 Call" for a timed event, "2026-11-01 All Saints' Day" for a whole day.
QStringList shown(const QList<IcalOccurrence> &occurrences)
{
    QStringList lines;
    for (const IcalOccurrence &o : occurrences)
        lines << o.date.toString(Qt::ISODate) + QLatin1Char(' ') +
                     (o.isAllDay() ? QString() : o.time.toString(QStringLiteral("HH:mm "))) + o.summary;
    return lines;
}

} // namespace

class TestIcalCalendar : public QObject
{
    Q_OBJECT
private slots:
    void eventsOnTheirDays_data();
    void eventsOnTheirDays();
    void unreadableFilesAreRefusedWithAReason_data();
    void unreadableFilesAreRefusedWithAReason();
    void nameAndCount_data();
    void nameAndCount();
    void aRangeAskedTwiceGivesTheSameAnswer();
};

void TestIcalCalendar::eventsOnTheirDays_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QStringList>("expected");

    const QString berlin = QStringLiteral("Europe/Berlin");
    QTest::newRow("holidays: single and several days, cancelled left out")
        << "public-holidays.ics" << berlin << QDate(2026, 11, 1) << QDate(2026, 12, 31)
        << QStringList{"2026-11-01 All Saints' Day", "2026-11-18 Day of Prayer and Repentance",
                       "2026-12-24 Christmas holidays", "2026-12-25 Christmas holidays",
                       "2026-12-26 Christmas holidays"};
    QTest::newRow("holidays: a multi-day event begun before the range")
        << "public-holidays.ics" << berlin << QDate(2026, 12, 25) << QDate(2026, 12, 27)
        << QStringList{"2026-12-25 Christmas holidays", "2026-12-26 Christmas holidays"};
    QTest::newRow("timed: TZID, UTC and floating, shown in Berlin")
        << "timed-with-tzid.ics" << berlin << QDate(2026, 11, 1) << QDate(2026, 11, 30)
        << QStringList{"2026-11-05 07:15 Swimming", "2026-11-10 21:00 Call with the New York office",
                       "2026-11-20 07:30 Flight to Lisbon", "2026-11-28 02:00 Late show stream"};
    QTest::newRow("timed: the same file shown in New York")
        << "timed-with-tzid.ics"
        << "America/New_York" << QDate(2026, 11, 1) << QDate(2026, 11, 30)
        << QStringList{"2026-11-05 07:15 Swimming", "2026-11-10 15:00 Call with the New York office",
                       "2026-11-20 01:30 Flight to Lisbon", "2026-11-27 20:00 Late show stream"};
    QTest::newRow("birthdays: a year later")
        << "birthdays.ics" << berlin << QDate(2027, 3, 1) << QDate(2027, 3, 31)
        << QStringList{"2027-03-14 Anna's birthday"};
    QTest::newRow("birthdays: 29 February in a leap year")
        << "birthdays.ics" << berlin << QDate(2028, 2, 1) << QDate(2028, 3, 1)
        << QStringList{"2028-02-29 Leo's birthday"};
    QTest::newRow("birthdays: 29 February missing in other years")
        << "birthdays.ics" << berlin << QDate(2027, 2, 1) << QDate(2027, 3, 1) << QStringList{};
    QTest::newRow("birthdays: 85 years on, with BYMONTH")
        << "birthdays.ics" << berlin << QDate(2026, 11, 1) << QDate(2026, 11, 30)
        << QStringList{"2026-11-30 Grandpa's birthday"};
    QTest::newRow("birthdays: yearly until a day, before it")
        << "birthdays.ics" << berlin << QDate(2024, 6, 1) << QDate(2024, 6, 30)
        << QStringList{"2024-06-06 Club anniversary (ended)"};
    QTest::newRow("birthdays: yearly until a day, after it")
        << "birthdays.ics" << berlin << QDate(2026, 6, 1) << QDate(2026, 6, 30) << QStringList{};
    QTest::newRow("weekly meeting: EXDATE, a moved instance, a month-end rule")
        << "weekly-meeting.ics" << berlin << QDate(2026, 11, 1) << QDate(2026, 11, 30)
        << QStringList{"2026-11-03 09:30 Team meeting", "2026-11-17 09:30 Team meeting",
                       "2026-11-25 14:00 Team meeting (moved)", "2026-11-30 16:00 Month-end review"};
    QTest::newRow("weekly meeting: the last one, UNTIL in UTC")
        << "weekly-meeting.ics" << berlin << QDate(2026, 12, 15) << QDate(2027, 1, 5)
        << QStringList{"2026-12-15 09:30 Team meeting", "2026-12-22 09:30 Team meeting",
                       "2026-12-31 16:00 Month-end review"};
    QTest::newRow("daylight saving: New York event in Berlin between the two changes")
        << "across-daylight-saving.ics" << berlin << QDate(2026, 10, 12) << QDate(2026, 11, 30)
        << QStringList{"2026-10-13 18:00 Online chess", "2026-10-20 18:00 Online chess",
                       "2026-10-22 07:30 Morning run",  "2026-10-23 07:30 Morning run",
                       "2026-10-24 07:30 Morning run",  "2026-10-25 07:30 Morning run",
                       "2026-10-26 07:30 Morning run",  "2026-10-27 07:30 Morning run",
                       "2026-10-27 17:00 Online chess", "2026-10-28 07:30 Morning run",
                       "2026-11-03 18:00 Online chess", "2026-11-10 18:00 Online chess",
                       "2026-11-17 18:00 Online chess"};
}

void TestIcalCalendar::eventsOnTheirDays()
{
    QFETCH(QString, file);
    QFETCH(QString, zone);
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(QStringList, expected);
    QString error;
    IcalCalendar calendar = IcalCalendar::fromBytes(calendarDataFile(file), &error);
    QVERIFY2(!calendar.isNull(), qPrintable(error));
    calendar.setShownZone(QTimeZone(zone.toLatin1()));
    QCOMPARE(shown(calendar.occurrences(first, last)), expected);
}

void TestIcalCalendar::unreadableFilesAreRefusedWithAReason_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reasonContains");
    QTest::addColumn<QString>("module"); // empty: the program's own
    QTest::newRow("half-written file") << calendarDataFile(QStringLiteral("malformed.ics")) << "cut off"
                                       << "";
    QTest::newRow("unreadable start")
        << QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:x\r\nDTSTART:next Friday\r\n"
                      "SUMMARY:Dinner\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n")
        << "event 1 (\"Dinner\")"
        << "";
    QTest::newRow("blocks crossed")
        << QByteArray("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:20261101\r\nEND:VCALENDAR\r\n"
                      "END:VEVENT\r\n")
        << "Line 4"
        << "";
    QTest::newRow("empty") << QByteArray("\r\n") << "empty"
                           << "";
    QTest::newRow("a picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << "BEGIN:VCALENDAR"
                               << "";
    QTest::newRow("event without a start")
        << QByteArray("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:x\r\nSUMMARY:Lunch\r\n"
                      "END:VEVENT\r\nEND:VCALENDAR\r\n")
        << "DTSTART"
        << "";
    QTest::newRow("no iCalendar module")
        << calendarDataFile(QStringLiteral("birthdays.ics"))
        << "iCalendar files cannot be read: the module vantora_missing was not found"
        << "vantora_missing";
    QTest::newRow("no iCalendar module, and no calendar either")
        << QByteArray("Dear diary,\r\n") << "no BEGIN:VCALENDAR"
        << "vantora_missing";
}

void TestIcalCalendar::unreadableFilesAreRefusedWithAReason()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reasonContains);
    QFETCH(QString, module);
    SetIcalModuleName(module);
    const auto ownModule = qScopeGuard([] { SetIcalModuleName({}); });
    QString error;
    const IcalCalendar calendar = IcalCalendar::fromBytes(bytes, &error);
    QVERIFY(calendar.isNull());
    QVERIFY2(error.contains(reasonContains), qPrintable(error));
}

void TestIcalCalendar::nameAndCount_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("events");
    QTest::newRow("holidays") << "public-holidays.ics"
                              << "Public holidays" << 4;
    QTest::newRow("birthdays") << "birthdays.ics"
                               << "Birthdays" << 4;
    QTest::newRow("moved instance counts with its series") << "weekly-meeting.ics"
                                                           << "" << 2;
}

void TestIcalCalendar::nameAndCount()
{
    QFETCH(QString, file);
    QFETCH(QString, name);
    QFETCH(int, events);
    const IcalCalendar calendar = IcalCalendar::fromBytes(calendarDataFile(file));
    QCOMPARE(calendar.name(), name);
    QCOMPARE(calendar.eventCount(), events);
}

void TestIcalCalendar::aRangeAskedTwiceGivesTheSameAnswer()
{
    IcalCalendar calendar = IcalCalendar::fromBytes(calendarDataFile(QStringLiteral("weekly-meeting.ics")));
    calendar.setShownZone(QTimeZone("Europe/Berlin"));
    const auto november = calendar.occurrences(QDate(2026, 11, 1), QDate(2026, 11, 30));
    calendar.occurrences(QDate(2026, 12, 1), QDate(2026, 12, 31));
    QCOMPARE(calendar.occurrences(QDate(2026, 11, 1), QDate(2026, 11, 30)), november);
    // Another zone is a new answer, not the one kept.
    calendar.setShownZone(QTimeZone("Asia/Tokyo"));
    QCOMPARE(shown(calendar.occurrences(QDate(2026, 11, 3), QDate(2026, 11, 3))),
             QStringList{"2026-11-03 17:30 Team meeting"});
}

QTEST_GUILESS_MAIN(TestIcalCalendar)
#include "test_ical_calendar.moc"
