#include "webcam/webcam_refresh_counter.h"

namespace {
int g_programPeriod = 60;
}

bool WebcamRefreshCounter::tick()
{
    if (m_period < MinimumPeriod)
        m_period = MinimumPeriod;
    if (m_period >= m_counter - 1) {
        ++m_counter;
        return false;
    }
    m_counter = 2;
    return true;
}

int WebcamRefreshCounter::programPeriod()
{
    return g_programPeriod;
}

void WebcamRefreshCounter::setProgramPeriod(int period)
{
    g_programPeriod = period;
}
