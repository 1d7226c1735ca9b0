#include "shell/instance_listener.h"

#include "core/platform/local_server.h"

#include <QLoggingCategory>
#include <QTimer>

#ifdef Q_OS_WIN
#include <QChildEvent>
#endif

namespace {
Q_LOGGING_CATEGORY(lcInstance, "vantora.instance", QtInfoMsg)

// How soon a server that could not be opened again is tried once more (descriptors run out
// for a while when a flood of connections arrives).
constexpr int kReopenRetryMs = 1000;
} // namespace

// Every call to it is made on the listening thread.
class ListeningServer : public LocalServer
{
public:
    ListeningServer(QObject *receiver, InstanceListener::Accept accept)
        : m_receiver(receiver), m_accept(std::move(accept))
    {
#ifndef Q_OS_WIN
        // Queued: the server closed itself while accepting, and is opened again after that.
        connect(this, &LocalServer::acceptFailed, this, [this] { reopenIfClosed(); }, Qt::QueuedConnection);
#endif
    }

    bool openAt(const QString &name, QString *error)
    {
        m_name = name;
        // The caller holds the lock, so a socket already there was left by a copy that crashed.
        LocalServer::removeServer(name);
#ifdef Q_OS_WIN
        // Pipe names are machine-wide: only this user may connect.
        setSocketOptions(LocalServer::UserAccessOption);
#endif
        // Elsewhere the socket sits in a folder only this user can enter.
        if (listen(name))
            return true;
        if (error)
            *error = errorString();
        return false;
    }

    void shutDown()
    {
        m_closing = true;
        close();
    }

protected:
    void incomingConnection(quintptr descriptor) override
    {
        // The receiver owns the listener, so it outlives every connection handed to it.
        QMetaObject::invokeMethod(
            m_receiver, [accept = m_accept, descriptor] { accept(descriptor); }, Qt::QueuedConnection);
    }

#ifdef Q_OS_WIN
    void childEvent(QChildEvent *event) override
    {
        // A failed accept makes Qt close the server and drop its notifier, without a signal:
        // the notifier going is the sign.
        if (event->removed() && !m_closing && !m_checkQueued) {
            m_checkQueued = true;
            QMetaObject::invokeMethod(this, [this] { reopenIfClosed(); }, Qt::QueuedConnection);
        }
        LocalServer::childEvent(event);
    }
#endif

private:
    void reopenIfClosed()
    {
        m_checkQueued = false;
        if (m_closing || isListening())
            return;
        if (!m_retrying)
            qCWarning(lcInstance, "later launches could no longer connect (%s); listening again",
                      qPrintable(errorString()));
        close();
        QString error;
        m_retrying = !openAt(m_name, &error);
        if (m_retrying) {
            qCWarning(lcInstance, "cannot listen for later launches yet: %s", qPrintable(error));
            QTimer::singleShot(kReopenRetryMs, this, [this] { reopenIfClosed(); });
        }
    }

    QObject *m_receiver;
    InstanceListener::Accept m_accept;
    QString m_name;
    bool m_closing = false;
    bool m_checkQueued = false;
    bool m_retrying = false;
};

InstanceListener::InstanceListener(QObject *receiver, Accept accept)
    : m_server(new ListeningServer(receiver, std::move(accept)))
{
    m_thread.setObjectName(QStringLiteral("later launches"));
    m_server->moveToThread(&m_thread);
    m_thread.start();
}

InstanceListener::~InstanceListener()
{
    QMetaObject::invokeMethod(
        m_server,
        [server = m_server] {
            server->shutDown();
            delete server;
        },
        Qt::BlockingQueuedConnection);
    m_thread.quit();
    m_thread.wait();
}

bool InstanceListener::open(const QString &name, QString *error)
{
    bool opened = false;
    QMetaObject::invokeMethod(
        m_server, [&] { opened = m_server->openAt(name, error); }, Qt::BlockingQueuedConnection);
    return opened;
}

bool InstanceListener::isListening() const
{
    bool listening = false;
    QMetaObject::invokeMethod(
        m_server, [&] { listening = m_server->isListening(); }, Qt::BlockingQueuedConnection);
    return listening;
}
