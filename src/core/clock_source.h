#pragma once

#include <QDateTime>

// The one source of "now" for every time-driven model (clock, alarms, countdown), so that
// tests can set the time instead of waiting for it.
class ClockSource
{
public:
    static QDateTime now();

    // Freezes now() at the given local time until cleared. Tests only.
    static void setNowForTesting(const QDateTime &fixed);
    static void advanceForTesting(qint64 milliseconds);
    static void clearNowForTesting();
};
