#include "core/network_policy.h"

#include "core/in_process_host.h"

namespace {
// 127.0.0.0/8, written out in full as a URL's host gives it.
bool isLoopbackIPv4(QStringView host)
{
    const auto parts = host.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    for (const QStringView part : parts) {
        bool ok = false;
        const uint value = part.toUInt(&ok);
        if (!ok || value > 255 || part.isEmpty() || part.size() > 3)
            return false;
    }
    return parts.first().toUInt() == 127;
}

// ::1, or an IPv4 loopback address mapped into IPv6; a URL's host holds IPv6 in its short form.
bool isLoopbackIPv6(QStringView host)
{
    if (host == QLatin1String("::1"))
        return true;
    const QLatin1String mapped("::ffff:");
    return host.startsWith(mapped, Qt::CaseInsensitive) && isLoopbackIPv4(host.mid(mapped.size()));
}
} // namespace

bool NetworkReadsKeptLocal()
{
    return !qEnvironmentVariableIsEmpty("VANTORA_OFFLINE");
}

bool NetworkReadAllowed(const QUrl &url)
{
    if (!NetworkReadsKeptLocal())
        return true;
    const QString host = url.host();
    if (host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || IsInProcessHost(host))
        return true;
    return isLoopbackIPv4(host) || isLoopbackIPv6(host);
}

QString NetworkRefusedText(const QUrl &url)
{
    return QStringLiteral("Reading %1 is not allowed while VANTORA_OFFLINE is set.").arg(url.host());
}
