#pragma once

#include "core/network_access.h"
#include "weather/weather_conditions.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>

#include <map>
#include <memory>
#include <optional>

class InProcessReply;
namespace LocationCatalogue {
struct Place;
}
struct WeatherSourceResult; // what one source said (live_weather_adapter.cpp)

// The built-in answer to the weather feed's requests: for the location code in the request
// path it looks up the place's coordinates, asks Open-Meteo for the current temperature and
// condition (met.no when that fails) and renders the feed document. A place is asked for at
// most once every 15 minutes, however often the feed is read (the sources' terms); within
// that time the last answer is served again. Failures come back as the reply's failure with a
// sentence saying why.
class LiveWeatherAdapter : public QObject
{
    Q_OBJECT
public:
    // The feed host that the adapter answers (reserved; it never resolves on a network).
    static constexpr const char *BuiltInHost = "weather.vantora.invalid";
    static constexpr int RefreshSeconds = 15 * 60;
    // A source read ends within 20 seconds whatever the server does, and is given up sooner when
    // the server goes quiet: a source that trickles must not hold up the weather (or the later
    // reads for the same place, which wait for this one).
    static constexpr NetworkReadLimits SourceLimits{1024 * 1024, 20 * 1000, 10 * 1000};

    explicit LiveWeatherAdapter(QObject *parent = nullptr);
    ~LiveWeatherAdapter() override;

    // The adapter that the program registers for BuiltInHost on first use.
    static LiveWeatherAdapter *shared();
    // Registers shared() as the in-process host BuiltInHost (once).
    static void installBuiltInHost();

    // Answers one feed request ("/wxdata/weather/rss/local/UKXX0085?...").
    InProcessReply *answer(const QUrl &feedUrl, int options);

    // Tests: where the sources are (the defaults are the public services).
    void setSourceAddressesForTesting(const QUrl &openMeteoBase, const QUrl &metNoBase);
    // Forgets every remembered answer (tests).
    void clearCacheForTesting();
    // Tests: the size and time limits of each source read.
    void setSourceLimitsForTesting(const NetworkReadLimits &limits) { m_limits = limits; }

private:
    // A reply that waits for the sources, with the feed host its picture address names.
    struct Waiting
    {
        QPointer<InProcessReply> reply;
        QString host;
    };

    // What the adapter remembers of one location code.
    struct PlaceRecord
    {
        QDateTime lastAsked;                         // when the sources were last asked
        std::optional<CurrentConditions> conditions; // the last answer, when it succeeded
        QString failure;                             // the last answer's sentence, when it failed
        bool unreached = false;                      // the last failure never reached a server
        QByteArray metNoLastModified;
        QDateTime metNoExpires;
        std::optional<CurrentConditions> metNoConditions;
        QString name; // the place and region, as the catalogue has them
        QString region;
        std::optional<int> utcOffsetSeconds; // the place's, as Open-Meteo last gave it
        bool busy = false;      // the sources are being asked
        QList<Waiting> waiting; // replies that wait for the sources
    };

    // When the sources may be asked again for a place.
    QDateTime nextTry(const PlaceRecord &record) const;
    void serve(const PlaceRecord &record, InProcessReply *reply, const QString &host, bool fromRecord) const;
    void askOpenMeteo(const QString &code, const LocationCatalogue::Place &place);
    void askMetNo(const QString &code, const LocationCatalogue::Place &place,
                  const WeatherSourceResult &openMeteo);
    void conclude(const QString &code, const WeatherSourceResult &openMeteo,
                  const WeatherSourceResult &metNo);
    // Reads `url`; `done` runs unless the adapter goes first.
    void get(const QUrl &url, const QByteArray &ifModifiedSince, NetworkReadDone done);

    // The reads running, by number; the adapter going cancels them.
    std::map<quint64, std::unique_ptr<NetworkTransfer>> m_transfers;
    quint64 m_lastTransfer = 0;
    QUrl m_openMeteoBase;
    QUrl m_metNoBase;
    NetworkReadLimits m_limits = SourceLimits;
    QHash<QString, PlaceRecord> m_places;
};
