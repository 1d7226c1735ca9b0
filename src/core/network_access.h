#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

class QObject;

// Reads over the network (HTTP and HTTPS GET) for the program's downloaders.
//
// Qt Network, and the libraries under it (Kerberos, the proxy resolver), live in a module of
// their own (src/network/) that is loaded with the first read: linked into the program they
// cost every start a couple of milliseconds of loading and relocating, before the first window
// is painted, for reads that come later or never.

// The numbers a failed read reports, the same as Qt's network errors so that a number in a log
// or a message means what Qt's documentation says it means.
namespace NetworkError {
enum : int
{
    None = 0,
    ConnectionRefused = 1,
    RemoteHostClosed = 2,
    HostNotFound = 3,
    Timeout = 4,
    OperationCanceled = 5,
    SslHandshakeFailed = 6,
    TemporaryNetworkFailure = 7,
    NetworkSessionFailed = 8,
    TooManyRedirects = 10,
    InsecureRedirect = 11,
    UnknownNetwork = 99,
    ContentAccessDenied = 201,
    UnknownContent = 299,
    ProtocolUnknown = 301,
    ProtocolFailure = 399,
    UnknownServer = 499,
};
}

// Limits that hold while a reply's bytes arrive: its size, the whole read from the request to its
// last byte, and the longest wait for the next byte. A time of 0 sets no limit of that kind.
struct NetworkReadLimits
{
    qint64 maxBytes = 1024 * 1024;
    int totalMs = 0;
    int stallMs = 0;
};

// Whether a read that failed with `error` never reached a server (no network, no such host, a
// refused connection, no answer): asking again costs the server nothing, and the network coming
// back may be all it takes.
bool NetworkErrorNeverReachedServer(int error);

// One GET.
struct NetworkGet
{
    QUrl url;
    QByteArray userAgent;
    // Sent besides the User-Agent; a "User-Agent" here replaces it.
    QList<QPair<QByteArray, QByteArray>> headers;
    // Always from the network, never from a cache on the way.
    bool forceFetch = false;
    NetworkReadLimits limits;
};

// How a read ended. A read that failed may still carry a status and a body (an HTTP error page).
struct NetworkReadResult
{
    enum class Stop { None, TooLarge, TookTooLong, Stalled };

    int error = NetworkError::None;
    QString errorString; // Qt's sentence for `error`
    int status = 0;      // the HTTP status; 0 when no server answered
    QString reasonPhrase;
    QByteArray contentType;
    QByteArray lastModified;
    QByteArray expires;
    QByteArray body;
    // A limit of the request gave the read up; the body is then empty.
    Stop stop = Stop::None;
    // Why, as a phrase to stand inside a sentence ("no answer within 20 seconds").
    QString stopPhrase;
    // The read was not allowed (VANTORA_OFFLINE): nothing was sent.
    bool refused = false;
};

// A running read. Deleting it cancels the read; its callback is then never called. It may be
// deleted from inside its own callback.
class NetworkTransfer
{
public:
    virtual ~NetworkTransfer() = default;
};

using NetworkReadDone = std::function<void(const NetworkReadResult &result)>;

// What the network module makes: reads on the thread that runs the windows.
class NetworkAccess
{
public:
    virtual ~NetworkAccess() = default;
    // Starts `request`; `done` is called once, from the event loop, unless the transfer goes first.
    virtual std::unique_ptr<NetworkTransfer> get(const NetworkGet &request, NetworkReadDone done) = 0;
    // Calls `online` whenever the system reports the network reachable again, for as long as
    // `context` lives. False when the system reports nothing of the kind.
    virtual bool watchReachability(QObject *context, std::function<void()> online) = 0;
};

// The module's one entry point, looked up by this name: NetworkAccess *vantora_create_network_access().
inline constexpr char kNetworkModuleEntry[] = "vantora_create_network_access";

// Starts a read of `request`. A read that may not go out (VANTORA_OFFLINE) or that finds no
// network module fails without loading the module, from the event loop like any other.
std::unique_ptr<NetworkTransfer> StartNetworkGet(const NetworkGet &request, NetworkReadDone done);

// See NetworkAccess::watchReachability; false too when the module cannot be loaded, and while
// reads are kept to this computer (nothing the network does can change what they find).
bool WatchNetworkReachability(QObject *context, std::function<void()> online);
