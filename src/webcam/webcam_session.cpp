#include "webcam/webcam_session.h"

#include "core/app_paths.h"
#include "core/clock_source.h"
#include "core/file_helpers.h"
#include "core/safe_file_write.h"
#include "core/settings_store.h"
#include "core/web_downloader.h"

#include <QBuffer>
#include <QFileInfo>
#include <QTimer>

const QString WebcamSession::WindowName = QStringLiteral("mdb_WCM");
const QString WebcamSession::LastCameraDefault = QStringLiteral("Austria - Salzburg (mtns)");

namespace {
const QString kLastCamera = QStringLiteral("Cam Location webcam");

QTimer *namedTimer(QObject *parent, const char *name, int milliseconds)
{
    auto *timer = new QTimer(parent);
    timer->setObjectName(QString::fromLatin1(name));
    timer->setInterval(milliseconds);
    return timer;
}
} // namespace

WebcamSession::WebcamSession(QObject *parent)
    : QObject(parent)
    , m_downloader(new WebDownloader(WebDownloader::SnapshotReplyLimit, this))
    , m_refreshTimer(namedTimer(this, "tmrWPAPER", WebcamRefreshCounter::TickMilliseconds))
    , m_expiryTimer(namedTimer(this, "tmrEXPIRED", 1000))
{
    m_downloader->setObjectName(QStringLiteral("cls_dlmgr1"));
    connect(m_downloader, &WebDownloader::DownloadComplete, this, &WebcamSession::onDownloadComplete);
    connect(m_downloader, &WebDownloader::DownloadFailed, this, &WebcamSession::onDownloadFailed);
    connect(m_refreshTimer, &QTimer::timeout, this, &WebcamSession::refreshTick);
    connect(m_expiryTimer, &QTimer::timeout, this, &WebcamSession::expiryTick);
}

void WebcamSession::chooseCamera(const WebcamCamera &camera)
{
    m_camera = camera;
    if (camera.address.isEmpty()) {
        setNotice(tr("No picture address is known for this camera, so nothing was fetched. "
                     "Choose another camera, or add your own with Add."));
        return;
    }
    setNotice({});
    startDownload();
}

void WebcamSession::fetchAgain()
{
    if (m_camera.address.isEmpty())
        chooseCamera(m_camera);
    else
        startDownload();
}

void WebcamSession::setAutoRefresh(bool on)
{
    if (on == autoRefresh())
        return;
    m_counter.restart();
    if (on)
        m_refreshTimer->start();
    else
        m_refreshTimer->stop();
}

bool WebcamSession::autoRefresh() const
{
    return m_refreshTimer->isActive();
}

void WebcamSession::refreshTick()
{
    // The program settings may have changed the period since the last tick.
    m_counter.setPeriod(WebcamRefreshCounter::programPeriod());
    if (m_counter.tick())
        fetchAgain();
}

void WebcamSession::expiryTick()
{
    if (!m_downloader->StatusBusy()) {
        m_expiryTimer->stop();
        return;
    }
    if (++m_expirySeconds < ExpiryTicks)
        return;
    // Waiting longer would leave the user looking at a picture that is not coming; the next
    // choice, Refresh or automatic refresh starts a fresh read.
    m_downloader->DownloadCancel();
    endRead();
    setNotice(tr("Timer has expired. Try again later, some cameras can take a while. "));
}

void WebcamSession::loadLastSnapshot(const WebcamCamera &camera)
{
    const QImage picture(snapshotPath());
    if (picture.isNull())
        return;
    m_picture = picture;
    m_pictureTime = QFileInfo(snapshotPath()).lastModified();
    m_pictureCamera = camera;
    if (m_camera.name.isEmpty())
        m_camera = camera;
    emit pictureChanged();
}

bool WebcamSession::isBusy() const
{
    return m_expiryTimer->isActive();
}

void WebcamSession::startDownload()
{
    m_downloader->setExtraHeaders(m_camera.headers);
    m_downloader->DownloadStart(m_camera.address);
    m_expirySeconds = 0;
    m_expiryTimer->start();
    emit busyChanged(true);
}

void WebcamSession::onDownloadComplete()
{
    endRead();
    const QByteArray bytes = m_downloader->DataBytes();
    const QImage picture = QImage::fromData(bytes);
    if (picture.isNull()) {
        // An error page or a half-sent picture: the last good snapshot stays on screen and on
        // disk, since the bytes are written only once they are known to make a picture.
        setNotice(tr("Sometimes websites do not activate. Please try again."));
        return;
    }
    m_picture = picture;
    m_pictureTime = ClockSource::now();
    m_pictureCamera = m_camera;
    WriteDetail(WindowName, kLastCamera, m_camera.name);
    QString error;
    if (storeSnapshot(bytes, picture, &error))
        setNotice({});
    else
        setNotice(error);
    emit pictureChanged();
    if (error.isEmpty())
        emit snapshotStored();
}

void WebcamSession::onDownloadFailed()
{
    endRead();
    setNotice(tr("Error in accessing the site."));
}

void WebcamSession::endRead()
{
    if (!m_expiryTimer->isActive())
        return;
    m_expiryTimer->stop();
    emit busyChanged(false);
}

void WebcamSession::setNotice(const QString &notice)
{
    if (notice == m_notice)
        return;
    m_notice = notice;
    emit noticeChanged(notice);
}

bool WebcamSession::storeSnapshot(const QByteArray &bytes, const QImage &picture, QString *error)
{
    CreateFolderIfMissing(AppPaths::dataPath(QStringLiteral("webcam")));
    QString reason;
    if (!WriteFileSafely(snapshotPath(), bytes, &reason)) {
        *error = tr("The snapshot could not be saved to %1 (%2).").arg(LocalPath(snapshotPath()), reason);
        return false;
    }
    QByteArray bitmap;
    QBuffer buffer(&bitmap);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "BMP") || !WriteFileSafely(bitmapPath(), bitmap, &reason)) {
        *error = tr("The picture for the wallpaper could not be saved to %1 (%2).")
                     .arg(LocalPath(bitmapPath()), reason.isEmpty() ? tr("the picture could not be converted") : reason);
        return false;
    }
    return true;
}

QString WebcamSession::lastCameraName()
{
    return ReadDetail(WindowName, kLastCamera, LastCameraDefault);
}

bool WebcamSession::playLastOnOpen()
{
    return ReadDetail(WindowName, QStringLiteral("Cam Play-Last"), QStringLiteral("0")) == QLatin1String("1");
}

QString WebcamSession::snapshotPath()
{
    return AppPaths::dataPath(QStringLiteral("webcam/vandesk.jpg"));
}

QString WebcamSession::bitmapPath()
{
    return AppPaths::dataPath(QStringLiteral("webcam/vandesk.bmp"));
}

QString WebcamSession::ageText(const QDateTime &taken, const QDateTime &now, int periodSeconds)
{
    if (!taken.isValid())
        return {};
    const qint64 seconds = taken.secsTo(now);
    if (seconds <= periodSeconds)
        return {};
    const qint64 minutes = qMax<qint64>(1, seconds / 60);
    const qint64 hours = minutes / 60;
    const qint64 days = hours / 24;
    if (days > 0)
        return days == 1 ? tr("Snapshot from 1 day ago") : tr("Snapshot from %1 days ago").arg(days);
    if (hours > 0)
        return hours == 1 ? tr("Snapshot from 1 hour ago") : tr("Snapshot from %1 hours ago").arg(hours);
    return minutes == 1 ? tr("Snapshot from 1 minute ago") : tr("Snapshot from %1 minutes ago").arg(minutes);
}
