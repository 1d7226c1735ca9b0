#pragma once

#include "calculator/calculator_engine.h"
#include "calculator/calculator_key.h"
#include "themes/widget_window.h"

#include <QHash>
#include <QList>
#include <functional>

class CalculatorDisplay;

// The calculator widget "fclc_IDX": the keys and displays over a CalculatorEngine. The memory
// keys sit in the bar, the screen and the 4 x 5 key grid fill the panel and grow with the
// window. The memory value is kept as "Memory" under "fclc_IDX\Details".
//
// Keyboard: digits, "." or ",", + - * /, Enter or "=", Backspace (delete), Escape (clear),
// Delete (clear entry), F9 (plus/minus), Ctrl+C copies the number, Ctrl+V pastes one, and
// Ctrl+L, Ctrl+R, Ctrl+M, Ctrl+P, Ctrl+Q for memory clear, recall, set, add and subtract.
class CalculatorWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit CalculatorWidget(QWidget *parent = nullptr);

    QSize defaultSize() const override { return QSize(240, 330); }
    // Five rows of keys whose captions still fit, under a display of one readable line.
    QSize minimumUsableSize() const override { return QSize(180, 240); }
    const CalculatorEngine &engine() const { return m_engine; }

    // Runs the action of the key with that objectName ("lblNUMBER_7", "lblADD"), as a click on
    // it does. Unknown names do nothing.
    void pressKey(const QString &keyName);
    // Ctrl+C and Ctrl+V.
    void copyDisplay() const;
    void pasteNumber();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void saveValues() override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildKeys();
    CalculatorKey *addKey(QWidget *parent, const QString &name, const QString &caption,
                          CalculatorKey::Role role, const QString &toolTip, std::function<void()> action);
    QString keyNameFor(const QKeyEvent *event) const;
    bool handleShortcut(QKeyEvent *event);
    void releaseKeyboardKeys();
    void showState();
    void layoutBar();
    void layoutPanel();

    CalculatorEngine m_engine;
    CalculatorDisplay *m_display = nullptr;
    QHash<QString, std::function<void()>> m_actions;
    QHash<QString, CalculatorKey *> m_keys;
    QList<CalculatorKey *> m_grid;       // the panel's keys, row by row
    QList<CalculatorKey *> m_memoryKeys; // the bar's keys, left to right
    QList<CalculatorKey *> m_heldByKeyboard;
};
