#include "weather/weather_feed_parser.h"

#include "core/file_helpers.h"
#include "core/shipped_data.h"

#include <QFile>

#include <cmath>
#include <optional>

namespace {

const QString CrLf = QStringLiteral("\r\n");

// ---------------------------------------------------------------------------------------------
// Comma-separated reading

bool isBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

bool isLineEnd(QChar c)
{
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

// Steps over the comma or line end (CR LF, LF or CR) at `pos`, if there is one.
void skipTerminator(const QString &text, qsizetype &pos)
{
    if (pos >= text.size())
        return;
    const QChar c = text.at(pos++);
    if (c == QLatin1Char('\r') && pos < text.size() && text.at(pos) == QLatin1Char('\n'))
        ++pos;
}

// A quoted item runs to the closing quote, across commas and line ends; whatever follows it
// up to the next comma or line end is dropped.
QString readQuotedItem(const QString &text, qsizetype &pos)
{
    const qsizetype open = pos;
    qsizetype close = text.indexOf(QLatin1Char('"'), open + 1);
    if (close < 0)
        close = text.size();
    const QString item = text.mid(open + 1, close - open - 1);
    pos = close + 1;
    while (pos < text.size() && text.at(pos) != QLatin1Char(',') && !isLineEnd(text.at(pos)))
        ++pos;
    skipTerminator(text, pos);
    return item;
}

// An unquoted item runs to the next comma or line end and loses its trailing blanks; quotes
// inside it are kept.
QString readPlainItem(const QString &text, qsizetype &pos)
{
    const qsizetype start = pos;
    while (pos < text.size() && text.at(pos) != QLatin1Char(',') && !isLineEnd(text.at(pos)))
        ++pos;
    qsizetype end = pos;
    while (end > start && isBlank(text.at(end - 1)))
        --end;
    skipTerminator(text, pos);
    return text.mid(start, end - start);
}

// One item from `pos` on (leading blanks skipped); `pos` ends up after its terminator. An
// item that ends at once (an empty line, two commas in a row, a comma before a line end)
// reads as an empty item.
QString readItem(const QString &text, qsizetype &pos)
{
    while (pos < text.size() && isBlank(text.at(pos)))
        ++pos;
    if (pos < text.size() && text.at(pos) == QLatin1Char('"'))
        return readQuotedItem(text, pos);
    return readPlainItem(text, pos);
}

bool writeScratch(const QString &path, const QString &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray bytes = text.toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}

std::optional<QString> readScratch(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.readAll());
}

// ---------------------------------------------------------------------------------------------
// The string routines the parser is written in: 1-based positions, 0 for "not found". Where
// the classic routine would fail (a start before the text, a negative length) these return
// nothing and the parse stops.

int inStr(const QString &text, const QString &what, int start = 1)
{
    if (start > text.size() + 1)
        return 0;
    const qsizetype found = text.indexOf(what, start - 1);
    return found < 0 ? 0 : int(found) + 1;
}

// InStr with an explicit start: a start of 0 or less is an error.
std::optional<int> inStrFrom(int start, const QString &text, const QString &what)
{
    if (start < 1)
        return std::nullopt;
    return inStr(text, what, start);
}

std::optional<QString> mid(const QString &text, int start, int length)
{
    if (start < 1 || length < 0)
        return std::nullopt;
    return text.mid(start - 1, length);
}

QString midToEnd(const QString &text, int start)
{
    return text.mid(qMax(start, 1) - 1);
}

std::optional<QString> left(const QString &text, int length)
{
    if (length < 0)
        return std::nullopt;
    return text.left(length);
}

// Trim removes spaces only: a line break at either end stays (an empty description shows up
// as a text that begins with its line break).
QString trimSpaces(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text.at(start) == QLatin1Char(' '))
        ++start;
    while (end > start && text.at(end - 1) == QLatin1Char(' '))
        --end;
    return text.mid(start, end - start);
}

