#pragma once

#include <QString>

// Why the last weather fetch failed, in a line short enough for the widget: "Offline: no
// network", "Place not found", "Source refused: too many requests (429)".
struct WeatherProblem
{
    QString line;
    // Nothing reached a server: worth trying again as soon as the network is back.
    bool offline = false;
};

// From the downloader's failure: `errorNumber` is the HTTP status when a server answered,
// else the network error's number (0: the station gave up waiting); `description` is the
// downloader's or the built-in source's sentence.
WeatherProblem DescribeWeatherFailure(int errorNumber, const QString &description);
