// Month pages: where each day sits for every first day of the week, leap years, ISO week
// numbers at year ends, and page points that name the same day at any shown size.
#include "calendar/month_layout.h"

#include <QTest>
#include <QTransform>

class TestMonthLayout : public QObject
{
    Q_OBJECT
private slots:
    void daysSitInTheirCells_data();
    void daysSitInTheirCells();
    void monthLengths_data();
    void monthLengths();
    void weekNumbersFollowTheThursday_data();
    void weekNumbersFollowTheThursday();
    void pagePointsAreClampedToTheGrid_data();
    void pagePointsAreClampedToTheGrid();
    void everyDayRoundTripsThroughAnyShownSize_data();
    void everyDayRoundTripsThroughAnyShownSize();
    void shiftedCrossesYearEnds_data();
    void shiftedCrossesYearEnds();
};

void TestMonthLayout::daysSitInTheirCells_data()
{
    QTest::addColumn<int>("month"); // of 2026
    QTest::addColumn<int>("firstDayOfWeek");
    QTest::addColumn<QDate>("firstShown");
    QTest::addColumn<QPoint>("lastCell"); // (column, row) of the month's last day
    QTest::addColumn<int>("rowsUsed");
    const auto row = [](const char *name, int month, int first, QDate shown, QPoint last, int rows) {
        QTest::newRow(name) << month << first << shown << last << rows;
    };
    row("Mon-first, starts Mon", 6, Qt::Monday, QDate(2026, 6, 1), QPoint(1, 4), 5);
    row("Mon-first, starts Tue", 9, Qt::Monday, QDate(2026, 8, 31), QPoint(2, 4), 5);
    row("Mon-first, starts Wed", 7, Qt::Monday, QDate(2026, 6, 29), QPoint(4, 4), 5);
    row("Mon-first, starts Thu", 10, Qt::Monday, QDate(2026, 9, 28), QPoint(5, 4), 5);
    row("Mon-first, starts Fri", 5, Qt::Monday, QDate(2026, 4, 27), QPoint(6, 4), 5);
    row("Mon-first, starts Sat", 8, Qt::Monday, QDate(2026, 7, 27), QPoint(0, 5), 6);
    row("Mon-first, starts Sun", 3, Qt::Monday, QDate(2026, 2, 23), QPoint(1, 5), 6);
    row("Sun-first, starts Sun", 2, Qt::Sunday, QDate(2026, 2, 1), QPoint(6, 3), 4);
    row("Sun-first, starts Mon", 6, Qt::Sunday, QDate(2026, 5, 31), QPoint(2, 4), 5);
    row("Sun-first, starts Tue", 12, Qt::Sunday, QDate(2026, 11, 29), QPoint(4, 4), 5);
    row("Sun-first, starts Wed", 4, Qt::Sunday, QDate(2026, 3, 29), QPoint(4, 4), 5);
    row("Sun-first, starts Thu", 1, Qt::Sunday, QDate(2025, 12, 28), QPoint(6, 4), 5);
    row("Sun-first, starts Fri", 5, Qt::Sunday, QDate(2026, 4, 26), QPoint(0, 5), 6);
    row("Sun-first, starts Sat", 8, Qt::Sunday, QDate(2026, 7, 26), QPoint(1, 5), 6);
    row("Sat-first, starts Sun", 11, Qt::Saturday, QDate(2026, 10, 31), QPoint(2, 4), 5);
}

void TestMonthLayout::daysSitInTheirCells()
{
    QFETCH(int, month);
    QFETCH(int, firstDayOfWeek);
    QFETCH(QDate, firstShown);
    QFETCH(QPoint, lastCell);
    QFETCH(int, rowsUsed);
    const MonthLayout layout(2026, month, Qt::DayOfWeek(firstDayOfWeek));
    const QDate last(2026, month, layout.daysInMonth());
    const QPoint firstCell(int(firstShown.daysTo(layout.firstDay())), 0);
    QCOMPARE(layout.firstShown(), firstShown);
    QCOMPARE(layout.cellOf(layout.firstDay()), firstCell);
    QCOMPARE(layout.cellOf(last), lastCell);
    QCOMPARE(layout.dateAt(lastCell.y(), lastCell.x()), last);
    QCOMPARE(layout.rowsUsed(), rowsUsed);
    QCOMPARE(layout.weekdayOfColumn(firstCell.x()), Qt::DayOfWeek(layout.firstDay().dayOfWeek()));
    // The grid runs on into the next month; nothing outside it has a cell.
    QCOMPARE(layout.dateAt(5, 6), firstShown.addDays(41));
    QCOMPARE(layout.cellOf(firstShown.addDays(42)), QPoint(-1, -1));
    QCOMPARE(layout.cellOf(firstShown.addDays(-1)), QPoint(-1, -1));
    QVERIFY(layout.dayRect(firstShown.addDays(-1)).isEmpty());
    QVERIFY(!layout.dateAt(6, 0).isValid());
}

void TestMonthLayout::monthLengths_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("days"); // in February
    QTest::newRow("2024 leap") << 2024 << 29;
    QTest::newRow("2100 not leap") << 2100 << 28;
    QTest::newRow("2000 leap") << 2000 << 29;
    QTest::newRow("2026") << 2026 << 28;
}

