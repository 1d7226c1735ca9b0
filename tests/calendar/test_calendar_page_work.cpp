// Working on the month page over a session: stickers land beside the day's text, undo goes on
// after the page was turned and turned back, ink stays on its days when the first day of the
// week changes, and other calendars are imported, shown, dropped on the page and exported to.
#include "calendar/calendar_store.h"
#include "calendar/ical_calendar.h"
#include "calendar_test_data.h"
#include "calendar_window_helpers.h"
#include "core/clock_source.h"
#include "core/drawing/drawing_layer.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QUrl>

namespace {

const QDate kToday(2026, 11, 25);

bool inkAt(CalendarWidget &calendar, const QDate &day)
{
    const QPointF centre = calendar.shownMonth().dayRect(day).center();
    return isInk(calendar.page()->layer()->image().pixelColor(centre.toPoint()));
}

// Whether a pixel of the day's cell on screen has the colour (an event line's bar).
bool cellShows(CalendarWidget &calendar, const QDate &day, const QColor &color)
{
    const QImage shown = calendar.page()->grab().toImage();
    const QRect cell = calendar.page()->cellArea(day);
    const qreal ratio = shown.devicePixelRatio();
    for (int y = cell.top(); y <= cell.bottom(); ++y)
        for (int x = cell.left(); x <= cell.right(); ++x)
            if (shown.pixelColor(QPoint(x, y) * ratio) == color)
                return true;
    return false;
}

void turn(CalendarWidget &calendar, const QString &how)
{
    const QDate day = calendar.selectedDate();
    if (how == QLatin1String("next and back")) {
        calendar.showDate(day.addMonths(1));
        calendar.showDate(day);
    } else if (how == QLatin1String("a year of months and back")) {
        for (int i = 1; i <= 11; ++i)
            calendar.showDate(day.addMonths(i));
        calendar.showDate(day);
    } else if (how == QLatin1String("keys")) {
        QTest::keyClick(calendar.page(), Qt::Key_PageUp);
        QTest::keyClick(calendar.page(), Qt::Key_PageDown);
    }
}

} // namespace

class TestCalendarPageWork : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void stickersLandBesideTheDaysText_data();
    void stickersLandBesideTheDaysText();
    void undoGoesOnAfterTheMonthTurns_data();
    void undoGoesOnAfterTheMonthTurns();
    void inkStaysOnItsDayWhenTheWeekStartsElsewhere_data();
    void inkStaysOnItsDayWhenTheWeekStartsElsewhere();
    void inkStaysOnItsDayWhenTheLocaleChanges();
    void importedCalendarsShowUnderTheNotes();
    void aBrokenCalendarFileChangesNothing();
    void aCalendarFileDroppedOnThePageIsImported();
    void exportWritesTheChosenMonth();

private:
    std::unique_ptr<TestHome> m_home;
    QStringList m_notices;
};

void TestCalendarPageWork::init()
{
    m_home = std::make_unique<TestHome>();
    ClockSource::setNowForTesting(QDateTime(kToday, QTime(10, 0)));
    m_notices.clear();
    SetMessageResponderForTesting([this](bool, int, const QString &text) {
        m_notices << text;
        return 1; // yes to any question
    });
}

void TestCalendarPageWork::cleanup()
{
    SetMessageResponderForTesting(nullptr);
    ClockSource::clearNowForTesting();
    m_home.reset();
}

void TestCalendarPageWork::stickersLandBesideTheDaysText_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("window");
    QTest::addColumn<bool>("roomy"); // the text leaves room for a picture of some size
    QTest::newRow("no note") << QString() << QSize(300, 300) << QSize(800, 600) << true;
    QTest::newRow("one word") << QStringLiteral("Dentist") << QSize(300, 300) << QSize(800, 600) << true;
    QTest::newRow("three lines, wide picture")
        << QStringLiteral("Dentist at 10\nbring the card\nand the letter") << QSize(900, 300)
        << QSize(800, 600) << true;
    QTest::newRow("long line, tall picture")
        << QStringLiteral("Pick up the parcel from the post office before six") << QSize(200, 800)
        << QSize(1200, 800) << false;
    QTest::newRow("small window") << QStringLiteral("Call Mum\nabout Sunday") << QSize(400, 400)
                                  << QSize(560, 420) << false;
}

