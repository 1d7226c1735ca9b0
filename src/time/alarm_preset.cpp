#include "time/alarm_preset.h"

#include "core/settings_store.h"

namespace {
QString valueName(const char *prefix, int index)
{
    return QLatin1String(prefix) + QString::number(index);
}
} // namespace

AlarmPreset AlarmPreset::load(int index)
{
    const AlarmPreset defaults;
    AlarmPreset p;
    p.armed = ReadBoolDetail(windowName(), valueName("Alarm Preset Use_", index), defaults.armed);
    p.time = ReadDetail(windowName(), valueName("Alarm Preset Time_", index), defaults.time);
    p.message = ReadDetail(windowName(), valueName("Alarm Preset Message_", index), defaults.message);
    return p;
}

void AlarmPreset::save(int index) const
{
    WriteDetail(windowName(), valueName("Alarm Preset Use_", index),
                armed ? QStringLiteral("1") : QStringLiteral("0"));
    WriteDetail(windowName(), valueName("Alarm Preset Time_", index), time);
    WriteDetail(windowName(), valueName("Alarm Preset Message_", index), message);
}
