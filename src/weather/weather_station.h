#pragma once

#include "weather/weather_feed_parser.h"
#include "weather/weather_forecast.h"
#include "weather/weather_problem.h"

#include <QDateTime>
#include <QObject>
#include <QString>

class QTimer;
class WebDownloader;

// The program's one source of weather: it holds the location code, fetches the feed with its
// downloader ("cls_dlmgr1"), keeps the last reply and parses it for the weather widget and the
// dashboard, which only display. A fetch happens when the widget or the dashboard is loaded
// and when the user applies a new place; between fetches DataCurrent() redraws from the last
// reply.
class WeatherStation : public QObject
{
    Q_OBJECT
public:
    // The window whose settings this is ("fwth_SET\Details").
    static QString settingsWindow();

    explicit WeatherStation(QObject *parent = nullptr);

    // The station the widget, the dashboard and the settings dialog share.
    static WeatherStation *shared();

    // The feed address for a location code: "http://" + feed host + the feed's path and query.
    static QString BuildFeedUrl(const QString &code);
    // The feed host: the value "Weather Feed Host", by default the built-in adapter's host.
    static QString feedHost();

    // The location code every request uses ("txtADDR"); until set, the code of the stored
    // place (London, United Kingdom when nothing is stored).
    QString locationCode();
    void setLocationCode(const QString &code);

    // Fetches the feed for the location code, bypassing every cache.
    void GetWeatherData();
    // Parses the last reply and publishes the readout; fetches nothing.
    void DataCurrent();

    // The whole last reply, normalised ("txtDATA").
    QString txtDATA() const { return m_txtData; }
    const WeatherReadout &readout() const { return m_parser.readout(); }
    // True once a reply has been parsed into labels.
    bool hasReadout() const { return m_hasLabels; }
    bool isFetching() const;
    // The weather picture's glyph: the readout's, or the "not available" symbol for a code
    // the glyph list has no picture for. Empty before the first picture.
    QString pictureGlyph() const;

    // The hours and days ahead from the last good reply (empty when its source gave none).
    const WeatherForecast &forecast() const { return m_forecast; }

    // Who provided the data shown ("Open-Meteo", "met.no"), as the reply names it; empty when unknown.
    QString dataSource() const;
    // The source whose credit goes beside the data: dataSource() when the built-in source
    // answered, none for another feed host, whose data comes from wherever that host takes it.
    QString creditedSource() const;
    // Why the last fetch failed, in a short line; empty while the last fetch succeeded.
    QString problemLine() const { return m_problem.line; }
    // "as of 14:20": when the shown reading was fetched; empty before the first.
    QString ageText() const;
    QDateTime lastSuccess() const { return m_lastSuccess; }
    // A line for tooltips: when the shown weather was fetched, or why the last fetch failed
    // and when it last succeeded.
    QString statusText() const;

    WebDownloader *downloader() const { return m_downloader; }

    // The longest a fetch may take before it is given up as failed. The built-in source asks
    // two services in turn, each for at most 20 seconds.
    static constexpr int FetchTimeLimitMs = 45 * 1000;
    // A failed fetch is tried again on the redraw tick after this long: a minute when no
    // server was reached (that costs the sources nothing), else the sources' 15 minutes.
    static constexpr int OfflineRetrySeconds = 60;
    static constexpr int RefusedRetrySeconds = 15 * 60;
    // Tests: the limit in force (FetchTimeLimitMs unless changed).
    void setFetchTimeLimitForTesting(int ms);

signals:
    // The readout changed (picture, labels or both).
    void readoutChanged();
    // A fetch started, finished or failed.
    void statusChanged();
    // The forecast changed.
    void forecastChanged();

private:
    void onComplete();
    void onFailed(int errorNumber, const QString &description);
    void onTimeLimit();
    // After a failure: fetch again when its retry time has come.
    void retryIfDue();
    // Watches the network's reachability (where the platform reports it) to fetch again as
    // soon as it is back; started by the first failure that reached no server.
    void watchNetwork();
    // Runs the parser on the last reply; readoutChanged() when anything shown changed.
    WeatherFeedParser::Outcome parse();

    WebDownloader *m_downloader;
    QTimer *m_timeLimit;
    WeatherFeedParser m_parser;
    QString m_txtData;
    QString m_code;
    QDateTime m_lastSuccess;
    QDateTime m_lastFailure;
    QString m_lastProblem;
    WeatherProblem m_problem;
    WeatherForecast m_forecast;
    bool m_watchingNetwork = false;
    bool m_hasLabels = false;
    bool m_fetching = false;
};
