#include "notes/spell_dictionary.h"
#include "notes/spell_words.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

SpellDictionary dictionaryOf(const QStringList &words)
{
    SpellDictionary dictionary;
    for (const QString &word : words)
        dictionary.insert(word);
    return dictionary;
}

// Writes `bytes` as a word list in `folder` and returns its path.
QString writeList(const QTemporaryDir &folder, const QByteArray &bytes)
{
    QFile file(folder.filePath("list.dct"));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("cannot write %s", qPrintable(file.fileName()));
    return file.fileName();
}

} // namespace

// The word list: sound keys, the case rules of a look-up, the order of suggestions and the
// reading of the file.
class TestSpellDictionary : public QObject
{
    Q_OBJECT
private slots:
    void phoneticKey_data();
    void phoneticKey();
    void lookup_data();
    void lookup();
    void skipChecks_data();
    void skipChecks();
    void suggestions_data();
    void suggestions();
    void readsLines_data();
    void readsLines();
    void linesAcrossPieceBoundaries_data();
    void linesAcrossPieceBoundaries();
    void addKeepsOneCopy();
};

void TestSpellDictionary::phoneticKey_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("key");
    QTest::newRow("apple") << "apple" << "114000";
    QTest::newRow("spell: ll is not merged") << "spell" << "214400";
    QTest::newRow("kitten: k is skipped") << "kitten" << "335000";
    QTest::newRow("castle") << "castle" << "223400";
    QTest::newRow("cat") << "cat" << "230000";
    QTest::newRow("kat") << "kat" << "300000";
    QTest::newRow("tide") << "tide" << "330000";
    QTest::newRow("able") << "able" << "140000";
    QTest::newRow("carte") << "carte" << "263000";
    QTest::newRow("capitals count as letters") << "CASTLE" << "223400";
    QTest::newRow("only the first six characters") << "strengths" << "236520";
    QTest::newRow("digits and accents skipped") << "c4fé9b" << "211000";
    QTest::newRow("empty") << "" << "000000";
}

void TestSpellDictionary::phoneticKey()
{
    QFETCH(QString, word);
    QFETCH(QString, key);
    QCOMPARE(PhoneticKey(word), key);
}

void TestSpellDictionary::lookup_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("known");
    QTest::newRow("as listed") << "apple" << true;
    QTest::newRow("first letter capital") << "Apple" << true;
    QTest::newRow("all capitals") << "APPLE" << true;
    QTest::newRow("capitals after a small first letter") << "aPPLE" << false;
    QTest::newRow("name as listed") << "London" << true;
    QTest::newRow("name in capitals") << "LONDON" << true;
    QTest::newRow("name in lower case") << "london" << false;
    QTest::newRow("apostrophe word") << "don't" << true;
    QTest::newRow("prefix of a word") << "appl" << false;
    QTest::newRow("same key, other word") << "abble" << false;
    QTest::newRow("word with an accent") << "Café" << true;
}

void TestSpellDictionary::lookup()
{
    QFETCH(QString, word);
    QFETCH(bool, known);
    const SpellDictionary dictionary = dictionaryOf({"apple", "London", "don't", "able", "café"});
    QCOMPARE(dictionary.contains(word), known);
}

void TestSpellDictionary::skipChecks_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<int>("checks"); // 1 numbers, 2 capitals, 4 characters
    QTest::addColumn<bool>("skipped");
    QTest::newRow("empty word") << "" << 0 << true;
    QTest::newRow("R2D2") << "R2D2" << 7 << true;
    QTest::newRow("R2D2, only the sign check") << "R2D2" << 4 << true;
    QTest::newRow("R2D2, no checks") << "R2D2" << 0 << false;
    QTest::newRow("NASA") << "NASA" << 7 << true;
    QTest::newRow("NASA, no capitals check") << "NASA" << 5 << false;
    QTest::newRow("capitals with an apostrophe") << "NASA'S" << 2 << false;
    QTest::newRow("e-mail") << "e-mail" << 7 << true;
    // The number check leaves the digit 0 alone, but 0 is one of the signs (codes 33 to 64).
    QTest::newRow("x0 with the sign check") << "x0" << 7 << true;
    QTest::newRow("x0 without it") << "x0" << 3 << false;
    QTest::newRow("apostrophe is no sign") << "don't" << 7 << false;
    QTest::newRow("comma and full stop are no signs") << "a,b.c" << 7 << false;
    QTest::newRow("brackets are no signs") << "[ok]^_`" << 7 << false;
    QTest::newRow("letter beyond z") << "café" << 7 << true;
    QTest::newRow("brace beyond z") << "{x}" << 4 << true;
}

