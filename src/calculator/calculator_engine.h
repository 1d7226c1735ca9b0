#pragma once

#include <QString>

// The calculator's state and key rules, without a window.
//
// The number display is a text that the keys edit directly; every arithmetic step reads that
// text back as a number with leadingNumber() (the longest prefix that reads as a number, else
// 0) and every number goes back to text through numberText() (shortest general form, up to 15
// significant digits) or, for results, resultText() (one to four decimals, "0.0###").
//
// The digit rule is deliberate: a digit is appended and
// the whole display is re-read as a number, except that a 0 typed while the display reads as 0
// resets it to "0". So "0", ".", "0", "5" shows "5", while "1", ".", "0" shows "1.0".
//
// An arithmetic fault (a result that overflows to infinity or is not a number, e.g. division
// by zero, or a display too large to read as a number, such as "1E+16" with zeros typed after
// it) skips only the assignment that would have stored it; the rest of the key's action
// (clearing the operator, reformatting the display) still runs.
//
// Rules kept as written although a user may find them surprising:
// - Only a digit typed while a new number is due (freshEntry) marks the second operand as
//   typed. A number started with the point key (".", "5") or put there by memory recall does
//   not, so "2", "+", ".", "5", "×" drops the addition and multiplies 0.5.
// - Clear empties the display and the sign display only: a pending operation stays, so
//   "2", "+", "3", Clear, "4", "=" shows "6.0".
// - Memory add and subtract update the memory display only when the new memory is not 0 (it
//   keeps its old text otherwise); memory set and memory clear empty it for 0; on load it
//   shows the memory as text, "0" included.
// - Every result after equals or plus/minus has one to four decimals ("0.0###"), however
//   large: 1e20 shows as "100000000000000000000.0" (15 significant digits, then zeros).
// - Delete removes one character, so "-5" becomes "-" and a following "3" gives "-3".
//
// Decisions where the rules leave a choice:
// - The sign display shows "+", "-", "×" and "÷".
// - Equals straight after an operator key uses the number still on the display as the second
//   operand: "2", "+", "=" shows "4.0" (the display is the only operand the rules know of).
// - Delete on a one-character display leaves "0", never an empty display.
// - A paste (the keyboard's, not one of the keys) after an operator counts as a typed second
//   operand, so that a pasted number takes part in a chain like a typed one; it leaves
//   freshEntry alone, so a digit typed next replaces it as it would a recalled number.
// - A stored memory text that is too large for a number is ignored: memory 0, memory display
//   empty.
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

    // Memory as the settings keep it: restore on load (text without a number counts as 0),
    // save on close. The saved text is the memory's usual text, or, where that would read
    // back as another number, the shortest text that reads back exactly.
    void restoreMemory(const QString &text);
    QString memoryForSaving() const;

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
    // A result as shown after equals or plus/minus: one to four decimals ("5.0", "0.3333"),
    // never in the general form; digits beyond the 15 significant ones are zeros.
    static QString resultText(double value);
    // The sign the sign display shows for an operator.
    static QString operatorSign(Operator op);

private:
    // Infinite when the display is too large for a number: callers skip what they would store.
    double displayValue() const { return leadingNumber(m_display); }
    // Stores value as the display text unless it is an arithmetic fault; false when skipped.
    bool setDisplayNumber(double value);
    void setMemory(double value);
    // Memory add and subtract: the memory display follows only a value that is not 0.
    void changeMemory(double value);
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
