#include "notes/rich_text_properties.h"
#include "notes/rtf_writer.h"

#include <QImage>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

using Builder = void (*)(QTextCursor &);
Q_DECLARE_METATYPE(Builder)

namespace {

// The document's body: what follows the header tables.
QByteArray bodyOf(const QByteArray &rtf)
{
    const qsizetype start = rtf.indexOf("\\uc1\r\n");
    return start < 0 ? QByteArray() : rtf.mid(start + 6);
}

QByteArray writeRun(const QString &text, const QTextCharFormat &format = {})
{
    QTextDocument document;
    QTextCursor(&document).insertText(text, format);
    return RtfWriter::write(document);
}

QByteArray writePicture(const QVariant &resource, const QTextImageFormat &format)
{
    QTextDocument document;
    document.addResource(QTextDocument::ImageResource, QUrl(format.name()), resource);
    QTextCursor(&document).insertImage(format);
    return RtfWriter::write(document);
}

QTextImageFormat imageFormat(double width = 0, double height = 0)
{
    QTextImageFormat format;
    format.setName(QStringLiteral("rtfpicture:1"));
    if (width > 0)
        format.setWidth(width);
    if (height > 0)
        format.setHeight(height);
    return format;
}

void buildCaps(QTextCursor &cursor)
{
    QTextCharFormat format;
    format.setFontCapitalization(QFont::SmallCaps);
    cursor.insertText(QStringLiteral("small "), format);
    format.setFontCapitalization(QFont::AllUppercase);
    cursor.insertText(QStringLiteral("all"), format);
}

void buildDirectionAndBreaks(QTextCursor &cursor)
{
    QTextBlockFormat format;
    format.setLayoutDirection(Qt::RightToLeft);
    format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysAfter);
    cursor.setBlockFormat(format);
    cursor.insertText(QStringLiteral("first"));
    format = QTextBlockFormat();
    format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    cursor.insertBlock(format);
    cursor.insertText(QStringLiteral("second"));
}

void buildNestedList(QTextCursor &cursor)
{
    cursor.insertList(QTextListFormat::ListDisc);
    cursor.insertText(QStringLiteral("one"));
    QTextListFormat nested;
    nested.setStyle(QTextListFormat::ListDecimal);
    nested.setIndent(2);
    nested.setProperty(RichText::ListStartProperty, 3);
    cursor.insertList(nested);
    cursor.insertText(QStringLiteral("two"));
    QTextBlockFormat indented = cursor.blockFormat();
    indented.setLeftMargin(10);
    cursor.insertBlock(indented);
    cursor.insertText(QStringLiteral("three"));
}

void buildNestedTable(QTextCursor &cursor)
{
    QTextTableFormat format;
    format.setCellPadding(7.2); // 108 twips
    format.setBorder(0);
    QTextTable *outer = cursor.insertTable(2, 2, format);
    QTextTable *inner = outer->cellAt(0, 0).firstCursorPosition().insertTable(1, 2, format);
    inner->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("inner right"));
    QTextTableFormat third = format;
    third.setColumnWidthConstraints({QTextLength(QTextLength::PercentageLength, 25), QTextLength()});
    outer->cellAt(1, 1).firstCursorPosition().insertTable(1, 2, third);
}

// The document's own CJK font, rather than a common one, for CJK text in a Latin font.
void buildCjkWithDocumentFont(QTextCursor &cursor)
{
    QTextCharFormat latin;
    latin.setFontFamilies({QStringLiteral("Liberation Sans")});
    cursor.insertText(QStringLiteral(u"\u65e5\u672c"), latin);
    QTextCharFormat chinese;
    chinese.setFontFamilies({QStringLiteral(u"宋体")});
    cursor.insertText(QStringLiteral(u"\u8a9e"), chinese);
}

void buildCjk(QTextCursor &cursor)
{
    QTextCharFormat latin;
    latin.setFontFamilies({QStringLiteral("Liberation Serif")});
    cursor.insertText(QStringLiteral(u"latin 日本"), latin);
    cursor.insertBlock();
    cursor.insertText(QStringLiteral("plain"), latin);
}

} // namespace

