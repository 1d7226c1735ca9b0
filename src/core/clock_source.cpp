#include "core/clock_source.h"

namespace {
QDateTime g_fixedNow;
}

QDateTime ClockSource::now()
{
    return g_fixedNow.isValid() ? g_fixedNow : QDateTime::currentDateTime();
}

qint64 ClockSource::currentSecond()
{
    const qint64 ms = g_fixedNow.isValid() ? g_fixedNow.toMSecsSinceEpoch() : QDateTime::currentMSecsSinceEpoch();
    // Rounded down before 1970 too.
    return ms >= 0 ? ms / 1000 : -((-ms + 999) / 1000);
}

void ClockSource::setNowForTesting(const QDateTime &fixed)
{
    g_fixedNow = fixed;
}

void ClockSource::advanceForTesting(qint64 milliseconds)
{
    if (g_fixedNow.isValid())
        g_fixedNow = g_fixedNow.addMSecs(milliseconds);
}

void ClockSource::clearNowForTesting()
{
    g_fixedNow = QDateTime();
}
