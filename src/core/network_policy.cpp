#include "core/network_policy.h"

#include "core/in_process_host.h"

#include <QHostAddress>

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
