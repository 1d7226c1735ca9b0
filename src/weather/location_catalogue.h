#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The shipped weather location catalogue: a place picked by name (world or United States,
// then country or state, then place) turned into the eight-character location code that the
// weather feed knows. Four tables in the resources: COUNTRIES and STATES (one quoted name per
// line), INTERNATIONAL and USTATES ("CODE|Place|Country or ST", ordered by code), plus COORDS
// ("CODE|lat|lon") for the live adapter.
//
// The membership tests are deliberately loose and kept that way: a line belongs to the chosen
// country when the country text *contains* the line's country (so "Nigeria" also lists
// Niger's places), and a place matches when the place text contains the line's place, first
// line in table order winning (so "Londonderry" resolves to London's code).
namespace LocationCatalogue {

// The world catalogue (INTERNATIONAL/COUNTRIES) or the United States one (USTATES/STATES);
// the values are those of "Weather location-world".
enum Kind { World = 0, UnitedStates = 1 };

constexpr const char *DefaultCode = "UKXX0085";
constexpr const char *DefaultCountry = "United Kingdom";
constexpr const char *DefaultPlace = "London";

// The country (or state) list, in table order.
QStringList FillCountryList(Kind kind);

// The places of every line that belongs to `countryText`, in table order.
QStringList FillPlaceList(Kind kind, const QString &countryText);

// The code of the first line that belongs to `countryText` and whose place is contained in
// `placeText`; `previousCode` when no line matches.
QString ResolveLocationCode(Kind kind, const QString &countryText, const QString &placeText,
                            const QString &previousCode);

// Maintenance: the countries (field 3) of "notes\locat-us.txt" or "notes\locat-inter.txt" in
// the program's folder, added to `list` in order of first appearance unless already there.
// A missing file leaves the list as it was.
QStringList ImportCountryNames(Kind kind, QStringList list);
// Maintenance: writes every item, in double quotes and followed by CR LF, to "notes\states.txt"
// or "notes\countries.txt" in the program's folder. False (quietly) when it cannot be written.
bool ExportCountryNames(Kind kind, const QStringList &items);

// One place of either place table, found by its code, with its coordinates where COORDS has
// them.
struct Place
{
    QString code;
    QString name;   // field 2: "London"
    QString region; // field 3: "United Kingdom", or the state code "AK"
    bool hasCoordinates = false;
    double latitude = 0;
    double longitude = 0;
};
std::optional<Place> PlaceForCode(const QString &code);

} // namespace LocationCatalogue
