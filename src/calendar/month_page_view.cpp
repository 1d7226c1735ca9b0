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

void MonthPageView::paintCell(QPainter &painter, int row, int column)
{
    const QDate date = m_layout.dateAt(row, column);
    const bool inMonth = m_layout.isInMonth(date);
    const QRectF cell = toWidget(MonthLayout::cellRect(row, column));
    const QColor fill = !inMonth                                      ? m_colors.otherMonth
                        : isWeekend(m_layout.weekdayOfColumn(column)) ? m_colors.weekend
                                                                      : m_colors.paper;
    painter.fillRect(cell, fill);

    const qreal height = cell.height();
    QFont numberFont = font();
    numberFont.setPixelSize(int(qBound(kSmallestNumber, height * 0.18, kLargestNumber)));
    numberFont.setBold(date == m_today);
    const QFontMetricsF numberMetrics(numberFont);
    const qreal pad = qMax(2.0, height * 0.04);
    const QString number = QLocale().toString(date.day());
    const qreal inset = pad + numberMetrics.height() * 0.25; // room for today's disc
    const QRectF numberBox(cell.left() + inset, cell.top() + pad, numberMetrics.horizontalAdvance(number),
                           numberMetrics.height());
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (date == m_today) {
        // A disc round the number, wide enough for two digits.
        const qreal side = qMax(numberMetrics.height(), numberBox.width() + numberMetrics.height() * 0.4);
        const QRectF disc(numberBox.center() - QPointF(side / 2, side / 2), QSizeF(side, side));
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_colors.accent);
        painter.drawEllipse(disc);
        painter.setPen(Qt::white);
    } else {
        painter.setPen(inMonth ? m_colors.text : m_colors.dimText);
    }
    painter.setFont(numberFont);
    painter.drawText(numberBox, Qt::AlignCenter, number);

    const QString note = m_notes.year() == date.year() && m_notes.month() == date.month()
                             ? m_notes.note(date.day())
                             : QString();
    if (!note.isEmpty()) {
        const QRectF noteArea(cell.left() + inset, numberBox.bottom() + pad / 2, cell.width() - inset - pad,
                              cell.bottom() - numberBox.bottom() - pad * 1.5);
        painter.setPen(inMonth ? m_colors.text : m_colors.dimText);
        paintNote(painter, noteArea, note);
    }

    if (date == m_selected && (tool() == Tool::Pointer || hasFocus())) {
        QColor frame = m_colors.accent;
        frame.setAlpha(hasFocus() ? 255 : 140);
        painter.setPen(QPen(frame, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(cell.adjusted(1.5, 1.5, -1.5, -1.5));
    }
}

void MonthPageView::paintNote(QPainter &painter, const QRectF &area, const QString &note)
{
    if (area.height() < 4 || area.width() < 8)
        return;
    QFont noteFont = font();
    noteFont.setPixelSize(
        int(qBound(kSmallestNote, rect().height() / MonthLayout::kRows * 0.145, kLargestNote)));
    painter.setFont(noteFont);
    const QStringList lines = ElidedNoteLines(note, noteFont, area.width(), area.height());
    const qreal lineHeight = QFontMetricsF(noteFont).lineSpacing();
    for (int i = 0; i < lines.size(); ++i)
        painter.drawText(QRectF(area.left(), area.top() + i * lineHeight, area.width(), lineHeight),
                         Qt::AlignLeft | Qt::AlignVCenter, lines.at(i));
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
        const QString note = m_notes.year() == date.year() && m_notes.month() == date.month()
                                 ? m_notes.note(date.day())
                                 : QString();
        if (note.isEmpty()) {
            QToolTip::hideText();
        } else {
            const QString title = QLocale().toString(date, QLocale::LongFormat);
            QToolTip::showText(
                help->globalPos(),
                QStringLiteral("<b>%1</b><br>%2")
                    .arg(title.toHtmlEscaped(),
                         note.toHtmlEscaped().replace(QLatin1Char('\n'), QStringLiteral("<br>"))),
                this, cellArea(date));
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