class TestRtfWriter : public QObject
{
    Q_OBJECT
private slots:
    void header();
    void textEscapes_data();
    void textEscapes();
    void rawPictureWrittenUnchanged();
    void longLinesBreakOnlyWhereIgnored();
    void deterministic();
    void forOtherReaders_data();
    void forOtherReaders();
};

void TestRtfWriter::header()
{
    const QByteArray rtf = writeRun(QStringLiteral("x"));
    QVERIFY2(rtf.startsWith("{\\rtf1\\ansi\\ansicpg1252\\deff0"), rtf);
    QVERIFY2(rtf.contains("{\\colortbl ;"), rtf);
    QVERIFY2(rtf.contains("\r\n\\viewkind4\\uc1\r\n"), rtf);
    QVERIFY2(rtf.endsWith("x}\\par\r\n}\r\n"), rtf); // the last paragraph ends with \\par too
    QVERIFY(!rtf.contains("listtable"));             // no lists, no list table
}

void TestRtfWriter::textEscapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("braces and backslash") << QStringLiteral("a{b}c\\d") << QByteArray(" a\\{b\\}c\\\\d}");
    QTest::newRow("delimiter before leading space") << QStringLiteral(" a") << QByteArray("\\fs24  a}");
    QTest::newRow("latin letter") << QStringLiteral(u"é") << QByteArray("\\u233\\'e9}");
    QTest::newRow("windows-1252 only") << QStringLiteral(u"€”") << QByteArray("\\u8364\\'80\\u8221\\'94}");
    QTest::newRow("no one-byte form") << QStringLiteral(u"漢") << QByteArray("\\u28450?}");
    QTest::newRow("above 32767 is negative") << QStringLiteral(u"\uff21") << QByteArray("\\u-223?}");
    QTest::newRow("surrogate pair") << QString::fromUcs4(U"\U0001F600") << QByteArray("\\u-10179?\\u-8704?}");
    QTest::newRow("tab and line break") << QStringLiteral(u"a\tb\u2028c") << QByteArray(" a\\tab b\\line c}");
    QTest::newRow("no-break space") << QStringLiteral(u"a\u00a0b") << QByteArray(" a\\u160\\'a0b}");
    QTest::newRow("control character dropped") << QStringLiteral(u"a\u0001b") << QByteArray(" ab}");
}

void TestRtfWriter::textEscapes()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, expected);
    QTextCharFormat format;
    format.setFontPointSize(12);
    const QByteArray rtf = writeRun(text, format);
    QVERIFY2(bodyOf(rtf).contains(expected), rtf);
    for (const char c : rtf)
        QVERIFY2(c > 0 && (c >= 0x20 || c == '\r' || c == '\n'), rtf);
}

void TestRtfWriter::rawPictureWrittenUnchanged()
{
    const QByteArray raw("{\\pict\\wmetafile8\\picw100\\pich50\r\n0102ff}");
    QTextImageFormat format = imageFormat();
    format.setProperty(RichText::RawPictureProperty, raw);
    const QByteArray rtf = writePicture(QImage(2, 2, QImage::Format_RGB32), format);
    QVERIFY2(rtf.contains(raw), rtf);
    QCOMPARE(rtf.count("\\pict"), 1);
}

void TestRtfWriter::longLinesBreakOnlyWhereIgnored()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    const QString words = QStringLiteral(u"word {é} ").repeated(300);
    const QString longWord = QString(600, QLatin1Char('x'));
    cursor.insertText(words + longWord);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    for (int i = 0; i < 100; ++i)
        cursor.insertText(QStringLiteral(" b"), i % 2 ? bold : QTextCharFormat());
    const QByteArray rtf = RtfWriter::write(document);
    for (const QByteArray &line : rtf.split('\n')) {
        QVERIFY2(line.size() <= 252, line);
        QVERIFY2(!line.endsWith("\\\r") && !line.endsWith("\\u"), line);
    }
    // Joined again, the text is whole: the breaks fell between its characters only.
    const QByteArray joined = QByteArray(rtf).replace("\r\n", "");
    QVERIFY(joined.contains(QByteArray("word \\{\\u233\\'e9\\} ").repeated(300) + QByteArray(600, 'x')));
}

