#include "shell/application_start.h"
#include "shell/command_line.h"
#include "shell/single_instance.h"

#include <QApplication>
#include <QDir>
#include <QIcon>

#include <cstdio>

namespace {
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
    // Read before any window system is touched: --help answers without a display.
    const CommandLine command = CommandLine::parse(CommandLine::decode(argc, argv), QDir::currentPath());
    if (command.action() != CommandLine::Action::Run)
        return command.report();
    nameProgram();
    SingleInstance instance;
    if (!instance.claim())
        return handOver(argc, argv, command.request());

    QApplication app(argc, argv);
    QGuiApplication::setDesktopFileName(QStringLiteral("io.vantora.Vantora"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/vantora.svg")));
    QString listenProblem;
    if (!instance.listen(&listenProblem))
        std::fprintf(stderr, "vantora: later launches cannot reach this one: %s\n",
                     qPrintable(listenProblem));

    ApplicationStart start;
    instance.setHandler([&start](const QByteArray &request) { return start.answerLaunch(request); });
    start.run(command.request());
    return app.exec();
}
