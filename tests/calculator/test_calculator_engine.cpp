#include "calculator/calculator_engine.h"

#include <QLocale>
#include <QStringList>
#include <QTest>

#include <cmath>
#include <limits>

namespace {

// Plays a key sequence written as blank-separated tokens: digits, ".", "±", "+", "-", "×", "÷",
// "=", "C", "CE", "DEL", "MS", "M+", "M-", "MR", "MC", and "paste:TEXT" for a paste (with "_"
// standing for a blank in TEXT).
void play(CalculatorEngine &engine, const QString &keys)
{
    using Op = CalculatorEngine::Operator;
    const QStringList tokens = keys.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &key : tokens) {
        if (key.size() == 1 && key.at(0).isDigit())
            engine.pressDigit(key.toInt());
        else if (key == QLatin1String("."))
            engine.pressPoint();
        else if (key == QStringLiteral("±"))
            engine.pressPlusMinus();
        else if (key == QLatin1String("+"))
            engine.pressOperator(Op::Add);
        else if (key == QLatin1String("-"))
            engine.pressOperator(Op::Subtract);
        else if (key == QStringLiteral("×"))
            engine.pressOperator(Op::Multiply);
        else if (key == QStringLiteral("÷"))
            engine.pressOperator(Op::Divide);
        else if (key == QLatin1String("="))
            engine.pressEquals();
        else if (key == QLatin1String("C"))
            engine.pressClear();
        else if (key == QLatin1String("CE"))
            engine.pressClearEntry();
        else if (key == QLatin1String("DEL"))
            engine.pressDelete();
        else if (key == QLatin1String("MS"))
            engine.memorySet();
        else if (key == QLatin1String("M+"))
            engine.memoryAdd();
        else if (key == QLatin1String("M-"))
            engine.memorySubtract();
        else if (key == QLatin1String("MR"))
            engine.memoryRecall();
        else if (key == QLatin1String("MC"))
            engine.memoryClear();
        else if (key.startsWith(QLatin1String("paste:")))
            engine.enterText(key.mid(6).replace(QLatin1Char('_'), QLatin1Char(' ')));
        else
            QFAIL(qPrintable(QStringLiteral("unknown key token ") + key));
    }
}

} // namespace

class TestCalculatorEngine : public QObject
{
    Q_OBJECT

private slots:
    void leadingNumber_data();
    void leadingNumber();
    void numberText_data();
    void numberText();
    void resultText_data();
    void resultText();
    void keySequences_data();
    void keySequences();
    void stateAfterKeys_data();
    void stateAfterKeys();
    void memoryKeys_data();
    void memoryKeys();
    void restoreMemory_data();
    void restoreMemory();
    void savedMemoryReadsBackExactly_data();
    void savedMemoryReadsBackExactly();
    void memorySurvivesSaving();
};

void TestCalculatorEngine::leadingNumber_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("expected");

    QTest::newRow("empty") << "" << 0.0;
    QTest::newRow("no number") << "abc" << 0.0;
    QTest::newRow("plain") << "42" << 42.0;
    QTest::newRow("trailing text") << "12.5kg" << 12.5;
    QTest::newRow("leading blanks") << "  \t42\n" << 42.0;
    QTest::newRow("blank inside ends it") << "1 2" << 1.0;
    QTest::newRow("point first") << ".5" << 0.5;
    QTest::newRow("negative point first") << "-.5" << -0.5;
    QTest::newRow("plus sign") << "+7" << 7.0;
    QTest::newRow("trailing point") << "5." << 5.0;
    QTest::newRow("point alone") << "." << 0.0;
    QTest::newRow("sign alone") << "-" << 0.0;
    QTest::newRow("second point ends it") << "1.2.3" << 1.2;
    QTest::newRow("exponent") << "1e3x" << 1000.0;
    QTest::newRow("upper exponent negative") << "1E-20" << 1e-20;
    QTest::newRow("exponent without digits") << "1e" << 1.0;
    QTest::newRow("exponent sign without digits") << "1e+" << 1.0;
    QTest::newRow("exponent after trailing point") << "2.e2" << 200.0;
    QTest::newRow("comma is not a point") << "3,5" << 3.0;
    QTest::newRow("non-ASCII digit") << QStringLiteral("٣") << 0.0;
    QTest::newRow("underflow") << "1e-400" << 0.0;
    QTest::newRow("overflow") << "1e400" << std::numeric_limits<double>::infinity();
}

