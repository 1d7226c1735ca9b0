#pragma once

#include <QString>
#include <QThread>

#include <functional>

class QObject;
class ListeningServer;

// Listens for later launches on a thread of its own and hands each connection it accepts to
// the main thread as a native descriptor; reading the request and answering it happen there.
//
// On the main thread the listening socket would be polled at every wake-up (the clock's ticks,
// about thirty a second, all day) for a connection that comes a few times a day; that poll cost
// an idle program more than anything else it did apart from painting. The listening thread
// sleeps until a launch connects.
class InstanceListener
{
public:
    using Accept = std::function<void(quintptr descriptor)>;

    // `accept` runs on the thread of `receiver`, which owns each descriptor it is given.
    InstanceListener(QObject *receiver, Accept accept);
    ~InstanceListener();
    InstanceListener(const InstanceListener &) = delete;
    InstanceListener &operator=(const InstanceListener &) = delete;

    // Starts listening on `name` (a socket that is there already is removed first) and waits
    // for the outcome. When the server closes after a failed accept, it is opened again.
    bool open(const QString &name, QString *error);
    bool isListening() const;

private:
    QThread m_thread;
    ListeningServer *m_server; // lives on m_thread
};
