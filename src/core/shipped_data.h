#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

// The read-only data compiled into the program's resources (data/ in the source tree, made by
// the generators in tools/). Text tables are UTF-8 with CR LF after every line.
class ShippedData
{
public:
    // Weather location catalogue: COUNTRIES ("Name" per line), STATES ("ST" per line),
    // INTERNATIONAL (CODE|Place|Country) and USTATES (CODE|Place|ST), the place tables
    // ordered by code; COORDS (CODE|lat|lon, 4 decimals) for every code of both.
    static constexpr const char *CountriesTable = ":/catalogue/COUNTRIES.txt";
    static constexpr const char *StatesTable = ":/catalogue/STATES.txt";
    static constexpr const char *InternationalTable = ":/catalogue/INTERNATIONAL.txt";
    static constexpr const char *UsStatesTable = ":/catalogue/USTATES.txt";
    static constexpr const char *CoordsTable = ":/catalogue/COORDS.txt";

    // Weather symbols: the font, and "code|HEX" lines mapping a condition code to its glyph.
    static constexpr const char *WeatherFont = ":/fonts/weathericons-regular-webfont.ttf";
    static constexpr const char *WeatherGlyphList = ":/weather/glyphs.txt";

    // Webcam viewer, one camera per line in list order: "name|url|credit|credit page|header",
    // url empty where none is known (and nothing after it); header ("Name: value") only where
    // the operator's server wants one.
    static constexpr const char *WebcamTable = ":/webcams/webcams.txt";

    // The built-in "BELL" sound (for QSoundEffect use the URL form "qrc:/sounds/bell.wav").
    static constexpr const char *BellSound = ":/sounds/bell.wav";

    // Credits for the About window (Markdown) and the licence texts it refers to.
    static constexpr const char *Credits = ":/CREDITS.md";
    static constexpr const char *LicenceFolder = ":/licenses";

    // The spell checker's word lists as shipped; the checker itself reads the copies in the
    // data folder's notes/ (see InstallMissingDictionaries).
    static constexpr const char *DictionaryFolder = ":/dictionaries";
    static QStringList dictionaryNames(); // "wordsus.dct", "wordsuk.dct"

    // Whole content of a resource, or an empty array when it does not exist.
    static QByteArray read(const QString &resourcePath);

    // The lines of a UTF-8 table resource without their line ends (empty lines dropped).
    static QStringList readLines(const QString &resourcePath);

    // Condition code -> code point of the weather font, from the glyph list.
    static QHash<int, char32_t> weatherGlyphs();

    // The glyph of `iconNumber` as a one-character text, or an empty text for a code the list
    // does not know.
    static QString weatherGlyph(int iconNumber);

    // Registers the weather font with the application (once) and returns its family name,
    // or an empty text when the font cannot be loaded. Needs a QGuiApplication.
    static QString weatherFontFamily();
};

// Copies the shipped dictionaries into the data folder's notes/ where a file of that name is
// missing, so that words a user has added survive an upgrade. Creates notes/ when needed and
// writes through a temporary file. Returns false, with a message for the user in
// `errorMessage`, when a copy could not be made.
bool InstallMissingDictionaries(QString *errorMessage = nullptr);
