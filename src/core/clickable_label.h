#pragma once

#include <QLabel>

// A label that works as a button: the bar buttons of the widgets (" Start ", " Stop ",
// settings, alarm) and similar link-like captions. Hand cursor, clicked() on a left click,
// and reachable from the keyboard (Tab, then Space or Enter) with a visible focus mark.
// Screen readers see it as a push button named by its caption.
class ClickableLabel : public QLabel
{
    Q_OBJECT
    Q_PROPERTY(bool active READ isActive WRITE setActive)
public:
    explicit ClickableLabel(const QString &objectName, const QString &text = QString(),
                            QWidget *parent = nullptr);

    // A switched-off label is shown dimmed and does not respond.
    void setActive(bool active);
    bool isActive() const { return m_active; }

    // Performs a click as if the user had clicked (does nothing while switched off).
    Q_INVOKABLE void click();

signals:
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    bool m_active = true;
    bool m_pressed = false;
};
