#pragma once

#include <QString>

// One of the five daily alarms as stored under "falc_ALM\Details":
// "Alarm Preset Use_n", "Alarm Preset Time_n" ("hh:nn:ss") and "Alarm Preset Message_n".
struct AlarmPreset
{
    bool armed = false;
    QString time = QStringLiteral("00:00:00");
    QString message;

    static QString windowName() { return QStringLiteral("falc_ALM"); }

    static AlarmPreset load(int index);
    void save(int index) const;

    bool operator==(const AlarmPreset &) const = default;
};
