// Imported and subscribed calendars: kept as copies in the calendar folder and listed in the
// settings, refused whole when they cannot be read, and brought up to date from their address
// with the last good copy kept when a download fails.
#include "calendar/calendar_store.h"
#include "calendar/calendar_subscriber.h"
#include "calendar/imported_calendars.h"
#include "calendar_test_data.h"
#include "support/local_http_server.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

// "summary" of each mark on the day, in order.
QStringList summariesOn(const ImportedCalendars &calendars, const QDate &day)
{
    QStringList out;
    for (const CalendarEventMark &mark : calendars.marksBetween(day, day).value(day))
        out << mark.summary;
    return out;
}

QStringList copies(const ImportedCalendars &calendars)
{
    return QDir(calendars.folder()).entryList(QDir::Files);
}

} // namespace

class TestImportedCalendars : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void importedCalendarsAreKeptAcrossARestart();
    void anUnreadableFileChangesNothing_data();
    void anUnreadableFileChangesNothing();
    void calendarsAreShownTogetherAndRemoved();
    void subscribing_data();
    void subscribing();
    void aDayOldSubscriptionIsFetchedAgain_data();
    void aDayOldSubscriptionIsFetchedAgain();
    void addressesAreCheckedBeforeFetching_data();
    void addressesAreCheckedBeforeFetching();

private:
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<ImportedCalendars> m_calendars;
};

void TestImportedCalendars::init()
{
    m_home = std::make_unique<TestHome>();
    m_calendars = std::make_unique<ImportedCalendars>(CalendarStore::defaultFolder());
    m_calendars->setShownZone(QTimeZone("Europe/Berlin"));
}

void TestImportedCalendars::cleanup()
{
    m_calendars.reset();
    m_home.reset();
}

void TestImportedCalendars::importedCalendarsAreKeptAcrossARestart()
{
    QString error;
    QCOMPARE(m_calendars->addFile(calendarDataPath(QStringLiteral("public-holidays.ics")), &error), 0);
    QCOMPARE(m_calendars->addFile(calendarDataPath(QStringLiteral("weekly-meeting.ics")), &error), 1);
    m_calendars->setColor(1, QColor(Qt::magenta));

    ImportedCalendars again(CalendarStore::defaultFolder());
    QStringList problems;
    again.load(&problems);
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join('\n')));
    QCOMPARE(again.count(), 2);
    QCOMPARE(again.source(0).name, QStringLiteral("Public holidays")); // the file's own name
    QCOMPARE(again.source(1).name, QStringLiteral("weekly-meeting"));  // else the file's
    QCOMPARE(again.source(0).color, m_calendars->source(0).color);
    QCOMPARE(again.source(1).color, QColor(Qt::magenta));
    // Shown from the copy: the original may be gone.
    QCOMPARE(summariesOn(again, QDate(2026, 11, 1)), QStringList{"All Saints' Day"});
}

void TestImportedCalendars::anUnreadableFileChangesNothing_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("reasonContains");
    QTest::newRow("cut off") << calendarDataPath(QStringLiteral("malformed.ics")) << "cut off";
    QTest::newRow("missing") << calendarDataPath(QStringLiteral("no-such-file.ics")) << "no-such-file.ics";
}

void TestImportedCalendars::anUnreadableFileChangesNothing()
{
    QFETCH(QString, file);
    QFETCH(QString, reasonContains);
    QVERIFY(m_calendars->addFile(calendarDataPath(QStringLiteral("birthdays.ics"))) == 0);
    const QStringList before = copies(*m_calendars);
    QString error;
    QCOMPARE(m_calendars->addFile(file, &error), -1);
    QVERIFY2(error.contains(reasonContains), qPrintable(error));
    QCOMPARE(m_calendars->count(), 1);
    QCOMPARE(copies(*m_calendars), before);
    ImportedCalendars again(CalendarStore::defaultFolder());
    again.load();
    QCOMPARE(again.count(), 1);
}

