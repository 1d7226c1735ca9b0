#pragma once

#include <QString>

// The clock's six display choices, kept under "falc_SET\Details". The clock reads them on
// every refresh, so a change saved by the settings dialog shows at the next tick.
struct ClockSettings
{
    bool modern = true;      // "Style-modern": seconds and am/pm in labels of their own
    bool secsShow = true;    // "Style-secs-show": classic layout shows the seconds
    bool ampmShow = true;    // "Style-ampm-show": classic layout shows the am/pm marker
    bool hour24 = true;      // "Style-24Hour"
    bool dateDefault = true; // "date-default": the system's long date format
    QString dateCustom = QStringLiteral("dddd, d mmmm"); // "date-default-custom"

    static QString windowName() { return QStringLiteral("falc_SET"); }

    static ClockSettings load();
    void save() const;

    bool operator==(const ClockSettings &) const = default;
};
