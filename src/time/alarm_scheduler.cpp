#include "time/alarm_scheduler.h"

#include "core/clock_source.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "time/clock_change.h"
#include "time/date_time_formatter.h"

#include <QTime>

#include <algorithm>

namespace {
const QString kAlarmType = QStringLiteral("Alarm Type");
const QString kOtherSound = QStringLiteral("Alarm Other Sound");
// One past the last preset is checked too and treated as never armed.
constexpr int kLastCheckedIndex = AlarmScheduler::PresetCount;
} // namespace

AlarmScheduler::AlarmScheduler(QObject *parent) : QObject(parent) {}

QStringList AlarmScheduler::quarterHourTimes()
{
    QStringList times;
    times.reserve(96);
    for (int h = 0; h < 24; ++h) {
        const QString hour = QString::number(h).rightJustified(2, QLatin1Char('0'));
        for (const char *quarter : {":00:00", ":15:00", ":30:00", ":45:00"})
            times << hour + QLatin1String(quarter);
    }
    return times;
}

bool AlarmScheduler::useBell()
{
    return ReadBoolDetail(AlarmPreset::windowName(), kAlarmType, true);
}

QString AlarmScheduler::otherSound()
{
    return ReadDetail(AlarmPreset::windowName(), kOtherSound, QString());
}

void AlarmScheduler::saveSound(bool bell, const QString &path)
{
    WriteDetail(AlarmPreset::windowName(), kAlarmType,
                bell ? QStringLiteral("True") : QStringLiteral("False"));
    WriteDetail(AlarmPreset::windowName(), kOtherSound, path);
}

QString AlarmScheduler::normalizedTime(const QString &stored)
{
    const QString text = stored.trimmed();
    for (const char *form : {"H:m:s", "H:m"}) {
        const QTime t = QTime::fromString(text, QLatin1String(form));
        if (t.isValid())
            return t.toString(QStringLiteral("HH:mm:ss"));
    }
    return text;
}

void AlarmScheduler::loadPresets()
{
    for (int n = 0; n < PresetCount; ++n)
        m_presets[n] = AlarmPreset::load(n);
    m_checkedSecond.reset();
    emit presetsLoaded();
}

AlarmPreset AlarmScheduler::preset(int index) const
{
    if (index < 0 || index >= PresetCount)
        return AlarmPreset();
    return m_presets[index];
}

bool AlarmScheduler::fires(const AlarmPreset &preset, const QString &now, const ClockChange &change) const
{
    const QString time = normalizedTime(preset.time);
    if (time.isEmpty())
        return false;
    // Once a day: not again while the clock goes through an hour for the second time, and
    // at the first second after a jump forward for a time that was skipped.
    if (change.inRepeatedTime())
        return false;
    // Parsed only in the one second after a jump forward, not on every check.
    if (change.justSkipped() && change.wasSkipped(QTime::fromString(time, QStringLiteral("HH:mm:ss"))))
        return true;
    return time.contains(now, Qt::CaseInsensitive);
}

void AlarmScheduler::ring()
{
    // Read at the moment of firing, not at load: the dialog's sound choice applies at once.
    // Both routines return at once (a bell already ringing is not restarted), so nothing here
    // has to pump events to keep the windows painted while the sound plays.
    if (useBell())
        PlayBuiltInSound(QStringLiteral("BELL"));
    else
        PlaySoundFile(otherSound());
}

QList<int> AlarmScheduler::firingPresets() const
{
    // Nothing armed (the usual day): no clock text to make, no time-zone lookup.
    if (std::none_of(m_presets.begin(), m_presets.end(), [](const AlarmPreset &p) { return p.armed; }))
        return {};
    const QDateTime current = ClockSource::now();
    const QString now = DateTimeFormatter::format(current, QStringLiteral("hh:nn:ss"));
    const ClockChange change = ClockChange::at(current);
    QList<int> firing;
    for (int n = 0; n <= kLastCheckedIndex; ++n) {
        const AlarmPreset p = preset(n);
        if (p.armed && fires(p, now, change))
            firing.append(n);
    }
    return firing;
}

void AlarmScheduler::AlarmRefresh()
{
    const qint64 second = ClockSource::currentSecond();
    if (m_checkedSecond != second) {
        m_firing = firingPresets();
        m_checkedSecond = second;
    }
    for (int n : std::as_const(m_firing)) {
        ring();
        emit alarmFired(n, preset(n).message);
    }
}
