#include "core/widget_index.h"
#include "shell/command_line.h"
#include "shell/launch_request.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <sys/stat.h>
#include <unistd.h>

using Action = CommandLine::Action;

class TestCommandLine : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void parse_data();
    void parse();
    void helpNamesEveryWindowAndFitsATerminal();
    void windowListNamesEveryWindow_data();
    void windowListNamesEveryWindow();
    void requestTravelsIntact();
    void foreignRequestsAreRefused_data();
    void foreignRequestsAreRefused();
    void documentProblem_data();
    void documentProblem();

private:
    QTemporaryDir m_folder;
};

void TestCommandLine::initTestCase()
{
    QVERIFY(m_folder.isValid());
    QVERIFY(m_folder.path().startsWith(QLatin1Char('/')) || m_folder.path().at(1) == QLatin1Char(':'));
    for (const char *name : {"letter.rtf", "list.txt", "with space.txt"}) {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QDir(m_folder.path()).mkdir(QStringLiteral("folder")));
    QCOMPARE(::mkfifo(QFile::encodeName(m_folder.filePath(QStringLiteral("pipe"))).constData(), 0600), 0);
}

void TestCommandLine::parse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<Action>("action");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QStringList>("open");
    QTest::addColumn<bool>("hidden");
    QTest::addColumn<QStringList>("documents"); // relative to the folder
    QTest::addColumn<QString>("errorMentions");

    const QStringList none;
    QTest::newRow("nothing") << none << Action::Run << 0 << none << false << none << QString();
    QTest::newRow("--help wins over the rest") << QStringList{"--open", "clock", "--help"} << Action::ShowHelp
                                               << 0 << none << false << none << QString();
    QTest::newRow("-h") << QStringList{"-h"} << Action::ShowHelp << 0 << none << false << none << QString();
    QTest::newRow("--version") << QStringList{"--version"} << Action::ShowVersion << 0 << none << false
                               << none << QString();
    QTest::newRow("--list-windows") << QStringList{"--list-windows"} << Action::ListWindows << 0 << none << false
                                    << none << QString();
    QTest::newRow("-v") << QStringList{"-v"} << Action::ShowVersion << 0 << none << false << none
                        << QString();
    QTest::newRow("--open twice, commas, case and a repeat")
        << QStringList{"--open", "Clock,calculator", "--open=webcam", "--open", "clock"} << Action::Run << 0
        << QStringList{"clock", "calculator", "webcam"} << false << none << QString();
    QTest::newRow("--hidden") << QStringList{"--hidden"} << Action::Run << 0 << none << true << none
                              << QString();
    QTest::newRow("documents, relative and with a space, once each")
        << QStringList{"letter.rtf", "with space.txt", "./letter.rtf"} << Action::Run << 0 << none << false
        << QStringList{"letter.rtf", "with space.txt"} << QString();
    QTest::newRow("file address from a launcher") << QStringList{"FOLDER_URL/list.txt"} << Action::Run << 0
                                                  << none << false << QStringList{"list.txt"} << QString();
    QTest::newRow("a document after --") << QStringList{"--", "list.txt"} << Action::Run << 0 << none << false
                                         << QStringList{"list.txt"} << QString();
    QTest::newRow("Qt's own options pass")
        << QStringList{"-platform", "offscreen", "-style", "fusion", "-reverse", "--open", "timer"}
        << Action::Run << 0 << QStringList{"timer"} << false << none << QString();
    QTest::newRow("unknown long option")
        << QStringList{"--bogus"} << Action::Fail << 2 << none << false << none << "--bogus";
    QTest::newRow("unknown short option")
        << QStringList{"-x"} << Action::Fail << 2 << none << false << none << "-x";
    QTest::newRow("--open without a name")
        << QStringList{"--open"} << Action::Fail << 2 << none << false << none << "--open";
    QTest::newRow("--open with a name it lacks")
        << QStringList{"--open", "clock,clok"} << Action::Fail << 2 << none << false << none << "clok";
    QTest::newRow("missing document")
        << QStringList{"list.txt", "gone.txt"} << Action::Fail << 1 << none << false << none << "gone.txt";
    QTest::newRow("a folder is no document")
        << QStringList{"folder"} << Action::Fail << 1 << none << false << none << "folder";
    QTest::newRow("a pipe is no document")
        << QStringList{"pipe"} << Action::Fail << 1 << none << false << none << "not a document: pipe";
    QTest::newRow("a device is no document")
        << QStringList{"/dev/zero"} << Action::Fail << 1 << none << false << none << "not a document";
}

void TestCommandLine::parse()
{
    QFETCH(QStringList, arguments);
    QFETCH(Action, action);
    QFETCH(int, exitCode);
    QFETCH(QStringList, open);
    QFETCH(bool, hidden);
    QFETCH(QStringList, documents);
    QFETCH(QString, errorMentions);

    arguments.replaceInStrings(QStringLiteral("FOLDER_URL"), QUrl::fromLocalFile(m_folder.path()).toString());
    arguments.prepend(QStringLiteral("vantora"));
    const CommandLine command = CommandLine::parse(arguments, m_folder.path());

    QCOMPARE(command.action(), action);
    QCOMPARE(command.exitCode(), exitCode);
    if (action == Action::Fail) {
        QVERIFY2(command.error().contains(errorMentions), qPrintable(command.error()));
        return;
    }
    QCOMPARE(command.request().open, open);
    QCOMPARE(command.request().hidden, hidden);
    QStringList absolute;
    for (const QString &document : documents)
        absolute.append(m_folder.filePath(document));
    QCOMPARE(command.request().documents, absolute);
}

