// The other shipped resources (dictionaries, weather glyphs and font, webcam table, bell,
// credits) and the installation of the dictionaries into the data folder.

#include "core/app_paths.h"
#include "core/shipped_data.h"
#include "support/test_home.h"

#include <QFile>
#include <QFontMetrics>
#include <QRegularExpression>
#include <QSet>
#include <QtEndian>
#include <QtTest>

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class TestShippedData : public QObject
{
    Q_OBJECT

private slots:
    void textResourcesUseCrLf_data();
    void textResourcesUseCrLf();
    void dictionaryContent_data();
    void dictionaryContent();
    void glyphListCoversEveryCode();
    void weatherGlyph_data();
    void weatherGlyph();
    void weatherFontHasTheGlyphs();
    void webcamTable();
    void bellIsShortMono16Bit();
    void creditsNameSourcesAndLicences();
    void installCopiesMissingDictionaries();
    void installKeepsExistingDictionary();
    void installReportsUnwritableFolder();
};

void TestShippedData::textResourcesUseCrLf_data()
{
    QTest::addColumn<QString>("resource");
    QTest::newRow("wordsus") << ":/dictionaries/wordsus.dct";
    QTest::newRow("wordsuk") << ":/dictionaries/wordsuk.dct";
    QTest::newRow("glyphs") << ShippedData::WeatherGlyphList;
    QTest::newRow("webcams") << ShippedData::WebcamTable;
}

void TestShippedData::textResourcesUseCrLf()
{
    QFETCH(QString, resource);
    const QByteArray bytes = ShippedData::read(resource);
    QVERIFY2(!bytes.isEmpty(), qPrintable(resource));
    QVERIFY(bytes.endsWith("\r\n"));
    QCOMPARE(bytes.count('\n'), bytes.count("\r\n"));
    QCOMPARE(bytes.count('\r'), bytes.count("\r\n"));
    QVERIFY(!bytes.contains("\r\n\r\n")); // no empty lines
    QVERIFY(QUtf8StringView(bytes).isValidUtf8());
}

void TestShippedData::dictionaryContent_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("absent");
    QTest::newRow("US") << "wordsus.dct" << QStringList{"I", "don't", "color", "center", "John's", "the"}
                        << QStringList{"colour", "centre"};
    QTest::newRow("UK") << "wordsuk.dct" << QStringList{"I", "don't", "colour", "centre", "John's", "the"}
                        << QStringList{"color", "center"};
}

// No word twice, the expected spelling only, and common words ahead of rare ones (the checker
// offers suggestions in file order).
void TestShippedData::dictionaryContent()
{
    QFETCH(QString, name);
    QFETCH(QStringList, present);
    QFETCH(QStringList, absent);

    const QStringList words =
        ShippedData::readLines(QLatin1String(ShippedData::DictionaryFolder) + u'/' + name);
    QVERIFY2(words.size() > 140000 && words.size() < 200000, qPrintable(QString::number(words.size())));
    const QSet<QString> unique(words.cbegin(), words.cend());
    QCOMPARE(unique.size(), words.size());
    for (const QString &word : present)
        QVERIFY2(unique.contains(word), qPrintable(word));
    for (const QString &word : absent)
        QVERIFY2(!unique.contains(word), qPrintable(word));
    QVERIFY(words.indexOf(QStringLiteral("house")) < words.indexOf(QStringLiteral("hovel")));
}

void TestShippedData::glyphListCoversEveryCode()
{
    const QHash<int, char32_t> glyphs = ShippedData::weatherGlyphs();
    QCOMPARE(glyphs.size(), 49);
    for (int code = 0; code <= 47; ++code)
        QVERIFY2(glyphs.contains(code), qPrintable(QString::number(code)));
    QVERIFY(glyphs.contains(3200));
    for (char32_t point : glyphs)
        QVERIFY(point >= 0xF000 && point <= 0xF0FF); // the font's private-use block
}

void TestShippedData::weatherGlyph_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<uint>("point");
    QTest::newRow("0 tornado") << 0 << 0xF056u;
    QTest::newRow("26 cloudy") << 26 << 0xF013u;
    QTest::newRow("32 sunny") << 32 << 0xF00Du;
    QTest::newRow("47 last") << 47 << 0xF00Eu;
    QTest::newRow("3200 not available") << 3200 << 0xF077u;
    QTest::newRow("48 unknown") << 48 << 0u;
    QTest::newRow("-1 unknown") << -1 << 0u;
}

void TestShippedData::weatherGlyph()
{
    QFETCH(int, code);
    QFETCH(uint, point);
    const QString glyph = ShippedData::weatherGlyph(code);
    if (point == 0) {
        QVERIFY(glyph.isEmpty());
    } else {
        QCOMPARE(glyph.size(), 1);
        QCOMPARE(uint(glyph.at(0).unicode()), point);
    }
}

void TestShippedData::weatherFontHasTheGlyphs()
{
    const QString family = ShippedData::weatherFontFamily();
    QCOMPARE(family, QStringLiteral("Weather Icons"));
    const QFontMetrics metrics(QFont(family, 24));
    for (char32_t point : ShippedData::weatherGlyphs())
        QVERIFY2(metrics.inFontUcs4(point), qPrintable(QString::number(point, 16)));
}

