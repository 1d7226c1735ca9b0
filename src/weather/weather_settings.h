#pragma once

#include "weather/location_catalogue.h"

#include <QString>

// The weather's stored choices, under "fwth_SET\Details": the catalogue and place of the last
// confirm, the unit the widget shows and the feed host.
struct WeatherSettings
{
    static QString windowName() { return QStringLiteral("fwth_SET"); }

    LocationCatalogue::Kind catalogue = LocationCatalogue::World; // "Weather location-world"
    QString countryName = QString::fromLatin1(LocationCatalogue::DefaultCountry); // "...-country-name"
    QString countryArea = QString::fromLatin1(LocationCatalogue::DefaultPlace);   // "...-country-area"
    bool fahrenheit = false; // "Temp-Selected" "1"
    QString feedHost;        // "Weather Feed Host"; the built-in adapter's host by default

    static WeatherSettings load();
    // Writes the unit and the place (not the feed host, which only an administrator edits).
    void save() const;

    // The code of the stored place, or the default code where it resolves to nothing.
    QString resolvedCode() const;
};
