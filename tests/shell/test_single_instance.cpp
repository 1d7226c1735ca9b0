#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/launch_request.h"
#include "shell/single_instance.h"
#include "support/file_size_limit.h"
#include "support/scoped_environment.h"
#include "support/test_home.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>
#include <QProcess>
#include <QScopeGuard>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

// The sanitizer build (tools/run-sanitizers.sh) has AddressSanitizer and
// UndefinedBehaviorSanitizer in together.
#if defined(__SANITIZE_ADDRESS__)
#define VANTORA_UNDER_SANITIZERS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VANTORA_UNDER_SANITIZERS
#endif
#endif

// Starts the real program several times over one settings folder and checks that only one copy
// keeps running, that later launches reach it, and that a copy that crashed never blocks a start.
class TestSingleInstance : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void laterLaunchHandsOverAndExits_data();
    void laterLaunchHandsOverAndExits();
    void crashedCopyNeverBlocksAStart();
    void launchesAtOnceLeaveOneCopy();
    void unreachableOrUnusableLockStillStarts_data();
    void unreachableOrUnusableLockStillStarts();
    void lockNeedsNoRoomAndEndsWithItsHolder();
    void failedAcceptDoesNotEndListening();
    void requestsNamingNoDocumentAreRefused_data();
    void requestsNamingNoDocumentAreRefused();
    void sessionFolderOfOthersIsPassedOver();
    void startLoadsNoNetworkLibrary();

private:
    QProcess *startProgram(const QStringList &arguments = {},
                           QProcess::ProcessChannelMode mode = QProcess::ForwardedOutputChannel);
    // The windows the running copy shows, asked over its socket; empty when nobody answers.
    static QStringList visibleWindowsOfRunningCopy(int timeoutMs = 100);
    static bool waitUntilAnswering();

    std::unique_ptr<TestHome> m_home;
    QList<QProcess *> m_processes;
    // Outlives the programs started over it.
    std::unique_ptr<QTemporaryDir> m_scratch;
};

void TestSingleInstance::init()
{
    m_home = std::make_unique<TestHome>();
    // All widgets through the dashboard, so that no first-run wizard waits for a click.
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));
}

void TestSingleInstance::cleanup()
{
    for (QProcess *process : std::as_const(m_processes)) {
        process->kill();
        process->waitForFinished(5000);
        delete process;
    }
    m_processes.clear();
    m_scratch.reset();
    m_home.reset();
}

QProcess *TestSingleInstance::startProgram(const QStringList &arguments, QProcess::ProcessChannelMode mode)
{
    auto *process = new QProcess;
    m_processes.append(process);
    process->setProcessChannelMode(mode);
    process->start(QStringLiteral(VANTORA_PROGRAM), arguments);
    if (!process->waitForStarted(10000))
        qWarning("could not start %s", VANTORA_PROGRAM);
    return process;
}

QStringList TestSingleInstance::visibleWindowsOfRunningCopy(int timeoutMs)
{
    LaunchRequest quiet;
    quiet.hidden = true; // asks nothing, changes nothing
    QByteArray reply;
    if (!SingleInstance::send(quiet.toJson(), &reply, timeoutMs))
        return {};
    QStringList names;
    for (const QJsonValue &name :
         QJsonDocument::fromJson(reply).object().value(QStringLiteral("visible")).toArray())
        names.append(name.toString());
    return names;
}

bool TestSingleInstance::waitUntilAnswering()
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 15000) {
        if (visibleWindowsOfRunningCopy().contains(QStringLiteral("mdb_IDX")))
            return true;
        QTest::qWait(50);
    }
    return false;
}

void TestSingleInstance::laterLaunchHandsOverAndExits_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("widget");
    QTest::newRow("--open calculator") << QStringList{"--open", "calculator"} << int(WidgetCalculator);
    QTest::newRow("a document opens the notes") << QStringList{"DOCUMENT"} << int(WidgetNotes);
}

