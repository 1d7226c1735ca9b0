#include "weather/weather_problem.h"

#include "core/network_access.h"

#include <QRegularExpression>

namespace {

constexpr int ReasonLength = 40;

// "Open-Meteo: too many requests (429); met.no: access refused (403)." -> the first source's
// reason; any other sentence without its full stop.
QString reasonOf(const QString &description)
{
    static const QRegularExpression sourcePrefix(QStringLiteral("^\\s*Open-Meteo:\\s*"));
    QString reason = description;
    if (reason.contains(sourcePrefix)) {
        reason.remove(sourcePrefix);
        reason = reason.section(QLatin1Char(';'), 0, 0);
    }
    reason = reason.simplified();
    while (reason.endsWith(QLatin1Char('.')))
        reason.chop(1);
    if (reason.size() > ReasonLength)
        reason = reason.left(ReasonLength - 1).trimmed() + QChar(0x2026);
    return reason;
}

} // namespace

WeatherProblem DescribeWeatherFailure(int errorNumber, const QString &description)
{
    if (errorNumber == 0)
        return {QStringLiteral("No answer from the weather source"), true};
    if (NetworkErrorNeverReachedServer(errorNumber))
        return {QStringLiteral("Offline: no network"), true};
    if (errorNumber == 404)
        return {QStringLiteral("Place not found"), false};
    const QString reason = reasonOf(description);
    return {reason.isEmpty() ? QStringLiteral("Source refused") : QStringLiteral("Source refused: ") + reason,
            false};
}