// The whole number a text begins with, read the lenient way: leading blanks skipped, an
// optional sign, then digits up to the first other character; 0 when there are none.
// "26.gif" and "26" read 26, "2." reads 2, "-5" reads -5, "57.6" reads 57.
double leadingWholeNumber(const QString &text)
{
    qsizetype pos = 0;
    while (pos < text.size() && isBlank(text.at(pos)))
        ++pos;
    double sign = 1;
    if (pos < text.size() && (text.at(pos) == QLatin1Char('-') || text.at(pos) == QLatin1Char('+'))) {
        sign = text.at(pos) == QLatin1Char('-') ? -1 : 1;
        ++pos;
    }
    double value = 0;
    for (; pos < text.size() && text.at(pos).isDigit() && text.at(pos).unicode() < 128; ++pos)
        value = value * 10 + (text.at(pos).unicode() - '0');
    return sign * value + 0.0; // + 0.0 turns -0 into 0
}

QString shortestDecimal(double value)
{
    return QString::number(value + 0.0, 'g', 15);
}

double roundHalfAwayFromZero(double value)
{
    return std::round(value) + 0.0;
}

// ---------------------------------------------------------------------------------------------
// The parser's working values between its steps.

struct ParseState
{
    QString chunk;           // the 1,000 characters after the title marker
    QString location;        // with the country's line feed where the title had three parts
    QString block;           // the description block
    int queryMark = 0;       // 1-based position of the icon address's "?" in the block
    QString description;
    QString temperatureText;
};

// 3. The title: every comma of the feed arrived as a line break.
bool readTitle(ParseState &state)
{
    const std::optional<QString> title = left(state.chunk, inStr(state.chunk, QStringLiteral("]")) - 1);
    if (!title)
        return false;
    const int i = inStr(*title, CrLf);
    if (i == 0)
        return false;
    const int j = inStr(*title, CrLf, i + 1);
    if (j > 0)
        state.location = title->left(i - 1) + QStringLiteral(", ") + midToEnd(*title, j + 1);
    else
        state.location = QString(*title).replace(CrLf, QStringLiteral(", "));
    state.location.remove(QStringLiteral("Current Weather Conditions In "));
    return true;
}

// 4. The description block, from "<description>" up to its closing tag.
bool readDescriptionBlock(ParseState &state, const QString &current)
{
    const int a = inStr(current, QStringLiteral("<description>"));
    const int b = inStr(current, QStringLiteral("</description>"));
    if (b < a)
        return false;
    const std::optional<QString> block = mid(current, a, b - a);
    if (!block)
        return false;
    state.block = *block;
    return true;
}

// 5. The icon address: from the quote after "<img" up to the "?" of its query.
std::optional<QString> readIconAddress(ParseState &state)
{
    const int k = inStr(state.block, QStringLiteral("<img"));
    const std::optional<int> q = inStrFrom(k, state.block, QStringLiteral("\""));
    if (!q)
        return std::nullopt;
    const int r = inStr(state.block, QStringLiteral("?"), *q + 1);
    if (r - *q < 1)
        return std::nullopt;
    state.queryMark = r;
    return mid(state.block, *q + 1, r - *q - 1);
}

int iconNumberOf(const QString &iconAddress)
{
    return int(leadingWholeNumber(FileNameOf(iconAddress).left(2)));
}

// 8. The text between the picture and "For more details": "<description>\r\nand <F> F. ...".
// Returns the cleaned text (the working chunk's new content), or nothing where it has no
// line break.
std::optional<QString> readTextAndTemperature(ParseState &state)
{
    const int r = state.queryMark;
    const int f = inStr(state.block, QStringLiteral("For more details"), r);
    const std::optional<QString> between = mid(state.block, r + 2, f - r - 2);
    if (!between)
        return std::nullopt;
    QString x = trimSpaces(*between);
    x = trimSpaces(midToEnd(x, inStr(x, QStringLiteral("/>")) + 2));
    const int i = inStr(x, CrLf);
    if (i == 0)
        return std::nullopt;
    state.description = x.left(i - 1);
    // Skip the line break and "and ".
    state.temperatureText = midToEnd(x, i + 6);
    return x;
}