void TestSingleInstance::laterLaunchHandsOverAndExits()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, widget);
    const QString window = WidgetWindowName(widget);
    QFile document(m_home->filePath(QStringLiteral("letter.txt")));
    QVERIFY(document.open(QIODevice::WriteOnly));
    document.write("Dear Sir,\n");
    document.close();
    arguments.replaceInStrings(QStringLiteral("DOCUMENT"), document.fileName());

    QProcess *first = startProgram();
    QVERIFY(waitUntilAnswering());
    QVERIFY(!visibleWindowsOfRunningCopy().contains(window));

    QProcess *second = startProgram(arguments);
    QVERIFY(second->waitForFinished(10000));
    QCOMPARE(second->exitStatus(), QProcess::NormalExit);
    QCOMPARE(second->exitCode(), 0);
    QCOMPARE(first->state(), QProcess::Running);
    QTRY_VERIFY_WITH_TIMEOUT(visibleWindowsOfRunningCopy().contains(window), 10000);
}

void TestSingleInstance::crashedCopyNeverBlocksAStart()
{
    QProcess *crashed = startProgram();
    QVERIFY(waitUntilAnswering());
    crashed->kill();
    QVERIFY(crashed->waitForFinished(5000));
    // What a crash leaves behind: the lock naming a process that is gone, and the socket.
    QVERIFY(QFile::exists(SingleInstance::lockFilePath()));
    QVERIFY(QFile::exists(SingleInstance::serverName()));
    QVERIFY(visibleWindowsOfRunningCopy().isEmpty());

    QProcess *next = startProgram();
    QVERIFY(waitUntilAnswering());
    QCOMPARE(next->state(), QProcess::Running);
    QProcess *later = startProgram({QStringLiteral("--open"), QStringLiteral("timer")});
    QVERIFY(later->waitForFinished(10000));
    QCOMPARE(later->exitCode(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(visibleWindowsOfRunningCopy().contains(WidgetWindowName(WidgetTimer)), 10000);
}

void TestSingleInstance::launchesAtOnceLeaveOneCopy()
{
    QList<QProcess *> launches;
    for (int i = 0; i < 3; ++i)
        launches.append(startProgram());
    QVERIFY(waitUntilAnswering());
    // Two of them hand over (showing the dashboard) and end; one stays.
    QTRY_COMPARE_WITH_TIMEOUT(std::count_if(launches.cbegin(), launches.cend(),
                                            [](QProcess *p) { return p->state() == QProcess::NotRunning; }),
                              2, 15000);
    for (QProcess *launch : std::as_const(launches)) {
        if (launch->state() == QProcess::NotRunning)
            QCOMPARE(launch->exitCode(), 0);
    }
}

void TestSingleInstance::unreachableOrUnusableLockStillStarts_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<QString>("warningMentions");
    // The copy holding it hangs, or Qt closed its socket: a later launch must not be locked out.
    QTest::newRow("lock held, nobody listening") << "held"
                                                 << "cannot be reached";
    QTest::newRow("a file where the lock folder goes") << "file"
                                                       << "not a folder";
    QTest::newRow("lock folder others can write to") << "open"
                                                     << "other users";
    QTest::newRow("read-only lock folder") << "read-only"
                                           << "permission denied";
}

void TestSingleInstance::unreachableOrUnusableLockStillStarts()
{
    QFETCH(QString, how);
    QFETCH(QString, warningMentions);
    const QString folder = m_home->filePath(QStringLiteral(".vantora-run"));
    SingleInstance holder;
    if (how == QLatin1String("held")) {
        QCOMPARE(holder.claim(), SingleInstance::Claim::Ours);
    } else if (how == QLatin1String("file")) {
        QFile file(folder);
        QVERIFY(file.open(QIODevice::WriteOnly));
    } else if (how == QLatin1String("read-only")) {
        if (::geteuid() == 0)
            QSKIP("root writes into a read-only folder");
        QVERIFY(QDir().mkdir(folder));
        QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0500), 0);
    } else if (how == QLatin1String("open")) {
        QVERIFY(QDir().mkdir(folder));
        QCOMPARE(::chmod(QFile::encodeName(folder).constData(), 0777), 0);
    }
    QProcess *launch =
        startProgram({QStringLiteral("--open"), QStringLiteral("clock")}, QProcess::SeparateChannels);
    QByteArray warnings;
    QTRY_VERIFY_WITH_TIMEOUT((warnings += launch->readAllStandardError()).contains(warningMentions.toUtf8()),
                             10000);
    QVERIFY2(warnings.contains("on its own") || warnings.contains("starting without"), warnings.constData());
    QTest::qWait(1000);
    QCOMPARE(launch->state(), QProcess::Running);
}

