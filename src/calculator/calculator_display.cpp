#include "calculator/calculator_display.h"

#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr int kMinNumberPixels = 9;

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
    m_memory = makeLabel(QStringLiteral("lblDISPLAYMEM"), Qt::AlignLeft | Qt::AlignTop, this);
    m_number->setAccessibleName(tr("Display"));
    m_sign->setAccessibleName(tr("Pending operation"));
    m_memory->setAccessibleName(tr("Memory"));
    m_number->setText(QStringLiteral("0"));
    setToolTip(tr("Ctrl+C copies the number, Ctrl+V pastes one"));
}

void CalculatorDisplay::setTexts(const QString &number, const QString &sign, const QString &memory)
{
    const bool memoryShownChanged = m_memory->text().isEmpty() != memory.isEmpty();
    m_number->setText(number);
    m_sign->setText(sign);
    m_memory->setText(memory);
    m_memory->setToolTip(memory.isEmpty() ? QString() : tr("Memory: %1").arg(memory));
    fitNumberFont();
    if (memoryShownChanged)
        relayout(); // the "M" mark moves the memory value over
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
    setPixelSize(m_memory, small);
    const int lineHeight = QFontMetrics(m_sign->font()).height();
    const int mark = m_memory->text().isEmpty()
                         ? 0
                         : QFontMetrics(m_memory->font()).horizontalAdvance(QStringLiteral("M ")) + 2;
    const int half = std::max(0, width() / 2 - pad);
    m_memory->setGeometry(pad + mark, pad / 2, std::max(0, half - mark), lineHeight);
    m_sign->setGeometry(width() - pad - half, pad / 2, half, lineHeight);
    m_number->setGeometry(numberArea());
    fitNumberFont();
    update();
}

void CalculatorDisplay::fitNumberFont()
{
    // As large as the area allows, smaller for long numbers; past the smallest size the label
    // shows the number's right-hand end.
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
        p.setFont(m_memory->font());
        QColor markColor = ink;
        markColor.setAlphaF(0.7f);
        p.setPen(markColor);
        const int pad = std::max(4, height() / 10);
        const QRect markArea(pad, m_memory->y(), m_memory->x() - pad, m_memory->height());
        p.drawText(markArea, Qt::AlignLeft | Qt::AlignTop, QStringLiteral("M"));
    }
}
