// The calendar window: what is written and drawn stays with its month and its days across a
// restart and a change of size, damaged files are reported and set aside, and the page turns
// when a day of another month is chosen.
#include "calendar/calendar_store.h"
#include "calendar/calendar_widget.h"
#include "calendar/elided_note.h"
#include "calendar/month_page_view.h"
#include "calendar_window_helpers.h"
#include "core/clock_source.h"
#include "core/drawing/drawing_layer.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFontMetricsF>
#include <QMimeData>
#include <QTest>

#include <memory>

namespace {

const QDate kToday(2026, 11, 25);

QString calendarFile(const QString &name)
{
    return QDir(CalendarStore::defaultFolder()).filePath(name);
}

} // namespace

class TestCalendarWidget : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void notesAndDrawingAreKeptPerMonthAcrossARestart();
    void drawingStaysOnItsDayAtAnotherSize_data();
    void drawingStaysOnItsDayAtAnotherSize();
    void damagedFilesAreSetAsideAndReported();
    void droppedPictureLandsInItsDay();
    void choosingADayOfAnotherMonthTurnsThePage_data();
    void choosingADayOfAnotherMonthTurnsThePage();
    void longNotesAreShortenedWithAnEllipsis_data();
    void longNotesAreShortenedWithAnEllipsis();

private:
    std::unique_ptr<TestHome> m_home;
    QStringList m_notices;
};

void TestCalendarWidget::init()
{
    m_home = std::make_unique<TestHome>();
    QDir().mkpath(CalendarStore::defaultFolder());
    ClockSource::setNowForTesting(QDateTime(kToday, QTime(10, 0)));
    m_notices.clear();
    SetMessageResponderForTesting([this](bool, int, const QString &text) {
        m_notices << text;
        return 0;
    });
}

void TestCalendarWidget::cleanup()
{
    SetMessageResponderForTesting(nullptr);
    ClockSource::clearNowForTesting();
    m_home.reset();
}

void TestCalendarWidget::notesAndDrawingAreKeptPerMonthAcrossARestart()
{
    const QDate drawnDay(2026, 11, 10);
    const QDate otherMonthDay(2026, 12, 24);
    {
        auto calendar = openCalendar(QSize(800, 600));
        calendar->setNote(kToday, QStringLiteral("Dentist at 10\nbring the card"));
        choosePen(*calendar);
        drawOnDay(*calendar, drawnDay);
        // Written by itself a moment after the stroke, without waiting for the window to close.
        QTRY_VERIFY(QFile::exists(calendarFile(QStringLiteral("2026-11.png"))));
        QTRY_VERIFY(calendar->page()->layer()->isClean());
        drawOnDay(*calendar, drawnDay.addDays(1));
        calendar->showDate(otherMonthDay); // the month left is written at once
        calendar->setNote(otherMonthDay, QStringLiteral("Christmas Eve"));
        calendar->close();
    }
    QVERIFY(QFile::exists(calendarFile(QStringLiteral("2026-11.png"))));
    QVERIFY(QFile::exists(calendarFile(QStringLiteral("2026-11.txt"))));
    QVERIFY(!QFile::exists(calendarFile(QStringLiteral("2026-12.png")))); // nothing drawn there

    auto calendar = openCalendar(QSize(800, 600));
    QCOMPARE(calendar->shownMonth().month(), 11); // opens on today's month
    QCOMPARE(calendar->notes().note(25), QStringLiteral("Dentist at 10\nbring the card"));
    const QPointF drawn = calendar->shownMonth().dayRect(drawnDay).center();
    QVERIFY(isInk(calendar->page()->layer()->image().pixelColor(drawn.toPoint())));
    QCOMPARE(CalendarWidget::noteForToday(), QStringLiteral("Dentist at 10\nbring the card"));
    calendar->showDate(otherMonthDay);
    QCOMPARE(calendar->notes().note(24), QStringLiteral("Christmas Eve"));
    QVERIFY(calendar->page()->layer()->image().pixelColor(drawn.toPoint()).alpha() == 0);
    QVERIFY(m_notices.isEmpty());
}

