// The weather location catalogue as compiled into the resources: shape of every line, order,
// cross-references between the tables, and the places the location dialog relies on.

#include "core/shipped_data.h"
#include "support/test_home.h"

#include <QRegularExpression>
#include <QSet>
#include <QtTest>

namespace {

QString field(const QString &line, int n)
{
    return line.section(QLatin1Char('|'), n - 1, n - 1);
}

QString unquoted(const QString &line)
{
    return QString(line).remove(QLatin1Char('"'));
}

} // namespace

class TestCatalogueTables : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tableShape_data();
    void tableShape();
    void orderedByCode_data();
    void orderedByCode();
    void placeCountriesAreListed();
    void placeStatesAreListed();
    void everyPlaceHasCoordinates();
    void countriesPresent_data();
    void countriesPresent();
    void londonComesBeforeLondonderry();
    void substringCountriesBothHavePlaces_data();
    void substringCountriesBothHavePlaces();

private:
    TestHome m_home;
};

void TestCatalogueTables::initTestCase()
{
    QVERIFY(m_home.isValid());
}

void TestCatalogueTables::tableShape_data()
{
    QTest::addColumn<QString>("resource");
    QTest::addColumn<int>("minLines");
    QTest::addColumn<int>("maxLines");
    QTest::addColumn<QString>("pattern");

    QTest::newRow("COUNTRIES") << ShippedData::CountriesTable << 200 << 260 << R"(^"[^"|,]+"$)";
    QTest::newRow("STATES") << ShippedData::StatesTable << 62 << 62 << R"(^"[A-Z]{2}"$)";
    QTest::newRow("INTERNATIONAL") << ShippedData::InternationalTable << 8500 << 10500
                                   << R"(^[A-Z]{2}XX\d{4}\|[^|",\s][^|",]*(?<!\s)\|[^|",]+$)";
    QTest::newRow("USTATES") << ShippedData::UsStatesTable << 29000 << 33000
                             << R"(^US[A-Z]{2}\d{4}\|[^|",\s][^|",]*(?<!\s)\|[A-Z]{2}$)";
    QTest::newRow("COORDS") << ShippedData::CoordsTable << 38000 << 44000
                            << R"(^[A-Z]{4}\d{4}\|-?\d{1,2}\.\d{4}\|-?\d{1,3}\.\d{4}$)";
}

// Every line well formed, CR LF after each one (the last included), no stray CR or LF, and the
// whole file valid UTF-8.
void TestCatalogueTables::tableShape()
{
    QFETCH(QString, resource);
    QFETCH(int, minLines);
    QFETCH(int, maxLines);
    QFETCH(QString, pattern);

    const QByteArray bytes = ShippedData::read(resource);
    QVERIFY2(!bytes.isEmpty(), qPrintable(resource));
    QVERIFY(bytes.endsWith("\r\n"));
    QCOMPARE(bytes.count('\n'), bytes.count("\r\n"));
    QCOMPARE(bytes.count('\r'), bytes.count("\r\n"));
    QVERIFY(QUtf8StringView(bytes).isValidUtf8());

    const QStringList lines = ShippedData::readLines(resource);
    QCOMPARE(lines.size(), int(bytes.count("\r\n"))); // no empty lines either
    QVERIFY2(lines.size() >= minLines && lines.size() <= maxLines, qPrintable(QString::number(lines.size())));
    const QRegularExpression shape(pattern);
    for (const QString &line : lines)
        QVERIFY2(shape.match(line).hasMatch(), qPrintable(line));
}

void TestCatalogueTables::orderedByCode_data()
{
    QTest::addColumn<QString>("resource");
    QTest::newRow("INTERNATIONAL") << ShippedData::InternationalTable;
    QTest::newRow("USTATES") << ShippedData::UsStatesTable;
    QTest::newRow("COORDS") << ShippedData::CoordsTable;
}

// Strictly ascending codes: ordered and unique.
void TestCatalogueTables::orderedByCode()
{
    QFETCH(QString, resource);
    QString previous;
    for (const QString &line : ShippedData::readLines(resource)) {
        const QString code = field(line, 1);
        QVERIFY2(code > previous, qPrintable(previous + QStringLiteral(" then ") + code));
        previous = code;
    }
}

