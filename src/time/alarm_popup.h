#pragma once

#include "themes/themed_dialog.h"

class QLabel;
class QWidget;

// falc_POP: the alarm's message. Not modal, so that the alarms and the widgets keep running
// while it is up; the scheduler keeps one and refills it each time an alarm fires. Above the
// message a heading names the alarm's time, so that an alarm without a message still says
// what it is.
class AlarmPopup : public ThemedDialog
{
    Q_OBJECT
public:
    explicit AlarmPopup(QWidget *parent = nullptr);

    void setMessage(const QString &message);
    QString message() const;
    // The time of the alarm that fired ("07:15:00"), shown in the heading.
    void setAlarmTime(const QString &time);

public slots:
    void dismiss();
    // Opens the alarm setup and closes the pop-up.
    void edit();
    // The theme's panel font and colour for the texts and the bell picture, themed buttons.
    void ThemeElementsUpdate() override;

private:
    void fitMessage();

    QLabel *m_icon;
    QLabel *m_heading;
    QLabel *m_message;
    QWidget *m_buttons;
};
