#include "support/scoped_environment.h"
#include "shell/launch_request.h"
#include "shell/single_instance.h"
#include "support/test_home.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalSocket>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

// A later launch in another thread, so that the server in this one keeps running its events.
class Launch
{
public:
    explicit Launch(const QByteArray &request, int timeoutMs = 3000)
        : m_thread([this, request, timeoutMs] {
              QElapsedTimer timer;
              timer.start();
              m_delivery = SingleInstance::deliver(request, &m_reply, timeoutMs);
              m_elapsedMs = timer.elapsed();
              m_done = true;
          })
    {
    }
    ~Launch() { m_thread.join(); }
    // Runs this thread's events until the launch is over.
    bool finish(int timeoutMs = 8000)
    {
        QElapsedTimer timer;
        timer.start();
        while (!m_done && timer.elapsed() < timeoutMs)
            QTest::qWait(10);
        return m_done;
    }
    SingleInstance::Delivery delivery() const { return m_delivery; }
    QByteArray reply() const { return m_reply; }
    qint64 elapsedMs() const { return m_elapsedMs; }

private:
    QByteArray m_reply;
    SingleInstance::Delivery m_delivery = SingleInstance::Delivery::Unreachable;
    qint64 m_elapsedMs = 0;
    std::atomic<bool> m_done{false};
    std::thread m_thread;
};

QByteArray framed(const QByteArray &message, quint32 length)
{
    QByteArray bytes(4, Qt::Uninitialized);
    qToBigEndian<quint32>(length, bytes.data());
    return bytes + message;
}

int connectedCount(const QList<QLocalSocket *> &sockets)
{
    int count = 0;
    for (QLocalSocket *socket : sockets) {
        if (socket->state() == QLocalSocket::ConnectedState)
            ++count;
    }
    return count;
}

bool isRoot()
{
    return ::geteuid() == 0;
}

} // namespace

// The running copy's side of the hand-over, in this process: what a connection may cost it,
// how fast it answers, and where its lock and socket live.
class TestLaunchServer : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void costlyConnectionsAreCutShort_data();
    void costlyConnectionsAreCutShort();
    void floodOfIdleConnectionsLeavesRoomForALaunch();
    void busyCopyAnswersAtOnce();
    void lockFolderIsPrivate_data();
    void lockFolderIsPrivate();

private:
    bool startServer();

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<SingleInstance> m_server;
    int m_handled = 0;
};

void TestLaunchServer::init()
{
    m_home = std::make_unique<TestHome>();
    m_handled = 0;
}

void TestLaunchServer::cleanup()
{
    m_server.reset();
    m_home.reset();
}

bool TestLaunchServer::startServer()
{
    m_server = std::make_unique<SingleInstance>();
    if (m_server->claim() != SingleInstance::Claim::Ours || !m_server->listen())
        return false;
    m_server->setHandler([this](const QByteArray &request) {
        ++m_handled;
        return QByteArray("seen ") + request;
    });
    return true;
}

void TestLaunchServer::costlyConnectionsAreCutShort_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<bool>("answered");

    const QByteArray large(SingleInstance::kMaxMessageBytes + 1, 'x');
    QTest::newRow("a whole request") << framed("hello", 5) << true;
    QTest::newRow("silent past the time allowed") << QByteArray() << false;
    QTest::newRow("half a request past the time allowed") << framed("hel", 5) << false;
    QTest::newRow("a length no request has") << framed("x", 0x7fffffff) << false;
    QTest::newRow("larger than a request may be") << framed(large, quint32(large.size())) << false;
}

void TestLaunchServer::costlyConnectionsAreCutShort()
{
    QFETCH(QByteArray, sent);
    QFETCH(bool, answered);
    QVERIFY(startServer());

    QLocalSocket socket;
    socket.connectToServer(SingleInstance::serverName());
    QVERIFY(socket.waitForConnected(1000));
    socket.write(sent);
    // The server is in this thread: its events run while waiting here.
    QTRY_VERIFY_WITH_TIMEOUT(socket.state() != QLocalSocket::ConnectedState,
                             SingleInstance::kConnectionTimeoutMs + 1000);
    if (answered) {
        QCOMPARE(socket.readAll().mid(4), QByteArray("seen hello"));
    } else {
        QCOMPARE(socket.bytesAvailable(), 0);
        QCOMPARE(m_handled, 0);
    }
}

void TestLaunchServer::floodOfIdleConnectionsLeavesRoomForALaunch()
{
    QVERIFY(startServer());
    QList<QLocalSocket *> flood;
    auto cleanUp = qScopeGuard([&flood] { qDeleteAll(flood); });
    for (int i = 0; i < 300; ++i) {
        auto *socket = new QLocalSocket;
        flood.append(socket);
        socket->connectToServer(SingleInstance::serverName());
    }
    // Those beyond the limit are closed as soon as they are taken, not after the time allowed.
    QTRY_VERIFY_WITH_TIMEOUT(connectedCount(flood) <= SingleInstance::kMaxOpenConnections, 800);
    QVERIFY(m_server->isListening());

    Launch launch("hello");
    QVERIFY(launch.finish());
    QCOMPARE(launch.delivery(), SingleInstance::Delivery::Answered);
    QCOMPARE(launch.reply(), QByteArray("seen hello"));
}

