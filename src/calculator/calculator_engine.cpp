#include "calculator/calculator_engine.h"

#include <QLocale>
#include <QStringView>

#include <algorithm>
#include <cmath>

namespace {

bool isAsciiDigit(QChar ch)
{
    return ch >= QLatin1Char('0') && ch <= QLatin1Char('9');
}

// Advances i past ASCII digits and returns how many there were.
qsizetype skipDigits(const QString &text, qsizetype &i)
{
    const qsizetype start = i;
    while (i < text.size() && isAsciiDigit(text.at(i)))
        ++i;
    return i - start;
}

bool isSignAt(const QString &text, qsizetype i)
{
    return i < text.size() && (text.at(i) == QLatin1Char('+') || text.at(i) == QLatin1Char('-'));
}

} // namespace

double CalculatorEngine::leadingNumber(const QString &text)
{
    qsizetype i = 0;
    while (i < text.size() && text.at(i).isSpace())
        ++i;
    const qsizetype start = i;
    if (isSignAt(text, i))
        ++i;
    qsizetype mantissaDigits = skipDigits(text, i);
    if (i < text.size() && text.at(i) == QLatin1Char('.')) {
        ++i;
        mantissaDigits += skipDigits(text, i);
    }
    if (mantissaDigits == 0)
        return 0.0;
    qsizetype end = i;
    // An exponent counts only when at least one digit follows the "E" (and its sign).
    if (i < text.size() && (text.at(i) == QLatin1Char('e') || text.at(i) == QLatin1Char('E'))) {
        qsizetype j = i + 1;
        if (isSignAt(text, j))
            ++j;
        if (skipDigits(text, j) > 0)
            end = j;
    }
    // Overflow gives infinity and underflow 0; both are what the callers expect.
    return QStringView(text).mid(start, end - start).toDouble();
}

namespace {

// value (finite, not 0) in fifteen significant digits, correctly rounded, in the general form
// when allowGeneral and the exponent asks for it, else always as plain decimals.
QString significantText(double value, bool allowGeneral)
{
    // "-d.dddddddddddddde+XX"
    const QString scientific = QString::number(value, 'e', 14);
    const bool negative = scientific.startsWith(QLatin1Char('-'));
    const qsizetype ePos = scientific.indexOf(QLatin1Char('e'));
    const qsizetype digitsStart = negative ? 1 : 0;
    QString digits = scientific.mid(digitsStart, ePos - digitsStart).remove(QLatin1Char('.'));
    const int exponent = scientific.mid(ePos + 1).toInt();
    while (digits.size() > 1 && digits.endsWith(QLatin1Char('0')))
        digits.chop(1);

    QString text;
    if (allowGeneral && (exponent < -4 || exponent >= 15)) {
        text = digits.left(1);
        if (digits.size() > 1)
            text += QLatin1Char('.') + digits.mid(1);
        text += QStringLiteral("E%1%2")
                    .arg(exponent < 0 ? QLatin1Char('-') : QLatin1Char('+'))
                    .arg(std::abs(exponent), 2, 10, QLatin1Char('0'));
    } else if (exponent < 0) {
        text = QStringLiteral("0.") + QString(-exponent - 1, QLatin1Char('0')) + digits;
    } else if (digits.size() <= exponent + 1) {
        text = digits + QString(exponent + 1 - digits.size(), QLatin1Char('0'));
    } else {
        text = digits.left(exponent + 1) + QLatin1Char('.') + digits.mid(exponent + 1);
    }
    return negative ? QLatin1Char('-') + text : text;
}

} // namespace

QString CalculatorEngine::numberText(double value)
{
    if (!std::isfinite(value))
        return QString::number(value);
    if (value == 0.0)
        return QStringLiteral("0"); // -0 too
    return significantText(value, true);
}

QString CalculatorEngine::resultText(double value)
{
    // Round to the 15 digits the display can hold first, so binary noise never shows.
    const double rounded = leadingNumber(numberText(value));
    if (!std::isfinite(rounded))
        return numberText(rounded);
    if (std::abs(rounded) >= 1e15) // no decimals left among the 15 digits
        return significantText(rounded, false) + QStringLiteral(".0");
    const int exponent = rounded == 0.0 ? 0 : static_cast<int>(std::floor(std::log10(std::abs(rounded))));
    const int decimals = std::clamp(14 - exponent, 1, 4);
    QString text = QString::number(rounded, 'f', decimals);
    while (text.endsWith(QLatin1Char('0')) && !text.endsWith(QLatin1String(".0")))
        text.chop(1);
    if (text == QLatin1String("-0.0"))
        text = QStringLiteral("0.0");
    return text;
}

QString CalculatorEngine::operatorSign(Operator op)
{
    switch (op) {
    case Operator::Add:
        return QStringLiteral("+");
    case Operator::Subtract:
        return QStringLiteral("-");
    case Operator::Multiply:
        return QStringLiteral("×");
    case Operator::Divide:
        return QStringLiteral("÷");
    case Operator::None:
        break;
    }
    return QString();
}