void TestSpellDictionary::skipChecks()
{
    QFETCH(QString, word);
    QFETCH(int, checks);
    QFETCH(bool, skipped);
    SpellSkipOptions options;
    options.numbers = checks & 1;
    options.capitals = checks & 2;
    options.characters = checks & 4;
    QCOMPARE(IsSkippedWord(word, options), skipped);
}

void TestSpellDictionary::suggestions_data()
{
    QTest::addColumn<QStringList>("group");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("closer entry later is added") << QStringList{"cord", "card", "cart", "curd"} << "carte"
                                                 << QStringList{"card", "cart"};
    QTest::newRow("farther entry after a closer one is not") << QStringList{"cart", "card"} << "carte"
                                                              << QStringList{"cart"};
    QTest::newRow("equal levels all come") << QStringList{"tight", "tidy", "tide"} << "tid"
                                           << QStringList{"tidy", "tide"};
    QTest::newRow("first six characters equal") << QStringList{"strengthen", "strength"} << "strengthh"
                                                 << QStringList{"strengthen", "strength"};
    QTest::newRow("other first two letters") << QStringList{"dittle"} << "tittle" << QStringList{};
    QTest::newRow("compared as written") << QStringList{"cart"} << "Carte" << QStringList{};
    QTest::newRow("another key") << QStringList{"able"} << "apple" << QStringList{};
}

void TestSpellDictionary::suggestions()
{
    QFETCH(QStringList, group);
    QFETCH(QString, word);
    QFETCH(QStringList, expected);
    QCOMPARE(dictionaryOf(group).suggestions(word), expected);
}

void TestSpellDictionary::readsLines_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("words");
    QTest::newRow("last line without CR LF") << QByteArray("one\r\ntwo") << QStringList{"one", "two"};
    QTest::newRow("ends in CR LF") << QByteArray("one\r\ntwo\r\n") << QStringList{"one", "two"};
    QTest::newRow("empty line kept") << QByteArray("one\r\n\r\ntwo") << QStringList{"one", "", "two"};
    QTest::newRow("lone CR and LF stay in the line") << QByteArray("a\rb\r\nc\nd") << QStringList{"a\rb", "c\nd"};
    QTest::newRow("UTF-8") << QByteArray("caf\xc3\xa9\r\nna\xc3\xafve") << QStringList{"café", "naïve"};
    QTest::newRow("8-bit") << QByteArray("caf\xe9\r\nna\xefve") << QStringList{"café", "naïve"};
    QTest::newRow("empty file") << QByteArray() << QStringList{};
}

void TestSpellDictionary::readsLines()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, words);
    QTemporaryDir folder;
    SpellDictionary fromFile;
    QVERIFY(fromFile.load(writeList(folder, bytes)));
    QCOMPARE(fromFile.wordCount(), words.size());
    for (const QString &word : words)
        QVERIFY2(fromFile.group(word).contains(word), qPrintable(word));
}

void TestSpellDictionary::linesAcrossPieceBoundaries_data()
{
    // Lines of eight bytes after a first line of `offset` bytes; the file is read in pieces of
    // 65,536 bytes, so lines cross piece ends in different places.
    QTest::addColumn<int>("offset");
    QTest::newRow("word split") << 3;
    QTest::newRow("CR LF split") << 9;      // a piece ends between CR and LF
    QTest::newRow("CR LF at the end") << 8; // a piece ends just after a CR LF
}

void TestSpellDictionary::linesAcrossPieceBoundaries()
{
    QFETCH(int, offset);
    QByteArray bytes(offset - 2, 'x');
    bytes.append("\r\n");
    QStringList words;
    for (int i = 0; i < 20000; ++i) {
        const QByteArray word = "w" + QByteArray::number(i).rightJustified(5, '0');
        words.append(QString::fromLatin1(word));
        bytes.append(word).append("\r\n");
    }
    QTemporaryDir folder;
    SpellDictionary dictionary;
    QVERIFY(dictionary.load(writeList(folder, bytes)));
    QCOMPARE(dictionary.wordCount(), words.size() + 1);
    for (const QString &word : std::as_const(words))
        QVERIFY2(dictionary.contains(word), qPrintable(word));
}

void TestSpellDictionary::addKeepsOneCopy()
{
    SpellDictionary dictionary = dictionaryOf({"cart"});
    QVERIFY(!dictionary.add("cart"));
    QVERIFY(dictionary.add("Cart")); // a name is another word
    QVERIFY(dictionary.add("card"));
    QCOMPARE(dictionary.group(u"cart"), (QStringList{"cart", "Cart", "card"}));
}

QTEST_APPLESS_MAIN(TestSpellDictionary)
#include "test_spell_dictionary.moc"
