#pragma once

#include "themes/themed_dialog.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QRadioButton;

// falc_ALM: the five alarm presets (armed, time from the 96 quarter hours, message) and the
// sound, the built-in bell or a WAV file. Save writes everything under "falc_ALM\Details" and
// reloads the running scheduler; until then an edit has no effect.
class AlarmDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit AlarmDialog(QWidget *parent = nullptr);

    // Shows the open dialog, or a new one that deletes itself when closed.
    static AlarmDialog *showSingle(QWidget *parent = nullptr);

public slots:
    // Writes the values and reloads the scheduler; refuses (with a note in the dialog) when
    // the chosen sound file cannot be used.
    bool save();
    void testSound();
    void browse();

signals:
    void saved();

private:
    QString soundProblem() const;
    void showProblem(const QString &text);

    QCheckBox *m_armed[5];
    QComboBox *m_time[5];
    QLineEdit *m_message[5];
    QRadioButton *m_bell;
    QRadioButton *m_other;
    QLineEdit *m_soundPath;
    QLabel *m_problem;
    QWidget *m_buttons;
};