QString CalculatorEngine::pendingOperator() const
{
    switch (m_pendingOperator) {
    case Operator::Add:
        return QStringLiteral("ADD");
    case Operator::Subtract:
        return QStringLiteral("SUBTRACT");
    case Operator::Multiply:
        return QStringLiteral("MULTIPLY");
    case Operator::Divide:
        return QStringLiteral("DIVIDE");
    case Operator::None:
        break;
    }
    return QString();
}

bool CalculatorEngine::setDisplayNumber(double value)
{
    if (!std::isfinite(value))
        return false;
    m_display = numberText(value);
    return true;
}

void CalculatorEngine::setMemory(double value)
{
    m_memory = value;
    m_memoryDisplay = value == 0.0 ? QString() : numberText(value);
}

void CalculatorEngine::changeMemory(double value)
{
    if (!std::isfinite(value))
        return; // an overflow keeps the memory as it was
    m_memory = value;
    if (value != 0.0)
        m_memoryDisplay = numberText(value);
}

void CalculatorEngine::pressDigit(int digit)
{
    if (digit < 0 || digit > 9)
        return;
    const bool wasFresh = m_freshEntry;
    if (wasFresh) {
        m_display = QString::number(digit);
    } else if (digit == 0) {
        // Appended as text so that "1." then 0 keeps "1.0"; a display reading 0 stays "0".
        m_display = displayValue() == 0.0 ? QStringLiteral("0") : m_display + QLatin1Char('0');
    } else {
        setDisplayNumber(leadingNumber(m_display + QChar(QLatin1Char('0' + digit))));
    }
    if (wasFresh)
        m_secondOperandTyped = true;
    m_freshEntry = false;
}

void CalculatorEngine::pressPoint()
{
    if (m_freshEntry) {
        m_display = QStringLiteral("0.");
        m_freshEntry = false;
    } else if (!m_display.contains(QLatin1Char('.'))) {
        m_display += QLatin1Char('.');
    }
}

void CalculatorEngine::pressPlusMinus()
{
    const double value = displayValue();
    if (std::isfinite(value))
        m_display = resultText(-value);
}

void CalculatorEngine::pressOperator(Operator op)
{
    if (op == Operator::None)
        return;
    if (m_secondOperandTyped)
        pressEquals();
    m_pendingOperator = op;
    const double value = displayValue();
    if (std::isfinite(value))
        m_firstOperand = value;
    m_freshEntry = true;
    m_secondOperandTyped = false;
    m_functionSign = operatorSign(op);
}

void CalculatorEngine::completePendingStep()
{
    const double value = displayValue();
    switch (m_pendingOperator) {
    case Operator::Add:
        setDisplayNumber(m_firstOperand + value);
        break;
    case Operator::Subtract:
        setDisplayNumber(m_firstOperand - value);
        break;
    case Operator::Multiply:
        setDisplayNumber(value * m_firstOperand);
        break;
    case Operator::Divide:
        setDisplayNumber(m_firstOperand / value); // x/0 is infinite or NaN: skipped
        break;
    case Operator::None:
        break;
    }
}

void CalculatorEngine::pressEquals()
{
    completePendingStep();
    m_pendingOperator = Operator::None;
    const double value = displayValue();
    if (std::isfinite(value))
        m_display = resultText(value);
    m_functionSign.clear();
    m_freshEntry = true;
    m_secondOperandTyped = false;
}

void CalculatorEngine::pressClear()
{
    // The pending operation itself stays (see the header).
    m_display = QStringLiteral("0");
    m_functionSign.clear();
}

void CalculatorEngine::pressClearEntry()
{
    m_display = QStringLiteral("0");
}

void CalculatorEngine::pressDelete()
{
    m_display.chop(1);
    if (m_display.isEmpty())
        m_display = QStringLiteral("0");
}

void CalculatorEngine::memorySet()
{
    const double value = displayValue();
    if (std::isfinite(value))
        setMemory(value);
}

void CalculatorEngine::memoryAdd()
{
    changeMemory(m_memory + displayValue());
}

void CalculatorEngine::memorySubtract()
{
    changeMemory(m_memory - displayValue());
}

void CalculatorEngine::memoryRecall()
{
    setDisplayNumber(m_memory);
}

void CalculatorEngine::memoryClear()
{
    setMemory(0.0);
}

void CalculatorEngine::enterText(const QString &text)
{
    if (setDisplayNumber(leadingNumber(text)) && m_pendingOperator != Operator::None)
        m_secondOperandTyped = true;
}

QString CalculatorEngine::memoryForSaving() const
{
    // Fifteen digits read back as the same number nearly always; near the largest number
    // they round up past it and would read back as infinity, losing the memory.
    const QString text = numberText(m_memory);
    if (leadingNumber(text) == m_memory)
        return text;
    return QString::number(m_memory, 'g', QLocale::FloatingPointShortest);
}

void CalculatorEngine::restoreMemory(const QString &text)
{
    const double value = leadingNumber(text);
    if (!std::isfinite(value))
        return;
    m_memory = value;
    m_memoryDisplay = numberText(value);
}
