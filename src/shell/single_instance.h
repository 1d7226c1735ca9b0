#pragma once

#include "core/platform/local_socket.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class InstanceListener;
class HeldFileLock;

// Keeps one running copy per user (per settings file): the first launch takes a lock file and
// answers on a local socket (a Unix domain socket; a named pipe on Windows). A later launch finds
// the lock taken, sends its request over the socket, waits for the answer and exits, so two
// copies never write the same settings file.
//
// The lock is what decides, not the socket: a copy that crashed leaves its socket behind, but the
// system let go of its lock when its process ended (HeldFileLock), so the next launch takes over
// and clears the old socket before listening. Both live in a folder only the user can reach, so nobody else
// can take the names first.
//
// The running copy answers whatever connects, so it limits what a connection may cost: a few
// open at once, a few kilobytes each, a second to send them. A server that closed because
// accepting failed (out of file descriptors, say) is opened again. It listens on a thread of its
// own (InstanceListener), so that an idle program's wake-ups never poll the socket.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    // Answers one request; what it returns goes back to the launch that sent it. The answer is
    // sent before control returns to the event loop, so a handler should queue lengthy work.
    using Handler = std::function<QByteArray(const QByteArray &request)>;

    enum class Claim
    {
        Ours,          // this process is the running copy from now on
        HeldElsewhere, // another copy holds the lock: send the request there
        Unavailable,   // no lock can be taken here (folder not private, disk full, read-only)
    };
    enum class Delivery
    {
        Answered,
        Unreachable, // nobody took the request: no socket, or it was closed unread
        Unanswered,  // the request was sent but no answer came in time
    };

    // Limits on one connection to the running copy.
    static constexpr int kMaxOpenConnections = 16;
    static constexpr int kMaxMessageBytes = 16 * 1024;
    static constexpr int kConnectionTimeoutMs = 1000;

    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    // Takes the lock. Needs no QCoreApplication yet. For Unavailable, *problem says why.
    Claim claim(QString *problem = nullptr);
    bool holdsLock() const { return m_lock != nullptr; }

    // Starts answering later launches; call after claim() returned Ours, once the application
    // object exists. False (with *error) when the socket cannot be made: the program then runs
    // alone.
    bool listen(QString *error = nullptr);
    bool isListening() const;

    // Requests that arrive before a handler is set (the start-up is still running) wait for it.
    void setHandler(Handler handler);

    // For a later launch: sends `request` to the running copy and waits for its answer. The
    // running copy may still be starting, or busy with other connections, so connecting is
    // retried until `timeoutMs` is over.
    static Delivery deliver(const QByteArray &request, QByteArray *reply, int timeoutMs,
                            QString *error = nullptr);
    static bool send(const QByteArray &request, QByteArray *reply, int timeoutMs, QString *error = nullptr)
    {
        return deliver(request, reply, timeoutMs, error) == Delivery::Answered;
    }

    // Where the lock file and the socket are: below VANTORA_HOME when set (tests), otherwise the
    // session's runtime folder when it is private, else a private folder in the user's cache
    // folder; named after the settings file they guard. Empty (with *problem) when no such
    // folder can be had.
    static QString runtimeFolder(QString *problem = nullptr);
    static QString lockFilePath();
    static QString serverName();

    // Whether `path` is a folder of this user that nobody else can enter. With `mayFix` the
    // folder is made (mode 0700) when missing and closed to others when it is only readable
    // by them.
    static bool isPrivateFolder(const QString &path, bool mayFix, QString *problem = nullptr);

private:
    void acceptConnection(quintptr descriptor);
    void readRequest(LocalSocket *socket);
    void drop(LocalSocket *socket);
    void answer(LocalSocket *socket, const QByteArray &request);
    void answerWaiting();

    std::unique_ptr<HeldFileLock> m_lock;
    std::unique_ptr<InstanceListener> m_listener;
    Handler m_handler;
    // Bytes read so far from each open connection.
    QHash<LocalSocket *, QByteArray> m_pending;
};
