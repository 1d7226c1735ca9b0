#pragma once

#include <QDateTime>
#include <QTime>

// What the wall clock did just before a moment, for daily alarms, which are set by the time of
// day: at a daylight-saving change the clock either skips some times of day (it jumps
// forward) or shows some of them twice (it turns back). Worked out from the moment's own time
// zone (the system's for local time); a zone without changes has neither.
class ClockChange
{
public:
    static ClockChange at(const QDateTime &now);

    // True in the first second after the clock jumped forward: the times of day from
    // skippedFrom() on, for skippedSeconds(), were never shown.
    bool justSkipped() const { return m_skippedSeconds > 0; }
    QTime skippedFrom() const { return m_skippedFrom; }
    int skippedSeconds() const { return m_skippedSeconds; }
    // Whether a time of day was among those just skipped.
    bool wasSkipped(const QTime &timeOfDay) const;

    // True while the clock goes through times of day for the second time, after it turned back.
    bool inRepeatedTime() const { return m_repeating; }

private:
    QTime m_skippedFrom;
    int m_skippedSeconds = 0;
    bool m_repeating = false;
};
