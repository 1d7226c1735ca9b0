#pragma once

#include <QDateTime>

// The one source of "now" for every time-driven model (clock, alarms, countdown), so that
// tests can set the time instead of waiting for it.
class ClockSource
{
public:
    static QDateTime now();
    // The whole seconds since 1970 (UTC) of now(). Cheap: no time-zone work, so a timer that
    // runs many times a second can tell a new second from the one it has already shown.
    // Local seconds start at the same instants, as zones differ by whole seconds.
    static qint64 currentSecond();

    // Freezes now() at the given local time until cleared. Tests only.
    static void setNowForTesting(const QDateTime &fixed);
    static void advanceForTesting(qint64 milliseconds);
    static void clearNowForTesting();
};