void TestCalculatorEngine::leadingNumber()
{
    QFETCH(QString, text);
    QFETCH(double, expected);
    QCOMPARE(CalculatorEngine::leadingNumber(text), expected);
}

void TestCalculatorEngine::numberText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("zero") << 0.0 << "0";
    QTest::newRow("negative zero") << -0.0 << "0";
    QTest::newRow("integer") << 5.0 << "5";
    QTest::newRow("negative") << -2.5 << "-2.5";
    QTest::newRow("fraction") << 0.25 << "0.25";
    QTest::newRow("one third") << 1.0 / 3.0 << "0.333333333333333";
    QTest::newRow("two thirds rounds") << 2.0 / 3.0 << "0.666666666666667";
    QTest::newRow("binary noise hidden") << 0.1 + 0.2 << "0.3";
    QTest::newRow("15 digits stay fixed") << 123456789012345.0 << "123456789012345";
    QTest::newRow("16 digits go general") << 1234567890123456.0 << "1.23456789012346E+15";
    QTest::newRow("1e15") << 1e15 << "1E+15";
    QTest::newRow("large") << 1e300 << "1E+300";
    QTest::newRow("0.0001 stays fixed") << 0.0001 << "0.0001";
    QTest::newRow("0.00001 goes general") << 0.00001 << "1E-05";
    QTest::newRow("small negative") << -1.5e-20 << "-1.5E-20";
}

void TestCalculatorEngine::numberText()
{
    QFETCH(double, value);
    QFETCH(QString, expected);
    const QString text = CalculatorEngine::numberText(value);
    QCOMPARE(text, expected);
    // Every text the calculator writes reads back to the same 15-digit value.
    QCOMPARE(CalculatorEngine::numberText(CalculatorEngine::leadingNumber(text)), text);
}

void TestCalculatorEngine::resultText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("whole number gets one decimal") << 5.0 << "5.0";
    QTest::newRow("zero") << 0.0 << "0.0";
    QTest::newRow("negative") << -3.0 << "-3.0";
    QTest::newRow("one third") << 1.0 / 3.0 << "0.3333";
    QTest::newRow("two thirds rounds up") << 2.0 / 3.0 << "0.6667";
    QTest::newRow("rounds to four decimals") << 1.23456 << "1.2346";
    QTest::newRow("rounds into the integer") << 99999.99999 << "100000.0";
    QTest::newRow("tiny negative is not -0.0") << -0.00001 << "0.0";
    QTest::newRow("very small") << 1e-20 << "0.0";
    QTest::newRow("decimals limited to 15 digits") << 123456789012.345 << "123456789012.345";
    QTest::newRow("no binary noise") << 12345678901234.6 << "12345678901234.6";
    // Four decimals at most, but never the general form: the 15 digits, then zeros.
    QTest::newRow("1e15") << 1e15 << "1000000000000000.0";
    QTest::newRow("very large") << 1e20 << "100000000000000000000.0";
    QTest::newRow("large with 15 digits") << -1.23456789012345678e20 << "-123456789012346000000.0";
}

void TestCalculatorEngine::resultText()
{
    QFETCH(double, value);
    QFETCH(QString, expected);
    QCOMPARE(CalculatorEngine::resultText(value), expected);
}