void TestImportedCalendars::calendarsAreShownTogetherAndRemoved()
{
    m_calendars->addFile(calendarDataPath(QStringLiteral("weekly-meeting.ics")));
    m_calendars->addFile(calendarDataPath(QStringLiteral("public-holidays.ics")));
    QVERIFY(m_calendars->source(0).color != m_calendars->source(1).color);
    // Whole-day events come first on a day, whichever calendar they are in.
    m_calendars->addFile(calendarDataPath(QStringLiteral("birthdays.ics")));
    QCOMPARE(summariesOn(*m_calendars, QDate(2026, 11, 30)),
             (QStringList{"Grandpa's birthday", "Month-end review"}));
    QCOMPARE(m_calendars->marksBetween(QDate(2026, 11, 30), QDate(2026, 11, 30))
                 .value(QDate(2026, 11, 30))
                 .at(0)
                 .color,
             m_calendars->source(2).color);

    const QString removedCopy = m_calendars->source(0).file;
    QVERIFY(m_calendars->remove(0));
    QCOMPARE(summariesOn(*m_calendars, QDate(2026, 11, 30)), QStringList{"Grandpa's birthday"});
    QVERIFY(!copies(*m_calendars).contains(removedCopy));
    ImportedCalendars again(CalendarStore::defaultFolder());
    again.load();
    QCOMPARE(again.count(), 2);
    QCOMPARE(again.source(0).name, QStringLiteral("Public holidays"));
}

void TestImportedCalendars::subscribing_data()
{
    QTest::addColumn<LocalHttpServer::Response>("response");
    QTest::addColumn<QString>("failureContains"); // empty: subscribed
    LocalHttpServer::Response good;
    good.body = calendarDataFile(QStringLiteral("public-holidays.ics"));
    good.contentType = "text/calendar";
    QTest::newRow("calendar") << good << QString();
    LocalHttpServer::Response missing;
    missing.status = 404;
    QTest::newRow("not found") << missing << "404";
    LocalHttpServer::Response broken = good;
    broken.body = calendarDataFile(QStringLiteral("malformed.ics"));
    QTest::newRow("cut off") << broken << "cut off";
    LocalHttpServer::Response silent;
    silent.hang = true;
    QTest::newRow("no answer") << silent << "no answer within";
    LocalHttpServer::Response huge = good;
    huge.body = QByteArray(CalendarSubscriber::kReplyLimit + 1024, 'x');
    QTest::newRow("too large") << huge << "";
}

void TestImportedCalendars::subscribing()
{
    QFETCH(LocalHttpServer::Response, response);
    QFETCH(QString, failureContains);
    const bool tooLarge = response.body.size() > CalendarSubscriber::kReplyLimit;
    LocalHttpServer server;
    server.setResponse("/holidays.ics", response);
    CalendarSubscriber subscriber(*m_calendars);
    subscriber.setTimeLimitForTesting(1500);
    QSignalSpy added(&subscriber, &CalendarSubscriber::subscribed);
    QSignalSpy failed(&subscriber, &CalendarSubscriber::subscribeFailed);
    subscriber.subscribe(server.url(QStringLiteral("/holidays.ics")).toString());
    QTRY_VERIFY_WITH_TIMEOUT(added.size() + failed.size() == 1, 10000);
    if (failureContains.isEmpty() && !tooLarge) {
        QCOMPARE(m_calendars->count(), 1);
        QCOMPARE(m_calendars->source(0).address, server.url(QStringLiteral("/holidays.ics")).toString());
        QCOMPARE(summariesOn(*m_calendars, QDate(2026, 11, 1)), QStringList{"All Saints' Day"});
        return;
    }
    const QString message = failed.at(0).at(0).toString();
    QVERIFY2(message.contains(failureContains), qPrintable(message));
    QCOMPARE(m_calendars->count(), 0);
    QVERIFY(copies(*m_calendars).isEmpty());
}

