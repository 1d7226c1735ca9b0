#pragma once

#include <QByteArray>
#include <QString>

// What the weather labels show, as the parser last left them.
struct WeatherReadout
{
    int iconNumber = -1; // folded condition code; -1 until the first picture
    QString glyph;       // the weather font's character for iconNumber (lblWEATHER)
    QString location;    // lblLOCATION: "London, United Kingdom"
    QString country;     // lblCOUNTRY: "United Kingdom"
    QString place;       // the dashboard's place label: "London"
    QString description; // lblDESC
    QString temperatureText; // lblNUMBERDESC: "57F 13.9C", a bare "-5", or "No Temp"
    QString number;          // lblNUMBER: "14C" or "57F " or "-"
    QString summary;         // txtFINALNOW
};

// The reply's bytes as text. The feed's text is 8-bit (Windows-1252, of which Latin-1 is a
// part) unless the reply says UTF-8: in its Content-Type charset, its XML declaration's
// encoding, or a UTF-8 byte order mark.
QString DecodeFeedText(const QByteArray &bytes, const QByteArray &contentType = {});

// The reply's bytes as text (DecodeFeedText), written to `scratchFile` (followed by CR LF) and read back
// item by item with comma-separated-value rules, every item followed by CR LF: each comma of
// the feed becomes a line break. The scratch file is deleted afterwards. Where it cannot be
// written the same reading is done in memory, so a full disk loses nothing.
QString NormaliseFeedReply(const QByteArray &bytes, const QString &scratchFile,
                           const QByteArray &contentType = {});

// The reading rules of NormaliseFeedReply on a text (items end at a comma or a line end; an item that
// begins with a double quote runs to the closing quote and loses the quotes; blanks around an
// unquoted item are dropped).
QString CommaSeparatedItems(const QString &text);

// (5/9)(F - 32), floored to hundredths (after adding 0.0005), then rounded half away from zero
// to one decimal: 57 -> 13.9, 100 -> 37.8, 20 -> -6.7, 32 -> 0.
double CelsiusFromFahrenheit(double fahrenheit);

// The condition code fold (36 -> 32, 44 -> 25, ...); codes not in the table stay as they are.
int FoldIconNumber(int iconNumber);

// The parser of the normalised reply ("DataCurrent"). It keeps the readout and the Fahrenheit
// value between runs: a reading of 0 F or below leaves the previous Fahrenheit value in force.
class WeatherFeedParser
{
public:
    // Which parts of the readout a run changed: the picture is set before the text part is
    // read, so a run can change the picture and then stop.
    struct Outcome
    {
        bool picture = false;
        bool labels = false;
    };

    // Parses `txtData` (the normalised reply). `fahrenheitSelected` is "Temp-Selected" != "0".
    // Where the reply lacks what a step needs, the run stops and the rest stays as it was.
    Outcome DataCurrent(const QString &txtData, bool fahrenheitSelected);

    const WeatherReadout &readout() const { return m_readout; }
    double fahrenheit() const { return m_fahrenheit; }
    QString iconAddress() const { return m_iconAddress; }
    // The working chunk ("txtCURRENT") as the last run left it.
    QString txtCURRENT() const { return m_current; }

private:
    WeatherReadout m_readout;
    double m_fahrenheit = 0;
    QString m_iconAddress;
    QString m_current;
};
