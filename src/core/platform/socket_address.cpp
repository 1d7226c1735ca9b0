#include "core/platform/socket_address.h"

#include <QFile>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

bool FillSocketAddress(const QString &path, sockaddr_un *address, QString *error)
{
    const QByteArray native = QFile::encodeName(path);
    std::memset(address, 0, sizeof(*address));
    address->sun_family = AF_UNIX;
    QString problem;
    if (native.isEmpty())
        problem = QStringLiteral("no socket name was given");
    // The terminating zero must fit too.
    else if (size_t(native.size()) >= sizeof(address->sun_path))
        problem = QStringLiteral("the socket path %1 is too long: a socket path may have at most %2 bytes")
                      .arg(path)
                      .arg(sizeof(address->sun_path) - 1);
    if (!problem.isEmpty()) {
        if (error)
            *error = problem;
        return false;
    }
    std::memcpy(address->sun_path, native.constData(), size_t(native.size()));
    return true;
}
