#include "core/platform/local_server.h"
#include "core/platform/local_socket.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// What a copy that crashed leaves: a socket file nobody listens on.
bool leaveStaleSocket(const QString &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray native = QFile::encodeName(path);
    qstrncpy(address.sun_path, native.constData(), sizeof(address.sun_path));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool bound = ::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    ::close(descriptor);
    return bound;
}

} // namespace

// The ends of a connection between launches, met with what a user's system may hold: a socket
// left by a crash, a path too long for a socket, the other end going away.
class TestLocalSocket : public QObject
{
    Q_OBJECT
private slots:
    void unusableSocketFailsAtOnce_data();
    void unusableSocketFailsAtOnce();
    void endSeenAfterTheBytesBeforeIt_data();
    void endSeenAfterTheBytesBeforeIt();
    void writingToAGoneEndIsAnError();

private:
    QTemporaryDir m_folder;
};

void TestLocalSocket::unusableSocketFailsAtOnce_data()
{
    QTest::addColumn<QString>("path"); // below the test folder
    QTest::addColumn<bool>("listen");  // the server's side, else the launch's
    QTest::addColumn<QString>("errorMentions");

    const QString tooLong = QString(120, QLatin1Char('x'));
    QTest::newRow("nothing there") << "gone.socket" << false << "No such file or directory";
    QTest::newRow("left by a copy that crashed") << "STALE" << false << "Connection refused";
    QTest::newRow("connecting on a path too long") << tooLong << false << "too long";
    QTest::newRow("listening on a path too long") << tooLong << true << "too long";
    QTest::newRow("listening in a missing folder") << "gone/x.socket" << true << "No such file or directory";
}

void TestLocalSocket::unusableSocketFailsAtOnce()
{
    QFETCH(QString, path);
    QFETCH(bool, listen);
    QFETCH(QString, errorMentions);
    QVERIFY(m_folder.isValid());
    if (path == QLatin1String("STALE")) {
        path = m_folder.filePath(QStringLiteral("stale.socket"));
        QVERIFY(leaveStaleSocket(path));
    } else {
        path = m_folder.filePath(path);
    }

    QString error;
    if (listen) {
        LocalServer server;
        QVERIFY(!server.listen(path));
        QVERIFY(!server.isListening());
        error = server.errorString();
    } else {
        QElapsedTimer timer;
        timer.start();
        LocalSocket socket;
        socket.connectToServer(path);
        QVERIFY(!socket.waitForConnected(5000));
        QVERIFY2(timer.elapsed() < 1000, qPrintable(QString::number(timer.elapsed())));
        QCOMPARE(socket.state(), LocalSocket::UnconnectedState);
        error = socket.errorString();
    }
    QVERIFY2(error.contains(errorMentions), qPrintable(error));
}

void TestLocalSocket::endSeenAfterTheBytesBeforeIt_data()
{
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<bool>("eventLoop"); // the running copy's side; else a launch waiting for its answer

    for (const bool eventLoop : {false, true}) {
        const char *side = eventLoop ? "signalled" : "waited for";
        QTest::addRow("bytes, then the end, %s", side) << QByteArray("answer") << eventLoop;
        QTest::addRow("the end without a word, %s", side) << QByteArray() << eventLoop;
    }
}

void TestLocalSocket::endSeenAfterTheBytesBeforeIt()
{
    QFETCH(QByteArray, sent);
    QFETCH(bool, eventLoop);
    int ends[2];
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    LocalSocket socket;
    QVERIFY(socket.setSocketDescriptor(quintptr(ends[0])));
    QStringList events;
    connect(&socket, &LocalSocket::readyRead, this, [&] { events << QStringLiteral("bytes"); });
    connect(&socket, &LocalSocket::disconnected, this, [&] { events << QStringLiteral("end"); });
    QCOMPARE(::write(ends[1], sent.constData(), size_t(sent.size())), ssize_t(sent.size()));
    ::close(ends[1]);

    if (eventLoop) {
        QTRY_VERIFY(events.contains(QStringLiteral("end")));
    } else {
        QCOMPARE(socket.waitForReadyRead(5000), !sent.isEmpty());
    }
    const QStringList expected = sent.isEmpty() ? QStringList{"end"} : QStringList{"bytes", "end"};
    QCOMPARE(events, expected);
    QVERIFY(socket.state() != LocalSocket::ConnectedState);
    QCOMPARE(socket.bytesAvailable(), qint64(sent.size()));
    QCOMPARE(socket.read(100), sent);
    QVERIFY(!socket.waitForReadyRead(5000));
}

// The answer to a launch that gave up: an error to report, never a signal ending the program.
void TestLocalSocket::writingToAGoneEndIsAnError()
{
    int ends[2];
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    LocalSocket socket;
    QVERIFY(socket.setSocketDescriptor(quintptr(ends[0])));
    int ended = 0;
    connect(&socket, &LocalSocket::disconnected, this, [&] { ++ended; });
    ::close(ends[1]);

    QCOMPARE(socket.write("answer"), qint64(-1));
    QCOMPARE(socket.state(), LocalSocket::UnconnectedState);
    QCOMPARE(ended, 1);
    QVERIFY2(socket.errorString().contains(QStringLiteral("Broken pipe")), qPrintable(socket.errorString()));
}

QTEST_GUILESS_MAIN(TestLocalSocket)
#include "test_local_socket.moc"
