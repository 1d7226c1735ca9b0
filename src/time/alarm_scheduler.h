#pragma once

#include "time/alarm_preset.h"

#include <QObject>
#include <QStringList>
#include <QList>
#include <array>
#include <optional>

class ClockChange;

// Watches the five alarm presets. The hidden scheduler window calls AlarmRefresh() every
// 100 ms for the whole run; a preset fires on every check that falls within its second (about
// ten checks), each time playing its sound and signalling its message. Across daylight-saving
// changes an alarm still rings on one pass only: a time the clock skips rings in the first
// second after the jump, and a time it shows twice rings the first time only. Presets are read from
// the settings only by loadPresets(), so an edit counts once the alarm dialog saves. The presets
// are compared with the time once per second: the other checks of that second repeat what the
// first one found (ringing again when it rang) without reading the clock's text again.
class AlarmScheduler : public QObject
{
    Q_OBJECT
public:
    static constexpr int PresetCount = 5;

    explicit AlarmScheduler(QObject *parent = nullptr);

    // The 96 times a preset can take: "00:00:00", "00:15:00" ... "23:45:00".
    static QStringList quarterHourTimes();

    // The shared sound choice: "Alarm Type" (true: the built-in bell) and "Alarm Other Sound".
    static bool useBell();
    static QString otherSound();
    static void saveSound(bool bell, const QString &path);

    // A stored time brought to "hh:nn:ss" ("7:15" gives "07:15:00"); text that is no time is
    // returned as it stands (and then never matches), an empty text stays empty.
    static QString normalizedTime(const QString &stored);

    void loadPresets();
    // Preset 0..4 as last loaded; any other index is a preset that is never armed.
    AlarmPreset preset(int index) const;

    // One check of every preset against ClockSource::now().
    void AlarmRefresh();

signals:
    // A preset fired (after its sound was started): show this message in the alarm pop-up.
    void alarmFired(int index, const QString &message);
    void presetsLoaded();

private:
    bool fires(const AlarmPreset &preset, const QString &now, const ClockChange &change) const;
    QList<int> firingPresets() const;
    void ring();

    std::array<AlarmPreset, PresetCount> m_presets;
    // The second last compared (none yet: the presets changed since) and what fired in it.
    std::optional<qint64> m_checkedSecond;
    QList<int> m_firing;
};
