// The location catalogue against the shipped tables: the loose "contains" membership and
// first-match rules, look-up by code, and the maintenance import and export.

#include "core/shipped_data.h"
#include "support/test_home.h"
#include "weather/location_catalogue.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace LocationCatalogue;

namespace {

const char kPrevious[] = "PREV0001";

void placeRow(const char *name, Kind kind, const QString &country, int count, const QString &first = {},
              const QString &last = {}, const QString &contained = {})
{
    QTest::newRow(name) << int(kind) << country << count << first << last << contained;
}

void resolveRow(const char *name, Kind kind, const QString &country, const QString &place,
                const QString &expected = QString::fromLatin1(kPrevious))
{
    QTest::newRow(name) << int(kind) << country << place << expected;
}

void codeRow(const char *name, const QString &code, const QString &place = {}, const QString &region = {},
             double latitude = 0, double longitude = 0)
{
    QTest::newRow(name) << code << !place.isEmpty() << place << region << latitude << longitude;
}

} // namespace

class TestLocationCatalogue : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void countryList_data();
    void countryList();
    void placeList_data();
    void placeList();
    void resolve_data();
    void resolve();
    void placeForCode_data();
    void placeForCode();
    void everyCodeIsFound();
    void importCountryNames_data();
    void importCountryNames();
    void exportWritesTheTableFormat();

private:
    QString notesPath(const QString &name) const { return m_home.filePath(QStringLiteral("notes/") + name); }

    TestHome m_home;
};

void TestLocationCatalogue::initTestCase()
{
    QVERIFY(m_home.isValid());
    QVERIFY(QDir(m_home.path()).mkpath(QStringLiteral("notes")));
}

void TestLocationCatalogue::countryList_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("ends"); // the first and the last item

    QTest::newRow("world: COUNTRIES") << int(World) << 240 << QStringList{"Aruba", "Zimbabwe"};
    QTest::newRow("United States: STATES") << int(UnitedStates) << 62 << QStringList{"AA", "WY"};
}

// Switching the option refills the country list from the other table.
void TestLocationCatalogue::countryList()
{
    QFETCH(int, kind);
    QFETCH(int, count);
    QFETCH(QStringList, ends);

    const QStringList countries = FillCountryList(Kind(kind));
    QCOMPARE(countries.size(), count);
    QCOMPARE((QStringList{countries.first(), countries.last()}), ends);
    QVERIFY(!countries.contains(QString())); // no quote, CR or blank is left over
}

void TestLocationCatalogue::placeList_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("country");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    // A country whose places, all of them, come first because its name is contained in `country`.
    QTest::addColumn<QString>("contained");

    placeRow("Niger alone", World, "Niger", 27, "Abalak", "Zinder");
    placeRow("Nigeria lists Niger first", World, "Nigeria", 27 + 138, "Abalak", "Zaria", "Niger");
    placeRow("Guinea alone", World, "Guinea", 40, "Beyla", "Youkounkoun");
    placeRow("Papua New Guinea lists Guinea", World, "Papua New Guinea", 40 + 17, "Beyla", "Wewak", "Guinea");
    placeRow("Dominica alone", World, "Dominica", 5, "Berekua", "Wesley");
    placeRow("Dominican Republic lists Dominica", World, "Dominican Republic", 5 + 55, "Berekua", "Yamasá",
             "Dominica");
    placeRow("largest state", UnitedStates, "PA", 1839, "Aaronsburg", "Zullinger");
    placeRow("case counts", World, "niger", 0);
    placeRow("unknown country", World, "Atlantis", 0);
    placeRow("no country", World, "", 0);
    placeRow("state code in the world table", World, "PA", 0);
}

void TestLocationCatalogue::placeList()
{
    QFETCH(int, kind);
    QFETCH(QString, country);
    QFETCH(int, count);
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(QString, contained);

    const QStringList places = FillPlaceList(Kind(kind), country);
    QCOMPARE(places.size(), count);
    if (count == 0)
        return;
    QCOMPARE(places.first(), first);
    QCOMPARE(places.last(), last);
    if (!contained.isEmpty()) {
        const QStringList inner = FillPlaceList(Kind(kind), contained);
        QVERIFY(inner.size() < places.size());
        QCOMPARE(places.mid(0, inner.size()), inner);
    }
}

void TestLocationCatalogue::resolve_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("country");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("expected");

    resolveRow("default", World, DefaultCountry, DefaultPlace, DefaultCode);
    resolveRow("Londonderry takes London's code, the first contained place", World, "United Kingdom",
               "Londonderry", "UKXX0085");
    resolveRow("Niger's place chosen under Nigeria", World, "Nigeria", "Agadez", "NGXX0002");
    resolveRow("accented place", World, "Dominican Republic", "Yamasá", "DRXX0055");
    resolveRow("last line of the largest table", UnitedStates, "WY", "Yoder", "USWY0176");
    resolveRow("place that matches nothing", World, "United Kingdom", "Atlantis");
    resolveRow("place of another country", World, "Niger", "Aba");
    resolveRow("case counts", World, "United Kingdom", "london");
    resolveRow("no place", World, "United Kingdom", "");
    resolveRow("no country", World, "", "London");
    resolveRow("world place in the US table", UnitedStates, "United Kingdom", "London");
}