void TestMonthLayout::monthLengths()
{
    QFETCH(int, year);
    QFETCH(int, days);
    const MonthLayout layout(year, 2, Qt::Monday);
    QCOMPARE(layout.daysInMonth(), days);
    QVERIFY(!layout.isInMonth(QDate(year, 2, days).addDays(1)));
}

void TestMonthLayout::weekNumbersFollowTheThursday_data()
{
    QTest::addColumn<int>("firstDayOfWeek");
    QTest::addColumn<QDate>("dateInRow"); // the row shown with this date in its month
    QTest::addColumn<int>("week");
    QTest::newRow("last row of Dec 2026") << int(Qt::Monday) << QDate(2026, 12, 31) << 53;
    QTest::newRow("first row of Jan 2027") << int(Qt::Monday) << QDate(2027, 1, 1) << 53;
    QTest::newRow("second row of Jan 2027") << int(Qt::Monday) << QDate(2027, 1, 4) << 1;
    QTest::newRow("2021-01-01, Sun-first") << int(Qt::Sunday) << QDate(2021, 1, 1) << 53;
    // The row starts on a Sunday still in week 53, but its Thursday is in week 1.
    QTest::newRow("Sun-first row from 2027-01-03") << int(Qt::Sunday) << QDate(2027, 1, 3) << 1;
}

void TestMonthLayout::weekNumbersFollowTheThursday()
{
    QFETCH(int, firstDayOfWeek);
    QFETCH(QDate, dateInRow);
    QFETCH(int, week);
    const MonthLayout layout(dateInRow.year(), dateInRow.month(), Qt::DayOfWeek(firstDayOfWeek));
    QCOMPARE(layout.weekNumber(layout.cellOf(dateInRow).y()), week);
}

void TestMonthLayout::pagePointsAreClampedToTheGrid_data()
{
    QTest::addColumn<QPointF>("pagePos");
    QTest::addColumn<QPoint>("cell");
    QTest::newRow("a border belongs to the next cell") << QPointF(240, 180) << QPoint(1, 1);
    QTest::newRow("just before a border") << QPointF(239.9, 179.9) << QPoint(0, 0);
    QTest::newRow("above and left") << QPointF(-50, -0.5) << QPoint(0, 0);
    QTest::newRow("left, in row 2") << QPointF(-10, 400) << QPoint(0, 2);
    QTest::newRow("below and right") << QPointF(99999, 1080) << QPoint(6, 5);
    QTest::newRow("not a number") << QPointF(qQNaN(), qInf()) << QPoint(0, 5);
}

void TestMonthLayout::pagePointsAreClampedToTheGrid()
{
    QFETCH(QPointF, pagePos);
    QFETCH(QPoint, cell);
    const MonthLayout layout(2026, 11, Qt::Monday);
    QCOMPARE(layout.dateAtPagePos(pagePos), layout.dateAt(cell.y(), cell.x()));
}

void TestMonthLayout::everyDayRoundTripsThroughAnyShownSize_data()
{
    QTest::addColumn<QSize>("shown");
    QTest::newRow("smaller, other shape") << QSize(700, 450);
    QTest::newRow("larger, other shape") << QSize(1900, 1300);
    QTest::newRow("tiny") << QSize(140, 90);
}

// A stroke drawn at one widget size is kept in page pixels; shown at another size it must land
// on the same days. A widget sees whole pixels, so the day's centre is rounded there.
void TestMonthLayout::everyDayRoundTripsThroughAnyShownSize()
{
    QFETCH(QSize, shown);
    const QSize page = MonthLayout::pageSize();
    QCOMPARE(page, QSize(1680, 1080));
    const QTransform toWidget =
        QTransform::fromScale(qreal(shown.width()) / page.width(), qreal(shown.height()) / page.height());
    const MonthLayout layout(2026, 11, Qt::Sunday);
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        for (int column = 0; column < MonthLayout::kColumns; ++column) {
            const QDate date = layout.dateAt(row, column);
            QCOMPARE(layout.dayRect(date), MonthLayout::cellRect(row, column));
            const QPoint inWidget = toWidget.map(layout.dayRect(date).center()).toPoint();
            QCOMPARE(layout.dateAtPagePos(toWidget.inverted().map(QPointF(inWidget))), date);
        }
    }
}

void TestMonthLayout::shiftedCrossesYearEnds_data()
{
    QTest::addColumn<QDate>("from");
    QTest::addColumn<int>("months");
    QTest::addColumn<QDate>("to");
    QTest::newRow("Dec to Jan") << QDate(2026, 12, 1) << 1 << QDate(2027, 1, 1);
    QTest::newRow("Jan to Dec") << QDate(2026, 1, 1) << -1 << QDate(2025, 12, 1);
    QTest::newRow("back 13") << QDate(2026, 1, 1) << -13 << QDate(2024, 12, 1);
}

void TestMonthLayout::shiftedCrossesYearEnds()
{
    QFETCH(QDate, from);
    QFETCH(int, months);
    QFETCH(QDate, to);
    const MonthLayout shifted = MonthLayout(from.year(), from.month(), Qt::Saturday).shifted(months);
    QCOMPARE(shifted.firstDay(), to);
    QCOMPARE(shifted.firstDayOfWeek(), Qt::Saturday);
    QCOMPARE(shifted.fileStem(), to.toString(QStringLiteral("yyyy-MM")));
}

QTEST_GUILESS_MAIN(TestMonthLayout)
#include "test_month_layout.moc"