void TestCommandLine::helpNamesEveryWindowAndFitsATerminal()
{
    const QString help = CommandLine::helpText();
    for (const QString &name : LaunchRequest::targetNames())
        QVERIFY2(help.contains(QRegularExpression(QStringLiteral("\\b%1\\b").arg(name))), qPrintable(name));
    for (const QString &line : help.split(QLatin1Char('\n')))
        QVERIFY2(line.size() < 80, qPrintable(line));
    QVERIFY(CommandLine::versionText().startsWith(QStringLiteral("Vantora %1.").arg(VANTORA_VERSION_MAJOR)));

    // Every widget name leads to its own widget; the two extra windows to none.
    QSet<int> widgets;
    for (const QString &name : LaunchRequest::targetNames())
        widgets.insert(LaunchRequest::widgetIndexOf(name));
    QCOMPARE(widgets.size(), WidgetCount + 1);
}

// The launcher entry's actions are made from this list: one line per name --open takes, each
// with the caption a launcher shows.
void TestCommandLine::windowListNamesEveryWindow_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");

    for (int index = 0; index < WidgetCount; ++index) {
        const QString caption = WidgetDisplayName(index);
        QTest::newRow(qPrintable(caption)) << QString() << caption;
    }
    QTest::newRow("webcam") << "webcam" << "Webcam Viewer";
    QTest::newRow("dashboard") << "dashboard" << "Dashboard";
}

void TestCommandLine::windowListNamesEveryWindow()
{
    QFETCH(QString, name);
    QFETCH(QString, caption);

    const QStringList lines = CommandLine::windowListText().split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), LaunchRequest::targetNames().size());
    QStringList matching;
    for (const QString &line : lines) {
        const QStringList fields = line.split(QLatin1Char('\t'));
        QCOMPARE(fields.size(), 2);
        QVERIFY2(LaunchRequest::targetNames().contains(fields.at(0)), qPrintable(line));
        if (fields.at(1) == caption)
            matching << fields.at(0);
    }
    QCOMPARE(matching.size(), 1);
    if (name.isEmpty()) // a widget: its line opens that widget
        QCOMPARE(WidgetDisplayName(LaunchRequest::widgetIndexOf(matching.first())), caption);
    else
        QCOMPARE(matching.first(), name);
}

void TestCommandLine::requestTravelsIntact()
{
    LaunchRequest request;
    request.open = {QStringLiteral("notes"), QStringLiteral("dashboard")};
    request.documents = {QStringLiteral("/tmp/Brief an Zoë.rtf")};
    request.hidden = true;
    LaunchRequest read;
    QVERIFY(LaunchRequest::fromJson(request.toJson(), &read));
    QCOMPARE(read, request);
}

void TestCommandLine::foreignRequestsAreRefused_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("not JSON") << QByteArray("GET / HTTP/1.0");
    QTest::newRow("an array") << QByteArray("[\"clock\"]");
    QTest::newRow("open is text") << QByteArray("{\"open\":\"clock\"}");
    QTest::newRow("a number among names") << QByteArray("{\"open\":[\"clock\",3]}");
    QTest::newRow("a window it lacks") << QByteArray("{\"open\":[\"shell\"]}");
    QTest::newRow("documents is an object") << QByteArray("{\"documents\":{}}");
}

void TestCommandLine::foreignRequestsAreRefused()
{
    QFETCH(QByteArray, json);
    LaunchRequest request;
    request.open = {QStringLiteral("clock")};
    const LaunchRequest before = request;
    QVERIFY(!LaunchRequest::fromJson(json, &request));
    QCOMPARE(request, before);
}

void TestCommandLine::documentProblem_data()
{
    QTest::addColumn<QString>("path"); // relative to the folder unless it starts with '/'
    QTest::addColumn<qint64>("size");  // made that large (a sparse file) first when positive
    QTest::addColumn<int>("mode");     // given these permissions first when positive
    QTest::addColumn<QString>("problemMentions");

    QTest::newRow("a text file") << "list.txt" << qint64(0) << 0 << "";
    QTest::newRow("a relative path") << "RELATIVE:list.txt" << qint64(0) << 0 << "not an absolute path";
    QTest::newRow("missing") << "gone.txt" << qint64(0) << 0 << "no such file";
    QTest::newRow("a pipe") << "pipe" << qint64(0) << 0 << "not a document";
    QTest::newRow("a device") << "/dev/zero" << qint64(0) << 0 << "not a document";
    QTest::newRow("unreadable") << "secret.txt" << qint64(0) << 0200 << "cannot be read";
    QTest::newRow("larger than a note can be")
        << "huge.txt" << qint64(257) * 1024 * 1024 << 0 << "larger than the 256 MB";
}

void TestCommandLine::documentProblem()
{
    QFETCH(QString, path);
    QFETCH(qint64, size);
    QFETCH(int, mode);
    QFETCH(QString, problemMentions);
    if (mode > 0 && ::geteuid() == 0)
        QSKIP("root reads any file");
    if (path.startsWith(QLatin1String("RELATIVE:")))
        path = path.mid(9);
    else if (!path.startsWith(QLatin1Char('/')))
        path = m_folder.filePath(path);
    if (size > 0 || mode > 0) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.resize(size));
        file.close();
        if (mode > 0)
            QCOMPARE(::chmod(QFile::encodeName(path).constData(), mode_t(mode)), 0);
    }
    const QString problem = LaunchRequest::documentProblem(path, path);
    if (problemMentions.isEmpty())
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    else
        QVERIFY2(problem.contains(problemMentions), qPrintable(problem));
    // A request carrying the path is judged the same way.
    LaunchRequest request;
    request.documents = {path};
    QCOMPARE(request.documentsProblem().isEmpty(), problemMentions.isEmpty());
    if (size > 0)
        QFile::remove(path);
}

QTEST_GUILESS_MAIN(TestCommandLine)
#include "test_command_line.moc"
