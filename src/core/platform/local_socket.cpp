#include "core/platform/local_socket.h"

#include "core/platform/socket_address.h"

#include <QAbstractEventDispatcher>
#include <QDeadlineTimer>
#include <QThread>

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {
// How much is taken from the system at a time when the read buffer has no limit.
constexpr qint64 kReadChunkBytes = 16 * 1024;
// How soon a server whose queue was full is asked again.
constexpr int kConnectRetryMs = 10;

int pollTimeout(const QDeadlineTimer &deadline)
{
    return deadline.isForever() ? -1 : int(qMin<qint64>(deadline.remainingTime(), INT_MAX));
}
} // namespace

LocalSocket::LocalSocket(QObject *parent)
    : QObject(parent), m_readNotifier(QSocketNotifier::Read, this),
      m_writeNotifier(QSocketNotifier::Write, this)
{
    connect(&m_readNotifier, &QSocketNotifier::activated, this, &LocalSocket::takeIncoming);
    connect(&m_writeNotifier, &QSocketNotifier::activated, this, &LocalSocket::send);
}

LocalSocket::~LocalSocket()
{
    // Unregistered before the descriptor goes; no signal from an object being destroyed.
    m_readNotifier.setSocket(-1);
    m_writeNotifier.setSocket(-1);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

bool LocalSocket::setSocketDescriptor(quintptr descriptor)
{
    const int flags = ::fcntl(int(descriptor), F_GETFL);
    if (m_state != UnconnectedState || flags < 0 ||
        ::fcntl(int(descriptor), F_SETFL, flags | O_NONBLOCK) < 0) {
        m_errorString = m_state != UnconnectedState ? QStringLiteral("the socket is in use already")
                                                    : qt_error_string(errno);
        return false;
    }
    attach(int(descriptor));
    m_state = ConnectedState;
    updateNotifiers();
    return true;
}

void LocalSocket::connectToServer(const QString &name)
{
    if (m_state != UnconnectedState)
        return;
    m_errorString.clear();
    sockaddr_un address;
    if (!FillSocketAddress(name, &address, &m_errorString))
        return;
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0) {
        m_errorString = qt_error_string(errno);
        return;
    }
    attach(descriptor);
    m_serverName = name;
    m_state = ConnectingState;
    connectOnce();
}

