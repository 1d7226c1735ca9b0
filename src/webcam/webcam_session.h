#pragma once

#include "webcam/webcam_catalogue.h"
#include "webcam/webcam_refresh_counter.h"

#include <QDateTime>
#include <QImage>
#include <QObject>

class QTimer;
class WebDownloader;

// What the webcam viewer does without its window: fetches the chosen camera's snapshot with
// its downloader ("cls_dlmgr1"), keeps it in the data folder's webcam/ as received
// ("vandesk.jpg") and as a bitmap for the wallpaper ("vandesk.bmp"), fetches it again on the
// refresh timer ("tmrWPAPER") and gives up waiting on the expiry timer ("tmrEXPIRED").
class WebcamSession : public QObject
{
    Q_OBJECT
public:
    // Seconds of tmrEXPIRED (one tick a second) a read may take before the viewer stops
    // waiting. Twenty seconds leaves a slow camera time to send a large picture over a slow line,
    // and still ends before the shortest automatic refresh (about 24 seconds) would restart it.
    static constexpr int ExpiryTicks = 20;

    static const QString WindowName; // "mdb_WCM", the key of the viewer's settings
    static const QString LastCameraDefault;

    explicit WebcamSession(QObject *parent = nullptr);

    // Makes `camera` the current one and fetches its snapshot; a camera without an address
    // only says so.
    void chooseCamera(const WebcamCamera &camera);
    // Makes `camera` the current one without fetching (the camera of the picture on disk).
    void setCurrentCamera(const WebcamCamera &camera) { m_camera = camera; }
    // Fetches the current camera again (the Refresh button); for a camera without an address
    // it says so.
    void fetchAgain();
    const WebcamCamera &currentCamera() const { return m_camera; }

    void setAutoRefresh(bool on);
    bool autoRefresh() const;

    // Shows the snapshot left on disk by an earlier run, if there is one, dated by its file;
    // `camera` is the one it came from (the last camera stored), made current if none is.
    void loadLastSnapshot(const WebcamCamera &camera);

    QImage picture() const { return m_picture; }
    // When the shown picture arrived (invalid when there is none), and from which camera: a
    // failed read of another camera leaves the picture, and its credit, as they were.
    QDateTime pictureTime() const { return m_pictureTime; }
    const WebcamCamera &pictureCamera() const { return m_pictureCamera; }
    QString notice() const { return m_notice; }
    bool isBusy() const;
    WebDownloader *downloader() const { return m_downloader; }

    // The name of the last camera whose snapshot arrived intact ("Cam Location webcam").
    static QString lastCameraName();
    // The viewer fetches the last camera as it opens ("Cam Play-Last" is "1").
    static bool playLastOnOpen();
    static QString snapshotPath();
    static QString bitmapPath();

    // "Snapshot from 5 minutes ago" when the picture is older than `periodSeconds`, else empty.
    static QString ageText(const QDateTime &taken, const QDateTime &now, int periodSeconds);

public slots:
    // One tick of tmrWPAPER: counts towards the next automatic fetch.
    void refreshTick();
    // One tick of tmrEXPIRED: counts the seconds of the running read.
    void expiryTick();

signals:
    void pictureChanged();
    void noticeChanged(const QString &notice);
    void busyChanged(bool busy);
    // A good snapshot was shown and both files were written (the wallpaper may follow it).
    void snapshotStored();

private:
    void startDownload();
    void onDownloadComplete();
    void onDownloadFailed();
    void setNotice(const QString &notice);
    void endRead();
    // Writes the received bytes and the bitmap copy; false with the reason when one failed.
    bool storeSnapshot(const QByteArray &bytes, const QImage &picture, QString *error);

    WebDownloader *m_downloader;
    QTimer *m_refreshTimer;
    QTimer *m_expiryTimer;
    WebcamRefreshCounter m_counter;
    WebcamCamera m_camera;
    QImage m_picture;
    QDateTime m_pictureTime;
    WebcamCamera m_pictureCamera;
    QString m_notice;
    int m_expirySeconds = 0;
};
