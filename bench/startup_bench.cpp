// Start-up time and memory of the program: the time from the start of the process to the first
// window on the screen, and the resident memory at that moment, with a fresh VANTORA_HOME.
//
//   startup_bench [runs]        (default 5 runs of each case; prints the median and the worst)
//
// Each run is a separate process (this program started again with an internal argument), so
// that loading Qt's libraries and plugins is counted as a user would feel it. Two cases:
// "first run" (a fresh data folder: the wizard is the first window) and "dashboard" (the
// first-run choice made: the dashboard is the first window). Goal: at most 200 ms and 50 MB.
// Uses the offscreen platform unless a display is set.

#include "core/settings_store.h"
#include "shell/application_start.h"
#include "shell/dashboard_window.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QIcon>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

const char *const kChildArgument = "--measure-once";

qint64 residentKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

// Notes the first exposed top-level window, prints the figures and then ends the program the
// way a user would: the wizard is closed and the dashboard's Exit is used.
class FirstWindowWatcher : public QObject
{
public:
    explicit FirstWindowWatcher(const QElapsedTimer &clock) : m_clock(clock) {}

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (!m_done && event->type() == QEvent::Expose) {
            auto *window = qobject_cast<QWindow *>(watched);
            if (window && window->isTopLevel() && window->isExposed()) {
                m_done = true;
                std::printf("%lld %lld %s\n", static_cast<long long>(m_clock.elapsed()),
                            static_cast<long long>(residentKilobytes()), qPrintable(window->title()));
                std::fflush(stdout);
                QTimer::singleShot(0, [this] {
                    if (QWidget *modal = QApplication::activeModalWidget())
                        modal->close();
                    else if (m_onMeasured)
                        m_onMeasured();
                });
            }
        }
        return QObject::eventFilter(watched, event);
    }

public:
    bool measured() const { return m_done; }
    // Runs once the first window is measured (when no wizard is in the way).
    void setOnMeasured(std::function<void()> action) { m_onMeasured = std::move(action); }

private:
    const QElapsedTimer &m_clock;
    bool m_done = false;
    std::function<void()> m_onMeasured;
};

int measureOnce(int argc, char *argv[])
{
    QElapsedTimer clock;
    clock.start();
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vantora"));
    QApplication::setOrganizationName(QStringLiteral("Vantora"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vantora.svg")));
    FirstWindowWatcher watcher(clock);
    app.installEventFilter(&watcher);

    ApplicationStart start;
    start.run();
    // On a real display the first window appears only once the event loop runs.
    auto exit = [&start] { QTimer::singleShot(0, start.dashboard(), &DashboardWindow::exitProgram); };
    if (watcher.measured())
        exit();
    else
        watcher.setOnMeasured(exit);
    return app.exec();
}

struct Sample
{
    qint64 ms = -1;       // from main() to the first window
    qint64 launchMs = -1; // from starting the process (libraries loaded too) to the first window
    qint64 kb = -1;
};

Sample runChild(const QString &home)
{
    QProcess child;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VANTORA_HOME"), home);
    env.insert(QStringLiteral("VANTORA_OFFLINE"), QStringLiteral("1")); // the dashboard fetches the weather
    if (!env.contains(QStringLiteral("DISPLAY")) && !env.contains(QStringLiteral("WAYLAND_DISPLAY")))
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    child.setProcessEnvironment(env);
    child.setProcessChannelMode(QProcess::SeparateChannels);
    QElapsedTimer launch;
    launch.start();
    child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(kChildArgument)});
    // The child prints its line the moment the first window is exposed.
    QByteArray line;
    while (!line.contains('\n') && child.waitForReadyRead(30000))
        line += child.readAllStandardOutput();
    const qint64 launchMs = launch.elapsed();
    if (!child.waitForFinished(30000)) {
        child.kill();
        child.waitForFinished();
        return {};
    }
    const QList<QByteArray> fields = line.trimmed().split(' ');
    if (fields.size() < 2)
        return {};
    return {fields[0].toLongLong(), launchMs, fields[1].toLongLong()};
}

void report(const char *name, QList<Sample> samples)
{
    samples.removeIf([](const Sample &s) { return s.ms < 0; });
    if (samples.isEmpty()) {
        std::printf("%-10s  no measurement (the program did not show a window)\n", name);
        return;
    }
    auto medianAndWorst = [&samples](qint64 Sample::*field) {
        QList<qint64> values;
        for (const Sample &s : samples)
            values.append(s.*field);
        std::sort(values.begin(), values.end());
        return std::pair(values[values.size() / 2], values.last());
    };
    const auto [ms, worstMs] = medianAndWorst(&Sample::ms);
    const auto [launchMs, worstLaunchMs] = medianAndWorst(&Sample::launchMs);
    const auto [kb, worstKb] = medianAndWorst(&Sample::kb);
    std::printf("%-10s  main() to first window: median %lld ms (worst %lld)   launch to first window: "
                "median %lld ms (worst %lld)   resident: median %.1f MB (worst %.1f)   %lld runs\n",
                name, static_cast<long long>(ms), static_cast<long long>(worstMs),
                static_cast<long long>(launchMs), static_cast<long long>(worstLaunchMs), kb / 1024.0,
                worstKb / 1024.0, static_cast<long long>(samples.size()));
}

int runAll(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 5;

    QList<Sample> firstRun;
    QList<Sample> dashboard;
    for (int i = 0; i < runs; ++i) {
        QTemporaryDir home;
        firstRun.append(runChild(home.path()));
        // The same data folder again, now with the choice made: the dashboard comes up.
        qputenv("VANTORA_HOME", home.path().toLocal8Bit());
        WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));
        dashboard.append(runChild(home.path()));
        qunsetenv("VANTORA_HOME");
    }
    std::printf("Start-up to the first window shown, fresh VANTORA_HOME (goal: 200 ms, 50 MB)\n");
    report("first run", firstRun);
    report("dashboard", dashboard);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc > 1 && qstrcmp(argv[1], kChildArgument) == 0)
        return measureOnce(argc, argv);
    return runAll(argc, argv);
}
