#include "notes/text_formatting.h"

#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

namespace {

// Three paragraphs "one", "two", "three"; the cursor selects from paragraph `from` to `to`.
QTextCursor selectParagraphs(QTextDocument *document, int from, int to)
{
    document->setPlainText(QStringLiteral("one\ntwo\nthree"));
    QTextCursor cursor(document);
    cursor.setPosition(document->findBlockByNumber(from).position());
    cursor.setPosition(document->findBlockByNumber(to).position() + 1, QTextCursor::KeepAnchor);
    return cursor;
}

QList<bool> bulleted(const QTextDocument &document)
{
    QList<bool> result;
    for (QTextBlock b = document.begin(); b.isValid(); b = b.next())
        result.append(b.textList() != nullptr);
    return result;
}

} // namespace

class TestTextFormatting : public QObject
{
    Q_OBJECT

private slots:
    void bulletsToggleOnTheSelectedParagraphs();
    void indentStepsStopAtTheMargin_data();
    void indentStepsStopAtTheMargin();
    void lineSpacingReadsBackAndUndoesInOneStep();
    void removingFormattingKeepsPictures();
};

void TestTextFormatting::bulletsToggleOnTheSelectedParagraphs()
{
    QTextDocument document;
    QTextCursor cursor = selectParagraphs(&document, 0, 1);
    TextFormatting::ToggleBullets(cursor);
    QCOMPARE(bulleted(document), (QList<bool>{true, true, false}));
    QVERIFY(TextFormatting::HasBullets(cursor));
    TextFormatting::ToggleBullets(cursor);
    QCOMPARE(bulleted(document), (QList<bool>{false, false, false}));
    QCOMPARE(document.firstBlock().blockFormat().indent(), 0);
}

void TestTextFormatting::indentStepsStopAtTheMargin_data()
{
    QTest::addColumn<QList<int>>("steps");
    QTest::addColumn<double>("margin");
    QTest::newRow("two in") << QList<int>{1, 1} << 2 * TextFormatting::kIndentStepPixels;
    QTest::newRow("in and out") << QList<int>{1, -1} << 0.0;
    QTest::newRow("out past the margin") << QList<int>{-1, -1, 1} << TextFormatting::kIndentStepPixels;
}

void TestTextFormatting::indentStepsStopAtTheMargin()
{
    QFETCH(QList<int>, steps);
    QFETCH(double, margin);
    QTextDocument document;
    const QTextCursor cursor = selectParagraphs(&document, 1, 2);
    for (int step : steps)
        TextFormatting::ShiftIndent(cursor, step);
    QCOMPARE(document.findBlockByNumber(0).blockFormat().leftMargin(), 0.0);
    QCOMPARE(document.findBlockByNumber(1).blockFormat().leftMargin(), margin);
    QCOMPARE(document.findBlockByNumber(2).blockFormat().leftMargin(), margin);
}

void TestTextFormatting::lineSpacingReadsBackAndUndoesInOneStep()
{
    QTextDocument document;
    const QTextCursor cursor = selectParagraphs(&document, 0, 2);
    QCOMPARE(TextFormatting::LineSpacing(cursor), 1.0);
    TextFormatting::SetLineSpacing(cursor, 1.15);
    QCOMPARE(TextFormatting::LineSpacing(cursor), 1.15);
    QCOMPARE(document.lastBlock().blockFormat().lineHeight(), 115.0);
    document.undo();
    QCOMPARE(TextFormatting::LineSpacing(cursor), 1.0);
    QCOMPARE(document.lastBlock().blockFormat().lineHeightType(), int(QTextBlockFormat::SingleHeight));
}

void TestTextFormatting::removingFormattingKeepsPictures()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    bold.setForeground(Qt::red);
    cursor.insertText(QStringLiteral("ab"), bold);
    QTextImageFormat picture;
    picture.setName(QStringLiteral("rtfpicture:1"));
    cursor.insertImage(picture);
    cursor.insertText(QStringLiteral("cd"), bold);
    cursor.select(QTextCursor::Document);
    QTextCharFormat base;
    base.setFontFamilies(QStringList{QStringLiteral("Tahoma")});
    TextFormatting::RemoveCharacterFormatting(cursor, base);

    QTextCursor probe(&document);
    probe.setPosition(1);
    QCOMPARE(probe.charFormat().fontWeight(), int(QFont::Normal));
    QCOMPARE(probe.charFormat().foreground().style(), Qt::NoBrush);
    probe.setPosition(3);
    QVERIFY(probe.charFormat().isImageFormat());
    QCOMPARE(probe.charFormat().toImageFormat().name(), QStringLiteral("rtfpicture:1"));
}

QTEST_MAIN(TestTextFormatting)
#include "test_text_formatting.moc"
