#pragma once

#include "core/network_access.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QList>
#include <QPair>
#include <QObject>
#include <QPointer>
#include <QString>

class InProcessReply;

// The downloader control ("uctl_WEB"): fetches one address at a time in the background and
// hands the bytes to the window that hosts it. Every host names its instance "cls_dlmgr1".
//
// Reads go over the network (core/network_access.h), or to an in-process host
// (see in_process_host.h) when the address names one. Completion is delivered on the thread
// that owns the control (the UI thread). A reply larger than the control's limit is a failure
// and its bytes are dropped. There is no time limit: a host that wants one watches
// StatusBusy and Duration from its own timer.
class WebDownloader : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QByteArray DataBytes READ DataBytes)
    Q_PROPERTY(int Duration READ Duration)
    Q_PROPERTY(bool StatusBusy READ StatusBusy)
public:
    // Options of DownloadStart: 16 always fetches from the network, never from a cache.
    static constexpr int ForceFetch = 16;

    // Reply limits of the hosts.
    static constexpr qint64 WeatherReplyLimit = 1024 * 1024;
    static constexpr qint64 SnapshotReplyLimit = 20 * 1024 * 1024;
    static constexpr qint64 VersionFileLimit = 64 * 1024;

    explicit WebDownloader(qint64 replyLimit, QObject *parent = nullptr);
    ~WebDownloader() override;

    // Nothing happens for an empty address. Otherwise a running read is cancelled first, the
    // duration goes to 0 and a new read starts under a new request key.
    void DownloadStart(const QString &url, int options = 0);
    // Cancels the running read. The request key stays, so StatusBusy stays true until the next
    // start; a cancelled read never completes.
    void DownloadCancel();

    // Headers sent with every following read besides the User-Agent, for servers that want a
    // Referer or refuse an unknown client; a "User-Agent" here replaces the program's own.
    void setExtraHeaders(const QList<QPair<QByteArray, QByteArray>> &headers) { m_extraHeaders = headers; }

    QByteArray DataBytes() const { return m_data; }
    // The last completed reply's Content-Type header (it may name the text's encoding); empty
    // when the reply had none.
    QByteArray ContentType() const { return m_contentType; }
    int Duration() const { return m_duration; }
    bool StatusBusy() const { return m_requestKey != 0; }
    // Milliseconds since the system started, taken when the running read began; 0 when idle.
    quint32 requestKey() const { return m_requestKey; }
    qint64 replyLimit() const { return m_replyLimit; }

    // "Vantora/<version>", sent with every read.
    static QByteArray userAgent();

signals:
    // The read finished and delivered its bytes (possibly none).
    void DownloadComplete(int byteCount);
    // The read failed. errorNumber is the HTTP status when the server answered with an error
    // status, else the NetworkError number (for an in-process host, its own
    // number); description is a sentence for the user.
    void DownloadFailed(int errorNumber, const QString &description);
    // Declared for hosts; never raised.
    void DownloadProgress();

private:
    void cancelRead();
    void startNetworkRead(const QUrl &url, int options);
    void startInProcessRead(InProcessReply *reply);
    void onNetworkFinished(const QUrl &url, const NetworkReadResult &result);
    void onInProcessFinished(InProcessReply *reply);
    // Ends the running read: duration measured, key back to 0.
    void settle();
    void complete(const QByteArray &data, const QByteArray &contentType = {});
    void fail(int errorNumber, const QString &description);
    void failTooLarge();

    std::unique_ptr<NetworkTransfer> m_transfer;
    QPointer<InProcessReply> m_inProcess;
    QElapsedTimer m_started;
    QByteArray m_data;
    QByteArray m_contentType;
    QList<QPair<QByteArray, QByteArray>> m_extraHeaders;
    qint64 m_replyLimit;
    quint32 m_requestKey = 0;
    int m_duration = 0;
};
