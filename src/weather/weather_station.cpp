#include "weather/weather_station.h"

#include "core/clock_source.h"
#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "core/web_downloader.h"
#include "weather/live_weather_adapter.h"
#include "weather/location_catalogue.h"
#include "weather/weather_settings.h"

#include <QDir>
#include <QLocale>
#include <QTemporaryFile>
#include <QTimer>

namespace {
constexpr int kNotAvailableCode = 3200;

// The picture's address names the source that answered: ".../images/<source>/26.gif".
QString SourceOfIconAddress(const QString &address)
{
    if (address.contains(QLatin1String("/open-meteo/")))
        return QStringLiteral("Open-Meteo");
    if (address.contains(QLatin1String("/met.no/")))
        return QStringLiteral("met.no");
    return QString();
}

QString ShortTime(const QDateTime &when)
{
    return QLocale().toString(when.time(), QLocale::ShortFormat);
}
} // namespace

QString WeatherStation::settingsWindow()
{
    return WeatherSettings::windowName();
}

WeatherStation::WeatherStation(QObject *parent)
    : QObject(parent), m_downloader(new WebDownloader(WebDownloader::WeatherReplyLimit, this)),
      m_timeLimit(new QTimer(this))
{
    m_timeLimit->setSingleShot(true);
    m_timeLimit->setInterval(FetchTimeLimitMs);
    connect(m_timeLimit, &QTimer::timeout, this, &WeatherStation::onTimeLimit);
    connect(m_downloader, &WebDownloader::DownloadComplete, this, &WeatherStation::onComplete);
    connect(m_downloader, &WebDownloader::DownloadFailed, this, &WeatherStation::onFailed);
}

void WeatherStation::setFetchTimeLimitForTesting(int ms)
{
    m_timeLimit->setInterval(ms);
}

WeatherStation *WeatherStation::shared()
{
    static WeatherStation *station = new WeatherStation;
    return station;
}

QString WeatherStation::BuildFeedUrl(const QString &code)
{
    return QStringLiteral("http://") + feedHost() + QStringLiteral("/wxdata/weather/rss/local/") + code +
           QStringLiteral("?lngCM_ven=LWO&lngCM_cat=rss");
}

QString WeatherStation::feedHost()
{
    return WeatherSettings::load().feedHost;
}

QString WeatherStation::locationCode()
{
    if (m_code.isEmpty())
        m_code = WeatherSettings::load().resolvedCode();
    return m_code;
}

void WeatherStation::setLocationCode(const QString &code)
{
    m_code = code;
}

void WeatherStation::GetWeatherData()
{
    const QString host = feedHost();
    if (host.compare(QLatin1String(LiveWeatherAdapter::BuiltInHost), Qt::CaseInsensitive) == 0)
        LiveWeatherAdapter::installBuiltInHost();
    // "webpagedata.txt" in the program's folder is a reserved name; nothing reads or writes it.
    m_downloader->DownloadStart(BuildFeedUrl(locationCode()), WebDownloader::ForceFetch);
    // The downloader waits as long as the server keeps the connection; the station does not.
    m_fetching = true;
    m_timeLimit->start();
    emit statusChanged();
}

QString WeatherStation::pictureGlyph() const
{
    const WeatherReadout &r = m_parser.readout();
    if (!r.glyph.isEmpty() || r.iconNumber < 0)
        return r.glyph;
    return ShippedData::weatherGlyph(kNotAvailableCode);
}

bool WeatherStation::isFetching() const
{
    return m_fetching;
}

void WeatherStation::onComplete()
{
    m_fetching = false;
    m_timeLimit->stop();
    // The reply passes through a scratch file of its own in the temporary folder: the data
    // folder is also where the user keeps notes, and a note called web.txt is theirs.
    QTemporaryFile scratch(QDir::tempPath() + QStringLiteral("/vantora-weather-XXXXXX.txt"));
    const QString scratchPath = scratch.open() ? scratch.fileName() : QString();
    scratch.close();
    m_txtData = NormaliseFeedReply(m_downloader->DataBytes(), scratchPath, m_downloader->ContentType());
    if (parse().labels) {
        m_lastSuccess = ClockSource::now();
        m_lastProblem.clear();
        m_problem = {};
        // The forecast travels in the same reply, in a block the feed's reader passes by.
        const WeatherForecast forecast = ParseForecastBlock(m_downloader->DataBytes());
        if (!(forecast == m_forecast)) {
            m_forecast = forecast;
            emit forecastChanged();
        }
    } else {
        m_lastFailure = ClockSource::now();
        m_lastProblem = tr("the answer held no weather report.");
        m_problem = {tr("Source refused: no weather in the answer"), false};
    }
    emit statusChanged();
}