void TestCalendarPageWork::stickersLandBesideTheDaysText()
{
    QFETCH(QString, note);
    QFETCH(QSize, picture);
    QFETCH(QSize, window);
    QFETCH(bool, roomy);
    auto calendar = openCalendar(window);
    const QDate day(2026, 11, 18);
    calendar->setNote(day, note);
    QImage image(picture, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QMimeData data;
    data.setImageData(image);
    QVERIFY(calendar->dropPicture(&data, calendar->page()->cellArea(day).center()));

    const QRectF placed = calendar->page()->placedItem().rect();
    const QRectF text = calendar->page()->textArea(day);
    QVERIFY(!text.isEmpty()); // at least the day's number
    QVERIFY2(!placed.intersects(text), "the picture covers the day's text");
    QVERIFY(calendar->shownMonth().dayRect(day).contains(placed));
    QVERIFY(qAbs(placed.width() / placed.height() - qreal(picture.width()) / picture.height()) < 0.02);
    QVERIFY2(!roomy || placed.width() * placed.height() > 0.05 * 240 * 180, // not shrunk to nothing
             qPrintable(QStringLiteral("%1 x %2 beside %3 x %4")
                            .arg(placed.width())
                            .arg(placed.height())
                            .arg(text.width())
                            .arg(text.height())));
}

void TestCalendarPageWork::undoGoesOnAfterTheMonthTurns_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("next and back") << "next and back";
    QTest::newRow("a year of months and back") << "a year of months and back";
    QTest::newRow("page keys") << "keys";
}

void TestCalendarPageWork::undoGoesOnAfterTheMonthTurns()
{
    QFETCH(QString, how);
    auto calendar = openCalendar(QSize(800, 600));
    const QDate first(2026, 11, 10), second(2026, 11, 11);
    choosePen(*calendar);
    drawOnDay(*calendar, first);
    drawOnDay(*calendar, second);
    calendar->page()->setFocus();
    turn(*calendar, how);
    QCOMPARE(calendar->shownMonth().month(), 11);
    QVERIFY(inkAt(*calendar, first) && inkAt(*calendar, second));
    QVERIFY(calendar->page()->canUndo());
    calendar->page()->undo();
    QVERIFY(inkAt(*calendar, first));
    QVERIFY(!inkAt(*calendar, second));
    calendar->page()->undo();
    QVERIFY(!inkAt(*calendar, first));
    calendar->page()->redo();
    QVERIFY(inkAt(*calendar, first));

    // What undo left is what is kept, and the other month's history is its own.
    QVERIFY(calendar->saveNow());
    calendar->showDate(QDate(2026, 12, 1));
    QVERIFY(!calendar->page()->canUndo());
    const QImage kept = CalendarStore(CalendarStore::defaultFolder()).loadDrawing(2026, 11);
    QVERIFY(isInk(kept.pixelColor(calendar->shownMonth().shifted(-1).dayRect(first).center().toPoint())));
    QVERIFY(!isInk(kept.pixelColor(calendar->shownMonth().shifted(-1).dayRect(second).center().toPoint())));
}

void TestCalendarPageWork::inkStaysOnItsDayWhenTheWeekStartsElsewhere_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("restart"); // the change is made while the window is closed
    QTest::newRow("Monday to Sunday") << int(Qt::Monday) << int(Qt::Sunday) << false;
    QTest::newRow("Sunday to Monday") << int(Qt::Sunday) << int(Qt::Monday) << false;
    QTest::newRow("Monday to Saturday") << int(Qt::Monday) << int(Qt::Saturday) << false;
    QTest::newRow("Saturday to Sunday, closed") << int(Qt::Saturday) << int(Qt::Sunday) << true;
}

