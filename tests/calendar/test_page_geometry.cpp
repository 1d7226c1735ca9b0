// Where things go on a month page: a picture put on a day keeps clear of the day's text, and a
// drawing laid out again for another first day of the week keeps each day's ink on its day.
#include "calendar/month_layout.h"
#include "calendar/month_page_remap.h"
#include "calendar/picture_spot.h"

#include <QPainter>
#include <QTest>

namespace {

const QRectF kDay(240, 180, 240, 180); // row 1, column 1 of the page

// A page with each day of `layout` filled with a colour made from its date.
QColor colorOf(const QDate &date)
{
    return QColor::fromRgb(int(date.toJulianDay() % 251), date.day() * 8, date.month() * 20);
}

QImage pageColouredByDay(const MonthLayout &layout)
{
    QImage page(MonthLayout::pageSize(), QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::transparent);
    QPainter painter(&page);
    for (int row = 0; row < MonthLayout::kRows; ++row)
        for (int column = 0; column < MonthLayout::kColumns; ++column)
            painter.fillRect(MonthLayout::cellRect(row, column), colorOf(layout.dateAt(row, column)));
    return page;
}

} // namespace

class TestPageGeometry : public QObject
{
    Q_OBJECT
private slots:
    void picturesKeepClearOfTheText_data();
    void picturesKeepClearOfTheText();
    void inkFollowsItsDay_data();
    void inkFollowsItsDay();
    void theSameFirstDayChangesNothing();
};

void TestPageGeometry::picturesKeepClearOfTheText_data()
{
    QTest::addColumn<QRectF>("text");
    QTest::addColumn<QSizeF>("picture");
    QTest::addColumn<qreal>("share");
    QTest::addColumn<QRectF>("expected");
    const QPointF at = kDay.topLeft();
    // Gaps are 3% of the day's height: 5.4 page pixels.
    QTest::newRow("no text: the middle, at most the share")
        << QRectF() << QSizeF(1000, 1000) << 0.5 << QRectF(at + QPointF(75, 45), QSizeF(90, 90));
    QTest::newRow("no text: a small picture keeps its size")
        << QRectF() << QSizeF(40, 20) << 0.9 << QRectF(at + QPointF(100, 80), QSizeF(40, 20));
    QTest::newRow("number only: beside it, to the right")
        << QRectF(at + QPointF(8, 6), QSizeF(30, 30)) << QSizeF(500, 500) << 0.9
        << QRectF(at + QPointF(58, 9), QSizeF(162, 162)); // 90% of the day's height
    QTest::newRow("wide note: below it")
        << QRectF(at + QPointF(8, 6), QSizeF(220, 80)) << QSizeF(300, 100) << 0.9
        << QRectF(at + QPointF(12, 97), QSizeF(216, 72)); // 90% of the day's width
    QTest::newRow("text fills the day: small, in the corner")
        << QRectF(kDay.adjusted(2, 2, -2, -2)) << QSizeF(100, 100) << 0.9
        << QRectF(kDay.bottomRight() - QPointF(5.4 + 54, 5.4 + 54), QSizeF(54, 54));
}

void TestPageGeometry::picturesKeepClearOfTheText()
{
    QFETCH(QRectF, text);
    QFETCH(QSizeF, picture);
    QFETCH(qreal, share);
    QFETCH(QRectF, expected);
    const QRectF spot = ClearSpotForPicture(kDay, text, picture, share);
    const auto near = [](qreal a, qreal b) { return qAbs(a - b) < 0.2; };
    QVERIFY2(
        near(spot.x(), expected.x()) && near(spot.y(), expected.y()) &&
            near(spot.width(), expected.width()) && near(spot.height(), expected.height()),
        qPrintable(
            QStringLiteral("%1,%2 %3x%4").arg(spot.x()).arg(spot.y()).arg(spot.width()).arg(spot.height())));
    QVERIFY(kDay.contains(spot));
    QVERIFY(qAbs(spot.width() / spot.height() - picture.width() / picture.height()) < 0.01);
}

void TestPageGeometry::inkFollowsItsDay_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("daysLost"); // shown before, not after (days of the months beside)
    // November 2026 starts on a Sunday, February 2026 on a Sunday with 28 days (4 rows).
    QTest::newRow("Monday to Sunday, 1st moves up a row") << 2026 << 11 << 1 << 7 << 6;
    QTest::newRow("Sunday to Monday, 1st moves down a row") << 2026 << 11 << 7 << 1 << 6;
    QTest::newRow("Monday to Saturday") << 2026 << 11 << 1 << 6 << 5;
    QTest::newRow("February in four rows, Sunday to Monday") << 2026 << 2 << 7 << 1 << 6;
    QTest::newRow("leap February, Saturday to Sunday") << 2028 << 2 << 6 << 7 << 1;
}

void TestPageGeometry::inkFollowsItsDay()
{
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, daysLost);
    const MonthLayout before(year, month, Qt::DayOfWeek(from));
    const MonthLayout after(year, month, Qt::DayOfWeek(to));
    const QImage moved = RemapPageCells(pageColouredByDay(before), before, after);
    int lost = 0;
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        for (int column = 0; column < MonthLayout::kColumns; ++column) {
            const QDate date = after.dateAt(row, column);
            const QColor shown = moved.pixelColor(MonthLayout::cellRect(row, column).center().toPoint());
            if (before.cellOf(date).x() < 0) {
                QCOMPARE(shown.alpha(), 0); // nothing was drawn for a day not shown before
                continue;
            }
            QCOMPARE(shown, colorOf(date));
        }
    }
    for (int row = 0; row < MonthLayout::kRows; ++row)
        for (int column = 0; column < MonthLayout::kColumns; ++column)
            lost += after.cellOf(before.dateAt(row, column)).x() < 0 ? 1 : 0;
    QCOMPARE(lost, daysLost);
    // Every day of the month itself is kept.
    for (int day = 1; day <= before.daysInMonth(); ++day)
        QVERIFY(after.cellOf(QDate(year, month, day)).x() >= 0);
}

void TestPageGeometry::theSameFirstDayChangesNothing()
{
    const MonthLayout layout(2026, 11, Qt::Monday);
    const QImage page = pageColouredByDay(layout);
    QCOMPARE(RemapPageCells(page, layout, layout), page);
}

QTEST_GUILESS_MAIN(TestPageGeometry)
#include "test_page_geometry.moc"
