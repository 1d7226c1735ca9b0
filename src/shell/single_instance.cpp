#include "shell/single_instance.h"

#include "core/app_paths.h"
#include "core/held_file_lock.h"
#include "core/platform/local_socket.h"
#include "shell/instance_listener.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>
#include <QtEndian>

#ifndef Q_OS_WIN
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

// A request or an answer: a 4-byte big-endian length, then the bytes.
constexpr int kHeaderBytes = 4;
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
    if (length > quint32(SingleInstance::kMaxMessageBytes)) {
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
    return QStringLiteral(".vantora-") + QString::fromLatin1(hash.toHex().left(12));
}

bool socketNameFits(const QString &folder)
{
    return (folder + QLatin1Char('/') + baseName()).toUtf8().size() + 7 <= kMaxSocketPathBytes;
}

bool setFailure(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

enum class Answer
{
    Complete,
    ClosedUnread,
    Missing,
};

Answer readAnswer(LocalSocket &socket, const QDeadlineTimer &deadline, QByteArray *message)
{
    QByteArray buffer;
    for (;;) {
        buffer += socket.read(kHeaderBytes + SingleInstance::kMaxMessageBytes + 1 - buffer.size());
        bool invalid = false;
        if (takeMessage(buffer, message, &invalid))
            return Answer::Complete;
        if (invalid || buffer.size() > kHeaderBytes + SingleInstance::kMaxMessageBytes)
            return Answer::Missing;
        // Closed without a word: the running copy had too many connections open at once.
        if (socket.state() != LocalSocket::ConnectedState && socket.bytesAvailable() == 0)
            return buffer.isEmpty() ? Answer::ClosedUnread : Answer::Missing;
        if (deadline.hasExpired())
            return Answer::Missing;
        socket.waitForReadyRead(int(deadline.remainingTime()));
    }
}

} // namespace

SingleInstance::SingleInstance(QObject *parent) : QObject(parent) {}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::isPrivateFolder(const QString &path, bool mayFix, QString *problem)
{
#ifdef Q_OS_WIN
    Q_UNUSED(path);
    Q_UNUSED(mayFix);
    Q_UNUSED(problem);
    return true;
#else
    const QByteArray native = QFile::encodeName(path);
    const QString shown = QDir::toNativeSeparators(path);
    if (mayFix && ::mkdir(native.constData(), 0700) != 0 && errno != EEXIST)
        return setFailure(problem, QStringLiteral("cannot make the folder %1: %2")
                                       .arg(shown, QString::fromLocal8Bit(std::strerror(errno))));
    struct stat info = {};
    if (::lstat(native.constData(), &info) != 0)
        return setFailure(problem, QStringLiteral("cannot use the folder %1: %2")
                                       .arg(shown, QString::fromLocal8Bit(std::strerror(errno))));
    if (!S_ISDIR(info.st_mode))
        return setFailure(problem, QStringLiteral("%1 is not a folder").arg(shown));
    if (info.st_uid != ::geteuid())
        return setFailure(problem, QStringLiteral("%1 belongs to another user").arg(shown));
    if ((info.st_mode & 077) == 0)
        return true;
    // Others may have put files in a folder they could write to: that one is not repaired.
    if (!mayFix || (info.st_mode & 022) != 0)
        return setFailure(problem, QStringLiteral("%1 is open to other users").arg(shown));
    if (::chmod(native.constData(), 0700) != 0)
        return setFailure(problem, QStringLiteral("cannot close the folder %1 to other users: %2")
                                       .arg(shown, QString::fromLocal8Bit(std::strerror(errno))));
    return true;
#endif
}

