#include "calendar/calendar_ruler.h"

#include <QLocale>
#include <QPainter>

CalendarRuler::CalendarRuler(Kind kind, QWidget *parent)
    : QWidget(parent), m_kind(kind), m_layout(2000, 1, Qt::Monday)
{
    setObjectName(kind == Weekdays ? QStringLiteral("lblWEEKDAYS") : QStringLiteral("lblWEEKNUMBERS"));
    if (kind == WeekNumbers)
        setToolTip(tr("Week numbers (ISO 8601)"));
    setSizePolicy(kind == Weekdays ? QSizePolicy::Expanding : QSizePolicy::Fixed,
                  kind == Weekdays ? QSizePolicy::Fixed : QSizePolicy::Expanding);
}

void CalendarRuler::setMonth(const MonthLayout &layout)
{
    m_layout = layout;
    update();
}

void CalendarRuler::setTextColor(const QColor &color)
{
    m_text = color;
    update();
}

QSize CalendarRuler::sizeHint() const
{
    const QFontMetrics metrics(font());
    if (m_kind == Weekdays)
        return QSize(MonthLayout::kColumns * 30, metrics.height() + 6);
    return QSize(metrics.horizontalAdvance(QStringLiteral("53")) + 10, MonthLayout::kRows * 20);
}

void CalendarRuler::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(m_text);
    if (m_kind == Weekdays)
        paintWeekdays(painter);
    else
        paintWeekNumbers(painter);
}

void CalendarRuler::paintWeekdays(QPainter &painter)
{
    const QLocale locale;
    const qreal column = qreal(width()) / MonthLayout::kColumns;
    const QFontMetricsF metrics(font());
    // One length for every column, so the row reads evenly.
    QLocale::FormatType format = QLocale::LongFormat;
    for (QLocale::FormatType candidate : {QLocale::LongFormat, QLocale::ShortFormat, QLocale::NarrowFormat}) {
        format = candidate;
        bool fits = true;
        for (int day = 1; day <= 7 && fits; ++day)
            fits = metrics.horizontalAdvance(locale.dayName(day, candidate)) <= column - 6;
        if (fits)
            break;
    }
    for (int c = 0; c < MonthLayout::kColumns; ++c) {
        const QRectF box(c * column, 0, column, height());
        painter.drawText(box, Qt::AlignCenter, locale.dayName(m_layout.weekdayOfColumn(c), format));
    }
}

void CalendarRuler::paintWeekNumbers(QPainter &painter)
{
    const qreal row = qreal(height()) / MonthLayout::kRows;
    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * 0.9);
    painter.setFont(small);
    for (int r = 0; r < MonthLayout::kRows; ++r) {
        const QRectF box(0, r * row + 3, width() - 4, row);
        painter.drawText(box, Qt::AlignRight | Qt::AlignTop, QLocale().toString(m_layout.weekNumber(r)));
    }
}