// 9. Description fix-ups, in this order.
void fixDescription(ParseState &state, const QString &iconAddress, int iconNumber)
{
    const QString noDescription = QStringLiteral("No Description");
    if (state.description.isEmpty())
        state.description = QStringLiteral("None");
    if (iconAddress.contains(QStringLiteral("44.gif")))
        state.description = noDescription;
    else if (iconAddress.contains(QStringLiteral("25.gif")))
        state.description = QStringLiteral("None");
    if (state.description == noDescription && iconNumber == 27)
        state.description = QStringLiteral("Partly Cloudy");
}

// 8. (continued) The temperature text is cut before its first space; a reading above 0 F
// becomes the new Fahrenheit value and the text "57F 13.9C". A reading of 0 or below is left
// as the bare number and the earlier Fahrenheit value stays in force.
void readTemperature(QString &temperatureText, double &fahrenheit)
{
    const int space = inStr(temperatureText, QStringLiteral(" "));
    if (space == 0)
        return;
    temperatureText = temperatureText.left(space - 1);
    const double reading = leadingWholeNumber(temperatureText);
    if (reading <= 0)
        return;
    fahrenheit = reading;
    temperatureText = shortestDecimal(fahrenheit) + QStringLiteral("F ")
        + shortestDecimal(CelsiusFromFahrenheit(fahrenheit)) + QStringLiteral("C");
}

QString largeTemperature(double fahrenheit, bool fahrenheitSelected)
{
    if (fahrenheitSelected)
        return shortestDecimal(fahrenheit) + QStringLiteral("F ");
    // Formatted rather than cast, so that an absurd reading cannot overflow an integer.
    const double celsius = roundHalfAwayFromZero(CelsiusFromFahrenheit(fahrenheit));
    return QString::number(celsius, 'f', 0) + QStringLiteral("C");
}

// 10. What the labels show.
void showReadout(WeatherReadout &readout, ParseState &state, double fahrenheit, bool fahrenheitSelected)
{
    readout.summary = state.location + CrLf + CrLf + state.description + CrLf + CrLf + state.temperatureText;
    if (state.temperatureText.isEmpty()) {
        readout.number = QStringLiteral("-");
        state.temperatureText = QStringLiteral("No Temp");
    } else {
        readout.number = largeTemperature(fahrenheit, fahrenheitSelected);
    }
    // A three-part title left a line feed before the country.
    const QString place = QString(state.location).remove(QLatin1Char('\n'));
    readout.place = FieldOf(place, QLatin1Char(','), 1);
    readout.country = trimSpaces(FieldOf(place, QLatin1Char(','), 2));
    readout.location = readout.place + QStringLiteral(", ") + readout.country;
    readout.description = state.description;
    readout.temperatureText = state.temperatureText;
}

// Windows-1252's characters for 0x80-0x9F, where it differs from Latin-1; the five bytes it
// leaves undefined keep their Latin-1 control characters.
constexpr char16_t Windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool namesUtf8(QByteArray label)
{
    label = label.trimmed().toLower();
    return label == "utf-8" || label == "utf8";
}

bool contentTypeSaysUtf8(const QByteArray &contentType)
{
    for (const QByteArray &part : contentType.split(';')) {
        const QByteArray item = part.trimmed();
        if (item.toLower().startsWith("charset="))
            return namesUtf8(QByteArray(item.mid(8)).replace('"', ""));
    }
    return false;
}

bool declarationSaysUtf8(const QByteArray &bytes)
{
    if (!bytes.startsWith("<?xml"))
        return false;
    const qsizetype end = bytes.indexOf("?>");
    const QByteArray declaration = bytes.left(end < 0 ? 200 : end);
    const qsizetype key = declaration.indexOf("encoding");
    if (key < 0)
        return false;
    qsizetype from = declaration.indexOf('=', key);
    if (from < 0)
        return false;
    ++from;
    while (from < declaration.size() && (declaration.at(from) == ' ' || declaration.at(from) == '"' ||
                                         declaration.at(from) == '\''))
        ++from;
    qsizetype to = from;
    while (to < declaration.size() && declaration.at(to) != '"' && declaration.at(to) != '\'' &&
           declaration.at(to) != ' ')
        ++to;
    return namesUtf8(declaration.mid(from, to - from));
}

} // namespace

