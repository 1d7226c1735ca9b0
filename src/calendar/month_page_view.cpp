#include "calendar/month_page_view.h"

#include "calendar/elided_note.h"
#include "core/drawing/drawing_layer.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

namespace {
// Day numbers and notes grow with the cells, within these bounds (pixels).
constexpr qreal kSmallestNumber = 11, kLargestNumber = 28;
constexpr qreal kSmallestNote = 10, kLargestNote = 17;

// An event's time as the locale writes it, without seconds ("09:30", "9:30 AM").
QString shortTime(const QTime &time)
{
    const QString format = QLocale().timeFormat(QLocale::ShortFormat);
    const bool twelveHours = format.contains(QLatin1String("ap"), Qt::CaseInsensitive);
    return QLocale().toString(time, twelveHours ? QStringLiteral("h:mm ap") : QStringLiteral("HH:mm"));
}

bool isWeekend(Qt::DayOfWeek day)
{
    return day == Qt::Saturday || day == Qt::Sunday;
}
} // namespace

MonthPageView::MonthPageView(DrawingLayer *layer, QWidget *parent)
    : InkCanvas(layer, parent),
      m_layout(QDate::currentDate().year(), QDate::currentDate().month(), Qt::Monday)
{
    setStretched(true);
    setObjectName(QStringLiteral("picPAGE"));
    setAccessibleName(tr("Month page"));
    setMinimumSize(7 * 40, 6 * 32);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setTool(Tool::Pointer);
}

void MonthPageView::setMonth(const MonthLayout &layout, const MonthNotes &notes)
{
    m_layout = layout;
    m_notes = notes;
    update();
}

void MonthPageView::setNotes(const MonthNotes &notes)
{
    m_notes = notes;
    describeSelectedDay();
    update();
}

void MonthPageView::setEventMarks(const QHash<QDate, QList<CalendarEventMark>> &marks)
{
    m_marks = marks;
    describeSelectedDay();
    update();
}

void MonthPageView::setToday(const QDate &today)
{
    if (m_today == today)
        return;
    updateDate(m_today);
    m_today = today;
    updateDate(m_today);
}

void MonthPageView::setSelectedDate(const QDate &date)
{
    if (m_selected == date)
        return;
    updateDate(m_selected);
    m_selected = date;
    updateDate(m_selected);
    describeSelectedDay();
}

QString MonthPageView::spokenDay(const QDate &date) const
{
    QStringList parts{QLocale().toString(date, QLocale::LongFormat)};
    const QString note = noteOf(date).trimmed();
    parts.append(note.isEmpty() ? tr("no note") : tr("note: %1").arg(note.section(QLatin1Char('\n'), 0, 0)));
    for (const CalendarEventMark &mark : m_marks.value(date)) {
        parts.append(mark.time.isValid()
                         ? QStringLiteral("%1 %2").arg(QLocale().toString(mark.time, QLocale::ShortFormat),
                                                       mark.summary)
                         : mark.summary);
    }
    return parts.join(QStringLiteral(", "));
}

void MonthPageView::describeSelectedDay()
{
    // Qt tells a screen reader when the description changes: once per move, never on a timer.
    if (m_selected.isValid())
        setAccessibleDescription(spokenDay(m_selected));
}

void MonthPageView::setColors(const Colors &colors)
{
    m_colors = colors;
    update();
}

QDate MonthPageView::dateAt(const QPoint &viewPos) const
{
    return m_layout.dateAtPagePos(toLayer(QPointF(viewPos) + QPointF(0.5, 0.5)));
}

QRect MonthPageView::cellArea(const QDate &date) const
{
    const QRectF page = m_layout.dayRect(date);
    return page.isEmpty() ? QRect() : toWidget(page).toAlignedRect();
}

void MonthPageView::updateDate(const QDate &date)
{
    const QRect area = cellArea(date);
    if (!area.isEmpty())
        update(area.adjusted(-2, -2, 2, 2));
}

// ---- painting ----

void MonthPageView::paintUnderlay(QPainter &painter, const QRect &exposed)
{
    painter.fillRect(exposed, m_colors.paper);
    for (int row = 0; row < MonthLayout::kRows; ++row) {
        for (int column = 0; column < MonthLayout::kColumns; ++column) {
            if (toWidget(MonthLayout::cellRect(row, column)).toAlignedRect().intersects(exposed))
                paintCell(painter, row, column);
        }
    }
    paintGridLines(painter);
}

void MonthPageView::paintGridLines(QPainter &painter)
{
    // Drawn after every cell, on whole pixels, so that no cell's fill covers its neighbour's edge.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(m_colors.line, 1));
    const QRectF page = toWidget(QRectF(QPointF(0, 0), MonthLayout::pageSize()));
    for (int column = 1; column < MonthLayout::kColumns; ++column) {
        const int x = qRound(toWidget(MonthLayout::cellRect(0, column)).left());
        painter.drawLine(x, 0, x, qRound(page.bottom()));
    }
    for (int row = 1; row < MonthLayout::kRows; ++row) {
        const int y = qRound(toWidget(MonthLayout::cellRect(row, 0)).top());
        painter.drawLine(0, y, qRound(page.right()), y);
    }
}

