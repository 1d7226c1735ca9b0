#include "time/clock_settings.h"

#include "core/settings_store.h"

namespace {
const QString kModern = QStringLiteral("Style-modern");
const QString kSecsShow = QStringLiteral("Style-secs-show");
const QString kAmpmShow = QStringLiteral("Style-ampm-show");
const QString kHour24 = QStringLiteral("Style-24Hour");
const QString kDateDefault = QStringLiteral("date-default");
const QString kDateCustom = QStringLiteral("date-default-custom");

} // namespace

ClockSettings ClockSettings::load()
{
    const QString window = windowName();
    const ClockSettings defaults;
    ClockSettings s;
    s.modern = ReadBoolDetail(window, kModern, defaults.modern);
    s.secsShow = ReadBoolDetail(window, kSecsShow, defaults.secsShow);
    s.ampmShow = ReadBoolDetail(window, kAmpmShow, defaults.ampmShow);
    s.hour24 = ReadBoolDetail(window, kHour24, defaults.hour24);
    s.dateDefault = ReadBoolDetail(window, kDateDefault, defaults.dateDefault);
    s.dateCustom = ReadDetail(window, kDateCustom, defaults.dateCustom);
    return s;
}

void ClockSettings::save() const
{
    const QString window = windowName();
    WriteDetail(window, kModern, SettingFromBool(modern));
    WriteDetail(window, kSecsShow, SettingFromBool(secsShow));
    WriteDetail(window, kAmpmShow, SettingFromBool(ampmShow));
    WriteDetail(window, kHour24, SettingFromBool(hour24));
    WriteDetail(window, kDateDefault, dateDefault ? QStringLiteral("True") : QStringLiteral("False"));
    WriteDetail(window, kDateCustom, dateCustom);
}
