#include "notes/line_spacing.h"
#include "notes/text_statistics.h"

#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

class TestTextStatistics : public QObject
{
    Q_OBJECT

private slots:
    void wordCount_data();
    void wordCount();
    void characterStatistics_data();
    void characterStatistics();
    void lineStatistics_data();
    void lineStatistics();
    void documentText_data();
    void documentText();
    void parseLineSpacing_data();
    void parseLineSpacing();
};

void TestTextStatistics::wordCount_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("words");
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("dash only") << "-" << 0;
    QTest::newRow("hyphen separates") << "well-known" << 2;
    QTest::newRow("two spaces count an empty word") << "a  b" << 3;
    QTest::newRow("space and hyphen") << "a -b" << 3;
    QTest::newRow("ends trimmed") << "  a b  " << 2;
    QTest::newRow("tab joins") << "a\tb" << 1;
    QTest::newRow("tab at the end is not trimmed") << "a \t" << 2;
    QTest::newRow("lone LF joins") << "a\nb" << 1;
    QTest::newRow("CR LF separates") << "a\r\nb" << 2;
    QTest::newRow("blank line counts") << "a\r\n\r\nb" << 3;
    QTest::newRow("leading break trimmed") << "\r\na " << 1;
}

void TestTextStatistics::wordCount()
{
    QFETCH(QString, text);
    QFETCH(int, words);
    QCOMPARE(WordCount(text), words);
}

void TestTextStatistics::characterStatistics_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("label");
    QStringList words(119, QStringLiteral("abcd"));
    words << QStringLiteral("abcde");
    QTest::newRow("empty") << "" << "" << "0 words (0 chars). ";
    QTest::newRow("one character") << "x" << "" << "1 word (1 char). ";
    QTest::newRow("one space") << " " << "" << "0 word (1 char). ";
    QTest::newRow("one word") << "ab" << "" << "1 word (2 chars). ";
    QTest::newRow("one selected character") << "hello world" << "l"
                                            << "2 words (11 chars). 1 sel word (1 sel char). ";
    QTest::newRow("one selected word") << "hello world" << "hello"
                                       << "2 words (11 chars). 1 sel word (5 sel chars). ";
    QTest::newRow("selected space") << " x" << " " << "1 word (2 chars). 0 sel words (1 sel chars). ";
    QTest::newRow("120 words") << words.join(u' ') << "abcd abcd"
                               << "120 words (600 chars). 2 sel words (9 sel chars). ";
    const QString paragraphs = QString("a") + QChar::ParagraphSeparator + "b" + QChar::LineSeparator;
    QTest::newRow("document breaks are CR LF") << StatisticsText(paragraphs) << StatisticsText(QString(QChar::ParagraphSeparator))
                                               << "2 words (6 chars). 0 sel words (2 sel chars). ";
}

void TestTextStatistics::characterStatistics()
{
    QFETCH(QString, text);
    QFETCH(QString, selected);
    QFETCH(QString, label);
    QCOMPARE(CharacterStatistics(text, selected), label);
}

void TestTextStatistics::lineStatistics_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("caret");
    QTest::addColumn<QString>("label");
    const QString blocks = QString("ab") + QChar::ParagraphSeparator + "c" + QChar::LineSeparator + "d";
    QTest::newRow("empty") << "" << 0 << "1 of 1 line. ";
    QTest::newRow("before the first break") << "a\nb\nc" << 1 << "1 of 3 lines. ";
    QTest::newRow("after the first break") << "a\nb\nc" << 2 << "2 of 3 lines. ";
    QTest::newRow("document separators") << blocks << 6 << "3 of 3 lines. ";
    QTest::newRow("CR LF counts once") << "a\r\nb" << 4 << "2 of 2 lines. ";
    QTest::newRow("caret past the end") << "a\n" << 99 << "2 of 2 lines. ";
    QTest::newRow("negative caret") << "a\n" << -5 << "1 of 2 lines. ";
}

void TestTextStatistics::lineStatistics()
{
    QFETCH(QString, text);
    QFETCH(int, caret);
    QFETCH(QString, label);
    QCOMPARE(LineStatistics(text, caret), label);
}

// The counts of a whole document, taken from its raw text as the editor takes them.
void TestTextStatistics::documentText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("withTable");
    QTest::addColumn<QString>("chars");
    QTest::addColumn<QString>("lines");
    QTest::newRow("no-break space joins") << QString("a\u00A0b") << false << "1 word (3 chars). "
                                          << "1 of 1 line. ";
    QTest::newRow("no-break space and hyphen") << QString("10\u00A0km-walk") << false << "2 words (10 chars). "
                                               << "1 of 1 line. ";
    QTest::newRow("paragraphs") << QString("a b\nc") << false << "3 words (6 chars). " << "1 of 2 lines. ";
    // A 1x2 table after "x": the marks that open each cell and close the table are line breaks.
    QTest::newRow("table") << QString("x") << true << "3 words (9 chars). " << "1 of 4 lines. ";
}

void TestTextStatistics::documentText()
{
    QFETCH(QString, text);
    QFETCH(bool, withTable);
    QFETCH(QString, chars);
    QFETCH(QString, lines);
    QTextDocument document;
    document.setPlainText(text);
    if (withTable) {
        QTextCursor cursor(&document);
        cursor.movePosition(QTextCursor::End);
        QTextTable *table = cursor.insertTable(1, 2);
        table->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("a"));
        table->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("b"));
    }
    const QString raw = document.toRawText();
    QCOMPARE(CharacterStatistics(StatisticsText(raw), QString()), chars);
    QCOMPARE(LineStatistics(raw, 0), lines);
}

void TestTextStatistics::parseLineSpacing_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<double>("multiple");
    QTest::newRow("comma") << "1,3" << true << 1.3;
    QTest::newRow("spaces") << " 2 " << true << 2.0;
    QTest::newRow("lowest") << "0.5" << true << 0.5;
    QTest::newRow("highest") << "5" << true << 5.0;
    QTest::newRow("too small") << "0.49" << false << 1.0;
    QTest::newRow("too large") << "5.01" << false << 1.0;
    QTest::newRow("word") << "double" << false << 1.0;
    QTest::newRow("nan") << "nan" << false << 1.0;
}

void TestTextStatistics::parseLineSpacing()
{
    QFETCH(QString, typed);
    QFETCH(bool, accepted);
    QFETCH(double, multiple);
    const LineSpacingInput input = ParseLineSpacing(typed);
    QCOMPARE(input.accepted, accepted);
    QCOMPARE(input.multiple, multiple);
    QCOMPARE(input.reason.isEmpty(), accepted);
}

QTEST_GUILESS_MAIN(TestTextStatistics)
#include "test_text_statistics.moc"
