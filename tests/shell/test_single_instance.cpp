#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/launch_request.h"
#include "shell/single_instance.h"
#include "support/test_home.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <memory>

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
    void heldLockWithoutAnswerFailsWithoutASecondCopy();

private:
    QProcess *startProgram(const QStringList &arguments = {});
    // The windows the running copy shows, asked over its socket; empty when nobody answers.
    static QStringList visibleWindowsOfRunningCopy(int timeoutMs = 100);
    static bool waitUntilAnswering();

    std::unique_ptr<TestHome> m_home;
    QList<QProcess *> m_processes;
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
    m_home.reset();
}

QProcess *TestSingleInstance::startProgram(const QStringList &arguments)
{
    auto *process = new QProcess;
    m_processes.append(process);
    process->setProcessChannelMode(QProcess::ForwardedOutputChannel);
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

void TestSingleInstance::heldLockWithoutAnswerFailsWithoutASecondCopy()
{
    // A running copy that holds the lock but does not answer (hung, or not listening yet).
    SingleInstance holder;
    QVERIFY(holder.claim());
    QProcess *launch = startProgram({QStringLiteral("--open"), QStringLiteral("clock")});
    launch->setProcessChannelMode(QProcess::SeparateChannels);
    QVERIFY(launch->waitForFinished(15000));
    QCOMPARE(launch->exitCode(), 1);
}

QTEST_MAIN(TestSingleInstance)
#include "test_single_instance.moc"
