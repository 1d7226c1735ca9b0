#pragma once

#include <QString>

// The calculator's state and key rules, without a window.
//
// The number display is a text that the keys edit directly; every arithmetic step reads that
// text back as a number with leadingNumber() (the longest prefix that reads as a number, else
// 0) and every number goes back to text through numberText() (shortest general form, up to 15
// significant digits) or, for results, resultText() (one to four decimals, "0.0###").
//
// The digit rule is kept exactly as users of this calculator know it: a digit is appended and
// the whole display is re-read as a number, except that a 0 typed while the display reads as 0
// resets it to "0". So "0", ".", "0", "5" shows "5", while "1", ".", "0" shows "1.0".
//
// An arithmetic fault (a result that overflows to infinity or is not a number, e.g. division
// by zero) skips only the assignment that would have stored it; the rest of the key's action
// (clearing the operator, reformatting the display) still runs.
//
// Decisions where the rules leave a choice:
// - The sign display shows "+", "-", "×" and "÷".
// - Equals straight after an operator key uses the number still on the display as the second
//   operand: "2", "+", "=" shows "4.0" (the display is the only operand the rules know of).
// - Delete on a one-character display (or one that would keep only a "-") leaves "0", never an
//   empty display.
// - Results of 1e15 and above in size are shown in the general form ("1E+20"): beyond 15
//   significant digits the four decimals of "0.0###" would only show digits that do not exist.
// - "true once a digit has been typed after an operator" holds for a number started with the
//   point key (".", "5") and for a memory recall or a paste after an operator too, so that
//   "2", "+", ".", "5", "×" still completes the addition.
// - Clear also drops the pending operation, so an empty sign display never hides one.
// - The memory display is empty whenever the memory is 0 (after set, add, subtract, clear and
//   on load alike), and shows the memory as text otherwise.
class CalculatorEngine
{
public:
    enum class Operator
    {
        None,
        Add,
        Subtract,
        Multiply,
        Divide
    };

    // Key actions.
    void pressDigit(int digit);
    void pressPoint();
    void pressPlusMinus();
    void pressOperator(Operator op);
    void pressEquals();
    void pressClear();
    void pressClearEntry();
    void pressDelete();
    void memorySet();
    void memoryAdd();
    void memorySubtract();
    void memoryRecall();
    void memoryClear();
    // Puts the number that text starts with on the display (a paste from the clipboard).
    void enterText(const QString &text);

    // Memory as the settings keep it: restore on load (bad text counts as 0), save on close.
    void restoreMemory(const QString &text);
    QString memoryForSaving() const { return numberText(m_memory); }

    // State.
    const QString &display() const { return m_display; }
    QString pendingOperator() const; // "ADD", "SUBTRACT", "MULTIPLY", "DIVIDE" or empty
    Operator pendingOperatorKind() const { return m_pendingOperator; }
    double firstOperand() const { return m_firstOperand; }
    bool freshEntry() const { return m_freshEntry; }
    bool secondOperandTyped() const { return m_secondOperandTyped; }
    double memory() const { return m_memory; }
    const QString &functionSign() const { return m_functionSign; }   // lblDISPLAYFUNC
    const QString &memoryDisplay() const { return m_memoryDisplay; } // lblDISPLAYMEM

    // Text-to-number: the longest leading part of text (after leading blanks) that reads as a
    // number ("12.5kg" is 12.5, "1e3x" is 1000, "-.5" is -0.5), else 0. A number too large for
    // a double reads as infinity, which every caller treats as an arithmetic fault.
    static double leadingNumber(const QString &text);
    // Number-to-text: the shortest general form with up to 15 significant digits ("5", "0.25",
    // "0.333333333333333", "1E+20", "1E-05").
    static QString numberText(double value);
    // A result as shown after equals or plus/minus: one to four decimals ("5.0", "0.3333").
    static QString resultText(double value);
    // The sign the sign display shows for an operator.
    static QString operatorSign(Operator op);

private:
    double displayValue() const { return leadingNumber(m_display); }
    // Stores value as the display text unless it is an arithmetic fault; false when skipped.
    bool setDisplayNumber(double value);
    void setMemory(double value);
    void completePendingStep();

    QString m_display = QStringLiteral("0");
    Operator m_pendingOperator = Operator::None;
    double m_firstOperand = 0.0;
    bool m_freshEntry = false;
    bool m_secondOperandTyped = false;
    double m_memory = 0.0;
    QString m_functionSign;
    QString m_memoryDisplay;
};
