#include "notes/text_finder.h"

#include <QTest>
#include <QTextDocument>

namespace {
QTextCursor cursorAt(QTextDocument *document, int anchor, int position)
{
    QTextCursor cursor(document);
    cursor.setPosition(anchor);
    cursor.setPosition(position, QTextCursor::KeepAnchor);
    return cursor;
}
} // namespace

class TestTextFinder : public QObject
{
    Q_OBJECT
private slots:
    void find_data();
    void find();
    void replaceAll_data();
    void replaceAll();
};

void TestTextFinder::find_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("search");
    QTest::addColumn<int>("flags"); // 1 match case, 2 whole word, 4 no wrap, 8 backward
    QTest::addColumn<int>("anchor");
    QTest::addColumn<int>("position");
    QTest::addColumn<int>("start"); // -1: nothing found
    QTest::addColumn<bool>("wrapped");

    QTest::newRow("any case") << "Apple apple"
                              << "apple" << 0 << 0 << 0 << 0 << false;
    QTest::newRow("match case") << "Apple apple"
                                << "apple" << 1 << 0 << 0 << 6 << false;
    QTest::newRow("whole word skips a part") << "pineapple apple"
                                             << "apple" << 2 << 0 << 0 << 10 << false;
    QTest::newRow("part of a word") << "pineapple apple"
                                    << "apple" << 0 << 0 << 0 << 4 << false;
    QTest::newRow("goes on past the selection") << "cat cat"
                                                << "cat" << 0 << 0 << 3 << 4 << false;
    QTest::newRow("wraps to the top") << "cat dog cat"
                                      << "cat" << 0 << 9 << 9 << 0 << true;
    QTest::newRow("no wrap: nothing") << "cat dog cat"
                                      << "cat" << 4 << 9 << 9 << -1 << false;
    QTest::newRow("backward before the selection") << "cat dog cat"
                                                   << "cat" << 8 << 8 << 11 << 0 << false;
    QTest::newRow("backward wraps to the bottom") << "cat dog cat"
                                                  << "cat" << 8 << 0 << 0 << 8 << true;
    QTest::newRow("second paragraph") << "one\ntwo"
                                      << "two" << 0 << 0 << 0 << 4 << false;
    QTest::newRow("missing everywhere") << "one two"
                                        << "three" << 0 << 3 << 3 << -1 << false;
    QTest::newRow("empty search") << "one two"
                                  << "" << 0 << 0 << 0 << -1 << false;
    QTest::newRow("empty document") << ""
                                    << "a" << 0 << 0 << 0 << -1 << false;
}

void TestTextFinder::find()
{
    QFETCH(QString, text);
    QFETCH(QString, search);
    QFETCH(int, flags);
    QFETCH(int, anchor);
    QFETCH(int, position);
    QFETCH(int, start);
    QFETCH(bool, wrapped);
    QTextDocument document(text);
    FindOptions options;
    options.matchCase = flags & 1;
    options.wholeWord = flags & 2;
    options.wrapAround = !(flags & 4);
    options.backward = flags & 8;
    const FindResult result =
        TextFinder::find(&document, cursorAt(&document, anchor, position), search, options);
    QCOMPARE(result.found() ? result.match.selectionStart() : -1, start);
    QCOMPARE(result.wrapped, wrapped);
    if (result.found())
        QCOMPARE(result.match.selectedText().size(), search.size());
}

void TestTextFinder::replaceAll_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("search");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<int>("flags"); // 1 match case, 2 whole word
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("count");

    QTest::newRow("any case") << "Cat cat CAT"
                              << "cat"
                              << "dog" << 0 << "dog dog dog" << 3;
    QTest::newRow("match case") << "Cat cat CAT"
                                << "cat"
                                << "dog" << 1 << "Cat dog CAT" << 1;
    QTest::newRow("whole word") << "cat category cat"
                                << "cat"
                                << "dog" << 2 << "dog category dog" << 2;
    QTest::newRow("replacement holds the search") << "a a"
                                                  << "a"
                                                  << "aa" << 0 << "aa aa" << 2;
    QTest::newRow("same text in other case") << "ab"
                                             << "a"
                                             << "A" << 0 << "Ab" << 1;
    QTest::newRow("empty replacement deletes") << "x1x2x"
                                               << "x"
                                               << "" << 0 << "12" << 3;
    QTest::newRow("each paragraph") << "cat\ncat"
                                    << "cat"
                                    << "dog" << 0 << "dog\ndog" << 2;
    QTest::newRow("touching matches") << "aaaa"
                                      << "aa"
                                      << "b" << 0 << "bb" << 2;
    QTest::newRow("no match") << "abc"
                              << "z"
                              << "y" << 0 << "abc" << 0;
    QTest::newRow("empty search") << "abc"
                                  << ""
                                  << "y" << 0 << "abc" << 0;
}

void TestTextFinder::replaceAll()
{
    QFETCH(QString, text);
    QFETCH(QString, search);
    QFETCH(QString, replacement);
    QFETCH(int, flags);
    QFETCH(QString, expected);
    QFETCH(int, count);
    QTextDocument document(text);
    document.clearUndoRedoStacks();
    FindOptions options;
    options.matchCase = flags & 1;
    options.wholeWord = flags & 2;
    options.backward = true; // replacing everything ignores the direction
    QCOMPARE(TextFinder::replaceAll(&document, search, replacement, options), count);
    QCOMPARE(document.toPlainText(), expected);
    // One undo step takes every replacement back.
    document.undo();
    QCOMPARE(document.toPlainText(), text);
}

QTEST_GUILESS_MAIN(TestTextFinder)
#include "test_text_finder.moc"
