#pragma once

#include <QtGlobal>

#ifdef Q_OS_WIN
#include <QLocalSocket>
using LocalSocket = QLocalSocket;
#else

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

// One end of a connection over a Unix domain socket, with the calls, names and behaviour of
// QLocalSocket that the hand-over between launches needs. Built on QtCore alone: loading the
// network library, and the libraries it pulls in, cost every start more than all of this.
//
// Reading and writing never block. Bytes that arrive are kept until read; readyRead() says
// when more came, disconnected() when the connection ended (the bytes still unread stay). Bytes
// the other end cannot take yet are sent as it empties its side; the wait functions, for a
// caller without an event loop, send them too.
class LocalSocket : public QObject
{
    Q_OBJECT
public:
    enum LocalSocketState
    {
        UnconnectedState,
        ConnectingState, // the server's queue was full: waitForConnected() tries again
        ConnectedState,
        ClosingState, // disconnecting once the bytes written are sent
    };

    explicit LocalSocket(QObject *parent = nullptr);
    ~LocalSocket() override;

    // Takes over a connected descriptor (one a server accepted); it is closed with this object.
    bool setSocketDescriptor(quintptr descriptor);
    // Connects to the socket at the path `name`. A refusal is told by waitForConnected().
    void connectToServer(const QString &name);
    bool waitForConnected(int msecs = 30000);

    LocalSocketState state() const { return m_state; }
    // What went wrong last, in words ("Connection refused", "No such file or directory").
    QString errorString() const { return m_errorString; }

    qint64 write(const QByteArray &data);
    // Sends what it can of the bytes written without waiting; true when some went out.
    bool flush();
    QByteArray read(qint64 maxSize);
    qint64 bytesAvailable() const { return m_readBuffer.size(); }
    // Stops taking bytes from the system once `size` of them wait to be read (0: no limit).
    void setReadBufferSize(qint64 size);
    // Waits for more bytes to read, sending what is still to be sent meanwhile. False when
    // none came in time or the connection ended.
    bool waitForReadyRead(int msecs = 30000);

    // Closes once the bytes written are sent.
    void disconnectFromServer();
    // Closes now; bytes not yet sent are lost.
    void abort();

signals:
    void readyRead();
    void disconnected();

private:
    void attach(int descriptor);
    void connectOnce();
    // Takes what the system holds, up to the buffer's limit; says so when bytes came, and
    // closes when the other end did.
    void takeIncoming();
    bool send();
    bool hasRoom() const;
    void fail(int error);
    // Ends the connection; `why` becomes the error string when not empty.
    void closeConnection(const QString &why);
    void updateNotifiers();

    int m_descriptor = -1;
    LocalSocketState m_state = UnconnectedState;
    QString m_serverName;
    QString m_errorString;
    QByteArray m_readBuffer;
    QByteArray m_writeBuffer;
    qint64 m_readBufferSize = 0;
    QSocketNotifier m_readNotifier;
    QSocketNotifier m_writeNotifier;
};

#endif
