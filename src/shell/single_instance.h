#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QLocalServer;
class QLocalSocket;
class QLockFile;

// Keeps one running copy per user (per settings file): the first launch takes a lock file and
// answers on a local socket (a Unix domain socket; a named pipe on Windows). A later launch finds
// the lock taken, sends its request over the socket, waits for the answer and exits, so two
// copies never write the same settings file.
//
// The lock is what decides, not the socket: a copy that crashed leaves both behind, and its lock
// is known stale because its process is gone, so the next launch takes over and clears the old
// socket before listening.
class SingleInstance : public QObject
{
    Q_OBJECT
public:
    // Answers one request; what it returns goes back to the launch that sent it.
    using Handler = std::function<QByteArray(const QByteArray &request)>;

    explicit SingleInstance(QObject *parent = nullptr);
    ~SingleInstance() override;

    // Takes the lock. True: this process is the running copy from now on. False: another copy
    // holds it (send the request there). Needs no QCoreApplication yet.
    bool claim();

    // Starts answering later launches; call after claim() succeeded, once the application object
    // exists. False (with *error) when the socket cannot be made: the program then runs alone.
    bool listen(QString *error = nullptr);

    // Requests that arrive before a handler is set (the start-up is still running) wait for it.
    void setHandler(Handler handler);

    // For a later launch: sends `request` to the running copy and waits for its answer. The
    // running copy may still be starting, so connecting is retried until `timeoutMs` is over.
    static bool send(const QByteArray &request, QByteArray *reply, int timeoutMs, QString *error = nullptr);

    // Where the lock file and the socket are: VANTORA_HOME when set (tests), otherwise the
    // user's runtime folder, named after the settings file they guard.
    static QString lockFilePath();
    static QString serverName();

private:
    void acceptConnections();
    void readRequest(QLocalSocket *socket);
    void answer(QLocalSocket *socket, const QByteArray &request);
    void answerWaiting();

    std::unique_ptr<QLockFile> m_lock;
    QLocalServer *m_server = nullptr;
    Handler m_handler;
    // Bytes read so far from each open connection.
    QHash<QLocalSocket *, QByteArray> m_pending;
};