void TestCalendarWidget::drawingStaysOnItsDayAtAnotherSize_data()
{
    QTest::addColumn<QSize>("drawnAt");
    QTest::addColumn<QSize>("shownAt");
    QTest::addColumn<QDate>("day");
    QTest::newRow("small to large") << QSize(560, 420) << QSize(1300, 950) << QDate(2026, 11, 3);
    QTest::newRow("large to small") << QSize(1300, 950) << QSize(560, 420) << QDate(2026, 11, 29);
    QTest::newRow("wide to tall") << QSize(1200, 480) << QSize(600, 900) << QDate(2026, 11, 18);
}

void TestCalendarWidget::drawingStaysOnItsDayAtAnotherSize()
{
    QFETCH(QSize, drawnAt);
    QFETCH(QSize, shownAt);
    QFETCH(QDate, day);
    {
        auto calendar = openCalendar(drawnAt);
        choosePen(*calendar);
        drawOnDay(*calendar, day);
        calendar->close();
    }
    auto calendar = openCalendar(shownAt);
    MonthPageView *page = calendar->page();
    // The whole month fills the view, to its last cell.
    const QDate last = calendar->shownMonth().dateAt(MonthLayout::kRows - 1, MonthLayout::kColumns - 1);
    QVERIFY(qAbs(page->cellArea(last).bottomRight().x() - page->rect().right()) <= 1);
    QVERIFY(qAbs(page->cellArea(last).bottomRight().y() - page->rect().bottom()) <= 1);
    const QImage shown = page->grab().toImage();
    const QPoint centre = page->cellArea(day).center() * shown.devicePixelRatio();
    QVERIFY2(isInk(shown.pixelColor(centre)), "the stroke is not in the middle of its day");
    // ...and not on the days beside it.
    for (const QDate &neighbour : {day.addDays(-1), day.addDays(1), day.addDays(-7), day.addDays(7)}) {
        const QRect cell = page->cellArea(neighbour);
        if (!cell.isEmpty())
            QVERIFY(!isInk(shown.pixelColor(cell.center() * shown.devicePixelRatio())));
    }
}

void TestCalendarWidget::damagedFilesAreSetAsideAndReported()
{
    QFile notes(calendarFile(QStringLiteral("2026-11.txt")));
    QVERIFY(notes.open(QIODevice::WriteOnly));
    notes.write("2026-11-02 Kept\nthis line is not a note\n");
    notes.close();
    QFile drawing(calendarFile(QStringLiteral("2026-11.png")));
    QVERIFY(drawing.open(QIODevice::WriteOnly));
    drawing.write("\x89PNG\r\n\x1a\n broken");
    drawing.close();

    auto calendar = openCalendar(QSize(800, 600));
    QCOMPARE(m_notices.size(), 2);
    QCOMPARE(calendar->notes().note(2), QStringLiteral("Kept"));
    const QStringList setAside =
        QDir(CalendarStore::defaultFolder()).entryList({QStringLiteral("*damaged*")}, QDir::Files);
    QCOMPARE(setAside.size(), 2);

    // The month goes on: the next change writes good files in their place.
    choosePen(*calendar);
    drawOnDay(*calendar, QDate(2026, 11, 12));
    QVERIFY(calendar->saveNow());
    QString problem;
    CalendarStore(CalendarStore::defaultFolder()).loadDrawing(2026, 11, &problem);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
}

