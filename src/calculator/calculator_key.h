#pragma once

#include <QLabel>

// One key of the calculator: a label drawn as a subtle tile tinted with the label's own text
// colour, so that it suits every theme. It looks pressed while the mouse button is down on it
// or while the window holds it down for a keyboard key, and emits clicked() when the mouse is
// released over it. Right clicks pass through to the window (the widget menu).
class CalculatorKey : public QLabel
{
    Q_OBJECT
public:
    // How strongly the tile is tinted: digits lightest, equals strongest; memory keys in the
    // bar are flat until hovered.
    enum class Role
    {
        Digit,
        Function,
        Operator,
        Equals,
        Memory
    };

    CalculatorKey(const QString &objectName, const QString &caption, Role role, QWidget *parent = nullptr);

    Role role() const { return m_role; }
    bool isPressed() const { return m_pressed; }
    // The pressed look; the window sets it while a keyboard key for this key is held.
    void setPressed(bool pressed);
    // A click as the mouse makes it (a screen reader's "press").
    Q_INVOKABLE void click() { emit clicked(); }

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    qreal tintStrength() const;

    Role m_role;
    bool m_pressed = false;
    bool m_mouseDown = false;
    bool m_hovered = false;
};