QString MonthPageView::noteOf(const QDate &date) const
{
    return m_notes.year() == date.year() && m_notes.month() == date.month() ? m_notes.note(date.day())
                                                                            : QString();
}

MonthPageView::CellText MonthPageView::layoutCell(const QRectF &cell, const QDate &date) const
{
    CellText text;
    const qreal height = cell.height();
    text.numberFont = font();
    text.numberFont.setPixelSize(int(qBound(kSmallestNumber, height * 0.18, kLargestNumber)));
    text.numberFont.setBold(date == m_today);
    const QFontMetricsF numberMetrics(text.numberFont);
    const qreal pad = qMax(2.0, height * 0.04);
    text.numberText = QLocale().toString(date.day());
    const qreal inset = pad + numberMetrics.height() * 0.25; // room for today's disc
    text.number = QRectF(cell.left() + inset, cell.top() + pad,
                         numberMetrics.horizontalAdvance(text.numberText), numberMetrics.height());

    // Below the number the user's note, then the events of imported calendars: the note has the
    // room it needs, but one line is kept for the events when there are any.
    const QRectF area(cell.left() + inset, text.number.bottom() + pad / 2, cell.width() - inset - pad,
                      cell.bottom() - text.number.bottom() - pad * 1.5);
    if (area.height() < 4 || area.width() < 8)
        return text;
    text.noteFont = font();
    text.noteFont.setPixelSize(
        int(qBound(kSmallestNote, rect().height() / MonthLayout::kRows * 0.145, kLargestNote)));
    text.eventFont = text.noteFont;
    text.eventFont.setPixelSize(qMax(int(kSmallestNote) - 1, text.noteFont.pixelSize() - 1));
    const QFontMetricsF noteMetrics(text.noteFont);
    const QFontMetricsF eventMetrics(text.eventFont);
    text.lineHeight = noteMetrics.lineSpacing();
    text.eventLineHeight = eventMetrics.lineSpacing();
    const QList<CalendarEventMark> marks = m_marks.value(date);
    const qreal keptForEvents = marks.isEmpty() ? 0 : text.eventLineHeight;

    const QString note = noteOf(date);
    qreal noteWidth = 0;
    if (!note.isEmpty()) {
        text.noteLines = ElidedNoteLines(note, text.noteFont, area.width(), area.height() - keptForEvents);
        for (const QString &line : std::as_const(text.noteLines))
            noteWidth = qMax(noteWidth, noteMetrics.horizontalAdvance(line));
    }
    const qreal noteHeight = text.noteLines.size() * text.lineHeight;
    if (!text.noteLines.isEmpty())
        text.noteBox = QRectF(area.left(), area.top(), noteWidth, noteHeight);

    const int room = int((area.height() - noteHeight) / text.eventLineHeight);
    const int shown = marks.size() <= room ? int(marks.size()) : qMax(0, room - 1);
    const qreal bar = qMax(3.0, text.eventLineHeight * 0.22);
    const qreal textWidth = area.width() - bar * 2;
    qreal eventWidth = 0;
    for (int i = 0; i < shown; ++i) {
        const CalendarEventMark &mark = marks.at(i);
        const QString line =
            mark.time.isValid() ? shortTime(mark.time) + QLatin1Char(' ') + mark.summary : mark.summary;
        const QString fitted = eventMetrics.elidedText(line, Qt::ElideRight, textWidth);
        eventWidth = qMax(eventWidth, bar * 2 + eventMetrics.horizontalAdvance(fitted));
        text.events.append({fitted, mark.color});
    }
    if (shown < marks.size() && room > 0) {
        const QString more = tr("+%1 more").arg(marks.size() - shown);
        eventWidth = qMax(eventWidth, bar * 2 + eventMetrics.horizontalAdvance(more));
        text.events.append({more, m_colors.dimText});
    }
    if (!text.events.isEmpty())
        text.eventBox = QRectF(area.left(), area.top() + noteHeight, eventWidth,
                               text.events.size() * text.eventLineHeight);
    return text;
}

QRectF MonthPageView::textArea(const QDate &date) const
{
    const QRect cell = cellArea(date);
    if (cell.isEmpty())
        return {};
    const QRectF bounds = layoutCell(cell, date).bounds();
    return QRectF(toLayer(bounds.topLeft()), toLayer(bounds.bottomRight()));
}

