#include "weather/live_weather_adapter.h"

#include "core/clock_source.h"
#include "core/in_process_host.h"
#include "core/web_downloader.h"
#include "weather/forecast_replies.h"
#include "weather/location_catalogue.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>
#include <QUrlQuery>

// What one source said: conditions, or a short phrase saying what went wrong.
struct WeatherSourceResult
{
    std::optional<CurrentConditions> conditions;
    QString problem;        // "too many requests (429)"
    bool unreached = false; // the request never reached a server
};

namespace {

// A failure that never reached a server (no network, a refused connection) costs the sources
// nothing, so it may be retried sooner than the 15 minutes of their terms.
constexpr int UnreachedRetrySeconds = 60;
constexpr int NotFoundError = 404;
constexpr int SourcesFailedError = 503;
// Neither source could be reached: the reader tells this apart as having no network.
constexpr int UnreachedError = NetworkError::TemporaryNetworkFailure;

// The User-Agent of every source request: "Vantora/1.0.0 (+<contact>)". met.no refuses
// requests that do not name the application, its version and a contact address.
QByteArray sourceUserAgent()
{
    const QByteArray website = QByteArray(VANTORA_WEBSITE).trimmed();
    const QByteArray contact = website.isEmpty() ? QByteArray("https://github.com/vantora") : website;
    return WebDownloader::userAgent() + " (+" + contact + ')';
}

QString coordinate(double degrees)
{
    // met.no takes at most four decimals; four are about 10 m, plenty for the weather.
    return QString::number(degrees, 'f', 4);
}

QUrl sourceUrl(QUrl base, const QString &path, const QUrlQuery &query)
{
    QString basePath = base.path();
    while (basePath.endsWith(QLatin1Char('/')))
        basePath.chop(1);
    base.setPath(basePath + path);
    base.setQuery(query);
    return base;
}

// "The reply is not JSON." -> "the reply is not JSON", to stand inside a longer sentence.
QString phrase(QString sentence)
{
    sentence = sentence.trimmed();
    while (sentence.endsWith(QLatin1Char('.')))
        sentence.chop(1);
    if (sentence.size() > 1 && sentence.at(1).isLower())
        sentence[0] = sentence.at(0).toLower();
    return sentence;
}

QString statusPhrase(int status, const QByteArray &body)
{
    if (status == 429)
        return QStringLiteral("too many requests (429)");
    if (status == 400) {
        // Open-Meteo says why in {"error":true,"reason":"..."}.
        QString reason =
            QJsonDocument::fromJson(body).object().value(QLatin1String("reason")).toString().trimmed();
        while (reason.endsWith(QLatin1Char('.')))
            reason.chop(1);
        return reason.isEmpty() ? QStringLiteral("request refused (400)")
                                : QStringLiteral("request refused (400: %1)").arg(reason);
    }
    if (status == 403)
        return QStringLiteral("access refused (403)");
    if (status >= 500)
        return QStringLiteral("server error (%1)").arg(status);
    return QStringLiteral("unexpected answer (%1)").arg(status);
}

QString networkPhrase(const NetworkReadResult &reply)
{
    switch (reply.error) {
    case NetworkError::HostNotFound:
        return QStringLiteral("server not found");
    case NetworkError::ConnectionRefused:
        return QStringLiteral("connection refused");
    case NetworkError::Timeout:
        return QStringLiteral("no answer in time");
    case NetworkError::NetworkSessionFailed:
    case NetworkError::TemporaryNetworkFailure:
    case NetworkError::UnknownNetwork:
        return QStringLiteral("no network connection");
    case NetworkError::RemoteHostClosed:
        return QStringLiteral("the server closed the connection");
    default:
        return QStringLiteral("network error (%1)").arg(phrase(reply.errorString));
    }
}

WeatherSourceResult networkProblem(const NetworkReadResult &reply)
{
    return {std::nullopt, networkPhrase(reply), NetworkErrorNeverReachedServer(reply.error)};
}

// The outcome of a finished source request whose body `parse` reads.
template <typename Parse> WeatherSourceResult readSourceReply(const NetworkReadResult &reply, Parse parse)
{
    if (reply.refused)
        return {std::nullopt, QStringLiteral("network reads are switched off"), true};
    if (reply.stop != NetworkReadResult::Stop::None) {
        // Nothing was heard at all: as good as unreached, and as cheap to ask again.
        const bool silent =
            reply.stop != NetworkReadResult::Stop::TooLarge && reply.body.isEmpty() && reply.status == 0;
        return {std::nullopt, reply.stopPhrase, silent};
    }
    if (reply.status >= 400)
        return {std::nullopt, statusPhrase(reply.status, reply.body), false};
    if (reply.error != NetworkError::None || reply.status == 0)
        return networkProblem(reply);
    QString problem;
    std::optional<CurrentConditions> conditions = parse(reply.body, &problem);
    return {conditions, conditions ? QString() : phrase(problem), false};
}

// An HTTP date ("Sat, 18 May 2024 12:30:00 GMT"); invalid when it is none.
QDateTime httpDate(const QByteArray &text)
{
    QDateTime date = QLocale::c().toDateTime(QString::fromLatin1(text.trimmed()),
                                             QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"));
    date.setTimeSpec(Qt::UTC);
    return date;
}

} // namespace

LiveWeatherAdapter::LiveWeatherAdapter(QObject *parent)
    : QObject(parent), m_openMeteoBase(QStringLiteral("https://api.open-meteo.com")),
      m_metNoBase(QStringLiteral("https://api.met.no"))
{
}

LiveWeatherAdapter::~LiveWeatherAdapter()
{
    for (const PlaceRecord &record : std::as_const(m_places))
        for (const Waiting &waiting : record.waiting)
            if (waiting.reply)
                waiting.reply->fail(SourcesFailedError, QStringLiteral("The weather service has stopped."));
}

LiveWeatherAdapter *LiveWeatherAdapter::shared()
{
    static QPointer<LiveWeatherAdapter> adapter;
    if (!adapter)
        adapter = new LiveWeatherAdapter(QCoreApplication::instance());
    return adapter;
}

void LiveWeatherAdapter::installBuiltInHost()
{
    RegisterInProcessHost(QString::fromLatin1(BuiltInHost),
                          [](const QUrl &url, int options) { return shared()->answer(url, options); });
}

InProcessReply *LiveWeatherAdapter::answer(const QUrl &feedUrl, int options)
{
    // The options are not consulted: even a forced read (16) is answered from the record
    // within RefreshSeconds, because that limit is the sources' terms, not a cache setting.
    Q_UNUSED(options);
    auto *reply = new InProcessReply;
    static const QRegularExpression codePattern(QStringLiteral("^[A-Z]{4}[0-9]{4}$"));
    const QString code = feedUrl.path().section(QLatin1Char('/'), -1).toUpper();
    if (!codePattern.match(code).hasMatch()) {
        reply->fail(NotFoundError, QStringLiteral("The feed address names no location code."));
        return reply;
    }
    const std::optional<LocationCatalogue::Place> place = LocationCatalogue::PlaceForCode(code);
    if (!place || !place->hasCoordinates) {
        reply->fail(NotFoundError, QStringLiteral("No coordinates are known for the place %1.").arg(code));
        return reply;
    }

    PlaceRecord &record = m_places[code];
    record.name = place->name;
    record.region = place->region;
    const QString host = feedUrl.host().isEmpty() ? QString::fromLatin1(BuiltInHost) : feedUrl.host();
    if (record.busy) {
        record.waiting.append({reply, host});
        return reply;
    }
    const QDateTime now = ClockSource::now();
    if (record.lastAsked.isValid() && record.lastAsked <= now && now < nextTry(record)) {
        serve(record, reply, host, true);
        return reply;
    }
    record.busy = true;
    record.lastAsked = now;
    record.waiting.append({reply, host});
    askOpenMeteo(code, *place);
    return reply;
}

void LiveWeatherAdapter::setSourceAddressesForTesting(const QUrl &openMeteoBase, const QUrl &metNoBase)
{
    m_openMeteoBase = openMeteoBase;
    m_metNoBase = metNoBase;
}

void LiveWeatherAdapter::clearCacheForTesting()
{
    // Replies still waiting for a source keep their place so that they are answered.
    for (auto it = m_places.begin(); it != m_places.end();) {
        if (it->busy)
            ++it;
        else
            it = m_places.erase(it);
    }
}

QDateTime LiveWeatherAdapter::nextTry(const PlaceRecord &record) const
{
    const bool quickRetry = !record.failure.isEmpty() && record.unreached;
    return record.lastAsked.addSecs(quickRetry ? UnreachedRetrySeconds : RefreshSeconds);
}

void LiveWeatherAdapter::serve(const PlaceRecord &record, InProcessReply *reply, const QString &host,
                               bool fromRecord) const
{
    if (record.conditions) {
        reply->finish(RenderFeedDocument(record.name, record.region, *record.conditions, host));
        return;
    }
    QString failure = record.failure;
    if (fromRecord)
        failure +=
            QStringLiteral(" Next try after %1.").arg(nextTry(record).toString(QStringLiteral("HH:mm")));
    reply->fail(record.unreached ? UnreachedError : SourcesFailedError, failure);
}

void LiveWeatherAdapter::get(const QUrl &url, const QByteArray &ifModifiedSince, NetworkReadDone done)
{
    NetworkGet request;
    request.url = url;
    request.userAgent = sourceUserAgent();
    request.headers.append({QByteArray("Accept"), QByteArray("application/json")});
    if (!ifModifiedSince.isEmpty())
        request.headers.append({QByteArray("If-Modified-Since"), ifModifiedSince});
    request.limits = m_limits;
    const quint64 id = ++m_lastTransfer;
    m_transfers[id] = StartNetworkGet(request, [this, id, done = std::move(done)](const NetworkReadResult &result) {
        m_transfers.erase(id);
        done(result);
    });
}

void LiveWeatherAdapter::askOpenMeteo(const QString &code, const LocationCatalogue::Place &place)
{
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("latitude"), coordinate(place.latitude));
    query.addQueryItem(QStringLiteral("longitude"), coordinate(place.longitude));
    query.addQueryItem(QStringLiteral("current"), QStringLiteral("temperature_2m,weather_code,is_day"));
    // The hours and days ahead come in the same request, so the forecast costs no read of its own.
    query.addQueryItem(QStringLiteral("hourly"),
                       QStringLiteral("temperature_2m,weather_code,is_day,precipitation_probability,precipitation,"
                                      "wind_speed_10m"));
    query.addQueryItem(QStringLiteral("daily"),
                       QStringLiteral("weather_code,temperature_2m_max,temperature_2m_min,precipitation_sum,"
                                      "precipitation_probability_max"));
    query.addQueryItem(QStringLiteral("temperature_unit"), QStringLiteral("fahrenheit"));
    query.addQueryItem(QStringLiteral("timezone"), QStringLiteral("auto"));
    query.addQueryItem(QStringLiteral("forecast_days"), QStringLiteral("7"));
    const QUrl url = sourceUrl(m_openMeteoBase, QStringLiteral("/v1/forecast"), query);
    get(url, {}, [this, code, place](const NetworkReadResult &reply) {
        const WeatherSourceResult result = readSourceReply(reply, ParseOpenMeteoReply);
        if (result.conditions) {
            m_places[code].utcOffsetSeconds = result.conditions->forecast.utcOffsetSeconds;
            conclude(code, result, {});
        }
        else
            askMetNo(code, place, result);
    });
}

