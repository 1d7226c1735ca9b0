#pragma once

#include "calendar/calendar_widget.h"
#include "calendar/month_page_view.h"

#include <QAbstractButton>
#include <QTest>

#include <memory>

// Opening the calendar window and drawing on it as the mouse does, for the window tests.
inline std::unique_ptr<CalendarWidget> openCalendar(const QSize &size)
{
    auto calendar = std::make_unique<CalendarWidget>();
    calendar->resize(size);
    calendar->show();
    if (!QTest::qWaitForWindowExposed(calendar.get()))
        qFatal("the calendar was not shown");
    return calendar;
}

inline void choosePen(CalendarWidget &calendar)
{
    calendar.findChild<QAbstractButton *>(QStringLiteral("btnPEN"))->click();
}

// A short pen stroke through the middle of the day's cell.
inline void drawOnDay(CalendarWidget &calendar, const QDate &day)
{
    MonthPageView *page = calendar.page();
    const QPoint centre = page->cellArea(day).center();
    QTest::mousePress(page, Qt::LeftButton, {}, centre - QPoint(6, 0));
    QTest::mouseMove(page, centre);
    QTest::mouseMove(page, centre + QPoint(6, 0));
    QTest::mouseRelease(page, Qt::LeftButton, {}, centre + QPoint(6, 0));
}

inline bool isInk(const QColor &color)
{
    return color.alpha() > 0 && color.lightness() < 110;
}