void MonthPageView::paintCell(QPainter &painter, int row, int column)
{
    const QDate date = m_layout.dateAt(row, column);
    const bool inMonth = m_layout.isInMonth(date);
    const QRectF cell = toWidget(MonthLayout::cellRect(row, column));
    const QColor fill = !inMonth                                      ? m_colors.otherMonth
                        : isWeekend(m_layout.weekdayOfColumn(column)) ? m_colors.weekend
                                                                      : m_colors.paper;
    painter.fillRect(cell, fill);
    paintCellText(painter, layoutCell(cell, date), inMonth, date == m_today);

    if (date == m_selected && (tool() == Tool::Pointer || hasFocus())) {
        QColor frame = m_colors.accent;
        frame.setAlpha(hasFocus() ? 255 : 140);
        painter.setPen(QPen(frame, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(cell.adjusted(1.5, 1.5, -1.5, -1.5));
    }
}

void MonthPageView::paintCellText(QPainter &painter, const CellText &text, bool inMonth, bool today)
{
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (today) {
        // A disc round the number, wide enough for two digits.
        const qreal lineHeight = text.number.height();
        const qreal side = qMax(lineHeight, text.number.width() + lineHeight * 0.4);
        const QRectF disc(text.number.center() - QPointF(side / 2, side / 2), QSizeF(side, side));
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_colors.accent);
        painter.drawEllipse(disc);
        painter.setPen(Qt::white);
    } else {
        painter.setPen(inMonth ? m_colors.text : m_colors.dimText);
    }
    painter.setFont(text.numberFont);
    painter.drawText(text.number, Qt::AlignCenter, text.numberText);

    painter.setPen(inMonth ? m_colors.text : m_colors.dimText);
    painter.setFont(text.noteFont);
    for (int i = 0; i < text.noteLines.size(); ++i)
        painter.drawText(QRectF(text.noteBox.left(), text.noteBox.top() + i * text.lineHeight,
                                text.noteBox.width() + 2, text.lineHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, text.noteLines.at(i));

    // Each event a coloured line: a bar in the calendar's colour and the text in a darker one.
    painter.setFont(text.eventFont);
    const qreal bar = qMax(3.0, text.eventLineHeight * 0.22);
    for (int i = 0; i < text.events.size(); ++i) {
        const QRectF line(text.eventBox.left(), text.eventBox.top() + i * text.eventLineHeight,
                          text.eventBox.width() + 2, text.eventLineHeight);
        QColor color = text.events.at(i).second;
        if (!inMonth)
            color.setAlphaF(0.55);
        painter.fillRect(QRectF(line.left(), line.top() + line.height() * 0.18, bar, line.height() * 0.64),
                         color);
        painter.setPen(color.darker(115));
        painter.drawText(line.adjusted(bar * 2, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                         text.events.at(i).first);
    }
}

// ---- the pointer and the keyboard ----

bool MonthPageView::handlesPointer() const
{
    // An item being placed is moved by any tool; the pen draws.
    return tool() == Tool::Pointer && !hasPlacedItem();
}

bool MonthPageView::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        const QDate date = dateAt(help->pos());
        const QString note = noteOf(date);
        const QList<CalendarEventMark> marks = m_marks.value(date);
        if (note.isEmpty() && marks.isEmpty()) {
            QToolTip::hideText();
        } else {
            QString tip = QStringLiteral("<b>%1</b>")
                              .arg(QLocale().toString(date, QLocale::LongFormat).toHtmlEscaped());
            if (!note.isEmpty())
                tip += QStringLiteral("<br>") +
                       note.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"));
            for (const CalendarEventMark &mark : marks)
                tip += QStringLiteral("<br><span style=\"color:%1\">\u25A0</span> %2")
                           .arg(mark.color.name(),
                                (mark.time.isValid() ? shortTime(mark.time) + QLatin1Char(' ') : QString()) +
                                    mark.summary.toHtmlEscaped());
            QToolTip::showText(help->globalPos(), tip, this, cellArea(date));
        }
        return true;
    }
    return InkCanvas::event(event);
}

void MonthPageView::mousePressEvent(QMouseEvent *event)
{
    if (!handlesPointer() || event->button() != Qt::LeftButton)
        return InkCanvas::mousePressEvent(event);
    setFocus(Qt::MouseFocusReason);
    emit dateChosen(dateAt(event->position().toPoint()));
}

void MonthPageView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!handlesPointer() || event->button() != Qt::LeftButton)
        return InkCanvas::mouseDoubleClickEvent(event);
    const QDate date = dateAt(event->position().toPoint());
    emit dateChosen(date);
    emit noteRequested(date);
}

void MonthPageView::keyPressEvent(QKeyEvent *event)
{
    if (hasPlacedItem() || isDrawing() || !m_selected.isValid())
        return InkCanvas::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Left:
        emit dateChosen(m_selected.addDays(layoutDirection() == Qt::RightToLeft ? 1 : -1));
        break;
    case Qt::Key_Right:
        emit dateChosen(m_selected.addDays(layoutDirection() == Qt::RightToLeft ? -1 : 1));
        break;
    case Qt::Key_Up:
        emit dateChosen(m_selected.addDays(-7));
        break;
    case Qt::Key_Down:
        emit dateChosen(m_selected.addDays(7));
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit noteRequested(m_selected);
        break;
    case Qt::Key_Delete:
        emit noteRemovalRequested(m_selected);
        break;
    default:
        InkCanvas::keyPressEvent(event);
    }
}

void MonthPageView::focusInEvent(QFocusEvent *event)
{
    InkCanvas::focusInEvent(event);
    updateDate(m_selected);
}

void MonthPageView::focusOutEvent(QFocusEvent *event)
{
    InkCanvas::focusOutEvent(event);
    updateDate(m_selected);
}