void TestRtfWriter::deterministic()
{
    auto build = [](QTextDocument &document) {
        QTextCursor cursor(&document);
        for (int i = 0; i < 20; ++i) {
            QTextCharFormat format;
            format.setForeground(QColor::fromHsv(i * 17, 200, 200));
            format.setFontFamilies({QStringLiteral("Font %1").arg(i % 7)});
            cursor.insertText(QStringLiteral("run %1 ").arg(i), format);
        }
        cursor.insertList(QTextListFormat::ListDecimal);
        cursor.insertText(QStringLiteral("item"));
    };
    QTextDocument first;
    QTextDocument second;
    build(first);
    build(second);
    QCOMPARE(RtfWriter::write(first), RtfWriter::write(second));
}

void TestRtfWriter::forOtherReaders_data()
{
    QTest::addColumn<Builder>("build");
    QTest::addColumn<QByteArrayList>("expected");
    QTest::addColumn<QByteArrayList>("unexpected");

    QTest::newRow("capitals") << Builder(buildCaps) << QByteArrayList{"\\scaps small }", "\\caps all}"}
                              << QByteArrayList{};
    QTest::newRow("direction and breaks")
        << Builder(buildDirectionAndBreaks)
        << QByteArrayList{"\\pard\\plain\\rtlpar", "first}\\par\\page\r\n", "\\pagebb"}
        << QByteArrayList{"second}\\par\\page"};
    // Each level's text starts one document indent (40 px) further in, the marker hanging.
    QTest::newRow("list indents")
        << Builder(buildNestedList)
        << QByteArrayList{"\\ls1\\ilvl0\\li600\\fi-360", "\\ls2\\ilvl1\\li1200\\fi-360",
                          "\\ls2\\ilvl1\\li1350\\fi-360", "\\levelnfc0\\levelnfcn0",
                          "\\levelstartat3", "\\fi-360\\li1200}"}
        << QByteArrayList{};
    // Outer columns of 4320 twips less two gaps of 108 leave 4104 for the inner table.
    QTest::newRow("nested table in its cell")
        << Builder(buildNestedTable)
        << QByteArrayList{"\\itap2", "\\nestcell{\\*\\nesttableprops\\trowd",
                          "\\cellx2052\\cellx4104\r\n\\nestrow}", "\\cellx1026\\cellx4104\r\n\\nestrow}",
                          "\\cellx4320\\cellx8640\r\n", "{\\nonesttables\\par}"}
        << QByteArrayList{"\\cellx6480", "\\cellx8640\r\n\\nestrow"};
    QTest::newRow("east asian font")
        << Builder(buildCjk)
        << QByteArrayList{"{\\f1\\fswiss\\fcharset0 Noto Sans CJK SC;}", "{\\dbch\\af1\\loch\\f0\\fs24 latin \\u26085?",
                          "{\\f0\\fs24 plain}"}
        << QByteArrayList{};
    QTest::newRow("document's east asian font")
        << Builder(buildCjkWithDocumentFont)
        << QByteArrayList{"{\\f1\\fnil\\fcharset0\\u23435?\\u20307?;}", "{\\dbch\\af1\\loch\\f0\\fs24\\u26085?",
                          "{\\dbch\\af1\\loch\\f1\\fs24\\u-30050?"}
        << QByteArrayList{"Noto Sans CJK"};
}

// What other word processors need to show the document as the editor does.
void TestRtfWriter::forOtherReaders()
{
    QFETCH(Builder, build);
    QFETCH(QByteArrayList, expected);
    QFETCH(QByteArrayList, unexpected);
    QTextDocument document;
    document.setDefaultFont(QFont(QStringLiteral("Liberation Serif"), 12));
    QTextCursor cursor(&document);
    build(cursor);
    const QByteArray rtf = RtfWriter::write(document);
    for (const QByteArray &part : expected)
        QVERIFY2(rtf.contains(part), qPrintable(part + "\n" + rtf));
    for (const QByteArray &part : unexpected)
        QVERIFY2(!rtf.contains(part), qPrintable(part + "\n" + rtf));
}

QTEST_MAIN(TestRtfWriter)
#include "test_rtf_writer.moc"