QString SingleInstance::runtimeFolder(QString *problem)
{
#ifdef Q_OS_WIN
    Q_UNUSED(problem);
    return QDir::tempPath();
#else
    // Hidden: VANTORA_HOME is also the data folder the notes editor browses.
    const QString home = QString::fromLocal8Bit(qgetenv("VANTORA_HOME"));
    const QString homeFolder = QDir::cleanPath(home + QStringLiteral("/.vantora-run"));
    if (!home.isEmpty() && socketNameFits(homeFolder)) {
        QDir().mkpath(home);
        return isPrivateFolder(homeFolder, true, problem) ? homeFolder : QString();
    }
    // The session's own folder, unless someone else could have made it (a session without one
    // gets a name under /tmp from Qt that any user can take first).
    const QString runtime = QDir::cleanPath(QString::fromLocal8Bit(qgetenv("XDG_RUNTIME_DIR")));
    if (!runtime.isEmpty() && QDir::isAbsolutePath(runtime) && socketNameFits(runtime) &&
        isPrivateFolder(runtime, false))
        return runtime;
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    if (cache.isEmpty()) {
        setFailure(problem, QStringLiteral("no cache folder to keep the lock in"));
        return {};
    }
    QDir().mkpath(cache);
    const QString folder = QDir::cleanPath(cache + QStringLiteral("/vantora"));
    return isPrivateFolder(folder, true, problem) ? folder : QString();
#endif
}

QString SingleInstance::lockFilePath()
{
    const QString folder = runtimeFolder();
    return folder.isEmpty() ? QString() : folder + QLatin1Char('/') + baseName() + QStringLiteral(".lock");
}

QString SingleInstance::serverName()
{
#ifdef Q_OS_WIN
    // Pipe names are machine-wide: the user's name keeps two users' copies apart.
    return baseName() + QLatin1Char('-') + QString::fromLocal8Bit(qgetenv("USERNAME"));
#else
    const QString folder = runtimeFolder();
    return folder.isEmpty() ? QString() : folder + QLatin1Char('/') + baseName() + QStringLiteral(".socket");
#endif
}

SingleInstance::Claim SingleInstance::claim(QString *problem)
{
    if (m_lock)
        return Claim::Ours;
    QString why;
    const QString folder = runtimeFolder(&why);
    if (folder.isEmpty()) {
        setFailure(problem, why);
        return Claim::Unavailable;
    }
    const QString path = folder + QLatin1Char('/') + baseName() + QStringLiteral(".lock");
    auto lock = std::make_unique<HeldFileLock>();
    QString cause;
    switch (lock->tryLock(path, &cause)) {
    case HeldFileLock::Result::Taken:
        m_lock = std::move(lock);
        return Claim::Ours;
    case HeldFileLock::Result::HeldElsewhere:
        return Claim::HeldElsewhere;
    case HeldFileLock::Result::PermissionDenied:
        setFailure(problem, QStringLiteral("the lock file %1 cannot be made: permission denied")
                                .arg(QDir::toNativeSeparators(path)));
        break;
    case HeldFileLock::Result::Failed:
        setFailure(
            problem,
            QStringLiteral("the lock file %1 cannot be used: %2").arg(QDir::toNativeSeparators(path), cause));
        break;
    }
    return Claim::Unavailable;
}

bool SingleInstance::listen(QString *error)
{
    if (m_listener)
        return true;
    // Without the lock the socket name may be another copy's: never take it over.
    if (!m_lock)
        return setFailure(error, QStringLiteral("this copy does not hold the lock"));
    const QString name = serverName();
    if (name.isEmpty())
        return setFailure(error, QStringLiteral("no private folder for the socket"));
    auto listener = std::make_unique<InstanceListener>(
        this, [this](quintptr descriptor) { acceptConnection(descriptor); });
    if (!listener->open(name, error))
        return false;
    m_listener = std::move(listener);
    // Its thread ends with the event loop, before the application object goes.
    if (QCoreApplication::instance())
        connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this,
                [this] { m_listener.reset(); });
    return true;
}

bool SingleInstance::isListening() const
{
    return m_listener && m_listener->isListening();
}

void SingleInstance::setHandler(Handler handler)
{
    m_handler = std::move(handler);
    answerWaiting();
}

