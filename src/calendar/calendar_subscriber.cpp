#include "calendar/calendar_subscriber.h"

#include "calendar/imported_calendars.h"
#include "core/web_downloader.h"

#include <QUrl>

CalendarSubscriber::CalendarSubscriber(ImportedCalendars &calendars, QObject *parent)
    : QObject(parent), m_calendars(calendars), m_downloader(new WebDownloader(kReplyLimit, this))
{
    m_downloader->setObjectName(QStringLiteral("cls_dlmgr1"));
    m_timeLimit.setSingleShot(true);
    connect(&m_timeLimit, &QTimer::timeout, this, [this] {
        m_downloader->DownloadCancel();
        finished(nullptr, tr("no answer within %1 seconds").arg(m_timeLimitMs / 1000.0));
    });
    connect(m_downloader, &WebDownloader::DownloadComplete, this, [this] {
        const QByteArray bytes = m_downloader->DataBytes();
        finished(&bytes, QString());
    });
    connect(m_downloader, &WebDownloader::DownloadFailed, this,
            [this](int, const QString &description) { finished(nullptr, description); });
}

QString CalendarSubscriber::fetchAddress(const QString &typed, QString *error)
{
    QUrl url = QUrl::fromUserInput(typed.trimmed());
    if (url.scheme() == QLatin1String("webcal") || url.scheme() == QLatin1String("webcals"))
        url.setScheme(QStringLiteral("https"));
    const bool web = url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https");
    if (!url.isValid() || !web || url.host().isEmpty()) {
        if (error)
            *error = tr("\"%1\" is not a web address (http, https or webcal).").arg(typed.trimmed());
        return {};
    }
    return url.toString();
}

bool CalendarSubscriber::isBusy() const
{
    return m_running || !m_queue.isEmpty();
}

void CalendarSubscriber::subscribe(const QString &address)
{
    m_queue.append({QString(), address});
    startNext();
}

void CalendarSubscriber::refreshDue()
{
    for (int index : m_calendars.dueForRefresh(QDateTime::currentDateTimeUtc(), kRefreshAgeSeconds))
        queueRefresh(index);
    startNext();
}

void CalendarSubscriber::refresh(int index)
{
    if (index < 0 || index >= m_calendars.count() || m_calendars.source(index).address.isEmpty())
        return;
    queueRefresh(index);
    startNext();
}

void CalendarSubscriber::queueRefresh(int index)
{
    const QString file = m_calendars.source(index).file;
    const bool queued =
        std::any_of(m_queue.begin(), m_queue.end(), [&file](const Job &job) { return job.file == file; });
    if (!queued && !(m_running && m_current.file == file))
        m_queue.append({file, m_calendars.source(index).address});
}

void CalendarSubscriber::startNext()
{
    if (m_running || m_queue.isEmpty())
        return;
    m_current = m_queue.takeFirst();
    QString error;
    const QString address = fetchAddress(m_current.address, &error);
    m_running = true;
    if (address.isEmpty()) {
        finished(nullptr, error);
        return;
    }
    m_timeLimit.start(m_timeLimitMs);
    m_downloader->DownloadStart(address, WebDownloader::ForceFetch);
}

int CalendarSubscriber::indexOf(const QString &file) const
{
    for (int i = 0; i < m_calendars.count(); ++i)
        if (m_calendars.source(i).file == file)
            return i;
    return -1;
}

void CalendarSubscriber::finished(const QByteArray *bytes, const QString &problem)
{
    if (!m_running)
        return;
    m_running = false;
    m_timeLimit.stop();
    const Job job = m_current;
    if (job.file.isEmpty()) {
        QString error = problem;
        const int index =
            bytes ? m_calendars.add(*bytes, QUrl(job.address).fileName(), job.address, &error) : -1;
        if (index >= 0)
            emit subscribed(index);
        else
            emit subscribeFailed(tr("The calendar at %1 could not be fetched: %2").arg(job.address, error));
    } else if (const int index = indexOf(job.file); index >= 0) {
        // Removed while it was being fetched: nothing to bring up to date.
        bool updated = false;
        if (bytes)
            updated = m_calendars.replace(index, *bytes, QDateTime::currentDateTimeUtc());
        else
            m_calendars.noteFailedRefresh(index, problem);
        emit refreshed(index, updated);
    }
    startNext();
}
