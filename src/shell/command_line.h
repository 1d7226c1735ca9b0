#pragma once

#include "shell/launch_request.h"

#include <QString>
#include <QStringList>

// The program's command line, read before any window system is touched so that --help,
// --version and a mistake answer on a terminal without a display:
//
//   vantora [--open NAME[,NAME...]]... [--hidden] [DOCUMENT...]
//
// --list-windows, left out of the help, prints what --open takes, one window a line as
// "NAME<tab>CAPTION"; the build makes the launcher entry's actions from it.
//
// Qt's own options (-platform, -style, -session, ...) are accepted and left for Qt.
class CommandLine
{
public:
    enum class Action
    {
        Run,
        ShowHelp,
        ShowVersion,
        ListWindows,
        Fail
    };

    // Exit codes: a usage mistake is 2, as for other command-line tools; a document that is not
    // there, or a running copy that does not answer, is 1.
    static constexpr int UsageError = 2;
    static constexpr int Failure = 1;

    // `arguments` starts with the program's own name; relative document paths are taken from
    // `workingFolder`.
    static CommandLine parse(const QStringList &arguments, const QString &workingFolder);
    // argv as Qt would decode it, before a QCoreApplication exists.
    static QStringList decode(int argc, char *argv[]);

    Action action() const { return m_action; }
    const LaunchRequest &request() const { return m_request; }
    // For Fail: one line saying what is wrong, without the program name.
    QString error() const { return m_error; }
    int exitCode() const { return m_exitCode; }

    // Prints the help or version to standard output, or the error to standard error, and
    // returns the exit code. For the actions other than Run.
    int report() const;

    static QString helpText();
    // "1.0.0", and "Vantora 1.0.0\n" as --version prints it.
    static QString version();
    static QString versionText();
    // What --list-windows prints.
    static QString windowListText();

private:
    void fail(const QString &error, int exitCode);
    void addDocument(const QString &argument, const QString &workingFolder);

    Action m_action = Action::Run;
    LaunchRequest m_request;
    QString m_error;
    int m_exitCode = 0;
};
