#pragma once

#include "core/themed_dialog.h"

class QLabel;

// falc_POP: the alarm's message. Not modal, so that the alarms and the widgets keep running
// while it is up; the scheduler keeps one and refills it each time an alarm fires.
class AlarmPopup : public ThemedDialog
{
    Q_OBJECT
public:
    explicit AlarmPopup(QWidget *parent = nullptr);

    void setMessage(const QString &message);
    QString message() const;

public slots:
    void dismiss();
    // Opens the alarm setup and closes the pop-up.
    void edit();

private:
    QLabel *m_message;
};
