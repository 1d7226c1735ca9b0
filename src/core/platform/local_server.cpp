#include "core/platform/local_server.h"

#include "core/platform/socket_address.h"

#include <QFile>

#include <cerrno>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {
// Connections the system keeps waiting until they are accepted, as QLocalServer does.
constexpr int kListenBacklog = 50;
} // namespace

LocalServer::LocalServer(QObject *parent) : QObject(parent), m_notifier(QSocketNotifier::Read, this)
{
    connect(&m_notifier, &QSocketNotifier::activated, this, &LocalServer::acceptWaiting);
}

LocalServer::~LocalServer()
{
    close();
}

bool LocalServer::listen(const QString &name)
{
    if (isListening())
        return fail(QStringLiteral("already listening on %1").arg(m_name));
    sockaddr_un address;
    QString problem;
    if (!FillSocketAddress(name, &address, &problem))
        return fail(problem);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (descriptor < 0)
        return fail(qt_error_string(errno));
    if (::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0 ||
        ::listen(descriptor, kListenBacklog) != 0) {
        const int cause = errno;
        ::close(descriptor);
        return fail(qt_error_string(cause));
    }
    m_descriptor = descriptor;
    m_name = name;
    m_errorString.clear();
    m_notifier.setSocket(descriptor);
    m_notifier.setEnabled(true);
    return true;
}

void LocalServer::close()
{
    if (!isListening())
        return;
    m_notifier.setEnabled(false);
    m_notifier.setSocket(-1);
    ::close(m_descriptor);
    m_descriptor = -1;
    QFile::remove(m_name);
}

bool LocalServer::removeServer(const QString &name)
{
    return ::unlink(QFile::encodeName(name).constData()) == 0 || errno == ENOENT;
}

void LocalServer::incomingConnection(quintptr descriptor)
{
    ::close(int(descriptor));
}

void LocalServer::acceptWaiting()
{
    while (isListening()) {
        const int descriptor = ::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (descriptor >= 0) {
            incomingConnection(quintptr(descriptor));
            continue;
        }
        // Interrupted, or the launch gave up before it was taken: the next one may be there.
        if (errno == EINTR || errno == ECONNABORTED)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            fail(qt_error_string(errno));
            close();
            emit acceptFailed();
        }
        return;
    }
}

bool LocalServer::fail(const QString &why)
{
    m_errorString = why;
    return false;
}
