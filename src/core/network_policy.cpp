#include "core/network_policy.h"

#include "core/in_process_host.h"

#include <QHostAddress>
#include <QNetworkReply>
#include <QTimer>

namespace {
class RefusedReply : public QNetworkReply
{
public:
    RefusedReply(const QUrl &url, QObject *parent) : QNetworkReply(parent)
    {
        setUrl(url);
        setOperation(QNetworkAccessManager::GetOperation);
        setRequest(QNetworkRequest(url));
        open(QIODevice::ReadOnly);
        setError(ContentAccessDenied, NetworkRefusedText(url));
        QTimer::singleShot(0, this, [this] {
            setFinished(true);
            emit errorOccurred(ContentAccessDenied);
            emit finished();
        });
    }

    void abort() override {}
    bool isSequential() const override { return true; }
    qint64 bytesAvailable() const override { return 0; }

protected:
    qint64 readData(char *, qint64) override { return -1; }
};
} // namespace

bool NetworkReadAllowed(const QUrl &url)
{
    if (qEnvironmentVariableIsEmpty("VANTORA_OFFLINE"))
        return true;
    const QString host = url.host();
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || IsInProcessHost(host))
        return true;
    const QHostAddress address(host);
    return !address.isNull() && address.isLoopback();
}

QString NetworkRefusedText(const QUrl &url)
{
    return QStringLiteral("Reading %1 is not allowed while VANTORA_OFFLINE is set.").arg(url.host());
}

QNetworkReply *RefusedNetworkReply(const QUrl &url, QObject *parent)
{
    return new RefusedReply(url, parent);
}
