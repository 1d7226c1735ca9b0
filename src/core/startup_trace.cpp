#include "core/startup_trace.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

#include <ctime>

namespace {
Q_LOGGING_CATEGORY(lcStartup, "vantora.startup", QtWarningMsg)

QElapsedTimer &startClock()
{
    static QElapsedTimer clock;
    return clock;
}

// Processor time of the calling thread: beside the wall clock it tells work from waiting
// (for the X server, the disk, or a processor busy with another program).
double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}
} // namespace

void StartupTrace::begin()
{
    startClock().start();
}

void StartupTrace::mark(const char *step)
{
    if (!lcStartup().isDebugEnabled() || !startClock().isValid())
        return;
    qCDebug(lcStartup, "%6.1f ms  (%5.1f ms working)  %s", startClock().nsecsElapsed() / 1e6,
            threadCpuMs(), step);
}
