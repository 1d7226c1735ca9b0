#include "core/web_downloader.h"

#include "core/in_process_host.h"

#include <QUrl>

#include <limits>

namespace {

// The request key: milliseconds since the system started (QElapsedTimer's monotonic clock),
// cut to 32 bits like a system tick count. 0 means idle, so a start never gets it.
quint32 requestKeyOf(const QElapsedTimer &started)
{
    const auto key = quint32(started.msecsSinceReference());
    return key != 0 ? key : 1;
}

QString sentence(QString text)
{
    text = text.trimmed();
    if (!text.isEmpty() && !text.endsWith(QLatin1Char('.')))
        text += QLatin1Char('.');
    return text;
}

QString statusName(int status)
{
    switch (status) {
    case 400: return QStringLiteral("Bad Request");
    case 401: return QStringLiteral("Unauthorized");
    case 403: return QStringLiteral("Forbidden");
    case 404: return QStringLiteral("Not Found");
    case 405: return QStringLiteral("Method Not Allowed");
    case 408: return QStringLiteral("Request Timeout");
    case 410: return QStringLiteral("Gone");
    case 429: return QStringLiteral("Too Many Requests");
    case 500: return QStringLiteral("Internal Server Error");
    case 501: return QStringLiteral("Not Implemented");
    case 502: return QStringLiteral("Bad Gateway");
    case 503: return QStringLiteral("Service Unavailable");
    case 504: return QStringLiteral("Gateway Timeout");
    default: return {};
    }
}

QString describeStatus(const NetworkReadResult &result)
{
    const int status = result.status;
    QString name = statusName(status);
    if (name.isEmpty())
        name = result.reasonPhrase;
    return name.isEmpty() ? QStringLiteral("The server answered %1.").arg(status)
                          : QStringLiteral("The server answered %1 (%2).").arg(status).arg(name);
}

QString describeNetworkError(const QUrl &url, const NetworkReadResult &result)
{
    const QString host = url.host().isEmpty() ? url.toDisplayString() : url.host();
    switch (result.error) {
    case NetworkError::ConnectionRefused:
        return QStringLiteral("Could not connect to %1: connection refused.").arg(host);
    case NetworkError::HostNotFound:
        return QStringLiteral("The server %1 was not found.").arg(host);
    case NetworkError::Timeout:
        return QStringLiteral("The connection to %1 timed out.").arg(host);
    case NetworkError::RemoteHostClosed:
        return QStringLiteral("%1 closed the connection before the reply was complete.").arg(host);
    case NetworkError::TemporaryNetworkFailure:
    case NetworkError::NetworkSessionFailed:
        return QStringLiteral("The network is not available.");
    case NetworkError::SslHandshakeFailed:
        return QStringLiteral("A secure connection to %1 could not be made: %2")
            .arg(host, sentence(result.errorString));
    case NetworkError::TooManyRedirects:
        return QStringLiteral("The server %1 redirected too many times.").arg(host);
    case NetworkError::InsecureRedirect:
        return QStringLiteral("The server %1 redirected to an address that is not secure.").arg(host);
    case NetworkError::ProtocolUnknown:
        return QStringLiteral("The address %1 cannot be read: its protocol is not supported.")
            .arg(url.toDisplayString());
    default:
        return QStringLiteral("Could not read from %1: %2").arg(host, sentence(result.errorString));
    }
}

} // namespace

WebDownloader::WebDownloader(qint64 replyLimit, QObject *parent) : QObject(parent), m_replyLimit(replyLimit)
{
    setObjectName(QStringLiteral("cls_dlmgr1"));
}

WebDownloader::~WebDownloader()
{
    cancelRead();
}

QByteArray WebDownloader::userAgent()
{
    return QStringLiteral("Vantora/%1.%2.%3")
        .arg(VANTORA_VERSION_MAJOR)
        .arg(VANTORA_VERSION_MINOR)
        .arg(VANTORA_VERSION_PATCH)
        .toLatin1();
}

void WebDownloader::DownloadStart(const QString &url, int options)
{
    if (url.isEmpty())
        return;
    if (m_requestKey != 0)
        cancelRead();
    m_duration = 0;
    m_started.start();
    m_requestKey = requestKeyOf(m_started);

    const QUrl address(url);
    if (IsInProcessHost(address.host())) {
        if (InProcessReply *reply = StartInProcessRead(address, options)) {
            startInProcessRead(reply);
            return;
        }
    }
    startNetworkRead(address, options);
}

void WebDownloader::DownloadCancel()
{
    // The key stays: StatusBusy remains true until the next start.
    cancelRead();
}

// A cancelled read never completes: its reply is disconnected (or, in-process, deleted) here,
// so a completion that was already on its way is dropped rather than delivered as the current
// read's. No host wants the answer to a question it has taken back.
void WebDownloader::cancelRead()
{
    m_transfer.reset();
    if (InProcessReply *reply = m_inProcess) {
        m_inProcess = nullptr;
        delete reply;
    }
}

void WebDownloader::startNetworkRead(const QUrl &url, int options)
{
    NetworkGet request;
    request.url = url;
    request.userAgent = userAgent();
    request.headers = m_extraHeaders;
    request.forceFetch = (options & ForceFetch) != 0;
    // The size is held to the limit as the bytes arrive; time limits are the host's to set.
    request.limits = {m_replyLimit, 0, 0};
    m_transfer = StartNetworkGet(request, [this, url](const NetworkReadResult &result) {
        m_transfer.reset();
        onNetworkFinished(url, result);
    });
}

void WebDownloader::startInProcessRead(InProcessReply *reply)
{
    reply->setParent(this);
    m_inProcess = reply;
    connect(reply, &InProcessReply::finished, this, [this, reply] { onInProcessFinished(reply); });
}

void WebDownloader::onNetworkFinished(const QUrl &url, const NetworkReadResult &result)
{
    settle();
    if (result.refused)
        fail(result.error, result.errorString);
    else if (result.stop == NetworkReadResult::Stop::TooLarge)
        failTooLarge();
    else if (result.status >= 400)
        fail(result.status, describeStatus(result));
    else if (result.error != NetworkError::None)
        fail(result.error, describeNetworkError(url, result));
    else
        complete(result.body, result.contentType);
}

void WebDownloader::onInProcessFinished(InProcessReply *reply)
{
    if (reply != m_inProcess)
        return;
    m_inProcess = nullptr;
    reply->deleteLater();
    settle();

    if (reply->hasFailed())
        fail(reply->errorNumber(), reply->errorDescription());
    else
        complete(reply->data());
}

void WebDownloader::settle()
{
    m_duration = int(qMin<qint64>(m_started.elapsed(), std::numeric_limits<int>::max()));
    m_requestKey = 0;
}

void WebDownloader::complete(const QByteArray &data, const QByteArray &contentType)
{
    m_contentType = contentType;
    if (data.size() > m_replyLimit) {
        failTooLarge();
        return;
    }
    m_data = data;
    emit DownloadComplete(int(m_data.size()));
}

void WebDownloader::fail(int errorNumber, const QString &description)
{
    // The bytes of the last completed read stay.
    emit DownloadFailed(errorNumber, description);
}

void WebDownloader::failTooLarge()
{
    fail(NetworkError::UnknownContent,
         QStringLiteral("The reply was larger than %1 KB, the most this read accepts; it was not kept.")
             .arg((m_replyLimit + 1023) / 1024));
}