void TestCalculatorEngine::keySequences_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("sign");

    // Entering numbers.
    QTest::newRow("digits append") << "1 2 3" << "123" << "";
    QTest::newRow("leading zeros vanish") << "0 0 7" << "7" << "";
    QTest::newRow("zero on a zero display resets it") << "0 . 0 5" << "5" << "";
    QTest::newRow("trailing zero after point kept") << "1 . 0" << "1.0" << "";
    QTest::newRow("zero inside decimals") << "1 . 0 5" << "1.05" << "";
    QTest::newRow("second point ignored") << "1 . . 5" << "1.5" << "";
    QTest::newRow("16th digit goes general") << "9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9" << "1E+16" << "";
    QTest::newRow("paste reads the leading number") << "paste:12.50kg" << "12.5" << "";
    QTest::newRow("paste with blanks") << "paste:__42_7" << "42" << "";
    QTest::newRow("paste of no number") << "5 paste:abc" << "0" << "";

    // Plus/minus.
    QTest::newRow("plus/minus formats") << "3 ±" << "-3.0" << "";
    QTest::newRow("plus/minus twice") << "3 ± ±" << "3.0" << "";
    QTest::newRow("plus/minus on zero") << "0 ±" << "0.0" << "";
    QTest::newRow("plus/minus rounds") << "paste:1.23456 ±" << "-1.2346" << "";

    // Equals and chaining.
    QTest::newRow("add") << "2 + 3 =" << "5.0" << "";
    QTest::newRow("equals again computes nothing") << "2 + 3 = =" << "5.0" << "";
    QTest::newRow("subtract below zero") << "2 - 5 =" << "-3.0" << "";
    QTest::newRow("chain shows step") << "2 + 3 ×" << "5.0" << "×";
    QTest::newRow("chain add then multiply") << "2 + 3 × 4 =" << "20.0" << "";
    QTest::newRow("chain left to right") << "8 ÷ 2 × 3 + 1 =" << "13.0" << "";
    QTest::newRow("chain subtract") << "1 0 - 4 - 3 =" << "3.0" << "";
    QTest::newRow("operator replaces operator") << "2 + × 5 =" << "10.0" << "";
    QTest::newRow("equals after operator uses display") << "2 + =" << "4.0" << "";
    QTest::newRow("operand started with point does not chain") << "2 + . 5 ×" << "0.5" << "×";
    QTest::newRow("point operand, then equals") << "2 + . 5 × 4 =" << "2.0" << "";
    QTest::newRow("point operand adds on equals") << "2 + . 5 =" << "2.5" << "";
    QTest::newRow("digit after result completes nothing") << "2 + 3 = 7 +" << "7.0" << "+";
    QTest::newRow("new number after result") << "2 + 3 = 4" << "4" << "";
    QTest::newRow("new calculation after result") << "2 + 3 = 4 + 1 =" << "5.0" << "";
    QTest::newRow("point after result") << "2 + 3 = ." << "0." << "";
    QTest::newRow("one third") << "1 ÷ 3 =" << "0.3333" << "";
    QTest::newRow("two thirds") << "2 ÷ 3 =" << "0.6667" << "";
    QTest::newRow("subtract sign") << "9 -" << "9" << "-";
    QTest::newRow("divide sign") << "9 ÷" << "9" << "÷";

    // Arithmetic faults skip the assignment only.
    QTest::newRow("divide by zero before equals") << "7 ÷ 0" << "0" << "÷";
    QTest::newRow("divide by zero") << "7 ÷ 0 =" << "0.0" << "";
    QTest::newRow("zero by zero") << "0 ÷ 0 =" << "0.0" << "";
    QTest::newRow("divide by zero then more input") << "7 ÷ 0 = 5 + 1 =" << "6.0" << "";
    QTest::newRow("divide by zero while chaining") << "7 ÷ 0 + 2 =" << "2.0" << "";
    QTest::newRow("overflow keeps the operand")
        << "paste:1e300 × paste:1e300 =" << QLatin1Char('1') + QString(300, QLatin1Char('0')) + ".0" << "";
    QTest::newRow("overflow then more input") << "paste:1e300 × paste:1e300 = C 2 + 2 =" << "4.0" << "";
    QTest::newRow("overflowing digit skipped") << "paste:1e308 9" << "1E+308" << "";
    // Zeros typed after the general form make a display too large to read: "1E+16000".
    const QString huge = QStringLiteral("9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 0 0 0");
    QTest::newRow("unreadable display typed") << huge << "1E+16000" << "";
    QTest::newRow("unreadable display kept by equals") << huge + " =" << "1E+16000" << "";
    QTest::newRow("unreadable display kept by plus/minus") << huge + " ±" << "1E+16000" << "";
    QTest::newRow("unreadable second operand") << "2 + " + huge + " =" << "1E+16000" << "";
    QTest::newRow("unreadable first operand skipped") << huge + " + 2 =" << "2.0" << "";
    QTest::newRow("very small result") << "paste:1e-10 × paste:1e-10 =" << "0.0" << "";
    QTest::newRow("very small number shown") << "paste:1e-20" << "1E-20" << "";
    QTest::newRow("very large product") << "1 0 0 0 0 0 × 1 0 0 0 0 0 × 1 0 0 0 0 0 =" << "1000000000000000.0" << "";
    QTest::newRow("large product fixed") << "9 9 9 9 9 9 9 × 1 0 0 0 0 0 0 0 =" << "99999990000000.0" << "";

    // Clear, clear entry, delete.
    QTest::newRow("clear keeps the pending operation") << "2 + 3 C 4 =" << "6.0" << "";
    QTest::newRow("clear after operator") << "2 + C 4 =" << "6.0" << "";
    QTest::newRow("clear empties the sign") << "2 + C" << "0" << "";
    QTest::newRow("clear entry keeps the operation") << "2 + 3 CE 4 =" << "6.0" << "";
    QTest::newRow("delete last digit") << "1 2 DEL" << "1" << "";
    QTest::newRow("delete point") << "1 . DEL" << "1" << "";
    QTest::newRow("delete one character") << "5 DEL" << "0" << "";
    QTest::newRow("delete on zero") << "DEL" << "0" << "";
    QTest::newRow("delete keeps a lone minus") << "paste:-7 DEL" << "-" << "";
    QTest::newRow("digits after a lone minus") << "paste:-7 DEL 3" << "-3" << "";
    QTest::newRow("delete down a result") << "5 ± DEL DEL DEL" << "-" << "";
    QTest::newRow("delete past a lone minus") << "5 ± DEL DEL DEL DEL" << "0" << "";
    QTest::newRow("delete then type") << "1 2 DEL 3" << "13" << "";
}

