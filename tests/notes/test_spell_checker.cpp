#include "core/app_paths.h"
#include "core/settings_store.h"
#include "notes/spell_checker.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

#include <memory>

namespace {

const QString kWindow = QStringLiteral("fnte_IDX");

QString dictionaryPath(const QString &name)
{
    return AppPaths::dataPath(QStringLiteral("notes/") + name);
}

void writeDictionary(const QString &name, const QByteArray &bytes)
{
    QDir().mkpath(AppPaths::dataPath(QStringLiteral("notes")));
    QFile file(dictionaryPath(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("cannot write %s", qPrintable(file.fileName()));
}

QByteArray readDictionary(const QString &name)
{
    QFile file(dictionaryPath(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

const QByteArray kWords = "the\r\nquick\r\nbrown\r\nfox\r\njumps\r\nover\r\nlazy\r\ndog\r\ncat\r\nthe";

// Runs the walk from the start of `document`, ignoring every stop; returns each selected text
// with its position.
QStringList walkAll(SpellChecker &checker, QTextDocument *document)
{
    QStringList stops;
    QObject context;
    QObject::connect(&checker, &SpellChecker::wordFound, &context, [&](const QString &word) {
        const QTextCursor selection = checker.currentSelection();
        QCOMPARE(selection.selectedText(), word);
        stops.append(QStringLiteral("%1@%2").arg(word).arg(selection.selectionStart()));
    });
    checker.CheckFile(document, 0);
    for (int guard = 0; checker.isWalking() && guard < 100; ++guard)
        checker.WordIgnore();
    return stops;
}

} // namespace

// The checking walk through a document, what changing, adding and ignoring do, and the word
// list's file.
class TestSpellChecker : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void walkStopsAtEachUnknownWord_data();
    void walkStopsAtEachUnknownWord();
    void changeReplacesTheWordAndGoesOn();
    void addedWordsSurviveARestart();
    void aMissingDictionarySaysSo();
    void anotherLanguageCountsFromTheNextCheck();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestSpellChecker::init()
{
    m_home = std::make_unique<TestHome>();
    writeDictionary(QStringLiteral("wordsus.dct"), kWords);
}

void TestSpellChecker::walkStopsAtEachUnknownWord_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("stops"); // word@position in the document
    QTest::newRow("tabs and paragraph breaks") << "The quikc\tbrwn fox\njumsp over\t\tthe lazzy dog"
                                               << QStringList{"quikc@4", "brwn@10", "jumsp@19", "lazzy@35"};
    QTest::newRow("line break inside a paragraph") << QString("the fxo\u2028dgo cat")
                                                   << QStringList{"fxo@4", "dgo@8"};
    // Each mark is stripped in turn, the comma before the quotes, so a comma inside closing
    // quotes stays on the word.
    QTest::newRow("punctuation stripped from the edges") << "(teh) \"qiuck,\" dog. [bronw]? _fx_"
                                                         << QStringList{"teh@1", "qiuck,@7", "bronw@21", "fx@30"};
    QTest::newRow("abbreviations pass in lower case") << "e.g. the dog, i.e. a cat. E.g. fox"
                                                      << QStringList{"a@19", "E.g@26"};
    QTest::newRow("skip checks") << "NASA R2D2 e-mail x0 don't cat's"
                                 << QStringList{"don't@20", "cat's@26"};
    QTest::newRow("only one mark stripped per side") << "dog.. ''fox"
                                                     << QStringList{"dog.@0", "'fox@7"};
    QTest::newRow("nothing unknown") << "The quick brown fox." << QStringList{};
}

void TestSpellChecker::walkStopsAtEachUnknownWord()
{
    QFETCH(QString, text);
    QFETCH(QStringList, stops);
    SpellChecker checker;
    QTextDocument document;
    document.setPlainText(text);
    QSignalSpy completed(&checker, &SpellChecker::CompleteSpellCheck);
    QCOMPARE(walkAll(checker, &document), stops);
    QCOMPARE(completed.count(), 1);
}

void TestSpellChecker::changeReplacesTheWordAndGoesOn()
{
    SpellChecker checker;
    QTextDocument document;
    document.setPlainText(QStringLiteral("teh cat, teh dog"));
    QSignalSpy changes(&checker, &SpellChecker::BeforeChange);
    checker.CheckFile(&document, 0);
    QCOMPARE(checker.currentWord(), QStringLiteral("teh"));
    QCOMPARE(checker.suggestionsFor("teh"), QStringList{"None Found"});
    checker.WordChng(QStringLiteral("the"));
    QCOMPARE(changes.takeFirst().at(0).toString(), QStringLiteral("the"));
    QCOMPARE(document.toPlainText(), QStringLiteral("the cat, teh dog"));
    QVERIFY(checker.isWalking());
    QCOMPARE(checker.currentSelection().selectionStart(), 9);

    // The user types before the paused word: the walk still changes the right text.
    QTextCursor typing(&document);
    typing.insertText(QStringLiteral("Oh, "));
    checker.WordChng(QStringLiteral("the"));
    QCOMPARE(document.toPlainText(), QStringLiteral("Oh, the cat, the dog"));
    QVERIFY(!checker.isWalking());
    document.undo();
    QCOMPARE(document.toPlainText(), QStringLiteral("Oh, the cat, teh dog"));
}

void TestSpellChecker::addedWordsSurviveARestart()
{
    {
        SpellChecker checker;
        QTextDocument document;
        document.setPlainText(QStringLiteral("the Vantora dog"));
        QSignalSpy adds(&checker, &SpellChecker::BeforeAdd);
        QSignalSpy saves(&checker, &SpellChecker::BeforeSave);
        checker.CheckFile(&document, 0);
        checker.WordAdd();
        QCOMPARE(adds.takeFirst().at(0).toString(), QStringLiteral("Vantora"));
        QVERIFY(!checker.isWalking());
        QVERIFY(checker.isCorrect(u"Vantora"));
        QVERIFY(!checker.isCorrect(u"vantora")); // as a name until the list is read again
        QVERIFY(checker.DatabaseSave());
        QCOMPARE(saves.count(), 1);
    }
    // The list had no line end after its last word; that word stays whole.
    QCOMPARE(readDictionary(QStringLiteral("wordsus.dct")), kWords + "\r\nvantora\r\n");
    SpellChecker restarted;
    restarted.DatabaseLoadCheck();
    QVERIFY(restarted.isCorrect(u"vantora"));
    QVERIFY(restarted.isCorrect(u"Vantora"));
    QVERIFY(restarted.isCorrect(u"the"));
}

void TestSpellChecker::aMissingDictionarySaysSo()
{
    WriteDetail(kWindow, QStringLiteral("Spell Checker Language Version"), QStringLiteral("wordsxx.dct"));
    SpellChecker checker;
    QTextDocument document;
    document.setPlainText(QStringLiteral("NASA the dog"));
    QSignalSpy found(&checker, &SpellChecker::wordFound);
    checker.CheckFile(&document, 0);
    QVERIFY(checker.isDictionaryMissing());
    QCOMPARE(found.count(), 1);
    QCOMPARE(checker.currentWord(), QStringLiteral("the"));
    QCOMPARE(found.first().at(1).toStringList(), QStringList{"Dictionary not found"});
    checker.addWord(QStringLiteral("dog"));
    QVERIFY(checker.DatabaseSave());
    QVERIFY(!QFile::exists(dictionaryPath(QStringLiteral("wordsxx.dct"))));
}

void TestSpellChecker::anotherLanguageCountsFromTheNextCheck()
{
    writeDictionary(QStringLiteral("wordsuk.dct"), "colour\r\n");
    writeDictionary(QStringLiteral("wordsus.dct"), "color\r\n");
    SpellChecker checker;
    QTextDocument document;
    document.setPlainText(QStringLiteral("colour"));
    checker.CheckFile(&document, 0);
    QCOMPARE(checker.currentWord(), QStringLiteral("colour"));
    checker.WordAdd();

    WriteDetail(kWindow, QStringLiteral("Spell Checker Language Version"), QStringLiteral("wordsuk.dct"));
    document.setPlainText(QStringLiteral("colour color"));
    checker.CheckFile(&document, 0);
    QCOMPARE(checker.currentWord(), QStringLiteral("color"));
    // The word added before the switch went to the list it was added to.
    QCOMPARE(readDictionary(QStringLiteral("wordsus.dct")), QByteArray("color\r\ncolour\r\n"));
    QCOMPARE(readDictionary(QStringLiteral("wordsuk.dct")), QByteArray("colour\r\n"));
}

QTEST_MAIN(TestSpellChecker)
#include "test_spell_checker.moc"