void WeatherStation::onFailed(int errorNumber, const QString &description)
{
    // The labels keep what they show; only the tooltip tells what happened.
    m_fetching = false;
    m_timeLimit->stop();
    m_lastFailure = ClockSource::now();
    m_lastProblem = description;
    m_problem = DescribeWeatherFailure(errorNumber, description);
    if (m_problem.offline)
        watchNetwork();
    emit statusChanged();
}

void WeatherStation::retryIfDue()
{
    if (m_fetching || m_problem.line.isEmpty() || !m_lastFailure.isValid())
        return;
    const int wait = m_problem.offline ? OfflineRetrySeconds : RefusedRetrySeconds;
    const QDateTime now = ClockSource::now();
    if (now >= m_lastFailure.addSecs(wait) || now < m_lastFailure)
        GetWeatherData();
}

void WeatherStation::watchNetwork()
{
    if (m_watchingNetwork)
        return;
    m_watchingNetwork = true;
    // Not every platform reports reachability; there the retry tick alone brings the weather back.
    WatchNetworkReachability(this, [this] {
        if (m_problem.offline && !m_fetching)
            GetWeatherData();
    });
}

QString WeatherStation::ageText() const
{
    // Hours and minutes only: the line is short, and seconds would say nothing.
    return m_lastSuccess.isValid() ? tr("as of %1").arg(m_lastSuccess.toLocalTime().toString(QStringLiteral("HH:mm")))
                                   : QString();
}

void WeatherStation::onTimeLimit()
{
    if (!m_fetching)
        return;
    m_downloader->DownloadCancel();
    onFailed(0, tr("the weather source did not answer within %1 seconds.").arg(m_timeLimit->interval() / 1000));
}

void WeatherStation::DataCurrent()
{
    parse();
    retryIfDue();
}

WeatherFeedParser::Outcome WeatherStation::parse()
{
    const WeatherReadout before = m_parser.readout();
    const WeatherFeedParser::Outcome outcome = m_parser.DataCurrent(m_txtData, WeatherSettings::load().fahrenheit);
    m_hasLabels = m_hasLabels || outcome.labels;
    const WeatherReadout &after = m_parser.readout();
    if (after.glyph != before.glyph || after.summary != before.summary || after.number != before.number ||
        after.location != before.location || after.temperatureText != before.temperatureText)
        emit readoutChanged();
    return outcome;
}

QString WeatherStation::dataSource() const
{
    return SourceOfIconAddress(m_parser.iconAddress());
}

QString WeatherStation::creditedSource() const
{
    if (feedHost().compare(QLatin1String(LiveWeatherAdapter::BuiltInHost), Qt::CaseInsensitive) != 0)
        return QString();
    return dataSource();
}

QString WeatherStation::statusText() const
{
    QString text;
    if (m_fetching)
        text = tr("Fetching the weather...");
    else if (!m_lastProblem.isEmpty())
        text = tr("The weather could not be updated at %1: %2").arg(ShortTime(m_lastFailure), m_lastProblem);
    if (m_lastSuccess.isValid()) {
        const QString source = dataSource();
        const QString updated = source.isEmpty()
                                    ? tr("Updated at %1.").arg(ShortTime(m_lastSuccess))
                                    : tr("Updated at %1 from %2.").arg(ShortTime(m_lastSuccess), source);
        text = text.isEmpty() ? updated : text + QLatin1Char('\n') + tr("Last updated at %1.").arg(ShortTime(m_lastSuccess));
    } else if (text.isEmpty()) {
        text = tr("No weather has been fetched yet.");
    }
    return text;
}
