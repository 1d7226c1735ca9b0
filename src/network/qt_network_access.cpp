// The network module: reads with Qt Network, loaded by the program with its first read (see
// core/network_access.h).

#include "core/network_access.h"
#include "core/program_module.h"
#include "network/bounded_network_read.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkInformation>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>

#include <utility>

// The program's error numbers are Qt's.
constexpr bool sameNumber(int ours, QNetworkReply::NetworkError qts)
{
    return ours == int(qts);
}
static_assert(sameNumber(NetworkError::ConnectionRefused, QNetworkReply::ConnectionRefusedError));
static_assert(sameNumber(NetworkError::RemoteHostClosed, QNetworkReply::RemoteHostClosedError));
static_assert(sameNumber(NetworkError::HostNotFound, QNetworkReply::HostNotFoundError));
static_assert(sameNumber(NetworkError::Timeout, QNetworkReply::TimeoutError));
static_assert(sameNumber(NetworkError::OperationCanceled, QNetworkReply::OperationCanceledError));
static_assert(sameNumber(NetworkError::SslHandshakeFailed, QNetworkReply::SslHandshakeFailedError));
static_assert(sameNumber(NetworkError::TemporaryNetworkFailure, QNetworkReply::TemporaryNetworkFailureError));
static_assert(sameNumber(NetworkError::NetworkSessionFailed, QNetworkReply::NetworkSessionFailedError));
static_assert(sameNumber(NetworkError::TooManyRedirects, QNetworkReply::TooManyRedirectsError));
static_assert(sameNumber(NetworkError::InsecureRedirect, QNetworkReply::InsecureRedirectError));
static_assert(sameNumber(NetworkError::UnknownNetwork, QNetworkReply::UnknownNetworkError));
static_assert(sameNumber(NetworkError::ContentAccessDenied, QNetworkReply::ContentAccessDenied));
static_assert(sameNumber(NetworkError::UnknownContent, QNetworkReply::UnknownContentError));
static_assert(sameNumber(NetworkError::ProtocolUnknown, QNetworkReply::ProtocolUnknownError));
static_assert(sameNumber(NetworkError::ProtocolFailure, QNetworkReply::ProtocolFailure));
static_assert(sameNumber(NetworkError::UnknownServer, QNetworkReply::UnknownServerError));

namespace {

NetworkReadResult resultOf(QNetworkReply *reply)
{
    NetworkReadResult result;
    BoundedNetworkRead *guard = BoundedNetworkRead::of(reply);
    result.body = guard->takeData();
    result.stop = guard->stopReason();
    result.stopPhrase = guard->stopPhrase();
    result.error = reply->error();
    result.errorString = reply->errorString();
    result.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    result.reasonPhrase = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString().trimmed();
    result.contentType = reply->rawHeader("Content-Type");
    result.lastModified = reply->rawHeader("Last-Modified");
    result.expires = reply->rawHeader("Expires");
    return result;
}

class ReplyTransfer : public NetworkTransfer
{
public:
    ReplyTransfer(QNetworkReply *reply, NetworkReadDone done) : m_reply(reply), m_done(std::move(done))
    {
        m_finished = QObject::connect(reply, &QNetworkReply::finished, reply, [this] { finish(); });
    }

    ~ReplyTransfer() override
    {
        QObject::disconnect(m_finished);
        if (QNetworkReply *reply = m_reply) {
            reply->abort();
            reply->deleteLater();
        }
    }

private:
    void finish()
    {
        QNetworkReply *reply = std::exchange(m_reply, nullptr);
        QObject::disconnect(m_finished);
        reply->deleteLater();
        const NetworkReadResult result = resultOf(reply);
        // Last: the callback may delete this transfer.
        const NetworkReadDone done = std::move(m_done);
        done(result);
    }

    QPointer<QNetworkReply> m_reply;
    NetworkReadDone m_done;
    QMetaObject::Connection m_finished;
};

class QtNetworkAccess : public NetworkAccess
{
public:
    std::unique_ptr<NetworkTransfer> get(const NetworkGet &get, NetworkReadDone done) override
    {
        QNetworkRequest request(get.url);
        request.setHeader(QNetworkRequest::UserAgentHeader, get.userAgent);
        for (const auto &[name, value] : get.headers)
            request.setRawHeader(name, value);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
        if (get.forceFetch) {
            request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
            request.setRawHeader("Cache-Control", "no-cache");
            request.setRawHeader("Pragma", "no-cache");
        }
        QNetworkReply *reply = manager()->get(request);
        BoundedNetworkRead::watch(reply, get.limits);
        return std::make_unique<ReplyTransfer>(reply, std::move(done));
    }

    bool watchReachability(QObject *context, std::function<void()> online) override
    {
        if (!QNetworkInformation::instance() && !QNetworkInformation::loadDefaultBackend())
            return false;
        QObject::connect(QNetworkInformation::instance(), &QNetworkInformation::reachabilityChanged, context,
                         [online = std::move(online)](QNetworkInformation::Reachability reachability) {
                             if (reachability == QNetworkInformation::Reachability::Online)
                                 online();
                         });
        return true;
    }

private:
    // One for every read, so that reads of one host share its connections. It goes with the
    // application object, before Qt's network machinery is torn down.
    QNetworkAccessManager *manager()
    {
        if (!m_manager)
            m_manager = new QNetworkAccessManager(QCoreApplication::instance());
        return m_manager;
    }

    QPointer<QNetworkAccessManager> m_manager;
};

} // namespace

VANTORA_MODULE_EXPORT NetworkAccess *vantora_create_network_access()
{
    return new QtNetworkAccess;
}