void TestImportedCalendars::aDayOldSubscriptionIsFetchedAgain_data()
{
    QTest::addColumn<QByteArray>("newBody");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("shownAfter");
    const QByteArray moved =
        calendarDataFile(QStringLiteral("public-holidays.ics")).replace("All Saints' Day", "All Saints");
    QTest::newRow("changed") << moved << 200 << QStringList{"All Saints"};
    QTest::newRow("server error: last good copy")
        << QByteArray("oops") << 500 << QStringList{"All Saints' Day"};
    QTest::newRow("broken file: last good copy")
        << calendarDataFile(QStringLiteral("malformed.ics")) << 200 << QStringList{"All Saints' Day"};
}

void TestImportedCalendars::aDayOldSubscriptionIsFetchedAgain()
{
    QFETCH(QByteArray, newBody);
    QFETCH(int, status);
    QFETCH(QStringList, shownAfter);
    LocalHttpServer server;
    server.setBody("/h.ics", calendarDataFile(QStringLiteral("public-holidays.ics")), "text/calendar");
    CalendarSubscriber subscriber(*m_calendars);
    QSignalSpy added(&subscriber, &CalendarSubscriber::subscribed);
    subscriber.subscribe(server.url(QStringLiteral("/h.ics")).toString());
    QTRY_COMPARE(added.size(), 1);

    // Fresh: nothing is fetched.
    QSignalSpy refreshed(&subscriber, &CalendarSubscriber::refreshed);
    subscriber.refreshDue();
    QVERIFY(!subscriber.isBusy());
    QCOMPARE(server.requestCount("/h.ics"), 1);

    LocalHttpServer::Response next;
    next.status = status;
    next.body = newBody;
    server.setResponse("/h.ics", next);
    const QDateTime dayOld =
        QDateTime::currentDateTimeUtc().addSecs(-CalendarSubscriber::kRefreshAgeSeconds - 60);
    QVERIFY(m_calendars->replace(0, calendarDataFile(QStringLiteral("public-holidays.ics")), dayOld));
    subscriber.refreshDue();
    QTRY_COMPARE(refreshed.size(), 1);
    QCOMPARE(server.requestCount("/h.ics"), 2);
    QCOMPARE(summariesOn(*m_calendars, QDate(2026, 11, 1)), shownAfter);
    const bool updated = refreshed.at(0).at(1).toBool();
    QCOMPARE(updated, status == 200 && !newBody.contains("Cut off"));
    QCOMPARE(m_calendars->source(0).lastProblem.isEmpty(), updated);

    // What is shown after a restart is the same copy.
    ImportedCalendars again(CalendarStore::defaultFolder());
    again.load();
    again.setShownZone(QTimeZone("Europe/Berlin"));
    QCOMPARE(summariesOn(again, QDate(2026, 11, 1)), shownAfter);
}

void TestImportedCalendars::addressesAreCheckedBeforeFetching_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("fetched");
    QTest::newRow("https") << "https://example.org/cal.ics"
                           << "https://example.org/cal.ics";
    QTest::newRow("webcal") << "webcal://example.org/cal.ics"
                            << "https://example.org/cal.ics";
    QTest::newRow("blanks") << "  http://example.org/a.ics "
                            << "http://example.org/a.ics";
    QTest::newRow("a file") << "file:///etc/passwd"
                            << "";
    QTest::newRow("ftp") << "ftp://example.org/cal.ics"
                         << "";
    QTest::newRow("nothing") << ""
                             << "";
}

void TestImportedCalendars::addressesAreCheckedBeforeFetching()
{
    QFETCH(QString, typed);
    QFETCH(QString, fetched);
    QString error;
    QCOMPARE(CalendarSubscriber::fetchAddress(typed, &error), fetched);
    QCOMPARE(error.isEmpty(), !fetched.isEmpty());
}

QTEST_GUILESS_MAIN(TestImportedCalendars)
#include "test_imported_calendars.moc"