void SingleInstance::acceptConnection(quintptr descriptor)
{
    auto *socket = new LocalSocket(this);
    if (!socket->setSocketDescriptor(descriptor)) {
        delete socket;
#ifndef Q_OS_WIN
        ::close(int(descriptor));
#endif
        return;
    }
    if (m_pending.size() >= kMaxOpenConnections) {
        // The sender tries again; a launch that waits gets its turn once others are done.
        socket->abort();
        socket->deleteLater();
        return;
    }
    m_pending.insert(socket, {});
    socket->setReadBufferSize(kHeaderBytes + kMaxMessageBytes + 1);
    connect(socket, &LocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
    connect(socket, &LocalSocket::disconnected, this, [this, socket] {
        m_pending.remove(socket);
        socket->deleteLater();
    });
    QTimer::singleShot(kConnectionTimeoutMs, socket, [this, socket] {
        QByteArray request;
        bool invalid = false;
        // A whole request waiting for the start to finish is kept; a slow one is not.
        if (m_pending.contains(socket) && !takeMessage(m_pending.value(socket), &request, &invalid))
            drop(socket);
    });
    readRequest(socket);
}

void SingleInstance::readRequest(LocalSocket *socket)
{
    const auto it = m_pending.find(socket);
    if (it == m_pending.end())
        return;
    it->append(socket->read(kHeaderBytes + kMaxMessageBytes + 1 - it->size()));
    if (it->size() > kHeaderBytes + kMaxMessageBytes) {
        drop(socket);
        return;
    }
    answerWaiting();
}

void SingleInstance::drop(LocalSocket *socket)
{
    m_pending.remove(socket);
    socket->disconnect(this);
    socket->abort();
    socket->deleteLater();
}

void SingleInstance::answerWaiting()
{
    if (!m_handler)
        return;
    // Copied: answering may drop connections from the table.
    const QList<LocalSocket *> sockets = m_pending.keys();
    for (LocalSocket *socket : sockets) {
        QByteArray request;
        bool invalid = false;
        if (takeMessage(m_pending.value(socket), &request, &invalid)) {
            m_pending.remove(socket);
            answer(socket, request);
        } else if (invalid) {
            drop(socket);
        }
    }
}

void SingleInstance::answer(LocalSocket *socket, const QByteArray &request)
{
    const QByteArray reply = m_handler(request);
    socket->write(frame(reply));
    // Out now: what the request asks for runs next and may keep this thread busy for longer than
    // the launch waits for its answer.
    socket->flush();
    socket->disconnectFromServer();
}

SingleInstance::Delivery SingleInstance::deliver(const QByteArray &request, QByteArray *reply, int timeoutMs,
                                                 QString *error)
{
    const QDeadlineTimer deadline(timeoutMs);
    QString why = QStringLiteral("no lock folder");
    for (;;) {
        const QString name = serverName();
        if (!name.isEmpty()) {
            LocalSocket socket;
            socket.connectToServer(name);
            if (socket.waitForConnected(int(deadline.remainingTime()))) {
                socket.write(frame(request));
                QByteArray message;
                switch (readAnswer(socket, deadline, &message)) {
                case Answer::Complete:
                    if (reply)
                        *reply = message;
                    return Delivery::Answered;
                case Answer::Missing:
                    setFailure(error, QStringLiteral("the running copy did not answer"));
                    return Delivery::Unanswered;
                case Answer::ClosedUnread:
                    why = QStringLiteral("it is busy with other connections");
                    break;
                }
            } else {
                why = socket.errorString();
            }
        }
        if (deadline.hasExpired()) {
            setFailure(error, QStringLiteral("the running copy cannot be reached (%1)").arg(why));
            return Delivery::Unreachable;
        }
        // Not listening yet (the running copy is still starting), or turned away.
        QThread::msleep(kConnectRetryMs);
    }
}
