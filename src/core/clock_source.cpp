#include "core/clock_source.h"

namespace {
// A plain flag beside the frozen time: the clock's 55 ms tick asks for the second, and the
// flag spares it a call into the date library on every tick.
bool g_frozen = false;
QDateTime g_fixedNow;
}

QDateTime ClockSource::now()
{
    return g_frozen ? g_fixedNow : QDateTime::currentDateTime();
}

qint64 ClockSource::currentSecond()
{
    const qint64 ms = g_frozen ? g_fixedNow.toMSecsSinceEpoch() : QDateTime::currentMSecsSinceEpoch();
    // Rounded down before 1970 too.
    return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
}

void ClockSource::setNowForTesting(const QDateTime &fixed)
{
    g_fixedNow = fixed;
    g_frozen = fixed.isValid();
}

void ClockSource::advanceForTesting(qint64 milliseconds)
{
    if (g_frozen)
        g_fixedNow = g_fixedNow.addMSecs(milliseconds);
}

void ClockSource::clearNowForTesting()
{
    g_fixedNow = QDateTime();
    g_frozen = false;
}