QString DecodeFeedText(const QByteArray &bytes, const QByteArray &contentType)
{
    if (bytes.startsWith("\xEF\xBB\xBF"))
        return QString::fromUtf8(bytes.mid(3));
    if (contentTypeSaysUtf8(contentType) || declarationSaysUtf8(bytes))
        return QString::fromUtf8(bytes);
    QString text = QString::fromLatin1(bytes);
    for (QChar &c : text)
        if (c.unicode() >= 0x80 && c.unicode() <= 0x9F)
            c = QChar(Windows1252High[c.unicode() - 0x80]);
    return text;
}

QString CommaSeparatedItems(const QString &text)
{
    QString items;
    qsizetype pos = 0;
    while (pos < text.size()) {
        items += readItem(text, pos);
        items += CrLf;
    }
    return items;
}

QString NormaliseFeedReply(const QByteArray &bytes, const QString &scratchFile, const QByteArray &contentType)
{
    const QString text = DecodeFeedText(bytes, contentType) + CrLf;
    std::optional<QString> readBack;
    if (writeScratch(scratchFile, text))
        readBack = readScratch(scratchFile);
    if (QFile::exists(scratchFile))
        QFile::remove(scratchFile);
    return CommaSeparatedItems(readBack.value_or(text));
}

double CelsiusFromFahrenheit(double fahrenheit)
{
    const double celsius = (5.0 / 9.0) * (fahrenheit - 32);
    const double hundredths = std::floor((celsius + 0.0005) * 100);
    // One decimal, half away from zero, worked on the whole hundredths so that a value such
    // as 13.85 is not taken for 13.8499999...
    const double tenths = std::copysign(std::floor((std::abs(hundredths) + 5) / 10), hundredths);
    return tenths / 10 + 0.0;
}

int FoldIconNumber(int iconNumber)
{
    switch (iconNumber) {
    case 36:
        return 32;
    case 30: case 34:
        return 28;
    case 2:
        return 1;
    case 4: case 37: case 38: case 47:
        return 3;
    case 6: case 7: case 8: case 10: case 18:
        return 5;
    case 14: case 15: case 16: case 41: case 42: case 43: case 46:
        return 13;
    case 11: case 39: case 45:
        return 9;
    case 20: case 21: case 22:
        return 19;
    case 29: case 33:
        return 27;
    case 44:
        return 25;
    default:
        return iconNumber;
    }
}

WeatherFeedParser::Outcome WeatherFeedParser::DataCurrent(const QString &txtData, bool fahrenheitSelected)
{
    Outcome outcome;
    // 1. Nothing received yet.
    if (txtData.isEmpty())
        return outcome;

    // 2. The chunk after the title marker. Without the marker the chunk starts at character 6
    // of the reply and a later step stops.
    ParseState state;
    state.chunk = *mid(txtData, inStr(txtData, QStringLiteral("CDATA[Current Weather")) + 6, 1000);
    m_current = state.chunk;

    // 3., 4. and 5.
    if (!readTitle(state) || !readDescriptionBlock(state, m_current))
        return outcome;
    const std::optional<QString> iconAddress = readIconAddress(state);
    if (!iconAddress)
        return outcome;
    m_iconAddress = *iconAddress;

    // 6. and 7. The picture is shown even when the text part below turns out unreadable.
    m_readout.iconNumber = FoldIconNumber(iconNumberOf(m_iconAddress));
    m_readout.glyph = ShippedData::weatherGlyph(m_readout.iconNumber);
    outcome.picture = true;

    // 8.
    const std::optional<QString> text = readTextAndTemperature(state);
    if (!text)
        return outcome;
    m_current = *text;
    readTemperature(state.temperatureText, m_fahrenheit);

    // 9. and 10.
    fixDescription(state, m_iconAddress, m_readout.iconNumber);
    showReadout(m_readout, state, m_fahrenheit, fahrenheitSelected);
    outcome.labels = true;
    return outcome;
}