void TestCalculatorEngine::keySequences()
{
    QFETCH(QString, keys);
    QFETCH(QString, display);
    QFETCH(QString, sign);
    CalculatorEngine engine;
    play(engine, keys);
    QCOMPARE(engine.display(), display);
    QCOMPARE(engine.functionSign(), sign);
}

void TestCalculatorEngine::stateAfterKeys_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("pending");
    QTest::addColumn<double>("firstOperand");
    QTest::addColumn<bool>("freshEntry");
    QTest::addColumn<bool>("secondTyped");

    QTest::newRow("start") << "" << "" << 0.0 << false << false;
    QTest::newRow("operator") << "2 +" << "ADD" << 2.0 << true << false;
    QTest::newRow("second operand") << "2 + 3" << "ADD" << 2.0 << false << true;
    QTest::newRow("chained") << "2 + 3 ×" << "MULTIPLY" << 5.0 << true << false;
    QTest::newRow("equals") << "8 ÷ 2 =" << "" << 8.0 << true << false;
    QTest::newRow("subtract") << "5 -" << "SUBTRACT" << 5.0 << true << false;
    QTest::newRow("divide") << "5 ÷" << "DIVIDE" << 5.0 << true << false;
    QTest::newRow("point after operator") << "2 + ." << "ADD" << 2.0 << false << false;
    QTest::newRow("point then digit after operator") << "2 + . 5" << "ADD" << 2.0 << false << false;
    QTest::newRow("recall after operator") << "2 + MR" << "ADD" << 2.0 << true << false;
    QTest::newRow("paste after operator") << "2 + paste:7" << "ADD" << 2.0 << true << true;
    QTest::newRow("clear keeps the operation") << "2 + 3 C" << "ADD" << 2.0 << false << true;
    QTest::newRow("clear after result") << "2 + 3 = C" << "" << 2.0 << true << false;
}

void TestCalculatorEngine::stateAfterKeys()
{
    QFETCH(QString, keys);
    QFETCH(QString, pending);
    QFETCH(double, firstOperand);
    QFETCH(bool, freshEntry);
    QFETCH(bool, secondTyped);
    CalculatorEngine engine;
    play(engine, keys);
    QCOMPARE(engine.pendingOperator(), pending);
    QCOMPARE(engine.firstOperand(), firstOperand);
    QCOMPARE(engine.freshEntry(), freshEntry);
    QCOMPARE(engine.secondOperandTyped(), secondTyped);
}

void TestCalculatorEngine::memoryKeys_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<double>("memory");
    QTest::addColumn<QString>("memoryDisplay");
    QTest::addColumn<QString>("display");

    QTest::newRow("set zero leaves memory display empty") << "0 MS" << 0.0 << "" << "0";
    QTest::newRow("set") << "2 . 5 MS" << 2.5 << "2.5" << "2.5";
    QTest::newRow("add") << "5 MS C 3 M+" << 8.0 << "8" << "3";
    QTest::newRow("subtract") << "5 MS C 7 M-" << -2.0 << "-2" << "7";
    QTest::newRow("subtract to zero keeps the old text") << "5 MS C 5 M-" << 0.0 << "5" << "5";
    QTest::newRow("add to zero keeps the old text") << "5 MS C 5 ± M+" << 0.0 << "5" << "-5.0";
    QTest::newRow("set zero over a value empties") << "5 MS CE MS" << 0.0 << "" << "0";
    QTest::newRow("add to empty memory") << "4 M+ M+" << 8.0 << "8" << "4";
    QTest::newRow("clear") << "5 MS MC" << 0.0 << "" << "5";
    QTest::newRow("recall") << "5 MS C MR" << 5.0 << "5" << "5";
    QTest::newRow("recall empty memory") << "7 MR" << 0.0 << "" << "0";
    QTest::newRow("recall as second operand") << "2 . 5 MS C 1 + MR =" << 2.5 << "2.5" << "3.5";
    QTest::newRow("recall does not complete a chain") << "4 MS C 2 + MR × 3 =" << 4.0 << "4" << "12.0";
    QTest::newRow("overflow keeps memory") << "paste:1e308 MS M+" << 1e308 << "1E+308" << "1E+308";
    QTest::newRow("unreadable display not stored")
        << "9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 9 0 0 0 MS M+" << 0.0 << "" << "1E+16000";
    QTest::newRow("clear keeps memory") << "6 MS C" << 6.0 << "6" << "0";
}