void TestCalendarWidget::droppedPictureLandsInItsDay()
{
    auto calendar = openCalendar(QSize(800, 600));
    const QDate day(2026, 11, 19);
    QImage photo(3000, 2000, QImage::Format_RGB32); // far larger than a day
    photo.fill(Qt::darkGreen);
    QMimeData data;
    data.setImageData(photo);
    QVERIFY(calendar->dropPicture(&data, calendar->page()->cellArea(day).center()));

    QVERIFY(calendar->page()->hasPlacedItem());
    const QRectF placed = calendar->page()->placedItem().rect();
    QVERIFY(calendar->shownMonth().dayRect(day).contains(placed));
    QVERIFY(qAbs(placed.width() / placed.height() - 1.5) < 0.01); // its shape kept
    QCOMPARE(calendar->selectedDate(), day);
}

void TestCalendarWidget::choosingADayOfAnotherMonthTurnsThePage_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<QDate>("to");
    QTest::newRow("down past the end") << QDate(2026, 11, 30) << int(Qt::Key_Down) << QDate(2026, 12, 7);
    QTest::newRow("left before the first") << QDate(2026, 11, 1) << int(Qt::Key_Left) << QDate(2026, 10, 31);
    QTest::newRow("up into last year") << QDate(2026, 1, 3) << int(Qt::Key_Up) << QDate(2025, 12, 27);
    QTest::newRow("page down keeps the day")
        << QDate(2026, 1, 31) << int(Qt::Key_PageDown) << QDate(2026, 2, 28);
    QTest::newRow("home is today") << QDate(2025, 3, 3) << int(Qt::Key_Home) << kToday;
}

void TestCalendarWidget::choosingADayOfAnotherMonthTurnsThePage()
{
    QFETCH(QDate, from);
    QFETCH(int, key);
    QFETCH(QDate, to);
    auto calendar = openCalendar(QSize(800, 600));
    calendar->showDate(from);
    calendar->activateWindow();
    calendar->page()->setFocus();
    QTest::keyClick(calendar->page(), Qt::Key(key));
    QCOMPARE(calendar->selectedDate(), to);
    QCOMPARE(calendar->shownMonth().month(), to.month());
    QCOMPARE(calendar->shownMonth().year(), to.year());

    // A click on a greyed day of the next month turns the page too.
    const QDate next = calendar->shownMonth().dateAt(MonthLayout::kRows - 1, MonthLayout::kColumns - 1);
    QTest::mouseClick(calendar->page(), Qt::LeftButton, {}, calendar->page()->cellArea(next).center());
    QCOMPARE(calendar->selectedDate(), next);
    QCOMPARE(calendar->shownMonth().month(), next.month());
}

void TestCalendarWidget::longNotesAreShortenedWithAnEllipsis_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<int>("lines"); // room in lines
    QTest::addColumn<QStringList>("expected");
    const QString ellipsis(QChar(0x2026));
    QTest::newRow("fits") << QStringLiteral("Dentist") << 3 << QStringList{QStringLiteral("Dentist")};
    QTest::newRow("own line breaks kept") << QStringLiteral("a\nb") << 3 << QStringList{"a", "b"};
    QTest::newRow("lines cut") << QStringLiteral("a\nb\nc\nd") << 2 << QStringList{"a", "b c d " + ellipsis};
    QTest::newRow("no room") << QStringLiteral("a") << 0 << QStringList{};
}

void TestCalendarWidget::longNotesAreShortenedWithAnEllipsis()
{
    QFETCH(QString, note);
    QFETCH(int, lines);
    QFETCH(QStringList, expected);
    const QFont font;
    const qreal lineHeight = QFontMetricsF(font).lineSpacing();
    QCOMPARE(ElidedNoteLines(note, font, 400, lines * lineHeight + 1), expected);

    // A long line in a narrow cell wraps and ends in an ellipsis on the last line that fits.
    const QStringList wrapped = ElidedNoteLines(
        QStringLiteral("pick up the parcel from the post office before six"), font,
        QFontMetricsF(font).horizontalAdvance(QStringLiteral("parcel from")), 2 * lineHeight + 1);
    QCOMPARE(wrapped.size(), 2);
    QVERIFY(wrapped.last().endsWith(QChar(0x2026)));
}

QTEST_MAIN(TestCalendarWidget)
#include "test_calendar_widget.moc"
