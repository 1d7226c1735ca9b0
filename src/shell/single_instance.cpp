#include "shell/single_instance.h"

#include "core/app_paths.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtEndian>

namespace {

// A request or an answer: a 4-byte big-endian length, then the bytes.
constexpr qsizetype kMaxMessageBytes = 1 << 20;
constexpr int kHeaderBytes = 4;
// A connection that has not sent its whole request by then is dropped.
constexpr int kConnectionTimeoutMs = 5000;
constexpr int kConnectRetryMs = 50;
// sockaddr_un holds 108 bytes with the terminating zero.
constexpr int kMaxSocketPathBytes = 100;

QByteArray frame(const QByteArray &message)
{
    QByteArray bytes(kHeaderBytes, Qt::Uninitialized);
    qToBigEndian<quint32>(quint32(message.size()), bytes.data());
    return bytes + message;
}

// The message in `buffer` once all of it has arrived; false while incomplete. *invalid is set
// for a length no message of ours has.
bool takeMessage(const QByteArray &buffer, QByteArray *message, bool *invalid)
{
    *invalid = false;
    if (buffer.size() < kHeaderBytes)
        return false;
    const quint32 length = qFromBigEndian<quint32>(buffer.constData());
    if (length > quint32(kMaxMessageBytes)) {
        *invalid = true;
        return false;
    }
    if (buffer.size() < kHeaderBytes + qsizetype(length))
        return false;
    *message = buffer.mid(kHeaderBytes, length);
    return true;
}

QString baseName()
{
    const QByteArray hash = QCryptographicHash::hash(QDir::cleanPath(AppPaths::settingsFile()).toUtf8(),
                                                     QCryptographicHash::Sha1);
    // Hidden: VANTORA_HOME is also the data folder the notes editor browses.
    return QStringLiteral(".vantora-") + QString::fromLatin1(hash.toHex().left(12));
}

QString runtimeFolder()
{
    const QString home = QString::fromLocal8Bit(qgetenv("VANTORA_HOME"));
    if (!home.isEmpty() &&
        QDir::cleanPath(home + QLatin1Char('/') + baseName()).toUtf8().size() + 7 <= kMaxSocketPathBytes)
        return QDir::cleanPath(home);
#ifdef Q_OS_WIN
    return QDir::tempPath();
#else
    // Asked once: Qt warns on every call when the session set no XDG_RUNTIME_DIR.
    static const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return runtime;
#endif
}

void setFailure(QString *error, const QString &text)
{
    if (error)
        *error = text;
}

} // namespace

SingleInstance::SingleInstance(QObject *parent) : QObject(parent) {}

SingleInstance::~SingleInstance()
{
    if (m_server)
        m_server->close();
}

QString SingleInstance::lockFilePath()
{
    return runtimeFolder() + QLatin1Char('/') + baseName() + QStringLiteral(".lock");
}

QString SingleInstance::serverName()
{
#ifdef Q_OS_WIN
    // Pipe names are machine-wide: the user's name keeps two users' copies apart.
    return baseName() + QLatin1Char('-') + QString::fromLocal8Bit(qgetenv("USERNAME"));
#else
    return runtimeFolder() + QLatin1Char('/') + baseName() + QStringLiteral(".socket");
#endif
}

bool SingleInstance::claim()
{
    if (m_lock)
        return true;
    QDir().mkpath(runtimeFolder());
    auto lock = std::make_unique<QLockFile>(lockFilePath());
    // Held for the whole run: only a holder that is gone makes it stale, never its age.
    lock->setStaleLockTime(0);
    if (!lock->tryLock(0))
        return false;
    m_lock = std::move(lock);
    return true;
}

bool SingleInstance::listen(QString *error)
{
    if (m_server)
        return true;
    // We hold the lock, so a socket already there was left by a copy that crashed.
    QLocalServer::removeServer(serverName());
    auto *server = new QLocalServer(this);
    server->setSocketOptions(QLocalServer::UserAccessOption);
    if (!server->listen(serverName())) {
        setFailure(error, server->errorString());
        delete server;
        return false;
    }
    m_server = server;
    connect(m_server, &QLocalServer::newConnection, this, &SingleInstance::acceptConnections);
    return true;
}

void SingleInstance::setHandler(Handler handler)
{
    m_handler = std::move(handler);
    answerWaiting();
}

void SingleInstance::acceptConnections()
{
    while (QLocalSocket *socket = m_server->nextPendingConnection()) {
        m_pending.insert(socket, {});
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] {
            m_pending.remove(socket);
            socket->deleteLater();
        });
        QTimer::singleShot(kConnectionTimeoutMs, socket, [this, socket] {
            if (m_pending.contains(socket))
                socket->abort();
        });
        readRequest(socket);
    }
}

void SingleInstance::readRequest(QLocalSocket *socket)
{
    const auto it = m_pending.find(socket);
    if (it == m_pending.end())
        return;
    it->append(socket->readAll());
    answerWaiting();
}

void SingleInstance::answerWaiting()
{
    if (!m_handler)
        return;
    // Copied: answering may drop connections from the table.
    const QList<QLocalSocket *> sockets = m_pending.keys();
    for (QLocalSocket *socket : sockets) {
        QByteArray request;
        bool invalid = false;
        if (takeMessage(m_pending.value(socket), &request, &invalid)) {
            m_pending.remove(socket);
            answer(socket, request);
        } else if (invalid) {
            m_pending.remove(socket);
            socket->abort();
        }
    }
}

void SingleInstance::answer(QLocalSocket *socket, const QByteArray &request)
{
    const QByteArray reply = m_handler(request);
    socket->write(frame(reply));
    socket->disconnectFromServer();
}

bool SingleInstance::send(const QByteArray &request, QByteArray *reply, int timeoutMs, QString *error)
{
    const QDeadlineTimer deadline(timeoutMs);
    QLocalSocket socket;
    for (;;) {
        socket.connectToServer(serverName());
        if (socket.waitForConnected(int(deadline.remainingTime())))
            break;
        if (deadline.hasExpired()) {
            setFailure(error,
                       QStringLiteral("the running copy did not answer (%1)").arg(socket.errorString()));
            return false;
        }
        // Not listening yet: the running copy is still starting.
        socket.abort();
        QThread::msleep(kConnectRetryMs);
    }
    socket.write(frame(request));
    QByteArray buffer;
    QByteArray message;
    bool invalid = false;
    while (!takeMessage(buffer, &message, &invalid)) {
        if (invalid || deadline.hasExpired() ||
            (!socket.waitForReadyRead(int(deadline.remainingTime())) && socket.bytesAvailable() == 0)) {
            setFailure(error, QStringLiteral("the running copy did not answer"));
            return false;
        }
        buffer += socket.readAll();
    }
    if (reply)
        *reply = message;
    return true;
}