void TestShippedData::webcamTable()
{
    const QStringList lines = ShippedData::readLines(ShippedData::WebcamTable);
    QCOMPARE(lines.size(), 50);
    QCOMPARE(lines.first().section(u'|', 0, 0), QStringLiteral("Australia - NSW McLeans Ridges (country)"));
    QCOMPARE(lines.last().section(u'|', 0, 0), QStringLiteral("Netherlands - Amsterdam (city)"));
    const QRegularExpression shape(QStringLiteral(
        R"(^[A-Za-z ]+ - [^|]+ \((city|country|coast|beach|port|mtns|square|town)\)\|)"
        R"((https?://\S+\|Picture: [^|]+\|https://\S+(\|[A-Za-z-]+: [^|]+)?)?$)"));
    QSet<QString> names;
    int withAddress = 0;
    for (const QString &line : lines) {
        QVERIFY2(shape.match(line).hasMatch(), qPrintable(line));
        names.insert(line.section(u'|', 0, 0));
        withAddress += line.endsWith(u'|') ? 0 : 1; // an address always comes with its credit
    }
    QCOMPARE(names.size(), 50);
    QVERIFY(withAddress >= 10);
}

void TestShippedData::bellIsShortMono16Bit()
{
    const QByteArray wav = ShippedData::read(ShippedData::BellSound);
    QVERIFY(wav.size() > 44 && wav.size() < 100 * 1024);
    QVERIFY(wav.startsWith("RIFF") && wav.mid(8, 8) == "WAVEfmt ");
    const auto u16 = [&](int at) { return qFromLittleEndian<quint16>(wav.constData() + at); };
    const auto u32 = [&](int at) { return qFromLittleEndian<quint32>(wav.constData() + at); };
    QCOMPARE(u16(20), quint16(1));     // PCM
    QCOMPARE(u16(22), quint16(1));     // mono
    QCOMPARE(u32(24), quint32(22050)); // sample rate
    QCOMPARE(u16(34), quint16(16));    // bits per sample
    QCOMPARE(wav.mid(36, 4), QByteArray("data"));
    const double seconds = u32(40) / (22050.0 * 2);
    QVERIFY2(seconds > 1.0 && seconds < 1.5, qPrintable(QString::number(seconds)));
}

// The About window shows the credits; every licence file they name must be shipped too.
void TestShippedData::creditsNameSourcesAndLicences()
{
    const QString credits = QString::fromUtf8(ShippedData::read(ShippedData::Credits));
    for (const char *source : {"GeoNames", "CC BY 4.0", "zipcodes", "countries-list", "country-code-lookup",
                               "SCOWL", "Open Font License", "Open-Meteo"})
        QVERIFY2(credits.contains(QLatin1String(source)), source);

    const QRegularExpression licenceRef(QStringLiteral(R"(`licenses/([^`]+)`)"));
    int referenced = 0;
    for (const QRegularExpressionMatch &match : licenceRef.globalMatch(credits)) {
        const QString path = QLatin1String(ShippedData::LicenceFolder) + u'/' + match.captured(1);
        QVERIFY2(!ShippedData::read(path).isEmpty(), qPrintable(path));
        ++referenced;
    }
    QVERIFY(referenced >= 6);
}

void TestShippedData::installCopiesMissingDictionaries()
{
    TestHome home;
    QString error;
    QVERIFY(InstallMissingDictionaries(&error));
    QVERIFY(error.isEmpty());
    for (const QString &name : ShippedData::dictionaryNames()) {
        const QByteArray installed = readFile(AppPaths::dataPath(QStringLiteral("notes/") + name));
        QCOMPARE(installed, ShippedData::read(QLatin1String(ShippedData::DictionaryFolder) + u'/' + name));
    }
    QVERIFY(InstallMissingDictionaries()); // a second run finds nothing to do
}

// A user's dictionary, with words added to it, survives; only the missing one is installed.
void TestShippedData::installKeepsExistingDictionary()
{
    TestHome home;
    QVERIFY(QDir().mkpath(AppPaths::dataPath(QStringLiteral("notes"))));
    const QString user = AppPaths::dataPath(QStringLiteral("notes/wordsus.dct"));
    const QByteArray own("hello\r\nvantora\r\n");
    QVERIFY(writeFile(user, own));

    QVERIFY(InstallMissingDictionaries());
    QCOMPARE(readFile(user), own);
    QVERIFY(QFile::exists(AppPaths::dataPath(QStringLiteral("notes/wordsuk.dct"))));
}

void TestShippedData::installReportsUnwritableFolder()
{
    TestHome home;
    QVERIFY(writeFile(AppPaths::dataPath(QStringLiteral("notes")), "not a folder")); // blocks mkpath
    QString error;
    QVERIFY(!InstallMissingDictionaries(&error));
    QVERIFY2(error.contains(QStringLiteral("notes")), qPrintable(error));
}

QTEST_MAIN(TestShippedData)
#include "test_shipped_data.moc"
