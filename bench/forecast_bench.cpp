// Drawing the weather forecast panel: 48 hours of curve and rain bars and 7 day cells with
// their symbols, at the widget's usual size and at twice the pixels (a 2x screen), and the
// dashboard tile's brief. Goal: a panel drawn in under 2 ms.
#include "bench_support.h"
#include "core/shipped_data.h"
#include "weather/forecast_painter.h"
#include "weather/forecast_view.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

// Processor time of the whole process (Qt's raster engine may fill on helper threads), in ms:
// on a loaded machine the wall clock also counts the time spent waiting for a core.
double cpuMs(const std::function<void()> &work)
{
    timespec start{};
    timespec end{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &start);
    work();
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &end);
    return (end.tv_sec - start.tv_sec) * 1e3 + (end.tv_nsec - start.tv_nsec) / 1e6;
}

struct Timings
{
    Figures wall;
    Figures cpu;
};

// A week of hours and days, with rain in the afternoons, as a source gives it.
WeatherForecast aWeek(const QDateTime &start)
{
    WeatherForecast forecast;
    forecast.utcOffsetSeconds = 19800; // a half-hour zone: every mark falls between hours
    for (int i = 0; i < 7 * 24; ++i) {
        ForecastHour h;
        h.time = start.addSecs(i * 3600);
        h.celsius = 14 + 7 * std::sin(i / 24.0 * 2 * M_PI);
        h.code = (i / 5) % 2 ? 11 : 30;
        h.rainChance = (i * 7) % 100;
        h.rainMm = i % 24 > 13 && i % 24 < 18 ? 0.4 * (i % 5) : 0;
        h.windKmh = 10 + i % 9;
        forecast.hours.append(h);
    }
    for (int d = 0; d < 7; ++d) {
        ForecastDay day;
        day.date = forecast.local(start).date().addDays(d);
        day.code = (d * 11) % 47;
        day.highCelsius = 20 + d;
        day.lowCelsius = 8 - d;
        day.rainMm = d * 1.3;
        day.rainChance = d * 10;
        forecast.days.append(day);
    }
    return forecast;
}

Timings timePanel(const WeatherForecast &forecast, const QDateTime &now, const ForecastStyle &style,
                  const QSize &size, qreal ratio, int rounds)
{
    QImage target(size * ratio, QImage::Format_ARGB32_Premultiplied);
    target.setDevicePixelRatio(ratio);
    std::vector<double> wall;
    std::vector<double> cpu;
    for (int i = 0; i < rounds; ++i) {
        target.fill(Qt::transparent);
        double processor = 0;
        wall.push_back(timeMs([&] {
            processor = cpuMs([&] {
                // As the view does on a new forecast, theme or size: a painter made afresh, then drawn.
                ForecastPainter painter(forecast, now, style);
                QPainter p(&target);
                painter.paint(p, QRectF(QPointF(0, 0), size));
            });
        }));
        cpu.push_back(processor);
    }
    return {summarise(wall), summarise(cpu)};
}

} // namespace

// Run with QT_QPA_PLATFORM=offscreen (bench/run_all.sh does) or on a display.
int main(int argc, char *argv[])
{
    BenchHome home;
    QApplication app(argc, argv);

    const QDateTime now(QDate(2024, 5, 18), QTime(12, 0), Qt::UTC);
    const WeatherForecast forecast = aWeek(now);
    ForecastStyle style;
    style.ink = QColor(30, 30, 30);
    style.font = QFont(QStringLiteral("Tahoma"));
    style.glyphFamily = ShippedData::weatherFontFamily();

    // forecast_bench [rounds]: fewer rounds for a run under a profiler.
    const int kRounds = argc > 1 ? qMax(1, QByteArray(argv[argc - 1]).toInt()) : 300;
    timePanel(forecast, now, style, QSize(340, 230), 1, 20); // fonts and glyph caches warmed
    const Timings normal = timePanel(forecast, now, style, QSize(340, 230), 1, kRounds);
    const Timings large = timePanel(forecast, now, style, QSize(700, 420), 1, kRounds);
    const Timings sharp = timePanel(forecast, now, style, QSize(340, 230), 2, kRounds);

    QImage tile(QSize(120, 60), QImage::Format_ARGB32_Premultiplied);
    std::vector<double> brief;
    for (int i = 0; i < kRounds; ++i) {
        brief.push_back(timeMs([&] {
            QPainter p(&tile);
            ForecastPainter(forecast, now, style).paintBrief(p, QRectF(0, 0, 120, 60), 2);
        }));
    }
    const Figures b = summarise(brief);

    // The panel as the widget shows it: drawn once, then repainted from its kept picture (the
    // hover line moving, a window passing over it).
    ForecastView view;
    view.setForecast(forecast);
    view.setStyle(style);
    view.setNow(now);
    view.resize(340, 230);
    QImage screen(view.size(), QImage::Format_ARGB32_Premultiplied);
    view.render(&screen);
    std::vector<double> repaint;
    for (int i = 0; i < kRounds; ++i)
        repaint.push_back(timeMs([&] { view.render(&screen); }));
    const Figures r = summarise(repaint);

    std::printf("forecast_bench: 48 hours and 7 days, %d rounds each\n", kRounds);
    const auto line = [](const char *what, const Figures &f) {
        std::printf("  %-40s median %.3f ms, p95 %.3f ms, p99 %.3f ms, worst %.3f ms\n", what, f.median,
                    f.p95, f.p99, f.worst);
    };
    line("panel 340x230, wall clock:", normal.wall);
    line("panel 340x230, processor time:", normal.cpu);
    line("panel 700x420, wall clock:", large.wall);
    line("panel 700x420, processor time:", large.cpu);
    line("panel 340x230 at 2x, wall clock:", sharp.wall);
    line("panel 340x230 at 2x, processor time:", sharp.cpu);
    line("panel 340x230 repainted, wall clock:", r);
    line("dashboard tile brief 120x60, wall clock:", b);
    std::printf("  goal: a panel drawn in under 2 ms (median wall clock)\n");
    const bool met = normal.wall.median < 2.0 && large.wall.median < 2.0 && sharp.wall.median < 2.0;
    return met ? 0 : 1;
}
