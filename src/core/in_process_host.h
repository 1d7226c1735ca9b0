#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QUrl>
#include <functional>

// A reply made inside the program for an address on a host name that the program answers
// itself (the weather feed's built-in adapter). The source that made it calls finish() or
// fail() exactly once; the finished() signal always arrives later through the event loop, so
// a source may answer at once from inside its handler.
//
// The reader owns the reply and may delete it at any time (a cancelled read); a source that
// answers later must hold it in a QPointer.
class InProcessReply : public QObject
{
    Q_OBJECT
public:
    explicit InProcessReply(QObject *parent = nullptr);

    void finish(const QByteArray &data);
    void fail(int errorNumber, const QString &description);

    bool isFinished() const { return m_finished; }
    bool hasFailed() const { return m_failed; }
    QByteArray data() const { return m_data; }
    int errorNumber() const { return m_errorNumber; }
    QString errorDescription() const { return m_errorDescription; }

signals:
    void finished();

private:
    void settle();

    QByteArray m_data;
    QString m_errorDescription;
    int m_errorNumber = 0;
    bool m_finished = false;
    bool m_failed = false;
};

// Answers a read of `url` (with the reader's options, 16 = bypass every cache). Returns a new
// reply without a parent; the caller takes it over.
using InProcessHandler = std::function<InProcessReply *(const QUrl &url, int options)>;

// Hosts answered inside the program, by host name (case-insensitive). A later registration
// for the same host replaces the earlier one.
void RegisterInProcessHost(const QString &host, InProcessHandler handler);
void UnregisterInProcessHost(const QString &host);
bool IsInProcessHost(const QString &host);

// Starts a read on the registered host of `url`; nullptr when that host is not registered.
InProcessReply *StartInProcessRead(const QUrl &url, int options);
