#include "time/ticking_label.h"

#include <QEvent>
#include <QPainter>

namespace {
// More than the seconds, minutes and hours of a clock; a format that shows more keeps the
// cache from growing without end.
constexpr int kMostTexts = 200;
} // namespace

TickingLabel::TickingLabel(QWidget *parent) : QLabel(parent) {}

bool TickingLabel::drawsPlainTopLeft() const
{
    // As QLabel::paintEvent draws a text: no frame, margin or indent to place it by, one line
    // of plain text without a mnemonic, at the top left.
    return textFormat() == Qt::PlainText && frameWidth() == 0 && margin() == 0 && indent() <= 0
        && alignment() == (Qt::AlignLeft | Qt::AlignTop) && !wordWrap() && !text().contains(QLatin1Char('\n'))
        && layoutDirection() == Qt::LeftToRight && !text().isRightToLeft();
}

const QStaticText &TickingLabel::laidOut(const QString &text)
{
    auto found = m_laidOut.constFind(text);
    if (found != m_laidOut.constEnd())
        return *found;
    if (m_laidOut.size() >= kMostTexts)
        m_laidOut.clear();
    QStaticText laid(text);
    laid.setTextFormat(Qt::PlainText);
    laid.prepare(QTransform(), font());
    return *m_laidOut.insert(text, laid);
}

void TickingLabel::prepareTexts(const QStringList &texts)
{
    for (const QString &text : texts) {
        if (m_laidOut.size() >= kMostTexts)
            return;
        laidOut(text);
    }
}

void TickingLabel::paintEvent(QPaintEvent *event)
{
    if (!drawsPlainTopLeft()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    // palette() answers in the colours of the label's state (off, in a window behind others),
    // as QLabel draws it.
    painter.setPen(palette().color(foregroundRole()));
    painter.drawStaticText(contentsRect().topLeft(), laidOut(text()));
}

void TickingLabel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        m_laidOut.clear();
    QLabel::changeEvent(event);
}
