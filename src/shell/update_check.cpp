#include "shell/update_check.h"

#include "core/app_paths.h"
#include "core/safe_file_write.h"
#include "themes/message_box.h"

#include <QDesktopServices>
#include <QLocale>
#include <QTimer>

#include <cmath>

UpdateCheck::UpdateCheck(QObject *parent)
    : QObject(parent), m_downloader(new WebDownloader(WebDownloader::VersionFileLimit, this)),
      m_timeLimit(new QTimer(this))
{
    m_timeLimit->setSingleShot(true);
    m_timeLimit->setInterval(TimeLimitMs);
    connect(m_downloader, &WebDownloader::DownloadComplete, this, &UpdateCheck::onComplete);
    // No network, no site, a missing or oversized file, no answer in time: no newer version,
    // and no word of it.
    connect(m_downloader, &WebDownloader::DownloadFailed, this, [this] { end(false); });
    connect(m_timeLimit, &QTimer::timeout, this, [this] {
        m_downloader->DownloadCancel();
        end(false);
    });
}

void UpdateCheck::setTimeLimitForTesting(int ms)
{
    m_timeLimit->setInterval(ms);
}

void UpdateCheck::end(bool newerFound)
{
    m_running = false;
    m_timeLimit->stop();
    emit finished(newerFound);
}

bool UpdateCheck::isEnabled()
{
    return !websiteAddress().isEmpty();
}

QString UpdateCheck::websiteAddress()
{
    QString base = QStringLiteral(VANTORA_WEBSITE).trimmed();
    if (!base.isEmpty() && !base.endsWith(QLatin1Char('/')))
        base += QLatin1Char('/');
    return base;
}

QUrl UpdateCheck::versionFileUrl()
{
    return isEnabled() ? QUrl(websiteAddress() + QStringLiteral("version/vantora.txt")) : QUrl();
}

QUrl UpdateCheck::updatePageUrl()
{
    return isEnabled() ? QUrl(websiteAddress() + QStringLiteral("update/1412-122.html")) : QUrl();
}

QUrl UpdateCheck::supportPageUrl()
{
    return isEnabled() ? QUrl(websiteAddress() + QStringLiteral("support/")) : QUrl();
}

QUrl UpdateCheck::thankYouPageUrl()
{
    return isEnabled() ? QUrl(websiteAddress() + QStringLiteral("thankyou")) : QUrl();
}

QString UpdateCheck::localVersionFile()
{
    return AppPaths::dataPath(QStringLiteral("version-vantora.txt"));
}

double UpdateCheck::programVersion()
{
    return QLocale::c().toDouble(
        QStringLiteral("%1.%2").arg(VANTORA_VERSION_MAJOR).arg(VANTORA_VERSION_MINOR));
}

std::optional<double> UpdateCheck::parseVersion(const QByteArray &text)
{
    const qsizetype lineEnd = text.indexOf('\n');
    const QByteArray firstLine = (lineEnd < 0 ? text : text.left(lineEnd)).trimmed();
    bool ok = false;
    const double v = QLocale::c().toDouble(QString::fromLatin1(firstLine), &ok);
    if (!ok || !std::isfinite(v)) // "inf" would always be newer
        return std::nullopt;
    return v;
}

bool UpdateCheck::isNewer(double remote, double current)
{
    return remote - current > 1e-9;
}

void UpdateCheck::start(bool manual)
{
    const QUrl url = m_testUrl.isValid() ? m_testUrl : versionFileUrl();
    if (!url.isValid() || isRunning())
        return;
    m_manual = manual;
    m_running = true;
    m_timeLimit->start();
    m_downloader->DownloadStart(url.toString(QUrl::FullyEncoded));
}

void UpdateCheck::onComplete()
{
    m_running = false;
    m_timeLimit->stop();
    const QByteArray body = m_downloader->DataBytes();
    if (body.isEmpty()) {
        end(false);
        return;
    }
    WriteFileSafely(localVersionFile(), body); // a copy for the next start; failing is harmless
    report(body);
}

void UpdateCheck::report(const QByteArray &body)
{
    const std::optional<double> remote = parseVersion(body);
    const bool newer = remote && isNewer(*remote, programVersion());
    if (newer) {
        if (AskQuestion(1) == AnswerYes)
            QDesktopServices::openUrl(updatePageUrl());
    } else if (m_manual) {
        ShowInfoMessage(3);
    }
    end(newer);
}
