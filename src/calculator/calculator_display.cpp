#include "calculator/calculator_display.h"

#include "core/painted_accessible.h"

#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr int kMinNumberPixels = 9;
constexpr int kMinMemoryPixels = 8;
const QString kCutMark = QStringLiteral("…");

QLabel *makeLabel(const QString &objectName, Qt::Alignment alignment, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setObjectName(objectName);
    label->setAlignment(alignment);
    // Clicks on the screen drag the window like any other part of its body.
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    return label;
}

void setPixelSize(QLabel *label, int pixels)
{
    QFont f = label->font();
    if (f.pixelSize() == pixels)
        return;
    f.setPixelSize(pixels);
    label->setFont(f);
}

} // namespace

CalculatorDisplay::CalculatorDisplay(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("calculatorScreen"));
    m_number = makeLabel(QStringLiteral("lblDISPLAYNO"), Qt::AlignRight | Qt::AlignVCenter, this);
    m_sign = makeLabel(QStringLiteral("lblDISPLAYFUNC"), Qt::AlignRight | Qt::AlignTop, this);
    QFont signFont = m_sign->font();
    signFont.setBold(true);
    m_sign->setFont(signFont);
    // Bottom-aligned, as the "M" mark is, so that both stand on one line when the value shrinks.
    m_memory = makeLabel(QStringLiteral("lblDISPLAYMEM"), Qt::AlignLeft | Qt::AlignBottom, this);
    PaintedAccessible::makeLiveValue(m_number, tr("Display"));
    PaintedAccessible::makeLiveValue(m_sign, tr("Pending operation"));
    PaintedAccessible::makeLiveValue(m_memory, tr("Memory"));
    m_number->setText(QStringLiteral("0"));
    setToolTip(tr("Ctrl+C copies the number, Ctrl+V pastes one"));
}

void CalculatorDisplay::setTexts(const QString &number, const QString &sign, const QString &memory)
{
    const bool memoryShownChanged = m_memory->text().isEmpty() != memory.isEmpty();
    m_number->setText(number);
    m_sign->setText(sign);
    m_memory->setText(memory);
    // The labels let the mouse through to the window, so the screen's own tip names the memory.
    const QString keysTip = tr("Ctrl+C copies the number, Ctrl+V pastes one");
    setToolTip(memory.isEmpty() ? keysTip : tr("Memory: %1").arg(memory) + QLatin1Char('\n') + keysTip);
    // Fitted once the window gives the display its size: fonts fitted to a size it never shows
    // in would each be looked up and loaded for nothing.
    if (!testAttribute(Qt::WA_Resized))
        return;
    if (memoryShownChanged)
        relayout(); // the "M" mark moves the memory value over
    else
        fitMemoryFont();
    fitNumberFont();
}

int CalculatorDisplay::smallPixelSize() const
{
    return std::max(9, height() / 5);
}

QRect CalculatorDisplay::numberArea() const
{
    const int pad = std::max(4, height() / 10);
    const int top = pad + smallPixelSize();
    return QRect(pad, top, std::max(0, width() - 2 * pad), std::max(0, height() - top - pad / 2));
}

void CalculatorDisplay::relayout()
{
    const int pad = std::max(4, height() / 10);
    const int small = smallPixelSize();
    setPixelSize(m_sign, small * 6 / 5); // a lone "-" must still be seen
    const QFontMetrics signMetrics(m_sign->font());
    int signWidth = 0;
    for (const QString &sign : {QStringLiteral("+"), QStringLiteral("-"), QStringLiteral("×"), QStringLiteral("÷")})
        signWidth = std::max(signWidth, signMetrics.horizontalAdvance(sign));
    signWidth += 2;
    m_sign->setGeometry(width() - pad - signWidth, pad / 2, signWidth, signMetrics.height());
    // The memory value takes the whole line up to the sign, so long values are not cut.
    setPixelSize(m_memory, small);
    const int mark = m_memory->text().isEmpty()
                         ? 0
                         : QFontMetrics(m_memory->font()).horizontalAdvance(QStringLiteral("M ")) + 2;
    const int memoryLeft = pad + mark;
    m_memory->setGeometry(memoryLeft, pad / 2, std::max(0, m_sign->x() - pad - memoryLeft), signMetrics.height());
    fitMemoryFont();
    fitNumberFont(); // places the number too
    update();
}

void CalculatorDisplay::fitMemoryFont()
{
    // The "M" mark keeps the full small size; the value shrinks to fit its line if it must.
    int pixels = smallPixelSize();
    QFont f = m_memory->font();
    while (pixels > kMinMemoryPixels) {
        f.setPixelSize(pixels);
        if (QFontMetrics(f).horizontalAdvance(m_memory->text()) <= m_memory->width())
            break;
        --pixels;
    }
    setPixelSize(m_memory, pixels);
}

void CalculatorDisplay::fitNumberFont()
{
    // As large as the area allows, smaller for long numbers; past the smallest size the label
    // shows the number's right-hand end, after a "…" that says digits are hidden.
    const QRect area = numberArea();
    int pixels = std::max(kMinNumberPixels, area.height() * 4 / 5);
    QFont f = m_number->font();
    while (pixels > kMinNumberPixels) {
        f.setPixelSize(pixels);
        if (QFontMetrics(f).horizontalAdvance(m_number->text()) <= area.width())
            break;
        --pixels;
    }
    setPixelSize(m_number, pixels);
    QRect numberRect = area;
    const QFontMetrics metrics(m_number->font());
    if (metrics.horizontalAdvance(m_number->text()) > area.width())
        numberRect.setLeft(area.left() + metrics.horizontalAdvance(kCutMark) + 2);
    if (m_number->geometry() != numberRect) {
        m_number->setGeometry(numberRect);
        update(); // the mark is painted on the screen itself
    }
}

void CalculatorDisplay::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    relayout();
}

void CalculatorDisplay::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor ink = palette().color(QPalette::WindowText);
    const bool lightInk = ink.lightnessF() > 0.5;
    const QRectF well = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = std::clamp(height() * 0.12, 3.0, 8.0);
    QPainterPath shape;
    shape.addRoundedRect(well, radius, radius);
    // Recessed: darker than the panel under light text, lighter under dark text.
    p.fillPath(shape, lightInk ? QColor(0, 0, 0, 56) : QColor(255, 255, 255, 150));
    QColor edge = ink;
    edge.setAlphaF(0.25f);
    p.setPen(QPen(edge, 1.0));
    p.drawPath(shape);

    if (!m_memory->text().isEmpty()) {
        QFont markFont = m_memory->font();
        markFont.setPixelSize(smallPixelSize()); // the value's font may have shrunk
        p.setFont(markFont);
        QColor markColor = ink;
        markColor.setAlphaF(0.7f);
        p.setPen(markColor);
        const int pad = std::max(4, height() / 10);
        const QRect markArea(pad, m_memory->y(), m_memory->x() - pad, m_memory->height());
        p.drawText(markArea, Qt::AlignLeft | Qt::AlignBottom, QStringLiteral("M"));
    }
    const QRect area = numberArea();
    if (m_number->x() > area.x()) {
        p.setFont(m_number->font());
        p.setPen(m_number->palette().color(QPalette::WindowText));
        p.drawText(QRect(area.x(), m_number->y(), m_number->x() - area.x(), m_number->height()),
                   Qt::AlignLeft | Qt::AlignVCenter, kCutMark);
    }
}
