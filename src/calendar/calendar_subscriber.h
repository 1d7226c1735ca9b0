#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

class ImportedCalendars;
class WebDownloader;

// Keeps the subscribed calendars (.ics addresses) up to date: a new address is fetched once
// before it is added, and every subscription is fetched again once its copy is a day old. The
// downloads go through the program's downloader one at a time, each under a size limit and a
// time limit; a download that fails or cannot be read leaves the last good copy in use.
class CalendarSubscriber : public QObject
{
    Q_OBJECT
public:
    static constexpr qint64 kRefreshAgeSeconds = 24 * 3600;
    static constexpr qint64 kReplyLimit = 16 * 1024 * 1024;
    static constexpr int kTimeLimitMs = 60 * 1000;

    CalendarSubscriber(ImportedCalendars &calendars, QObject *parent = nullptr);

    // An address as typed, made into the one to fetch: "webcal://" is read as "https://"; only
    // http and https addresses with a host are taken. Empty, with *error, otherwise.
    static QString fetchAddress(const QString &typed, QString *error = nullptr);

    // Fetches a new address; subscribed() or subscribeFailed() tells how it went.
    void subscribe(const QString &address);
    // Fetches every subscription whose copy is a day old or more; each ends with refreshed().
    void refreshDue();
    // Fetches one subscription now, however old its copy; ends with refreshed().
    void refresh(int index);
    bool isBusy() const;
    void setTimeLimitForTesting(int ms) { m_timeLimitMs = ms; }

signals:
    void subscribed(int index);
    void subscribeFailed(const QString &message);
    void refreshed(int index, bool updated);

private:
    struct Job
    {
        QString file;    // the calendar's copy, for a refresh; empty for a new subscription
        QString address; // as the user gave it
    };

    void queueRefresh(int index);
    void startNext();
    void finished(const QByteArray *bytes, const QString &problem);
    int indexOf(const QString &file) const;

    ImportedCalendars &m_calendars;
    WebDownloader *m_downloader;
    QTimer m_timeLimit;
    QList<Job> m_queue;
    Job m_current;
    bool m_running = false;
    int m_timeLimitMs = kTimeLimitMs;
};
