// The weather location catalogue: the two walks the location dialog waits for.
//
//   catalogue_bench [runs]     (default 50 runs; prints the median and the best)
//
// "places" is FillPlaceList for the United States' largest state (PA, 1,839 of the 30,965
// USTATES lines), which reads the whole table; "resolve" is ResolveLocationCode for the last
// line of USTATES, the largest table, so the walk also goes to the end. Goal: each under
// 2 ms. "first call" is the very first walk of the process, which also unpacks the table from
// the resources when it was stored compressed.

#include "bench_support.h"
#include "core/shipped_data.h"
#include "weather/location_catalogue.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QResource>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace LocationCatalogue;

namespace {

constexpr double kGoalMs = 2.0;

void report(const char *name, const std::function<void()> &work, int runs)
{
    const double first = timeMs(work);
    std::vector<double> ms;
    for (int run = 0; run < runs; ++run)
        ms.push_back(timeMs(work));
    std::sort(ms.begin(), ms.end());
    std::printf("%-8s median %6.3f ms  best %6.3f ms  first call %6.3f ms  (goal %.0f ms)\n", name,
                ms[ms.size() / 2], ms.front(), first, kGoalMs);
}

const char *storage(const char *resourcePath)
{
    switch (QResource(QString::fromLatin1(resourcePath)).compressionAlgorithm()) {
    case QResource::NoCompression:
        return "stored as is";
    case QResource::ZlibCompression:
        return "zlib";
    case QResource::ZstdCompression:
        return "zstd";
    }
    return "?";
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    BenchHome home;
    const int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 50;

    std::printf("resources: INTERNATIONAL %s, USTATES %s, COORDS %s; %d runs\n",
                storage(ShippedData::InternationalTable), storage(ShippedData::UsStatesTable),
                storage(ShippedData::CoordsTable), runs);

    qsizetype places = 0;
    const auto fillPlaces = [&] { places = FillPlaceList(UnitedStates, QStringLiteral("PA")).size(); };
    QString code;
    const auto resolve = [&] {
        code = ResolveLocationCode(UnitedStates, QStringLiteral("WY"), QStringLiteral("Yoder"), QString());
    };
    report("places", fillPlaces, runs);
    report("resolve", resolve, runs);
    std::printf("(PA: %lld places; WY/Yoder: %s)\n", static_cast<long long>(places), qPrintable(code));
    return 0;
}
