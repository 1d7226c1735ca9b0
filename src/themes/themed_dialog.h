#pragma once

#include <QDialog>

class QLabel;
class QLayout;
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

public slots:
    // Called by ApplyTheme (by name): opacity, background, and BarColor/PanelColor text.
    virtual void ThemeElementsUpdate();

protected:
    void showEvent(QShowEvent *event) override;
    void done(int result) override;

private:
    void focusFirstPanelControl();

    ThemedChrome *m_chrome;
    bool m_placed = false;
};
