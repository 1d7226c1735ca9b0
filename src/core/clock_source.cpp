#include "core/clock_source.h"

namespace {
QDateTime g_fixedNow;
}

QDateTime ClockSource::now()
{
    return g_fixedNow.isValid() ? g_fixedNow : QDateTime::currentDateTime();
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