void TestCalendarPageWork::inkStaysOnItsDayWhenTheWeekStartsElsewhere()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(bool, restart);
    WriteDetail(QStringLiteral("fcln_IDX"), QStringLiteral("First Day Of Week"), QString::number(from));
    // Days at both ends of the grid and in the middle; the last is kept for a later month.
    const QList<QDate> days{QDate(2026, 11, 1), QDate(2026, 11, 14), QDate(2026, 11, 30)};
    auto calendar = openCalendar(QSize(800, 600));
    QCOMPARE(int(calendar->shownMonth().firstDayOfWeek()), from);
    choosePen(*calendar);
    for (const QDate &day : days)
        drawOnDay(*calendar, day);
    calendar->showDate(QDate(2026, 12, 3));
    drawOnDay(*calendar, QDate(2026, 12, 3));
    calendar->showDate(kToday);
    if (restart) {
        calendar->close();
        calendar.reset();
        WriteDetail(QStringLiteral("fcln_IDX"), QStringLiteral("First Day Of Week"), QString::number(to));
        calendar = openCalendar(QSize(800, 600));
    } else {
        calendar->setFirstDayChoice(to);
    }
    QCOMPARE(int(calendar->shownMonth().firstDayOfWeek()), to);
    for (const QDate &day : days)
        QVERIFY2(inkAt(*calendar, day), qPrintable(day.toString(Qt::ISODate)));
    // A day the ink was not on has none now, though its cell took the place of one that had.
    QVERIFY(!inkAt(*calendar, QDate(2026, 11, 2)));
    QVERIFY(!inkAt(*calendar, QDate(2026, 11, 13)));
    QVERIFY(!inkAt(*calendar, QDate(2026, 11, 15)));
    calendar->showDate(QDate(2026, 12, 3));
    QVERIFY(inkAt(*calendar, QDate(2026, 12, 3)));
    QVERIFY(!inkAt(*calendar, QDate(2026, 12, 2)));
    QVERIFY(!inkAt(*calendar, QDate(2026, 12, 4)));
    QVERIFY(m_notices.isEmpty());
}

void TestCalendarPageWork::inkStaysOnItsDayWhenTheLocaleChanges()
{
    // Drawn where the week starts on Monday, opened where it starts on Sunday.
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));
    const QDate day(2026, 11, 14);
    {
        auto calendar = openCalendar(QSize(800, 600));
        QCOMPARE(calendar->shownMonth().firstDayOfWeek(), Qt::Monday);
        choosePen(*calendar);
        drawOnDay(*calendar, day);
        calendar->close();
    }
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    auto calendar = openCalendar(QSize(800, 600));
    QLocale::setDefault(before);
    QCOMPARE(calendar->shownMonth().firstDayOfWeek(), Qt::Sunday);
    QVERIFY(inkAt(*calendar, day));
    QVERIFY(!inkAt(*calendar, day.addDays(1)));
}

