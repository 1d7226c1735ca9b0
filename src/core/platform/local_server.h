#pragma once

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <QLocalServer>
using LocalServer = QLocalServer;
#else

#include <QObject>
#include <QSocketNotifier>
#include <QString>

// Listens on a Unix domain socket, with the calls, names and behaviour of QLocalServer that the
// hand-over between launches needs, on QtCore alone (see LocalSocket). Each connection is
// accepted as it comes and handed to incomingConnection() as a descriptor.
//
// When a connection cannot be accepted (no descriptors left, say) the server closes, as
// QLocalServer does: the waiting connection would wake it again at once, for ever. It says so
// with acceptFailed(); errorString() tells why.
class LocalServer : public QObject
{
    Q_OBJECT
public:
    explicit LocalServer(QObject *parent = nullptr);
    ~LocalServer() override;

    // Listens on the socket at the path `name`, which must not be there yet. The socket is
    // removed again by close().
    bool listen(const QString &name);
    bool isListening() const { return m_descriptor >= 0; }
    void close();
    QString errorString() const { return m_errorString; }

    // Removes a socket left at `name`, by a copy that crashed, say.
    static bool removeServer(const QString &name);

signals:
    void acceptFailed();

protected:
    // Owns `descriptor` from here on. This one closes it.
    virtual void incomingConnection(quintptr descriptor);

private:
    void acceptWaiting();
    bool fail(const QString &why);

    int m_descriptor = -1;
    QString m_name;
    QString m_errorString;
    QSocketNotifier m_notifier;
};

#endif
