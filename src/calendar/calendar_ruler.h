#pragma once

#include "calendar/month_layout.h"

#include <QWidget>

// The weekday names above the month page or the week numbers beside it, lined up with the
// page's columns or rows. Names are as long as the room allows ("Wednesday", "Wed", "W").
class CalendarRuler : public QWidget
{
    Q_OBJECT
public:
    enum Kind
    {
        Weekdays,
        WeekNumbers,
    };

    explicit CalendarRuler(Kind kind, QWidget *parent = nullptr);

    void setMonth(const MonthLayout &layout);
    void setTextColor(const QColor &color);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void paintWeekdays(QPainter &painter);
    void paintWeekNumbers(QPainter &painter);

    Kind m_kind;
    MonthLayout m_layout;
    QColor m_text = Qt::black;
};
