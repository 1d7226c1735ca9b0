#pragma once

#include "calendar/imported_calendars.h"
#include "calendar/month_layout.h"
#include "calendar/month_notes.h"
#include "core/drawing/ink_canvas.h"

#include <QDate>

// The month page: the day cells with their numbers and notes, under each note the events of
// imported calendars (a line each in its calendar's colour, read-only), and the month's drawing
// over them. The drawing is a page of its own fixed size (MonthLayout::pageSize) stretched over the
// view, so a stroke stays on the day it was drawn on whatever the window's size.
//
// With the pointer tool (InkCanvas::Tool::Pointer) a click chooses a day, a double click or Enter asks for
// its note and the arrow keys move between days; with a pen the page takes ink. A long note is shortened with
// an ellipsis in its cell and shown whole, with the day's events, in the day's tooltip.
class MonthPageView : public InkCanvas
{
    Q_OBJECT
public:
    struct Colors
    {
        QColor paper = QColor(253, 253, 250);
        QColor otherMonth = QColor(238, 238, 234); // days of the months before and after
        QColor weekend = QColor(246, 246, 240);
        QColor line = QColor(200, 200, 196);
        QColor text = QColor(40, 40, 40);
        QColor dimText = QColor(150, 150, 150);
        QColor accent = QColor(20, 106, 211); // today and the chosen day
    };

    explicit MonthPageView(DrawingLayer *layer, QWidget *parent = nullptr);

    void setMonth(const MonthLayout &layout, const MonthNotes &notes);
    const MonthLayout &monthLayout() const { return m_layout; }
    void setNotes(const MonthNotes &notes);
    // The events of imported calendars, shown read-only under each day's note.
    void setEventMarks(const QHash<QDate, QList<CalendarEventMark>> &marks);
    void setToday(const QDate &today);
    void setSelectedDate(const QDate &date);
    QDate selectedDate() const { return m_selected; }
    void setColors(const Colors &colors);

    // The day under a point of the view.
    QDate dateAt(const QPoint &viewPos) const;
    // A day's cell in view pixels.
    QRect cellArea(const QDate &date) const;
    // The chosen day as a screen reader says it: the date, the note's first line (or that there
    // is none) and the imported events. The page's accessible description, kept up to date as
    // the user moves from day to day.
    QString spokenDay(const QDate &date) const;

    // What the day's number, note and events cover, in page pixels (see MonthLayout::pageSize):
    // the part of the day that stickers and pictures are kept clear of.
    QRectF textArea(const QDate &date) const;

signals:
    // The user chose another day (click or arrow keys); it may lie in another month.
    void dateChosen(const QDate &date);
    // A double click or Enter on a day: write its note.
    void noteRequested(const QDate &date);
    // Delete on a day: remove its note.
    void noteRemovalRequested(const QDate &date);

protected:
    void paintUnderlay(QPainter &painter, const QRect &exposed) override;
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    // The texts of one day's cell as they are laid out in it (view pixels).
    struct CellText
    {
        QFont numberFont;
        QString numberText;
        QRectF number;
        QFont noteFont;
        QStringList noteLines;
        QRectF noteBox; // as wide as the longest line
        QFont eventFont;
        QList<QPair<QString, QColor>> events; // shortened to fit, the last may say how many more
        QRectF eventBox;
        qreal lineHeight = 0;
        qreal eventLineHeight = 0;

        QRectF bounds() const { return number | noteBox | eventBox; }
    };

    CellText layoutCell(const QRectF &cell, const QDate &date) const;
    QString noteOf(const QDate &date) const;
    void paintCell(QPainter &painter, int row, int column);
    void paintGridLines(QPainter &painter);
    void paintCellText(QPainter &painter, const CellText &text, bool inMonth, bool today);
    bool handlesPointer() const;
    void updateDate(const QDate &date);
    void describeSelectedDay();

    MonthLayout m_layout;
    MonthNotes m_notes;
    QHash<QDate, QList<CalendarEventMark>> m_marks;
    QDate m_today;
    QDate m_selected;
    Colors m_colors;
};