void TestCatalogueTables::placeCountriesAreListed()
{
    QSet<QString> countries;
    for (const QString &line : ShippedData::readLines(ShippedData::CountriesTable))
        countries.insert(unquoted(line));
    QSet<QString> used;
    for (const QString &line : ShippedData::readLines(ShippedData::InternationalTable)) {
        QVERIFY2(countries.contains(field(line, 3)), qPrintable(line));
        used.insert(field(line, 3));
    }
    // Apart from the United States (the other catalogue), every country has places.
    QCOMPARE(countries - used, QSet<QString>{QStringLiteral("United States")});
}

void TestCatalogueTables::placeStatesAreListed()
{
    QSet<QString> states;
    for (const QString &line : ShippedData::readLines(ShippedData::StatesTable))
        states.insert(unquoted(line));
    QCOMPARE(states.size(), 62);
    for (const QString &line : ShippedData::readLines(ShippedData::UsStatesTable)) {
        QVERIFY2(states.contains(field(line, 3)), qPrintable(line));
        QCOMPARE(line.mid(2, 2), field(line, 3)); // the code carries its state
    }
}

void TestCatalogueTables::everyPlaceHasCoordinates()
{
    QSet<QString> placeCodes;
    for (const char *table : {ShippedData::InternationalTable, ShippedData::UsStatesTable}) {
        for (const QString &line : ShippedData::readLines(QLatin1String(table)))
            placeCodes.insert(field(line, 1));
    }
    QSet<QString> coordCodes;
    for (const QString &line : ShippedData::readLines(ShippedData::CoordsTable)) {
        coordCodes.insert(field(line, 1));
        QVERIFY2(qAbs(field(line, 2).toDouble()) <= 90.0, qPrintable(line));
        QVERIFY2(qAbs(field(line, 3).toDouble()) <= 180.0, qPrintable(line));
    }
    QCOMPARE(coordCodes, placeCodes);
}

void TestCatalogueTables::countriesPresent_data()
{
    QTest::addColumn<QString>("country");
    for (const char *name : {"Niger", "Nigeria", "Guinea", "Papua New Guinea", "Dominica",
                             "Dominican Republic", "United Kingdom", "Canada", "United States"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestCatalogueTables::countriesPresent()
{
    QFETCH(QString, country);
    QVERIFY(ShippedData::readLines(ShippedData::CountriesTable).contains(u'"' + country + u'"'));
}

// The location dialog resolves "Londonderry" to London by its first-match rule, which needs
// London first; London is also the default location, UKXX0085.
void TestCatalogueTables::londonComesBeforeLondonderry()
{
    const QStringList lines = ShippedData::readLines(ShippedData::InternationalTable);
    const qsizetype london = lines.indexOf(QStringLiteral("UKXX0085|London|United Kingdom"));
    QVERIFY(london >= 0);
    qsizetype londonderry = -1;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (lines[i].endsWith(QStringLiteral("|Londonderry|United Kingdom")))
            londonderry = i;
    }
    QVERIFY(londonderry > london);
}

void TestCatalogueTables::substringCountriesBothHavePlaces_data()
{
    QTest::addColumn<QString>("shorter");
    QTest::addColumn<QString>("longer");
    QTest::newRow("Niger/Nigeria") << "Niger"
                                   << "Nigeria";
    QTest::newRow("Guinea/Papua New Guinea") << "Guinea"
                                             << "Papua New Guinea";
    QTest::newRow("Dominica/Dominican Republic") << "Dominica"
                                                 << "Dominican Republic";
}

// ISO and FIPS codes reuse letters for these countries; each must still have its own places
// under its own code prefix.
void TestCatalogueTables::substringCountriesBothHavePlaces()
{
    QFETCH(QString, shorter);
    QFETCH(QString, longer);
    QHash<QString, QSet<QString>> prefixes;
    for (const QString &line : ShippedData::readLines(ShippedData::InternationalTable))
        prefixes[field(line, 3)].insert(line.left(2));
    QCOMPARE(prefixes.value(shorter).size(), 1);
    QCOMPARE(prefixes.value(longer).size(), 1);
    QVERIFY(prefixes.value(shorter) != prefixes.value(longer));
}

QTEST_GUILESS_MAIN(TestCatalogueTables)
#include "test_catalogue_tables.moc"
