#pragma once

#include "weather/weather_feed_parser.h"

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

    // Who provided the data shown ("Open-Meteo", "met.no"), empty when unknown.
    QString dataSource() const;
    // A line for tooltips: when the shown weather was fetched, or why the last fetch failed
    // and when it last succeeded.
    QString statusText() const;

    WebDownloader *downloader() const { return m_downloader; }

    // The longest a fetch may take before it is given up as failed. The built-in source asks
    // two services in turn, each for at most 20 seconds.
    static constexpr int FetchTimeLimitMs = 45 * 1000;
    // Tests: the limit in force (FetchTimeLimitMs unless changed).
    void setFetchTimeLimitForTesting(int ms);

signals:
    // The readout changed (picture, labels or both).
    void readoutChanged();
    // A fetch started, finished or failed.
    void statusChanged();

private:
    void onComplete();
    void onFailed(int errorNumber, const QString &description);
    void onTimeLimit();
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
    bool m_hasLabels = false;
    bool m_fetching = false;
};
