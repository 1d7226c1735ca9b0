#include "shell/program_settings_model.h"

#include "core/platform/autostart.h"
#include "core/settings_store.h"
#include "webcam/webcam_refresh_counter.h"

#include <array>

namespace {

const QString kSettings = QStringLiteral("mdb_SET");
const QString kWebcam = QStringLiteral("mdb_WCM");

struct Interval
{
    const char *caption;
    int seconds;
};

constexpr std::array<Interval, 5> kIntervals{{
    {"1 Minute", 60},
    {"2 Minutes", 120},
    {"5 Minutes", 300},
    {"10 Minutes", 600},
    {"30 Minutes", 1800},
}};

bool readSwitch(const QString &window, const QString &name, bool defaultOn)
{
    return ReadIntDetail(window, name, defaultOn ? 1 : 0) == 1;
}

} // namespace

QStringList ProgramSettingsModel::intervalCaptions()
{
    QStringList captions;
    for (const Interval &i : kIntervals)
        captions.append(QString::fromLatin1(i.caption));
    return captions;
}

int ProgramSettingsModel::intervalSeconds(const QString &caption)
{
    for (const Interval &i : kIntervals) {
        if (caption == QLatin1String(i.caption))
            return i.seconds;
    }
    return kIntervals.front().seconds;
}

ProgramSettingsModel::Values ProgramSettingsModel::load()
{
    Values v;
    v.launchWithSystem = readSwitch(kSettings, QStringLiteral("Program Launch"), true);
    v.minimizeOnStart = readSwitch(kSettings, QStringLiteral("Program Minimize on Start"), false);
    v.windowMinimize = readSwitch(kSettings, QStringLiteral("Window Minimize"), false);
    v.minimizeOnClose = readSwitch(kSettings, QStringLiteral("Program Minimize on Close"), true);
    v.onTop = readSwitch(kSettings, QStringLiteral("On-Top"), false);
    const QString interval =
        ReadDetail(kWebcam, QStringLiteral("Timer-Interval"), QStringLiteral("1 Minute"));
    if (intervalCaptions().contains(interval))
        v.timerInterval = interval;
    v.playLast = readSwitch(kWebcam, QStringLiteral("Play-Last"), false);
    return v;
}

ProgramSettingsModel::Values ProgramSettingsModel::withDefaultChecks(const Values &current)
{
    Values v;
    v.timerInterval = current.timerInterval;
    return v;
}

void ProgramSettingsModel::save(const Values &v, const Writer &writer)
{
    const Writer write = writer ? writer : Writer(&WriteDetail);
    write(kSettings, QStringLiteral("Program Minimize on Close"), SettingFromBool(v.minimizeOnClose));
    write(kSettings, QStringLiteral("Program Minimize on Start"), SettingFromBool(v.minimizeOnStart));
    write(kSettings, QStringLiteral("Window Minimize"), SettingFromBool(v.windowMinimize));
    write(kSettings, QStringLiteral("Program Launch"), SettingFromBool(v.launchWithSystem));
    write(kSettings, QStringLiteral("On-Top"), SettingFromBool(v.onTop));
    write(kWebcam, QStringLiteral("Timer-Interval"), v.timerInterval);
    write(kWebcam, QStringLiteral("Play-Last"), SettingFromBool(v.playLast));
    // The viewer reads its own copy of the switch; this box is the only place the user sets it.
    write(kWebcam, QStringLiteral("Cam Play-Last"), v.playLast ? QStringLiteral("1") : QStringLiteral("0"));
    setWebcamIntervalSeconds(intervalSeconds(v.timerInterval));
    // The entry follows the stored preference, as it does at every later OK.
    Autostart::apply(ReadIntDetail(kSettings, QStringLiteral("Program Launch"), 1) == 1);
}

void ProgramSettingsModel::setLaunchWithSystem(bool on)
{
    WriteDetail(kSettings, QStringLiteral("Program Launch"), SettingFromBool(on));
    Autostart::apply(on);
}

int ProgramSettingsModel::webcamIntervalSeconds()
{
    return WebcamRefreshCounter::programPeriod();
}

void ProgramSettingsModel::setWebcamIntervalSeconds(int seconds)
{
    WebcamRefreshCounter::setProgramPeriod(seconds);
}