void LocalSocket::connectOnce()
{
    sockaddr_un address;
    FillSocketAddress(m_serverName, &address, nullptr);
    int result = 0;
    do {
        result = ::connect(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
    } while (result != 0 && errno == EINTR);
    if (result == 0 || errno == EISCONN) {
        m_state = ConnectedState;
        updateNotifiers();
    } else if (errno != EAGAIN) {
        // Nothing there, or a socket nobody listens on (left by a copy that crashed).
        fail(errno);
    }
}

bool LocalSocket::waitForConnected(int msecs)
{
    const QDeadlineTimer deadline(msecs);
    while (m_state == ConnectingState) {
        if (deadline.hasExpired()) {
            fail(ETIMEDOUT);
            break;
        }
        const int remaining = pollTimeout(deadline);
        QThread::msleep(ulong(remaining < 0 ? kConnectRetryMs : qMin(remaining, kConnectRetryMs)));
        connectOnce();
    }
    return m_state == ConnectedState;
}

qint64 LocalSocket::write(const QByteArray &data)
{
    if (m_state != ConnectedState) {
        m_errorString = QStringLiteral("the socket is not connected");
        return -1;
    }
    m_writeBuffer += data;
    send();
    return m_state == UnconnectedState ? -1 : data.size();
}

bool LocalSocket::flush()
{
    return send();
}

bool LocalSocket::send()
{
    bool sent = false;
    while (m_descriptor >= 0 && !m_writeBuffer.isEmpty()) {
        // No SIGPIPE when the other end has gone: that is an error to report, not a reason to end.
        const ssize_t count =
            ::send(m_descriptor, m_writeBuffer.constData(), size_t(m_writeBuffer.size()), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
            break;
        if (count < 0) {
            fail(errno);
            return sent;
        }
        m_writeBuffer.remove(0, count);
        sent = true;
    }
    if (m_state == ClosingState && m_writeBuffer.isEmpty())
        closeConnection({});
    else
        updateNotifiers();
    return sent;
}

QByteArray LocalSocket::read(qint64 maxSize)
{
    const QByteArray bytes = m_readBuffer.left(qMax<qint64>(maxSize, 0));
    m_readBuffer.remove(0, bytes.size());
    // Reading may have made room for more.
    updateNotifiers();
    return bytes;
}

void LocalSocket::setReadBufferSize(qint64 size)
{
    m_readBufferSize = qMax<qint64>(size, 0);
    updateNotifiers();
}

bool LocalSocket::hasRoom() const
{
    return m_readBufferSize == 0 || m_readBuffer.size() < m_readBufferSize;
}

void LocalSocket::takeIncoming()
{
    const qsizetype before = m_readBuffer.size();
    int endCause = -1; // still open; 0: closed by the other end; else the error
    while (endCause < 0 && m_descriptor >= 0 && hasRoom()) {
        const qsizetype start = m_readBuffer.size();
        const qint64 room =
            m_readBufferSize == 0 ? kReadChunkBytes : qMin(kReadChunkBytes, m_readBufferSize - start);
        m_readBuffer.resize(start + room);
        const ssize_t count = ::recv(m_descriptor, m_readBuffer.data() + start, size_t(room), 0);
        const int cause = errno;
        m_readBuffer.resize(start + qMax<ssize_t>(count, 0));
        if (count > 0 || (count < 0 && cause == EINTR))
            continue;
        if (count < 0 && (cause == EAGAIN || cause == EWOULDBLOCK))
            break;
        endCause = count == 0 ? 0 : cause;
    }
    updateNotifiers();
    // The bytes first: those that came before the end are still to be read after it.
    if (m_readBuffer.size() > before)
        emit readyRead();
    if (endCause >= 0 && m_descriptor >= 0)
        closeConnection(endCause == 0 ? QStringLiteral("The other end closed the connection")
                                      : qt_error_string(endCause));
}

bool LocalSocket::waitForReadyRead(int msecs)
{
    const QDeadlineTimer deadline(msecs);
    const qsizetype before = m_readBuffer.size();
    while (m_state == ConnectedState || m_state == ClosingState) {
        pollfd waiting = {m_descriptor,
                          short((hasRoom() ? POLLIN : 0) | (m_writeBuffer.isEmpty() ? 0 : POLLOUT)), 0};
        if (waiting.events == 0)
            return false;
        const int ready = ::poll(&waiting, 1, pollTimeout(deadline));
        if (ready < 0 && errno != EINTR) {
            fail(errno);
            break;
        }
        if (ready > 0 && (waiting.revents & POLLOUT))
            send();
        if (ready > 0 && (waiting.revents & (POLLIN | POLLHUP | POLLERR))) {
            takeIncoming();
            if (m_readBuffer.size() > before)
                return true;
        }
        if (deadline.hasExpired())
            break;
    }
    return false;
}

void LocalSocket::disconnectFromServer()
{
    if (m_state == ConnectingState)
        closeConnection({});
    if (m_state != ConnectedState)
        return;
    m_state = ClosingState;
    send();
}

void LocalSocket::abort()
{
    closeConnection({});
}

void LocalSocket::attach(int descriptor)
{
    m_descriptor = descriptor;
    m_readBuffer.clear();
    m_writeBuffer.clear();
    m_readNotifier.setSocket(descriptor);
    m_writeNotifier.setSocket(descriptor);
}

void LocalSocket::fail(int error)
{
    closeConnection(qt_error_string(error));
}

void LocalSocket::closeConnection(const QString &why)
{
    if (!why.isEmpty())
        m_errorString = why;
    const bool wasConnected = m_state == ConnectedState || m_state == ClosingState;
    m_state = UnconnectedState;
    m_writeBuffer.clear();
    updateNotifiers();
    m_readNotifier.setSocket(-1);
    m_writeNotifier.setSocket(-1);
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    if (wasConnected)
        emit disconnected();
}

void LocalSocket::updateNotifiers()
{
    // A launch handing its request over waits in the calls above, without an event loop.
    if (!QAbstractEventDispatcher::instance())
        return;
    const bool open = m_state == ConnectedState || m_state == ClosingState;
    m_readNotifier.setEnabled(open && hasRoom());
    m_writeNotifier.setEnabled(open && !m_writeBuffer.isEmpty());
}
