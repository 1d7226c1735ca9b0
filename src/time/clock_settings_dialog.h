#pragma once

#include "themes/themed_dialog.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QRadioButton;

// falc_SET: the clock's six display choices. Save writes them under "falc_SET\Details"; the
// clock picks them up at its next tick. One dialog at a time (showSingle).
class ClockSettingsDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit ClockSettingsDialog(QWidget *parent = nullptr);

    // Shows the open dialog, or a new one that deletes itself when closed.
    static ClockSettingsDialog *showSingle(QWidget *parent = nullptr);

public slots:
    void save();

private:
    void updateControls();
    void updatePreview();

    QCheckBox *m_modern;
    QCheckBox *m_secs;
    QCheckBox *m_ampm;
    QCheckBox *m_hour24;
    QRadioButton *m_dateDefault;
    QRadioButton *m_dateCustom;
    QLineEdit *m_customFormat;
    QLabel *m_preview;
    QWidget *m_buttons;
};