void TestCalendarPageWork::importedCalendarsShowUnderTheNotes()
{
    auto calendar = openCalendar(QSize(1000, 700));
    calendar->setNote(QDate(2026, 11, 17), QStringLiteral("Bring the slides"));
    QVERIFY(calendar->importCalendar(calendarDataPath(QStringLiteral("public-holidays.ics"))));
    QVERIFY(calendar->importCalendar(calendarDataPath(QStringLiteral("weekly-meeting.ics"))));
    const QColor holidays = calendar->importedCalendars().source(0).color;
    const QColor meetings = calendar->importedCalendars().source(1).color;
    QVERIFY(cellShows(*calendar, QDate(2026, 11, 1), holidays));
    QVERIFY(cellShows(*calendar, QDate(2026, 11, 17), meetings));
    QVERIFY(!cellShows(*calendar, QDate(2026, 11, 10), meetings)); // left out by EXDATE
    QVERIFY(!cellShows(*calendar, QDate(2026, 11, 2), holidays));
    // The user's note is still the day's note, and its text stays above the events.
    QCOMPARE(calendar->notes().note(17), QStringLiteral("Bring the slides"));
    // A screen reader on the page hears the chosen day with its note and events.
    calendar->page()->setSelectedDate(QDate(2026, 11, 17));
    const QString spoken = QAccessible::queryAccessibleInterface(calendar->page())->text(QAccessible::Description);
    QVERIFY2(spoken.contains(QLocale().toString(QDate(2026, 11, 17), QLocale::LongFormat)) &&
                 spoken.contains(QStringLiteral("note: Bring the slides")) && spoken.contains(QStringLiteral("Team")),
             qPrintable(spoken));
    // The next month shows its own, and a removed calendar is gone.
    calendar->showDate(QDate(2026, 12, 24));
    QVERIFY(cellShows(*calendar, QDate(2026, 12, 25), holidays));
    QVERIFY(calendar->removeCalendar(0));
    QVERIFY(!cellShows(*calendar, QDate(2026, 12, 25), holidays));
    QVERIFY(m_notices.isEmpty());
}

void TestCalendarPageWork::aBrokenCalendarFileChangesNothing()
{
    auto calendar = openCalendar(QSize(800, 600));
    QVERIFY(calendar->importCalendar(calendarDataPath(QStringLiteral("birthdays.ics"))));
    QVERIFY(!calendar->importCalendar(calendarDataPath(QStringLiteral("malformed.ics"))));
    QCOMPARE(m_notices.size(), 1);
    QVERIFY2(m_notices.first().contains(QStringLiteral("malformed.ics")) &&
                 m_notices.first().contains(QStringLiteral("cut off")) &&
                 m_notices.first().contains(QStringLiteral("Nothing has been changed")),
             qPrintable(m_notices.first()));
    QCOMPARE(calendar->importedCalendars().count(), 1);
}

void TestCalendarPageWork::aCalendarFileDroppedOnThePageIsImported()
{
    auto calendar = openCalendar(QSize(800, 600));
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(calendarDataPath(QStringLiteral("public-holidays.ics")))});
    const QPoint at = calendar->page()->mapTo(calendar.get(), calendar->page()->rect().center());
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(calendar.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(calendar.get(), &drop);
    QCOMPARE(calendar->importedCalendars().count(), 1);
    QCOMPARE(calendar->importedCalendars().source(0).name, QStringLiteral("Public holidays"));
    QVERIFY(!calendar->page()->hasPlacedItem()); // not taken for a picture
}

void TestCalendarPageWork::exportWritesTheChosenMonth()
{
    auto calendar = openCalendar(QSize(800, 600));
    calendar->setNote(QDate(2026, 11, 3), QStringLiteral("Call Mum\nabout Sunday"));
    calendar->showDate(QDate(2026, 12, 24));
    calendar->setNote(QDate(2026, 12, 24), QStringLiteral("Christmas Eve"));
    const QString path = m_home->filePath(QStringLiteral("month.ics"));
    QVERIFY(calendar->exportNotes(CalendarWidget::ExportSpan::Month, path));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const IcalCalendar month = IcalCalendar::fromBytes(file.readAll());
    QCOMPARE(month.occurrences(QDate(2026, 1, 1), QDate(2026, 12, 31)),
             (QList<IcalOccurrence>{{QDate(2026, 12, 24), QTime(), QStringLiteral("Christmas Eve")}}));
    QVERIFY(calendar->exportNotes(CalendarWidget::ExportSpan::Year, path));
    file.close();
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(
        IcalCalendar::fromBytes(file.readAll()).occurrences(QDate(2026, 1, 1), QDate(2026, 12, 31)).size(),
        2);
}

QTEST_MAIN(TestCalendarPageWork)
#include "test_calendar_page_work.moc"
