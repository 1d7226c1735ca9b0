#include "shell/command_line.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <cstdio>

namespace {

// Options the QGuiApplication constructor takes out of argv itself. They are read here only so
// that they are not reported as unknown.
const char *const kQtValueOptions[] = {
    "platform",    "platformpluginpath", "platformtheme", "plugin", "qwindowgeometry",
    "qwindowicon", "qwindowtitle",       "session",       "style",  "stylesheet",
    "display",     "geometry",           "name",          "title",  "visual"};
const char *const kQtFlagOptions[] = {"reverse", "widgetcount", "nograb", "dograb", "sync"};

// Qt's "Missing value after '--open'." as one of our messages: "missing value after '--open'".
QString sentenceCaseRemoved(QString text)
{
    if (!text.isEmpty())
        text[0] = text.at(0).toLower();
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    return text;
}

QCommandLineOption hidden(QCommandLineOption option)
{
    option.setFlags(QCommandLineOption::HiddenFromHelp);
    return option;
}

void print(FILE *stream, const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

// The names --open takes, indented under the option and wrapped to fit an 80-column terminal.
QString wrappedTargetNames()
{
    const QString indent(24, QLatin1Char(' '));
    QString text;
    QString line = indent;
    const QStringList names = LaunchRequest::targetNames();
    for (int i = 0; i < names.size(); ++i) {
        const QString word = names.at(i) + (i + 1 < names.size() ? QStringLiteral(",") : QString());
        if (line.size() + 1 + word.size() >= 80) {
            text += line + QLatin1Char('\n');
            line = indent;
        }
        line += (line == indent ? QString() : QStringLiteral(" ")) + word;
    }
    return text + line + QLatin1Char('\n');
}

} // namespace

QStringList CommandLine::decode(int argc, char *argv[])
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

CommandLine CommandLine::parse(const QStringList &arguments, const QString &workingFolder)
{
    QCommandLineParser parser;
    // Qt's own options are spelt with one dash ("-platform offscreen").
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringList{QStringLiteral("v"), QStringLiteral("version")});
    const QCommandLineOption open(QStringLiteral("open"), QString(), QStringLiteral("window"));
    const QCommandLineOption hiddenStart(QStringLiteral("hidden"));
    const QCommandLineOption listWindows = hidden(QCommandLineOption(QStringLiteral("list-windows")));
    parser.addOptions({help, version, open, hiddenStart, listWindows});
    for (const char *name : kQtValueOptions)
        parser.addOption(
            hidden(QCommandLineOption(QString::fromLatin1(name), QString(), QStringLiteral("value"))));
    for (const char *name : kQtFlagOptions)
        parser.addOption(hidden(QCommandLineOption(QString::fromLatin1(name))));

    CommandLine result;
    if (!parser.parse(arguments)) {
        const QStringList unknown = parser.unknownOptionNames();
        result.fail(unknown.isEmpty()
                        ? sentenceCaseRemoved(parser.errorText())
                        : QStringLiteral("unknown option '%1%2'")
                              .arg(unknown.first().size() == 1 ? QStringLiteral("-") : QStringLiteral("--"),
                                   unknown.first()),
                    UsageError);
        return result;
    }
    if (parser.isSet(help)) {
        result.m_action = Action::ShowHelp;
        return result;
    }
    if (parser.isSet(version)) {
        result.m_action = Action::ShowVersion;
        return result;
    }
    if (parser.isSet(listWindows)) {
        result.m_action = Action::ListWindows;
        return result;
    }
    for (const QString &value : parser.values(open)) {
        for (const QString &part : value.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            const QString name = part.trimmed().toLower();
            if (!LaunchRequest::targetNames().contains(name)) {
                result.fail(QStringLiteral("--open does not know '%1' (it opens %2)")
                                .arg(part.trimmed(), LaunchRequest::targetNames().join(QStringLiteral(", "))),
                            UsageError);
                return result;
            }
            if (!result.m_request.open.contains(name))
                result.m_request.open.append(name);
        }
    }
    result.m_request.hidden = parser.isSet(hiddenStart);
    for (const QString &argument : parser.positionalArguments()) {
        result.addDocument(argument, workingFolder);
        if (result.m_action == Action::Fail)
            break;
    }
    return result;
}