void TestCalculatorEngine::memoryKeys()
{
    QFETCH(QString, keys);
    QFETCH(double, memory);
    QFETCH(QString, memoryDisplay);
    QFETCH(QString, display);
    CalculatorEngine engine;
    play(engine, keys);
    QCOMPARE(engine.memory(), memory);
    QCOMPARE(engine.memoryDisplay(), memoryDisplay);
    QCOMPARE(engine.display(), display);
}

void TestCalculatorEngine::restoreMemory_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<double>("memory");
    QTest::addColumn<QString>("memoryDisplay");

    QTest::newRow("number") << "12.5" << 12.5 << "12.5";
    QTest::newRow("default shows 0") << "0" << 0.0 << "0";
    QTest::newRow("empty") << "" << 0.0 << "0";
    QTest::newRow("garbage") << "abc" << 0.0 << "0";
    QTest::newRow("leading number") << " -3kg" << -3.0 << "-3";
    QTest::newRow("too large") << "1e999" << 0.0 << "";
    QTest::newRow("general form") << "1E-20" << 1e-20 << "1E-20";
}

void TestCalculatorEngine::restoreMemory()
{
    QFETCH(QString, stored);
    QFETCH(double, memory);
    QFETCH(QString, memoryDisplay);
    CalculatorEngine engine;
    engine.restoreMemory(stored);
    QCOMPARE(engine.memory(), memory);
    QCOMPARE(engine.memoryDisplay(), memoryDisplay);
    QCOMPARE(engine.display(), QStringLiteral("0"));
}

void TestCalculatorEngine::memorySurvivesSaving()
{
    CalculatorEngine first;
    play(first, "1 ÷ 3 = MS");
    CalculatorEngine second;
    second.restoreMemory(first.memoryForSaving());
    QCOMPARE(second.memoryDisplay(), first.memoryDisplay());
    QCOMPARE(second.memory(), 0.3333);
}

void TestCalculatorEngine::savedMemoryReadsBackExactly_data()
{
    QTest::addColumn<double>("memory");
    QTest::addColumn<QString>("saved"); // empty: any text that reads back exactly

    const double largest = std::numeric_limits<double>::max();
    QTest::newRow("largest number") << largest << "";
    QTest::newRow("largest negative number") << -largest << "";
    QTest::newRow("just below the largest") << std::nextafter(largest, 0.0) << "";
    QTest::newRow("binary noise") << 0.1 + 0.2 << "";
    QTest::newRow("smallest subnormal") << std::numeric_limits<double>::denorm_min() << "";
    QTest::newRow("tiny") << 1e-300 << "1E-300";
    QTest::newRow("ordinary text stays") << 123.456 << "123.456";
    QTest::newRow("fifteen digits") << 1e15 << "1E+15";
    QTest::newRow("zero") << 0.0 << "0";
}

// What the calculator saves on close gives back the very same memory at the next start.
void TestCalculatorEngine::savedMemoryReadsBackExactly()
{
    QFETCH(double, memory);
    QFETCH(QString, saved);
    CalculatorEngine first;
    first.restoreMemory(QString::number(memory, 'g', QLocale::FloatingPointShortest));
    QCOMPARE(first.memory(), memory);
    const QString text = first.memoryForSaving();
    if (!saved.isEmpty())
        QCOMPARE(text, saved);
    CalculatorEngine second;
    second.restoreMemory(text);
    QVERIFY2(second.memory() == memory, qPrintable(text));
}

QTEST_GUILESS_MAIN(TestCalculatorEngine)
#include "test_calculator_engine.moc"
