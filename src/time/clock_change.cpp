#include "time/clock_change.h"

#include <QTimeZone>

namespace {

constexpr int kSecondsPerDay = 24 * 60 * 60;

QTimeZone zoneOf(const QDateTime &moment)
{
    return moment.timeSpec() == Qt::LocalTime ? QTimeZone::systemTimeZone() : moment.timeZone();
}

} // namespace

ClockChange ClockChange::at(const QDateTime &now)
{
    ClockChange change;
    const QTimeZone zone = zoneOf(now);
    if (!zone.isValid() || !zone.hasTransitions())
        return change;
    const QDateTime utcNow = now.toUTC();
    // The last change at or before this second.
    const QTimeZone::OffsetData last = zone.previousTransition(utcNow.addSecs(1));
    if (!last.atUtc.isValid())
        return change;
    const qint64 sinceChangeMs = last.atUtc.msecsTo(utcNow);
    const int before = zone.offsetFromUtc(last.atUtc.addSecs(-1));
    const int shift = last.offsetFromUtc - before;
    if (shift > 0 && sinceChangeMs >= 0 && sinceChangeMs < 1000) {
        change.m_skippedFrom = last.atUtc.addSecs(before).time();
        change.m_skippedSeconds = shift;
    } else if (shift < 0 && sinceChangeMs >= 0 && sinceChangeMs < qint64(-shift) * 1000) {
        change.m_repeating = true;
    }
    return change;
}

bool ClockChange::wasSkipped(const QTime &timeOfDay) const
{
    if (!justSkipped() || !timeOfDay.isValid())
        return false;
    // Counted from the first skipped time, round midnight when the gap crosses it.
    const int after = (m_skippedFrom.secsTo(timeOfDay) + kSecondsPerDay) % kSecondsPerDay;
    return after < m_skippedSeconds;
}