void LiveWeatherAdapter::askMetNo(const QString &code, const LocationCatalogue::Place &place,
                                  const WeatherSourceResult &openMeteo)
{
    PlaceRecord &record = m_places[code];
    // met.no asks not to be asked again before its Expires time; its last answer holds till then.
    if (record.metNoConditions && ClockSource::now() < record.metNoExpires) {
        conclude(code, openMeteo, {record.metNoConditions, {}, false});
        return;
    }
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("lat"), coordinate(place.latitude));
    query.addQueryItem(QStringLiteral("lon"), coordinate(place.longitude));
    const QByteArray since = record.metNoConditions ? record.metNoLastModified : QByteArray();
    const QUrl url = sourceUrl(m_metNoBase, QStringLiteral("/weatherapi/locationforecast/2.0/compact"), query);
    // met.no gives UTC times only: the place's days follow the offset Open-Meteo last gave,
    // or its solar time.
    const int offset = record.utcOffsetSeconds.value_or(SolarOffsetSeconds(place.longitude));
    get(url, since, [this, code, openMeteo, offset](const NetworkReadResult &reply) {
        PlaceRecord &record = m_places[code];
        const int status = reply.status;
        WeatherSourceResult result;
        if (status == 304 && record.metNoConditions)
            result.conditions = record.metNoConditions;
        else
            result = readSourceReply(reply, [offset](const QByteArray &body, QString *problem) {
                return ParseMetNoReply(body, problem, offset);
            });
        if (result.conditions) {
            record.metNoConditions = result.conditions;
            if (status != 304)
                record.metNoLastModified = reply.lastModified;
            record.metNoExpires = httpDate(reply.expires);
        }
        conclude(code, openMeteo, result);
    });
}

void LiveWeatherAdapter::conclude(const QString &code, const WeatherSourceResult &openMeteo,
                                  const WeatherSourceResult &metNo)
{
    PlaceRecord &record = m_places[code];
    record.busy = false;
    record.conditions = openMeteo.conditions ? openMeteo.conditions : metNo.conditions;
    if (record.conditions) {
        record.failure.clear();
        record.unreached = false;
    } else {
        record.failure = QStringLiteral("Open-Meteo: %1; met.no: %2.").arg(openMeteo.problem, metNo.problem);
        record.unreached = openMeteo.unreached && metNo.unreached;
    }
    const QList<Waiting> waiting = std::exchange(record.waiting, {});
    for (const Waiting &each : waiting)
        if (each.reply)
            serve(record, each.reply, each.host, false);
}
