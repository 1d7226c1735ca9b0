#include "calendar/month_layout.h"

#include <QLocale>
#include <QtMath>

namespace {

constexpr int kCellWidth = 240;
constexpr int kCellHeight = 180;
constexpr int kDaysShown = MonthLayout::kRows * MonthLayout::kColumns;

// The cell index along one axis under a page coordinate, held inside the grid. A coordinate
// that is not a number counts as the first cell rather than reaching an undefined conversion.
int clampedIndex(qreal coordinate, int cellSize, int count)
{
    if (!qIsFinite(coordinate))
        return coordinate > 0 ? count - 1 : 0;
    const qreal index = std::floor(coordinate / cellSize);
    return int(qBound<qreal>(0, index, count - 1));
}

} // namespace

MonthLayout::MonthLayout(int year, int month, Qt::DayOfWeek firstDayOfWeek)
    : m_year(year), m_month(month), m_firstDayOfWeek(firstDayOfWeek)
{
}

QDate MonthLayout::firstDay() const
{
    return QDate(m_year, m_month, 1);
}

int MonthLayout::daysInMonth() const
{
    return firstDay().daysInMonth();
}

int MonthLayout::leadingDays() const
{
    return (firstDay().dayOfWeek() - int(m_firstDayOfWeek) + 7) % 7;
}

QDate MonthLayout::firstShown() const
{
    return firstDay().addDays(-leadingDays());
}

QDate MonthLayout::dateAt(int row, int column) const
{
    if (row < 0 || row >= kRows || column < 0 || column >= kColumns)
        return {};
    return firstShown().addDays(row * kColumns + column);
}

QPoint MonthLayout::cellOf(const QDate &date) const
{
    const QDate first = firstShown();
    if (!first.isValid() || !date.isValid())
        return {-1, -1};
    const qint64 offset = first.daysTo(date);
    if (offset < 0 || offset >= kDaysShown)
        return {-1, -1};
    return {int(offset % kColumns), int(offset / kColumns)};
}

bool MonthLayout::isInMonth(const QDate &date) const
{
    return date.isValid() && date.year() == m_year && date.month() == m_month;
}

Qt::DayOfWeek MonthLayout::weekdayOfColumn(int column) const
{
    const int fromMonday = ((int(m_firstDayOfWeek) - 1 + column) % 7 + 7) % 7;
    return Qt::DayOfWeek(fromMonday + 1);
}

int MonthLayout::weekNumber(int row) const
{
    const int thursdayColumn = (Qt::Thursday - int(m_firstDayOfWeek) + 7) % 7;
    const QDate thursday = dateAt(row, thursdayColumn);
    return thursday.isValid() ? thursday.weekNumber() : 0;
}

int MonthLayout::rowsUsed() const
{
    return (leadingDays() + daysInMonth() + kColumns - 1) / kColumns;
}

MonthLayout MonthLayout::shifted(int months) const
{
    const QDate target = firstDay().addMonths(months);
    return MonthLayout(target.year(), target.month(), m_firstDayOfWeek);
}

QString MonthLayout::fileStem() const
{
    return QStringLiteral("%1-%2").arg(m_year, 4, 10, QLatin1Char('0')).arg(m_month, 2, 10, QLatin1Char('0'));
}

QSize MonthLayout::pageSize()
{
    return {kColumns * kCellWidth, kRows * kCellHeight};
}

QRectF MonthLayout::cellRect(int row, int column)
{
    return QRectF(column * kCellWidth, row * kCellHeight, kCellWidth, kCellHeight);
}

QRectF MonthLayout::dayRect(const QDate &date) const
{
    const QPoint cell = cellOf(date);
    if (cell.x() < 0)
        return {};
    return cellRect(cell.y(), cell.x());
}

QDate MonthLayout::dateAtPagePos(const QPointF &pagePos) const
{
    return dateAt(clampedIndex(pagePos.y(), kCellHeight, kRows),
                  clampedIndex(pagePos.x(), kCellWidth, kColumns));
}

Qt::DayOfWeek LocaleFirstDayOfWeek()
{
    return QLocale().firstDayOfWeek();
}
