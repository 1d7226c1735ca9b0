#include "weather/location_catalogue.h"

#include "core/app_paths.h"
#include "core/file_helpers.h"
#include "core/safe_file_write.h"
#include "core/shipped_data.h"

#include <QByteArrayView>
#include <QFile>
#include <QResource>
#include <QSet>
#include <QTextStream>

#include <cstring>

namespace LocationCatalogue {
namespace {

// A table's bytes as compiled in. An uncompressed resource is used in place; a compressed
// one is unpacked on first use and the bytes kept, so that every later walk costs no more than
// reading the table itself. No index is built: every walk goes through the lines again.
struct TableBytes
{
    QByteArray bytes;
    // No double quote anywhere and no CR but the one before each LF: cleaning a line then
    // only means dropping that CR and trimming, which the walks do without looking further.
    bool plain = true;
};

bool everyCrEndsALine(const QByteArray &bytes)
{
    for (qsizetype cr = bytes.indexOf('\r'); cr >= 0; cr = bytes.indexOf('\r', cr + 1)) {
        if (cr + 1 == bytes.size() || bytes[cr + 1] != '\n')
            return false;
    }
    return true;
}

TableBytes loadTable(const char *resourcePath)
{
    TableBytes table;
    const QResource resource(QString::fromLatin1(resourcePath));
    if (!resource.isValid())
        return table;
    table.bytes = resource.uncompressedData();
    table.plain = !table.bytes.contains('"') && everyCrEndsALine(table.bytes);
    return table;
}

enum class Table
{
    Countries,
    States,
    International,
    UsStates,
    Coords
};

const TableBytes &tableBytes(Table table)
{
    switch (table) {
    case Table::Countries: {
        static const TableBytes bytes = loadTable(ShippedData::CountriesTable);
        return bytes;
    }
    case Table::States: {
        static const TableBytes bytes = loadTable(ShippedData::StatesTable);
        return bytes;
    }
    case Table::International: {
        static const TableBytes bytes = loadTable(ShippedData::InternationalTable);
        return bytes;
    }
    case Table::UsStates: {
        static const TableBytes bytes = loadTable(ShippedData::UsStatesTable);
        return bytes;
    }
    case Table::Coords:
        break;
    }
    static const TableBytes coords = loadTable(ShippedData::CoordsTable);
    return coords;
}

const TableBytes &placeTable(Kind kind)
{
    return tableBytes(kind == UnitedStates ? Table::UsStates : Table::International);
}

// Only spaces count as blanks at the ends of a line; the tables hold no other white space.
QByteArrayView trimmedSpaces(QByteArrayView line)
{
    while (!line.isEmpty() && line.front() == ' ')
        line = line.sliced(1);
    while (!line.isEmpty() && line.back() == ' ')
        line.chop(1);
    return line;
}

// A line (without its LF) with every double quote, CR and LF taken out and the blanks at
// both ends trimmed. Only a line of a table that is not plain is copied, into `scratch`,
// which the result then points into.
QByteArrayView cleanedLine(QByteArrayView line, bool plain, QByteArray &scratch)
{
    if (plain) {
        if (line.endsWith('\r'))
            line.chop(1);
    } else {
        scratch = line.toByteArray();
        scratch.removeIf([](char c) { return c == '"' || c == '\r' || c == '\n'; });
        line = scratch;
    }
    return trimmedSpaces(line);
}

// Calls `handle` with every cleaned line of the table in order until it returns false. A
// line ends at its LF; a stretch after the last LF is not a line and is not read.
template <typename Handler> void forEachLine(const TableBytes &table, Handler &&handle)
{
    QByteArray scratch;
    const char *data = table.bytes.constData();
    const qsizetype size = table.bytes.size();
    qsizetype start = 0;
    while (start < size) {
        const void *lf = std::memchr(data + start, '\n', size_t(size - start));
        if (!lf)
            return;
        const qsizetype end = static_cast<const char *>(lf) - data;
        if (!handle(cleanedLine(QByteArrayView(data + start, end - start), table.plain, scratch)))
            return;
        start = end + 1;
    }
}

// The first three '|'-separated fields of a place line, cut as FieldOf cuts them: a field
// past the last delimiter is empty.
struct Fields
{
    QByteArrayView first;
    QByteArrayView second;
    QByteArrayView third;
};

Fields fieldsOf(QByteArrayView line)
{
    qsizetype bars[3];
    int found = 0;
    for (qsizetype i = 0; i < line.size() && found < 3; ++i) {
        if (line[i] == '|')
            bars[found++] = i;
    }
    const auto between = [&](int left, int right) { // bars[-1] is the start, bars[found] the end
        const qsizetype from = left < 0 ? 0 : bars[left] + 1;
        const qsizetype to = right < found ? bars[right] : line.size();
        return line.sliced(from, to - from);
    };
    Fields fields;
    fields.first = between(-1, 0);
    if (found >= 1)
        fields.second = between(0, 1);
    if (found >= 2)
        fields.third = between(1, 2);
    return fields;
}

// QByteArrayView::contains with the common cases of the walks (a part as long as the text or
// longer) settled without a search.
bool containsPart(QByteArrayView text, QByteArrayView part)
{
    if (part.size() >= text.size())
        return part.size() == text.size() && part == text;
    return text.contains(part);
}

// The text of the line whose first field is `code`, in a table ordered by its first field;
// empty when there is none. The search halves the table by bytes and reads the line around
// the middle, so it needs no list of line starts.
QByteArray lineForCode(const TableBytes &table, QByteArrayView code)
{
    const QByteArray &bytes = table.bytes;
    const char *data = bytes.constData();
    qsizetype low = 0;
    qsizetype high = bytes.size();
    QByteArray scratch;
    while (low < high) {
        const qsizetype middle = low + (high - low) / 2;
        const qsizetype start = middle == 0 ? 0 : bytes.lastIndexOf('\n', middle - 1) + 1;
        const qsizetype lf = bytes.indexOf('\n', middle);
        if (lf < 0) { // the unread stretch after the last LF
            high = start;
            continue;
        }
        const QByteArrayView line =
            cleanedLine(QByteArrayView(data + start, lf - start), table.plain, scratch);
        const QByteArrayView lineCode = fieldsOf(line).first;
        if (lineCode == code)
            return line.toByteArray();
        if (lineCode < code)
            low = lf + 1;
        else
            high = start;
    }
    return {};
}

QString importFileName(Kind kind)
{
    return kind == UnitedStates ? QStringLiteral("notes\\locat-us.txt")
                                : QStringLiteral("notes\\locat-inter.txt");
}

QString exportFileName(Kind kind)
{
    return kind == UnitedStates ? QStringLiteral("notes\\states.txt")
                                : QStringLiteral("notes\\countries.txt");
}

} // namespace

QStringList FillCountryList(Kind kind)
{
    QStringList countries;
    forEachLine(tableBytes(kind == UnitedStates ? Table::States : Table::Countries),
                [&](QByteArrayView line) {
                    countries.append(QString::fromUtf8(line));
                    return true;
                });
    return countries;
}

// The membership checks below compare UTF-8 bytes: for valid UTF-8 a byte sequence occurs in another
// exactly when the text it encodes occurs in the other's text, so only returned fields need
// converting.
QStringList FillPlaceList(Kind kind, const QString &countryText)
{
    const QByteArray country = countryText.toUtf8();
    QStringList places;
    forEachLine(placeTable(kind), [&](QByteArrayView line) {
        const Fields fields = fieldsOf(line);
        if (containsPart(country, fields.third))
            places.append(QString::fromUtf8(fields.second));
        return true;
    });
    return places;
}

QString ResolveLocationCode(Kind kind, const QString &countryText, const QString &placeText,
                            const QString &previousCode)
{
    const QByteArray country = countryText.toUtf8();
    const QByteArray place = placeText.toUtf8();
    QString code = previousCode;
    forEachLine(placeTable(kind), [&](QByteArrayView line) {
        const Fields fields = fieldsOf(line);
        if (!containsPart(country, fields.third) || !containsPart(place, fields.second))
            return true;
        code = QString::fromUtf8(fields.first);
        return false;
    });
    return code;
}

QStringList ImportCountryNames(Kind kind, QStringList list)
{
    QFile file(AppPaths::dataPath(importFileName(kind)));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return list;
    QSet<QString> listed(list.cbegin(), list.cend());
    QTextStream in(&file);
    in.setEncoding(QStringConverter::Utf8);
    QString line;
    while (in.readLineInto(&line)) {
        const QString country = FieldOf(line, QLatin1Char('|'), 3);
        if (listed.contains(country))
            continue;
        listed.insert(country);
        list.append(country);
    }
    return list;
}

bool ExportCountryNames(Kind kind, const QStringList &items)
{
    QByteArray bytes;
    for (const QString &item : items)
        bytes += '"' + item.toUtf8() + "\"\r\n";
    return WriteFileSafely(AppPaths::dataPath(exportFileName(kind)), bytes);
}

std::optional<Place> PlaceForCode(const QString &code)
{
    if (code.isEmpty())
        return std::nullopt;
    const QByteArray key = code.toUtf8();
    const bool american = code.startsWith(QLatin1String("US"));
    const QByteArray line = lineForCode(tableBytes(american ? Table::UsStates : Table::International), key);
    if (line.isEmpty())
        return std::nullopt;
    const Fields fields = fieldsOf(line);
    Place place;
    place.code = code;
    place.name = QString::fromUtf8(fields.second);
    place.region = QString::fromUtf8(fields.third);

    const QByteArray coordinates = lineForCode(tableBytes(Table::Coords), key);
    if (!coordinates.isEmpty()) {
        const Fields numbers = fieldsOf(coordinates);
        bool latitudeOk = false;
        bool longitudeOk = false;
        const double latitude = numbers.second.toDouble(&latitudeOk);
        const double longitude = numbers.third.toDouble(&longitudeOk);
        if (latitudeOk && longitudeOk) {
            place.hasCoordinates = true;
            place.latitude = latitude;
            place.longitude = longitude;
        }
    }
    return place;
}

} // namespace LocationCatalogue