void CommandLine::addDocument(const QString &argument, const QString &workingFolder)
{
    // A launcher may pass file:// addresses for %U.
    QString path = argument.startsWith(QLatin1String("file://")) ? QUrl(argument).toLocalFile() : argument;
    const QFileInfo info(QDir(workingFolder), path);
    const QString problem = LaunchRequest::documentProblem(info.absoluteFilePath(), argument);
    if (!problem.isEmpty()) {
        fail(problem, Failure);
        return;
    }
    const QString absolute = QDir::cleanPath(info.absoluteFilePath());
    if (!m_request.documents.contains(absolute))
        m_request.documents.append(absolute);
}

void CommandLine::fail(const QString &error, int exitCode)
{
    m_action = Action::Fail;
    m_error = error;
    m_exitCode = exitCode;
}

int CommandLine::report() const
{
    switch (m_action) {
    case Action::ShowHelp:
        print(stdout, helpText());
        return 0;
    case Action::ShowVersion:
        print(stdout, versionText());
        return 0;
    case Action::ListWindows:
        print(stdout, windowListText());
        return 0;
    case Action::Fail:
        print(stderr,
              QStringLiteral("vantora: %1\nTry 'vantora --help' for more information.\n").arg(m_error));
        return m_exitCode;
    case Action::Run:
        break;
    }
    return 0;
}

QString CommandLine::versionText()
{
    return QStringLiteral("Vantora %1\n").arg(version());
}

QString CommandLine::windowListText()
{
    QString text;
    for (const QString &name : LaunchRequest::targetNames())
        text += name + QLatin1Char('\t') + LaunchRequest::targetCaption(name) + QLatin1Char('\n');
    return text;
}

QString CommandLine::version()
{
    return QStringLiteral("%1.%2.%3")
        .arg(VANTORA_VERSION_MAJOR)
        .arg(VANTORA_VERSION_MINOR)
        .arg(VANTORA_VERSION_PATCH);
}

QString CommandLine::helpText()
{
    return QStringLiteral("Usage: vantora [options] [document...]\n"
                          "\n"
                          "Themed desktop widgets: clock and alarms, stopwatch, timer, calculator,\n"
                          "calendar, notes, whiteboard, weather and webcams. Only one copy runs at a\n"
                          "time: starting Vantora again hands what the command line asks for to the\n"
                          "running copy, which shows it, and exits. With nothing asked for, the running\n"
                          "copy shows its dashboard.\n"
                          "\n"
                          "Options:\n"
                          "  -h, --help          Show this help and exit.\n"
                          "  -v, --version       Show the version and exit.\n"
                          "  --open <window>     Open a window, one of:\n"
                          "%1"
                          "                      Repeat it, or separate names with commas, for several.\n"
                          "  --hidden            Start with the dashboard in the tray (widgets set to open\n"
                          "                      at start still open). Without a tray it starts as usual.\n"
                          "\n"
                          "Arguments:\n"
                          "  document            A text or RTF file to open in the notes editor.\n"
                          "\n"
                          "Environment:\n"
                          "  VANTORA_HOME        Keep the settings and documents in this folder.\n"
                          "  VANTORA_PLATFORM    wayland: in a Wayland session, run as a Wayland program\n"
                          "                      even where X11 programs can run too (the desktop then\n"
                          "                      places the widgets, and may not keep them on top).\n"
                          "\n"
                          "Exit status: 0 when done, 1 when a document is missing or the running copy did\n"
                          "not answer, 2 for a mistake on the command line.\n")
        .arg(wrappedTargetNames());
}