// Taking the lock writes nothing, so a full disk still leaves one copy in charge; the lock goes
// with the object that holds it, and another takes it then.
void TestSingleInstance::lockNeedsNoRoomAndEndsWithItsHolder()
{
    auto first = std::make_unique<SingleInstance>();
    {
        const FileSizeLimit fullDisk(0);
        QVERIFY(fullDisk.isActive());
        QString problem;
        QCOMPARE(first->claim(&problem), SingleInstance::Claim::Ours);
        QVERIFY2(problem.isEmpty(), qPrintable(problem));
    }
    SingleInstance second;
    QCOMPARE(second.claim(), SingleInstance::Claim::HeldElsewhere);
    first.reset();
    QCOMPARE(second.claim(), SingleInstance::Claim::Ours);
    QVERIFY(second.holdsLock());
}

void TestSingleInstance::failedAcceptDoesNotEndListening()
{
#ifdef VANTORA_UNDER_SANITIZERS
    // The sanitizers open a pipe to check that memory can be read before they report on it;
    // with every descriptor taken they report every virtual call as a fault.
    QSKIP("under the sanitizers: they need file descriptors of their own, which this test uses up");
#endif
    QProcess *copy = startProgram({}, QProcess::SeparateChannels);
    QVERIFY(waitUntilAnswering());
    // Room for two more descriptors: the next connections cannot be accepted. A new one takes
    // the lowest number free, and only numbers below the limit are given.
    const QString fdFolder = QStringLiteral("/proc/%1/fd").arg(copy->processId());
    QSet<int> used;
    for (const QString &name :
         QDir(fdFolder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot))
        used.insert(name.toInt());
    int limit = 0;
    for (int free = 0; free < 2; ++limit)
        free += used.contains(limit) ? 0 : 1;
    rlimit previous = {};
    QCOMPARE(prlimit(copy->processId(), RLIMIT_NOFILE, nullptr, &previous), 0);
    rlimit lowered = previous;
    lowered.rlim_cur = rlim_t(limit);
    QCOMPARE(prlimit(copy->processId(), RLIMIT_NOFILE, &lowered, nullptr), 0);

    QList<QLocalSocket *> flood;
    auto cleanUp = qScopeGuard([&flood] { qDeleteAll(flood); });
    for (int i = 0; i < 2 * SingleInstance::kMaxOpenConnections; ++i) {
        flood.append(new QLocalSocket);
        flood.last()->connectToServer(SingleInstance::serverName());
    }
    QByteArray warnings;
    QTRY_VERIFY2_WITH_TIMEOUT((warnings += copy->readAllStandardError()).contains("listening again"),
                              warnings.constData(), 5000);
    QCOMPARE(prlimit(copy->processId(), RLIMIT_NOFILE, &previous, nullptr), 0);
    qDeleteAll(std::exchange(flood, {}));

    QTRY_VERIFY_WITH_TIMEOUT(visibleWindowsOfRunningCopy().contains(QStringLiteral("mdb_IDX")), 8000);
    QCOMPARE(copy->state(), QProcess::Running);
}

