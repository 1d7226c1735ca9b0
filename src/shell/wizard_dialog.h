#pragma once

#include "themes/themed_dialog.h"

class QCheckBox;
class QRadioButton;

// The first-run wizard ("msg_WIZ"): the user chooses whether Vantora runs all widgets through
// the dashboard or one widget on its own, and whether it starts with the desktop session. Only
// the widgets this build can open are offered. Start stores the choice as "Program-Choice" and
// sets the autostart entry to match the box; whoever opened the wizard then hands over to the
// dashboard or the chosen widget.
class WizardDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit WizardDialog(QWidget *parent = nullptr);

    // The chosen WidgetIndex (0..7 one widget, 8 all widgets).
    int choice() const { return m_choice; }
    void setChoice(int choice);

signals:
    // Start was pressed; the choice is stored and the wizard is closing.
    void started(int choice);

private:
    QRadioButton *addOption(int index, const QString &caption);
    void start();

    QCheckBox *m_launch = nullptr;
    int m_choice = 8;
};
