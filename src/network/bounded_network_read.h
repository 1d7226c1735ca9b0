#pragma once

#include "core/network_access.h"

#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QString>

class QNetworkReply;
class QTimer;

// Reads one network reply into memory under limits that hold while the bytes arrive, not
// after: Qt buffers a reply without bound unless told otherwise, so a source that sends a
// gigabyte with no length, or trickles one byte a second, would otherwise be taken whole or
// waited on for ever.
//
// - Qt's own buffer is kept small, and the bytes are taken over as they come; the read is
//   given up as soon as their count (or the announced length) passes `maxBytes`.
// - `totalMs`: the whole read, from the request to its last byte.
// - `stallMs`: the longest wait for the next byte (the server answering at all counts).
//
// A read given up is aborted; the reply's finished() then arrives as for any failed read, and
// stopReason() says why. The guard belongs to the reply and goes with it.
class BoundedNetworkRead : public QObject
{
    Q_OBJECT
public:
    using Limits = NetworkReadLimits;
    using Stop = NetworkReadResult::Stop;

    // Watches `reply`; call straight after the request is made, before the event loop runs.
    static BoundedNetworkRead *watch(QNetworkReply *reply, const Limits &limits);
    // The guard of `reply`, if watch() was called on it.
    static BoundedNetworkRead *of(const QNetworkReply *reply);

    // Everything received so far, the bytes still in the reply's buffer included.
    QByteArray takeData();
    Stop stopReason() const { return m_stop; }
    // Why the read was given up, as a phrase to stand inside a sentence ("no answer within 20
    // seconds"); empty while it was not.
    QString stopPhrase() const;
    const Limits &limits() const { return m_limits; }

private:
    BoundedNetworkRead(QNetworkReply *reply, const Limits &limits);
    void drain();
    void restartStallWait();
    void checkAnnouncedLength();
    void giveUp(Stop reason);

    QPointer<QNetworkReply> m_reply;
    Limits m_limits;
    QByteArray m_data;
    QTimer *m_total;
    QTimer *m_stall;
    Stop m_stop = Stop::None;
};
