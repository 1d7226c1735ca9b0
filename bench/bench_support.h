#pragma once

// What the benchmark programs share: timing one piece of work, summing up many timings, peak
// memory, and a fresh data folder so that no benchmark reads or writes the user's own.

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <functional>
#include <vector>

#include <sys/resource.h>

// Median, 95th and 99th percentile and worst of a set of timings, in their unit.
struct Figures
{
    double median = 0;
    double p95 = 0;
    double p99 = 0;
    double worst = 0;
};

inline Figures summarise(std::vector<double> samples)
{
    if (samples.empty())
        return {};
    std::sort(samples.begin(), samples.end());
    const auto at = [&samples](size_t percent) {
        return samples[std::min(samples.size() - 1, samples.size() * percent / 100)];
    };
    return {samples[samples.size() / 2], at(95), at(99), samples.back()};
}

inline double timeMs(const std::function<void()> &work)
{
    QElapsedTimer clock;
    clock.start();
    work();
    return clock.nsecsElapsed() / 1e6;
}

inline double peakResidentMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0; // kilobytes on Linux
}

// A fresh VANTORA_HOME for the life of the benchmark: settings and data go there.
class BenchHome
{
public:
    BenchHome() { qputenv("VANTORA_HOME", QFile::encodeName(m_folder.path())); }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
};
