#include "core/platform/session_platform.h"
#include "core/startup_trace.h"
#include "shell/application_start.h"
#include "shell/command_line.h"
#include "shell/program_icon.h"
#include "shell/single_instance.h"
#include "themes/program_style.h"

#include <QApplication>
#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>

#include <cstdio>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

Q_LOGGING_CATEGORY(lcMain, "vantora.instance", QtInfoMsg)

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

enum class HandOver
{
    Done,
    Refused,
    NobodyThere,
};

// A later launch: the request goes to the running copy, which shows what it names.
HandOver handOver(int argc, char *argv[], const LaunchRequest &request)
{
    QCoreApplication app(argc, argv);
    QString error;
    QByteArray reply;
    switch (SingleInstance::deliver(request.toJson(), &reply, kHandOverTimeoutMs, &error)) {
    case SingleInstance::Delivery::Answered:
        break;
    case SingleInstance::Delivery::Unanswered:
        // It has the request and may still carry it out: a second copy would be one too many.
        std::fprintf(stderr, "vantora: %s\n", qPrintable(error));
        return HandOver::Refused;
    case SingleInstance::Delivery::Unreachable:
        // Holding the lock but not listening: rather two copies than none the user can reach.
        std::fprintf(stderr, "vantora: %s; starting this copy on its own\n", qPrintable(error));
        return HandOver::NobodyThere;
    }
    const QString refusal = QJsonDocument::fromJson(reply).object().value(QStringLiteral("error")).toString();
    if (!refusal.isEmpty()) {
        std::fprintf(stderr, "vantora: %s\n", qPrintable(refusal));
        return HandOver::Refused;
    }
    return HandOver::Done;
}

// Claims the single copy, or hands the request over. False: this launch is done (*exitCode).
bool becomeTheRunningCopy(SingleInstance &instance, int argc, char *argv[], const LaunchRequest &request,
                          int *exitCode)
{
    QString problem;
    switch (instance.claim(&problem)) {
    case SingleInstance::Claim::Ours:
        return true;
    case SingleInstance::Claim::Unavailable:
        std::fprintf(stderr, "vantora: %s; starting without handing later launches over to this copy\n",
                     qPrintable(problem));
        qCInfo(lcMain, "no single-copy lock: %s", qPrintable(problem));
        return true;
    case SingleInstance::Claim::HeldElsewhere:
        break;
    }
    switch (handOver(argc, argv, request)) {
    case HandOver::Done:
        *exitCode = 0;
        return false;
    case HandOver::Refused:
        *exitCode = CommandLine::Failure;
        return false;
    case HandOver::NobodyThere:
        break;
    }
    qCInfo(lcMain, "the running copy could not be reached; this one runs on its own");
    return true;
}

// Asks Qt for X11 through XWayland in a Wayland session, where the widgets' places and
// keep-on-top would otherwise be lost (see SessionPlatform). Returns the platform asked for.
QByteArray choosePlatform()
{
    const SessionPlatform::Environment environment = SessionPlatform::Environment::ofProcess();
    const QString problem = SessionPlatform::choiceProblem(environment);
    if (!problem.isEmpty())
        std::fprintf(stderr, "vantora: %s\n", qPrintable(problem));
    const QByteArray platform = SessionPlatform::chooseQtPlatform(environment);
    if (!platform.isEmpty())
        qputenv("QT_QPA_PLATFORM", platform);
    return platform;
}

// On X11 Qt hands each repaint to the server through shared memory, and before it paints an
// area again it waits for the server to have read the last copy: a round trip. The widgets
// repaint small areas all day (the clock's seconds, once a second), where that wait costs more
// than sending the few hundred bytes over the socket; even a whole-window repaint of the largest
// window costs under a millisecond that way. VANTORA_XSHM=1 keeps shared memory (Qt turns it
// off when QT_XCB_NO_MITSHM is set at all, whatever its value). Returns whether it was set here.
bool paintThroughTheSocket()
{
    static const char name[] = "QT_XCB_NO_MITSHM";
    if (qEnvironmentVariableIsSet(name) || qEnvironmentVariableIntValue("VANTORA_XSHM") == 1)
        return false;
    qputenv(name, "1");
    return true;
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
    int exitCode = 0;
    if (!becomeTheRunningCopy(instance, argc, argv, command.request(), &exitCode))
        return exitCode;

    StartupTrace::mark("single copy claimed");
    // The dashboard's menu bar stays in its window, painted with the theme like the rest of it,
    // also on desktops that can show menus in a bar of their own; asking the desktop whether it
    // can costs a round trip to the session bus before the first window.
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    const QByteArray chosenPlatform = choosePlatform();
    const bool socketPaintChosen = paintThroughTheSocket();
    QApplication app(argc, argv);
    // Programs started from here (a browser for a link) make their own choices.
    if (!chosenPlatform.isEmpty())
        qunsetenv("QT_QPA_PLATFORM");
    if (socketPaintChosen)
        qunsetenv("QT_XCB_NO_MITSHM");
    qCDebug(lcMain, "window system: %s", qPrintable(QGuiApplication::platformName()));
    StartupTrace::mark("application object made");
    QApplication::setStyle(new ProgramStyle);
    QGuiApplication::setDesktopFileName(QStringLiteral("io.vantora.Vantora"));
    QApplication::setWindowIcon(ProgramIcon::forWindows());
    QString listenProblem;
    if (instance.holdsLock() && !instance.listen(&listenProblem))
        std::fprintf(stderr, "vantora: later launches cannot reach this one: %s\n",
                     qPrintable(listenProblem));

    StartupTrace::mark("listening for later launches");
    ApplicationStart start;
    instance.setHandler([&start](const QByteArray &request) { return start.answerLaunch(request); });
    start.run(command.request());
    return app.exec();
}
