#include "time/scheduler_window.h"

#include "time/alarm_popup.h"
#include "time/alarm_scheduler.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>

namespace {
SchedulerWindow *g_instance = nullptr;
constexpr int kAlarmInterval = 100;

QString indexed(const char *name, int n)
{
    return QLatin1String(name) + QLatin1Char('_') + QString::number(n);
}
} // namespace

SchedulerWindow::SchedulerWindow(QWidget *parent) : QWidget(parent), m_scheduler(new AlarmScheduler(this))
{
    setObjectName(QStringLiteral("mdb_STR"));
    setWindowTitle(tr("Vantora Scheduler"));
    g_instance = this;

    const QStringList times = AlarmScheduler::quarterHourTimes();
    for (int n = 0; n < AlarmScheduler::PresetCount; ++n) {
        m_armed[n] = new QCheckBox(this);
        m_armed[n]->setObjectName(indexed("chkSET", n));
        m_time[n] = new QComboBox(this);
        m_time[n]->setObjectName(indexed("cboTIME", n));
        m_time[n]->addItems(times);
        m_message[n] = new QLineEdit(this);
        m_message[n]->setObjectName(indexed("txtMESSAGE", n));
    }

    connect(m_scheduler, &AlarmScheduler::presetsLoaded, this, &SchedulerWindow::mirrorPresets);
    connect(m_scheduler, &AlarmScheduler::alarmFired, this,
            [this](int index, const QString &message) { showAlarm(index, message); });
    m_scheduler->loadPresets();

    m_alarmTimer = new QTimer(this);
    m_alarmTimer->setObjectName(QStringLiteral("tmrALARM"));
    m_alarmTimer->setInterval(kAlarmInterval);
    connect(m_alarmTimer, &QTimer::timeout, m_scheduler, &AlarmScheduler::AlarmRefresh);
    m_alarmTimer->start();
}

SchedulerWindow::~SchedulerWindow()
{
    if (g_instance == this)
        g_instance = nullptr;
    delete m_popup;
}

SchedulerWindow *SchedulerWindow::instance()
{
    return g_instance;
}

AlarmPopup *SchedulerWindow::popup() const
{
    return m_popup;
}

void SchedulerWindow::reloadPresets()
{
    m_scheduler->loadPresets();
}

void SchedulerWindow::mirrorPresets()
{
    for (int n = 0; n < AlarmScheduler::PresetCount; ++n) {
        const AlarmPreset p = m_scheduler->preset(n);
        m_armed[n]->setChecked(p.armed);
        // Editable only for a stored time that is not a quarter hour: an editable box costs
        // a text field and a completer each, which the usual preset never needs.
        if (!m_time[n]->isEditable() && m_time[n]->findText(p.time) < 0)
            m_time[n]->setEditable(true);
        m_time[n]->setCurrentText(p.time);
        m_message[n]->setText(p.message);
    }
}

void SchedulerWindow::showAlarm(int index, const QString &message)
{
    // A top-level window of its own: the pop-up must not be hidden along with this window.
    if (!m_popup)
        m_popup = new AlarmPopup;
    m_popup->setAlarmTime(AlarmScheduler::normalizedTime(m_scheduler->preset(index).time));
    m_popup->setMessage(message);
    if (!m_popup->isVisible()) {
        m_popup->show();
        m_popup->activateWindow(); // once, not on each of the second's ten checks
    }
    m_popup->raise();
}
