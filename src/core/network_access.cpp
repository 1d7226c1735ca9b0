#include "core/network_access.h"

#include "core/network_policy.h"
#include "core/program_module.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcNetwork, "vantora.network", QtWarningMsg)

NetworkAccess *loadedAccess(QString *problem)
{
    return ProgramModuleObject<NetworkAccess>(QStringLiteral("vantora_network"), kNetworkModuleEntry, problem);
}

// A read that ends without going out: its result is delivered from the event loop, as a real
// read's would be, so a caller never sees its callback run inside the call that started it.
class SettledTransfer : public NetworkTransfer
{
public:
    SettledTransfer(const NetworkReadResult &result, NetworkReadDone done)
    {
        // The delivery is queued on the application object, not on the transfer, which the
        // callback may delete while it runs.
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [alive = std::weak_ptr<bool>(m_alive), result, done = std::move(done)] {
                if (alive.lock())
                    done(result);
            },
            Qt::QueuedConnection);
    }

private:
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace

bool NetworkErrorNeverReachedServer(int error)
{
    switch (error) {
    case NetworkError::ConnectionRefused:
    case NetworkError::HostNotFound:
    case NetworkError::Timeout:
    case NetworkError::TemporaryNetworkFailure:
    case NetworkError::NetworkSessionFailed:
    case NetworkError::UnknownNetwork:
        return true;
    default:
        return false;
    }
}

std::unique_ptr<NetworkTransfer> StartNetworkGet(const NetworkGet &request, NetworkReadDone done)
{
    NetworkReadResult settled;
    if (!NetworkReadAllowed(request.url)) {
        settled.error = NetworkError::ContentAccessDenied;
        settled.errorString = NetworkRefusedText(request.url);
        settled.refused = true;
        return std::make_unique<SettledTransfer>(settled, std::move(done));
    }
    QString problem;
    if (NetworkAccess *access = loadedAccess(&problem))
        return access->get(request, std::move(done));
    qCWarning(lcNetwork, "No network reads: %s", qUtf8Printable(problem));
    settled.error = NetworkError::ProtocolFailure;
    settled.errorString = QStringLiteral("The program's network support is missing: %1").arg(problem);
    return std::make_unique<SettledTransfer>(settled, std::move(done));
}

bool WatchNetworkReachability(QObject *context, std::function<void()> online)
{
    // Reads kept to this computer come back with no help from the network, and loading the
    // module (and the system's network monitors) for nothing would cost every test and benchmark.
    if (NetworkReadsKeptLocal())
        return false;
    NetworkAccess *access = loadedAccess(nullptr);
    return access && access->watchReachability(context, std::move(online));
}