void TestLaunchServer::busyCopyAnswersAtOnce()
{
    m_server = std::make_unique<SingleInstance>();
    QCOMPARE(m_server->claim(), SingleInstance::Claim::Ours);
    QVERIFY(m_server->listen());
    // As the program does: the answer now, the work (opening a large file, say) queued after it.
    m_server->setHandler([](const QByteArray &) {
        QTimer::singleShot(0, [] { QThread::msleep(2000); });
        return QByteArray("ok");
    });
    Launch launch("open a large file", 5000);
    QVERIFY(launch.finish());
    QCOMPARE(launch.delivery(), SingleInstance::Delivery::Answered);
    QVERIFY2(launch.elapsedMs() < 1500, qPrintable(QString::number(launch.elapsedMs())));
}

void TestLaunchServer::lockFolderIsPrivate_data()
{
    QTest::addColumn<QString>("session"); // XDG_RUNTIME_DIR: "" unset, else made with `mode`
    QTest::addColumn<int>("sessionMode");
    QTest::addColumn<bool>("sessionForeign"); // owned by another user
    QTest::addColumn<int>("cacheMode");       // 0: the folder in the cache is not there yet
    QTest::addColumn<QString>("expected");    // "session", "cache" or "" (none)

    QTest::newRow("private session folder") << "run" << 0700 << false << 0 << "session";
    QTest::newRow("no session folder") << "" << 0 << false << 0 << "cache";
    QTest::newRow("session folder others can read") << "run" << 0755 << false << 0 << "cache";
    QTest::newRow("session folder others can write") << "run" << 0777 << false << 0 << "cache";
    QTest::newRow("session folder of another user") << "run" << 0700 << true << 0 << "cache";
    QTest::newRow("cache folder others can read is closed") << "" << 0 << false << 0755 << "cache";
    QTest::newRow("cache folder others can write is refused") << "" << 0 << false << 0777 << "";
}

void TestLaunchServer::lockFolderIsPrivate()
{
    QFETCH(QString, session);
    QFETCH(int, sessionMode);
    QFETCH(bool, sessionForeign);
    QFETCH(int, cacheMode);
    QFETCH(QString, expected);
    if (sessionForeign && !isRoot())
        QSKIP("only root can give a folder to another user");

    QTemporaryDir scratch;
    QVERIFY(scratch.isValid());
    ScopedEnvironment environment;
    environment.set("VANTORA_HOME", QString());
    environment.set("XDG_CONFIG_HOME", scratch.filePath(QStringLiteral("config")));
    environment.set("XDG_CACHE_HOME", scratch.filePath(QStringLiteral("cache")));
    environment.set("XDG_RUNTIME_DIR", session.isEmpty() ? QString() : scratch.filePath(session));
    const QString cacheFolder = scratch.filePath(QStringLiteral("cache/vantora"));
    if (!session.isEmpty()) {
        QVERIFY(QDir().mkdir(scratch.filePath(session)));
        QCOMPARE(::chmod(QFile::encodeName(scratch.filePath(session)).constData(), mode_t(sessionMode)), 0);
        if (sessionForeign)
            QCOMPARE(::chown(QFile::encodeName(scratch.filePath(session)).constData(), 65534, 65534), 0);
    }
    if (cacheMode) {
        QVERIFY(QDir().mkpath(cacheFolder));
        QCOMPARE(::chmod(QFile::encodeName(cacheFolder).constData(), mode_t(cacheMode)), 0);
    }

    QString problem;
    const QString folder = SingleInstance::runtimeFolder(&problem);
    if (expected.isEmpty()) {
        QVERIFY(folder.isEmpty());
        QVERIFY2(problem.contains(QStringLiteral("other users")), qPrintable(problem));
        SingleInstance instance;
        QCOMPARE(instance.claim(), SingleInstance::Claim::Unavailable);
        return;
    }
    QCOMPARE(folder, expected == QLatin1String("session") ? scratch.filePath(session) : cacheFolder);
    struct stat info = {};
    QCOMPARE(::stat(QFile::encodeName(folder).constData(), &info), 0);
    QCOMPARE(int(info.st_mode & 0777), 0700);
    QVERIFY(SingleInstance::serverName().startsWith(folder + QLatin1Char('/')));
    SingleInstance instance;
    QCOMPARE(instance.claim(), SingleInstance::Claim::Ours);
}

QTEST_GUILESS_MAIN(TestLaunchServer)
#include "test_launch_server.moc"