void TestSingleInstance::requestsNamingNoDocumentAreRefused_data()
{
    QTest::addColumn<QString>("document");
    QTest::addColumn<QString>("errorMentions");
    // Opening a pipe waits for a writer; a device is read until memory runs out.
    QTest::newRow("a pipe") << "FIFO"
                            << "not a document";
    QTest::newRow("an endless device") << "/dev/zero"
                                       << "not a document";
    QTest::newRow("a folder") << "FOLDER"
                              << "not a document";
    // The running copy works in another folder than the launch that sent it.
    QTest::newRow("a relative path") << "letter.txt"
                                     << "not an absolute path";
    QTest::newRow("a missing file") << "FOLDER/gone.txt"
                                    << "no such file";
}

void TestSingleInstance::requestsNamingNoDocumentAreRefused()
{
    QFETCH(QString, document);
    QFETCH(QString, errorMentions);
    const QString fifo = m_home->filePath(QStringLiteral("pipe"));
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    document.replace(QStringLiteral("FIFO"), fifo);
    document.replace(QStringLiteral("FOLDER"), m_home->path());

    QProcess *copy = startProgram();
    QVERIFY(waitUntilAnswering());
    QByteArray reply;
    QVERIFY(SingleInstance::send(QJsonDocument(QJsonObject{{"documents", QJsonArray{document}}}).toJson(),
                                 &reply, 3000));
    const QString error = QJsonDocument::fromJson(reply).object().value(QStringLiteral("error")).toString();
    QVERIFY2(error.contains(errorMentions), reply.constData());
    // Still free to answer: nothing was opened.
    QTest::qWait(200);
    QVERIFY(visibleWindowsOfRunningCopy(1000).contains(QStringLiteral("mdb_IDX")));
    QCOMPARE(copy->state(), QProcess::Running);
}

void TestSingleInstance::sessionFolderOfOthersIsPassedOver()
{
    // No home override: the lock goes where a session keeps it, unless others can reach that.
    m_scratch = std::make_unique<QTemporaryDir>();
    QVERIFY(m_scratch->isValid());
    const QString session = m_scratch->filePath(QStringLiteral("run"));
    QVERIFY(QDir().mkdir(session));
    QCOMPARE(::chmod(QFile::encodeName(session).constData(), 0755), 0);
    // Only root can hand it to another user; others get a folder open to all instead.
    if (::geteuid() == 0)
        QCOMPARE(::chown(QFile::encodeName(session).constData(), 65534, 65534), 0);
    ScopedEnvironment environment;
    environment.set("VANTORA_HOME", QString());
    environment.set("XDG_RUNTIME_DIR", session);
    for (const char *name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        environment.set(name, m_scratch->filePath(QString::fromLatin1(name)));
    WriteDetail(QStringLiteral("msg_WIZ"), QStringLiteral("Program-Choice"), QStringLiteral("8"));

    QProcess *first = startProgram();
    QVERIFY(waitUntilAnswering());
    QVERIFY2(SingleInstance::serverName().startsWith(
                 m_scratch->filePath(QStringLiteral("XDG_CACHE_HOME/vantora/"))),
             qPrintable(SingleInstance::serverName()));
    QVERIFY(QDir(session).isEmpty());
    QProcess *later = startProgram({QStringLiteral("--open"), QStringLiteral("timer")});
    QVERIFY(later->waitForFinished(10000));
    QCOMPARE(later->exitCode(), 0);
    QCOMPARE(first->state(), QProcess::Running);
}


void TestSingleInstance::startLoadsNoNetworkLibrary()
{
    // Loading Qt Network, and the libraries under it, would cost every start before its first
    // frame; it comes with the first read instead. The dashboard asks for the weather a second
    // after it is shown, and that read is refused (reads are kept to this computer here), which
    // must not load it either.
    QProcess *copy = startProgram();
    QVERIFY(waitUntilAnswering());
    QTest::qWait(2500);
    QFile maps(QStringLiteral("/proc/%1/maps").arg(copy->processId()));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray mapped = maps.readAll();
    QVERIFY(mapped.contains("libQt6Widgets"));
    QVERIFY2(!mapped.contains("libQt6Network"), "the network library was loaded at start");
    QVERIFY2(!mapped.contains("vantora_network"), "the network module was loaded at start");
}

QTEST_MAIN(TestSingleInstance)
#include "test_single_instance.moc"
