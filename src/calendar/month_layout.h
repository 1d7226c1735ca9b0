#pragma once

#include <QDate>
#include <QPoint>
#include <QRectF>
#include <QSize>
#include <QString>

// One month as a page of 6 rows x 7 columns of day cells. Row 0 holds the 1st, after the last
// days of the month before (none when the 1st falls on the first day of the week); the cells
// after the month's last day show the next month.
//
// The page has its own fixed size in pixels (pageSize()), and everything drawn on it is kept in
// those coordinates; a view scales the page to its size. A point on the page therefore names
// the same day whatever size the page is shown at.
//
// A value class: cheap to copy, it holds only the month and the first day of the week, and
// every answer is worked out from them (Gregorian calendar). The month must be a real one
// (1..12 of a valid year); for any other, dates are invalid and no date is on the page.
class MonthLayout
{
public:
    static constexpr int kRows = 6;
    static constexpr int kColumns = 7;

    MonthLayout(int year, int month, Qt::DayOfWeek firstDayOfWeek);

    int year() const { return m_year; }
    int month() const { return m_month; }
    Qt::DayOfWeek firstDayOfWeek() const { return m_firstDayOfWeek; }

    // The 1st of the month.
    QDate firstDay() const;
    int daysInMonth() const;
    // The date in row 0, column 0.
    QDate firstShown() const;
    // The date in a cell; invalid outside the grid.
    QDate dateAt(int row, int column) const;
    // QPoint(column, row) of the date's cell; QPoint(-1, -1) when it is not on the page.
    QPoint cellOf(const QDate &date) const;
    bool isInMonth(const QDate &date) const;
    Qt::DayOfWeek weekdayOfColumn(int column) const;
    // The ISO 8601 week number of a row: that of the row's Thursday, the day that decides
    // which year a week belongs to. 0 outside the grid.
    int weekNumber(int row) const;
    // The rows holding at least one day of the month (4..6).
    int rowsUsed() const;
    // The month `months` later (earlier when negative), with the same first day of the week.
    MonthLayout shifted(int months) const;
    // The name of the month's files: "2026-11".
    QString fileStem() const;

    // The page in its own pixels.
    static QSize pageSize();
    // A cell in page pixels.
    static QRectF cellRect(int row, int column);
    // The cell of a date in page pixels; an empty rectangle when the date is not on the page.
    QRectF dayRect(const QDate &date) const;
    // The date of the cell under a page point; points off the page count as the nearest cell.
    QDate dateAtPagePos(const QPointF &pagePos) const;

private:
    // How many days of the month before lead row 0.
    int leadingDays() const;

    int m_year;
    int m_month;
    Qt::DayOfWeek m_firstDayOfWeek;
};

// The first day of the week in the user's locale: the one place that asks.
Qt::DayOfWeek LocaleFirstDayOfWeek();
