#pragma once

#include "time/alarm_popup.h"

#include <QPointer>
#include <QWidget>

class AlarmScheduler;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QTimer;

// mdb_STR: the hidden window that lives for the whole run and watches the alarms, whether or
// not the clock is open. It is never shown. It checks the presets every 100 ms (tmrALARM),
// mirrors them in hidden controls (chkSET_n, cboTIME_n, txtMESSAGE_n) and shows the one alarm
// pop-up (falc_POP) when an alarm fires.
class SchedulerWindow : public QWidget
{
    Q_OBJECT
public:
    explicit SchedulerWindow(QWidget *parent = nullptr);
    ~SchedulerWindow() override;

    // The window made at start-up, or null.
    static SchedulerWindow *instance();

    AlarmScheduler *scheduler() const { return m_scheduler; }
    // The pop-up, made on the first alarm (null before).
    AlarmPopup *popup() const;

public slots:
    // Reads the presets from the settings again; the alarm dialog calls it when it saves.
    void reloadPresets();

private:
    void mirrorPresets();
    void showAlarm(int index, const QString &message);

    AlarmScheduler *m_scheduler;
    QTimer *m_alarmTimer; // tmrALARM
    QCheckBox *m_armed[5];
    QComboBox *m_time[5];
    QLineEdit *m_message[5];
    QPointer<AlarmPopup> m_popup;
};
