#pragma once

#include <QDialog>

class QLabel;
class QLayout;
class QPushButton;
class PaintedFrame;
class ThemedChrome;

// The base of the program's dialogs (settings, alarms, wizard, message box, ...): a borderless
// window painted from the theme like the widgets, with the title in its bar, a close button,
// dragged by its body, Escape to close. Its position (not its size) is kept between runs.
//
// A dialog class builds its controls in a layout set on panel() (setPanelLayout) and reads its
// values in the constructor; the dialog sizes itself to the panel's contents.
class ThemedDialog : public QDialog
{
    Q_OBJECT
public:
    ThemedDialog(const QString &windowName, const QString &title, QWidget *parent = nullptr);
    ~ThemedDialog() override;

    PaintedFrame *bar() const;
    PaintedFrame *panel() const;
    QLabel *titleLabel() const;

    // Puts the dialog's controls on the panel, with comfortable margins.
    void setPanelLayout(QLayout *layout);

    // The button Enter presses from any field of the dialog; nullptr (the default) means Enter
    // presses nothing unless a button has the focus. Without this, QDialog would make the
    // first push button in the focus chain the default, whatever it does (even "Delete").
    void setDefaultButton(QPushButton *button);
    QPushButton *defaultButton() const { return m_defaultButton; }

    void setVisible(bool visible) override;

    // The controls under `area` keep the desktop's own colours and style whatever the theme,
    // on a plain background: for a dialog that must stay readable under any theme (the theme
    // editor, where the user may pick unreadable colours on the way to good ones).
    void keepDesktopStyle(QWidget *area);

public slots:
    // Called by ApplyTheme (by name): opacity, background, and BarColor/PanelColor text.
    virtual void ThemeElementsUpdate();

protected:
    void showEvent(QShowEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void done(int result) override;

private:
    void focusFirstPanelControl();
    void settleDefaultButton();
    // The panel's push buttons in the theme's button style, and its disabled text readable.
    void themeControls();

    ThemedChrome *m_chrome;
    QPushButton *m_defaultButton = nullptr;
    QWidget *m_desktopStyleArea = nullptr;
    bool m_placed = false;
};