void TestLocationCatalogue::resolve()
{
    QFETCH(int, kind);
    QFETCH(QString, country);
    QFETCH(QString, place);
    QFETCH(QString, expected);

    QCOMPARE(ResolveLocationCode(Kind(kind), country, place, QString::fromLatin1(kPrevious)), expected);
}

void TestLocationCatalogue::placeForCode_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("region");
    QTest::addColumn<double>("latitude");
    QTest::addColumn<double>("longitude");

    codeRow("first world", "AAXX0001", "Oranjestad", "Aruba", 12.524, -70.027);
    codeRow("middle world", "JAXX0140", "Saga", "Japan", 33.2333, 130.3);
    codeRow("London", "UKXX0085", "London", "United Kingdom", 51.5085, -0.1257);
    codeRow("last world", "ZIXX0038", "Zvishavane", "Zimbabwe", -20.3267, 30.0665);
    codeRow("first US", "USAK0001", "Adak", "AK", 51.874, -176.634);
    codeRow("middle US", "USMT0283", "Ryegate", "MT", 46.2972, -109.2588);
    codeRow("last US", "USWY0176", "Yoder", "WY", 41.912, -104.3535);
    codeRow("before the first", "AAXX0000");
    codeRow("after the last", "ZZXX0001");
    codeRow("unknown US", "USWY9999");
    codeRow("lower case", "ukxx0085");
    codeRow("part of a code", "UKXX");
    codeRow("empty", "");
}

void TestLocationCatalogue::placeForCode()
{
    QFETCH(QString, code);
    QFETCH(bool, found);
    QFETCH(QString, name);
    QFETCH(QString, region);
    QFETCH(double, latitude);
    QFETCH(double, longitude);

    const std::optional<Place> place = PlaceForCode(code);
    QCOMPARE(place.has_value(), found);
    if (!found)
        return;
    QCOMPARE(place->code, code);
    QCOMPARE(place->name, name);
    QCOMPARE(place->region, region);
    QVERIFY(place->hasCoordinates);
    QCOMPARE(place->latitude, latitude);
    QCOMPARE(place->longitude, longitude);
}

// The look-up halves the tables by bytes; every line, at either end of a halving step or not,
// must be reachable.
void TestLocationCatalogue::everyCodeIsFound()
{
    for (const char *table : {ShippedData::InternationalTable, ShippedData::UsStatesTable}) {
        for (const QString &line : ShippedData::readLines(QLatin1String(table))) {
            const QStringList fields = line.split(QLatin1Char('|'));
            const std::optional<Place> place = PlaceForCode(fields.value(0));
            QVERIFY2(place && place->name == fields.value(1) && place->region == fields.value(2),
                     qPrintable(line));
            QVERIFY2(place->hasCoordinates, qPrintable(line));
        }
    }
}

void TestLocationCatalogue::importCountryNames_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("file"); // null: no file
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");

    const QByteArray world = "AAXX0001|Oranjestad|Aruba\r\nNGXX0001|Abalak|Niger\r\n"
                             "AAXX0002|Paradera|Aruba\r\nTUXX0001|Ankara|Türkiye\r\nNGXX0002|Agadez|Niger";
    QTest::newRow("each once, in order of first appearance")
        << int(World) << world << QStringList() << QStringList{"Aruba", "Niger", "Türkiye"};
    QTest::newRow("names already listed stay where they are")
        << int(World) << world << QStringList{"Niger", "Chad"}
        << QStringList{"Niger", "Chad", "Aruba", "Türkiye"};
    QTest::newRow("US file, LF line ends")
        << int(UnitedStates) << QByteArray("USAK0001|Adak|AK\nUSAL0001|Abbeville|AL\nUSAK0002|Akiachak|AK\n")
        << QStringList() << QStringList{"AK", "AL"};
    QTest::newRow("missing file") << int(World) << QByteArray() << QStringList{"Chad"} << QStringList{"Chad"};
}

void TestLocationCatalogue::importCountryNames()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, file);
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);

    const QString path = notesPath(kind == UnitedStates ? "locat-us.txt" : "locat-inter.txt");
    QFile::remove(path);
    if (!file.isNull()) {
        QFile out(path);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(file);
    }
    QCOMPARE(ImportCountryNames(Kind(kind), before), after);
}

// The export is the tool that made COUNTRIES and STATES (quoted UTF-8 names, CR LF after each):
// a list read from a table and written back gives the table byte for byte.
void TestLocationCatalogue::exportWritesTheTableFormat()
{
    QVERIFY(ExportCountryNames(World, FillCountryList(World)));
    QVERIFY(ExportCountryNames(UnitedStates, FillCountryList(UnitedStates)));
    QFile countries(notesPath(QStringLiteral("countries.txt")));
    QFile states(notesPath(QStringLiteral("states.txt")));
    QVERIFY(countries.open(QIODevice::ReadOnly) && states.open(QIODevice::ReadOnly));
    QCOMPARE(countries.readAll(), ShippedData::read(QLatin1String(ShippedData::CountriesTable)));
    QCOMPARE(states.readAll(), ShippedData::read(QLatin1String(ShippedData::StatesTable)));
}

QTEST_GUILESS_MAIN(TestLocationCatalogue)
#include "test_location_catalogue.moc"
