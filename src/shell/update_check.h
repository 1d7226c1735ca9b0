#pragma once

#include "core/web_downloader.h"

#include <QObject>
#include <QUrl>

class QTimer;
#include <optional>

// Compares the running version with a small version file on the program's web site. The site
// address is a build option (VANTORA_WEBSITE); while it is empty the check is off and the menu
// item that starts it is hidden.
class UpdateCheck : public QObject
{
    Q_OBJECT
public:
    explicit UpdateCheck(QObject *parent = nullptr);

    static bool isEnabled();
    // The site's base address with a trailing '/', empty when the check is off.
    static QString websiteAddress();
    static QUrl versionFileUrl();
    static QUrl updatePageUrl();
    static QUrl supportPageUrl();
    static QUrl thankYouPageUrl();
    // Where the version file is kept once downloaded: the data folder + "version-vantora.txt".
    static QString localVersionFile();

    // The running version as a number: major, '.', minor.
    static double programVersion();
    // "1.4" or "1.4\n..." (first line, blanks ignored); nothing for text that is not a number.
    static std::optional<double> parseVersion(const QByteArray &text);
    // Newer by more than rounding noise.
    static bool isNewer(double remote, double current);

    // Starts a check. Automatic checks (manual false) stay quiet unless a newer version exists;
    // manual ones also say when there is none. Does nothing while the check is off or running.
    void start(bool manual);
    bool isRunning() const { return m_running; }

    // A site that accepts the connection and never answers ends the check after this long.
    static constexpr int TimeLimitMs = 30 * 1000;

    // Tests only: fetch from this address instead of the site's version file.
    void setVersionFileUrlForTesting(const QUrl &url) { m_testUrl = url; }
    void setTimeLimitForTesting(int ms);

signals:
    // After a check: whether a newer version was found (false also on any failure).
    void finished(bool newerFound);

private:
    void onComplete();
    void report(const QByteArray &body);
    void end(bool newerFound);

    WebDownloader *m_downloader;
    QTimer *m_timeLimit;
    bool m_manual = false;
    bool m_running = false;
    QUrl m_testUrl;
};
