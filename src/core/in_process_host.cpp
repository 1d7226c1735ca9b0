#include "core/in_process_host.h"

#include "core/network_access.h"

#include <QHash>
#include <QMetaObject>

InProcessReply::InProcessReply(QObject *parent) : QObject(parent) {}

void InProcessReply::finish(const QByteArray &data)
{
    if (m_finished)
        return;
    m_data = data;
    settle();
}

void InProcessReply::fail(int errorNumber, const QString &description)
{
    if (m_finished)
        return;
    m_failed = true;
    m_errorNumber = errorNumber;
    m_errorDescription = description;
    settle();
}

void InProcessReply::settle()
{
    m_finished = true;
    // Queued with the reply as context: the signal comes from the event loop even when the
    // source answers inside its handler, and a reply deleted meanwhile takes the call with it.
    QMetaObject::invokeMethod(this, [this] { emit finished(); }, Qt::QueuedConnection);
}

namespace {

QHash<QString, InProcessHandler> &registry()
{
    static QHash<QString, InProcessHandler> hosts;
    return hosts;
}

} // namespace

void RegisterInProcessHost(const QString &host, InProcessHandler handler)
{
    registry().insert(host.toLower(), std::move(handler));
}

void UnregisterInProcessHost(const QString &host)
{
    registry().remove(host.toLower());
}

bool IsInProcessHost(const QString &host)
{
    return !host.isEmpty() && registry().contains(host.toLower());
}

InProcessReply *StartInProcessRead(const QUrl &url, int options)
{
    const QString host = url.host().toLower();
    const auto it = registry().constFind(host);
    if (host.isEmpty() || it == registry().constEnd() || !*it)
        return nullptr;
    // Copied: a handler may register or unregister hosts while it runs.
    const InProcessHandler handler = *it;
    InProcessReply *reply = handler(url, options);
    if (!reply) {
        // A source that gave nothing still gets its reader a completion.
        reply = new InProcessReply;
        reply->fail(NetworkError::UnknownServer,
                    QStringLiteral("The built-in source for %1 gave no answer.").arg(host));
    }
    return reply;
}
