#include "core/startup_trace.h"
#include "shell/application_start.h"
#include "shell/command_line.h"
#include "shell/program_icon.h"
#include "shell/single_instance.h"
#include "themes/deferred_icon_style.h"

#include <QApplication>
#include <QDir>

#include <cstdio>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {
// Blocks of this size and more are mapped for themselves and given back to the system when
// freed. glibc otherwise raises the limit to the largest block freed so far, and the dictionaries
// and documents read whole (megabytes each) would then stay in the heap of a program that runs
// all day.
constexpr int kLargeBlockBytes = 256 * 1024;

void keepLargeBlocksOutOfTheHeap()
{
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, kLargeBlockBytes);
#endif
}

// How long a later launch waits for the running copy, which may itself be starting.
constexpr int kHandOverTimeoutMs = 5000;

void nameProgram()
{
    QCoreApplication::setApplicationName(QStringLiteral("Vantora"));
    QCoreApplication::setOrganizationName(QStringLiteral("Vantora"));
    QCoreApplication::setApplicationVersion(CommandLine::version());
}

// A later launch: the request goes to the running copy, which shows what it names.
int handOver(int argc, char *argv[], const LaunchRequest &request)
{
    QCoreApplication app(argc, argv);
    QString error;
    if (!SingleInstance::send(request.toJson(), nullptr, kHandOverTimeoutMs, &error)) {
        std::fprintf(stderr, "vantora: %s\n", qPrintable(error));
        return CommandLine::Failure;
    }
    return 0;
}
} // namespace

int main(int argc, char *argv[])
{
    StartupTrace::begin();
    keepLargeBlocksOutOfTheHeap();
    // Read before any window system is touched: --help answers without a display.
    const CommandLine command = CommandLine::parse(CommandLine::decode(argc, argv), QDir::currentPath());
    if (command.action() != CommandLine::Action::Run)
        return command.report();
    nameProgram();
    SingleInstance instance;
    if (!instance.claim())
        return handOver(argc, argv, command.request());

    StartupTrace::mark("single copy claimed");
    // The dashboard's menu bar stays in its window, painted with the theme like the rest of it,
    // also on desktops that can show menus in a bar of their own; asking the desktop whether it
    // can costs a round trip to the session bus before the first window.
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QApplication app(argc, argv);
    StartupTrace::mark("application object made");
    QApplication::setStyle(new DeferredIconStyle);
    QGuiApplication::setDesktopFileName(QStringLiteral("io.vantora.Vantora"));
    QApplication::setWindowIcon(ProgramIcon::forWindows());
    QString listenProblem;
    if (!instance.listen(&listenProblem))
        std::fprintf(stderr, "vantora: later launches cannot reach this one: %s\n",
                     qPrintable(listenProblem));

    StartupTrace::mark("listening for later launches");
    ApplicationStart start;
    instance.setHandler([&start](const QByteArray &request) { return start.answerLaunch(request); });
    start.run(command.request());
    return app.exec();
}
