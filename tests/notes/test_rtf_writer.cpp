#include "notes/rich_text_properties.h"
#include "notes/rtf_writer.h"

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

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

QByteArray png(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
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

void verifyContainsAll(const QByteArray &rtf, const QByteArrayList &expected)
{
    for (const QByteArray &part : expected) {
        if (!rtf.contains(part))
            QFAIL(qPrintable(QStringLiteral("missing \"%1\" in:\n%2").arg(part, rtf)));
    }
}

} // namespace

class TestRtfWriter : public QObject
{
    Q_OBJECT
private slots:
    void header();
    void characterFormats_data();
    void characterFormats();
    void textEscapes_data();
    void textEscapes();
    void paragraphFormats_data();
    void paragraphFormats();
    void lists();
    void tableCellWidths_data();
    void tableCellWidths();
    void pictures_data();
    void pictures();
    void rawPictureWrittenUnchanged();
    void linkRunsShareOneField();
    void longLinesBreakOnlyWhereIgnored();
    void deterministic();
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

void TestRtfWriter::characterFormats_data()
{
    QTest::addColumn<QTextFormat>("format");
    QTest::addColumn<QByteArrayList>("expected");
    auto row = [](const char *name, auto setUp, const QByteArrayList &expected) {
        QTextCharFormat format;
        setUp(format);
        QTest::newRow(name) << QTextFormat(format) << expected;
    };
    row("switches",
        [](QTextCharFormat &f) {
            f.setFontWeight(QFont::Bold);
            f.setFontItalic(true);
            f.setFontUnderline(true);
            f.setFontStrikeOut(true);
        },
        {"\\b\\i\\ul\\strike x}"});
    row("superscript", [](QTextCharFormat &f) { f.setVerticalAlignment(QTextCharFormat::AlignSuperScript); },
        {"\\super x}"});
    row("subscript", [](QTextCharFormat &f) { f.setVerticalAlignment(QTextCharFormat::AlignSubScript); },
        {"\\sub x}"});
    row("half point size", [](QTextCharFormat &f) { f.setFontPointSize(15.5); }, {"\\fs31 x}"});
    row("font", [](QTextCharFormat &f) { f.setFontFamilies({QStringLiteral("Courier New")}); },
        {"{\\fonttbl{\\f0\\fmodern\\fcharset0 Courier New;}}", "{\\f0\\fs"});
    row("colour", [](QTextCharFormat &f) { f.setForeground(QColor(255, 0, 0)); },
        {"{\\colortbl ;\\red255\\green0\\blue0;}", "\\cf1 x}"});
    row("highlight", [](QTextCharFormat &f) { f.setBackground(QColor(0, 255, 255)); },
        {"{\\colortbl ;\\red0\\green255\\blue255;}", "\\highlight1 x}"});
    row("same colour twice", [](QTextCharFormat &f) { f.setForeground(Qt::blue), f.setBackground(Qt::blue); },
        {"{\\colortbl ;\\red0\\green0\\blue255;}", "\\cf1\\highlight1 x}"});
}

void TestRtfWriter::characterFormats()
{
    QFETCH(QTextFormat, format);
    QFETCH(QByteArrayList, expected);
    verifyContainsAll(writeRun(QStringLiteral("x"), format.toCharFormat()), expected);
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

void TestRtfWriter::paragraphFormats_data()
{
    QTest::addColumn<QTextFormat>("format");
    QTest::addColumn<QByteArray>("expected");
    auto row = [](const char *name, auto setUp, const char *expected) {
        QTextBlockFormat format;
        setUp(format);
        QTest::newRow(name) << QTextFormat(format) << QByteArray(expected);
    };
    row(
        "centre", [](QTextBlockFormat &f) { f.setAlignment(Qt::AlignHCenter); }, "\\qc{");
    row(
        "right", [](QTextBlockFormat &f) { f.setAlignment(Qt::AlignRight); }, "\\qr{");
    row(
        "justify", [](QTextBlockFormat &f) { f.setAlignment(Qt::AlignJustify); }, "\\qj{");
    row(
        "indents and spacing",
        [](QTextBlockFormat &f) {
            f.setLeftMargin(20);
            f.setRightMargin(10);
            f.setTextIndent(-10);
            f.setTopMargin(6);
            f.setBottomMargin(12);
        },
        "\\li300\\ri150\\fi-150\\sb90\\sa180{");
    row(
        "proportional lines",
        [](QTextBlockFormat &f) { f.setLineHeight(115, QTextBlockFormat::ProportionalHeight); },
        "\\sl276\\slmult1{");
    row(
        "minimum lines", [](QTextBlockFormat &f) { f.setLineHeight(20, QTextBlockFormat::MinimumHeight); },
        "\\sl300\\slmult0{");
    row(
        "exact lines", [](QTextBlockFormat &f) { f.setLineHeight(20, QTextBlockFormat::FixedHeight); },
        "\\sl-300\\slmult0{");
}

void TestRtfWriter::paragraphFormats()
{
    QFETCH(QTextFormat, format);
    QFETCH(QByteArray, expected);
    QTextDocument document;
    QTextCursor cursor(&document);
    cursor.setBlockFormat(format.toBlockFormat());
    cursor.insertText(QStringLiteral("x"));
    const QByteArray rtf = RtfWriter::write(document);
    QVERIFY2(bodyOf(rtf).startsWith("\\pard\\plain" + expected), rtf);
}

void TestRtfWriter::lists()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    cursor.insertText(QStringLiteral("before"));
    QTextListFormat bullets;
    bullets.setStyle(QTextListFormat::ListDisc);
    cursor.insertList(bullets);
    cursor.insertText(QStringLiteral("fruit"));
    QTextListFormat numbers;
    numbers.setStyle(QTextListFormat::ListLowerAlpha);
    numbers.setIndent(2);
    numbers.setNumberSuffix(QStringLiteral(")"));
    cursor.insertList(numbers);
    cursor.insertText(QStringLiteral("apple"));
    cursor.insertBlock();
    cursor.insertText(QStringLiteral("pear"));
    const QByteArray rtf = RtfWriter::write(document);
    verifyContainsAll(
        rtf,
        {// The bullet list: one level with a bullet character.
         "{\\list\\listtemplateid1{\\listlevel\\levelnfc23\\levelnfcn23\\leveljc0\\leveljcn0\\levelfollow0"
         "\\levelstartat1{\\leveltext\\'01\\u8226\\'95;}{\\levelnumbers;}\\fi-360\\li600}{\\listname;}"
         "\\listid1}",
         // The nested list: its level 1 holds "<number of level 1>)".
         "{\\leveltext\\'02\\'01);}{\\levelnumbers\\'01;}\\fi-360\\li1200}{\\listname;}\\listid2}",
         "{\\listoverride\\listid1\\listoverridecount0\\ls1}{"
         "\\listoverride\\listid2\\listoverridecount0\\ls2}",
         "\\pard\\plain\\ls1\\ilvl0{\\listtext\\f0\\fs", "\\u8226\\'95\\tab}{",
         "\\pard\\plain\\ls2\\ilvl1{\\listtext", " a)\\tab}{", " b)\\tab}{"});
    QVERIFY2(bodyOf(rtf).startsWith("\\pard\\plain{"), rtf); // the paragraph before the list is no item
}

void TestRtfWriter::tableCellWidths_data()
{
    QTest::addColumn<QList<QTextLength>>("constraints");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("equal widths over the text width") << QList<QTextLength>() << QByteArray("2880 5760 8640");
    QTest::newRow("fixed, percentage and the rest")
        << QList<QTextLength>{QTextLength(QTextLength::FixedLength, 100),
                              QTextLength(QTextLength::PercentageLength, 25), QTextLength()}
        << QByteArray("1500 3660 8640");
}

void TestRtfWriter::tableCellWidths()
{
    QFETCH(QList<QTextLength>, constraints);
    QFETCH(QByteArray, expected);
    QTextDocument document;
    QTextTableFormat format;
    format.setColumnWidthConstraints(constraints);
    QTextCursor(&document).insertTable(1, 3, format);
    const QByteArray rtf = RtfWriter::write(document);
    QByteArrayList edges;
    for (const auto &match :
         QRegularExpression(QStringLiteral("\\\\cellx(\\d+)")).globalMatch(QString::fromLatin1(rtf)))
        edges.append(match.captured(1).toLatin1());
    QCOMPARE(edges.join(' '), expected);
}

void TestRtfWriter::pictures_data()
{
    QTest::addColumn<QVariant>("resource");
    QTest::addColumn<QTextFormat>("format");
    QTest::addColumn<QByteArray>("expected");
    QTest::addColumn<QSize>("pixels");
    const QByteArray bytes = png(QSize(4, 2));
    QTest::newRow("png at its own size")
        << QVariant(bytes) << QTextFormat(imageFormat())
        << QByteArray("{\\pict\\pngblip\\picw4\\pich2\\picwgoal60\\pichgoal30") << QSize(4, 2);
    QTest::newRow("width given keeps proportions") << QVariant(bytes) << QTextFormat(imageFormat(40))
                                                   << QByteArray("\\picwgoal600\\pichgoal300") << QSize(4, 2);
    QTest::newRow("both sides given") << QVariant(bytes) << QTextFormat(imageFormat(10, 30))
                                      << QByteArray("\\picwgoal150\\pichgoal450") << QSize(4, 2);
    QImage image(3, 5, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QByteArray jpeg;
    QBuffer buffer(&jpeg);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPEG");
    QTest::newRow("jpeg") << QVariant(jpeg) << QTextFormat(imageFormat())
                          << QByteArray("{\\pict\\jpegblip\\picw3\\pich5\\picwgoal45\\pichgoal75")
                          << QSize(3, 5);
    QTest::newRow("image becomes png")
        << QVariant(image) << QTextFormat(imageFormat())
        << QByteArray("{\\pict\\pngblip\\picw3\\pich5\\picwgoal45\\pichgoal75") << QSize(3, 5);
    QTest::newRow("missing resource writes nothing")
        << QVariant() << QTextFormat(imageFormat()) << QByteArray() << QSize();
}

void TestRtfWriter::pictures()
{
    QFETCH(QVariant, resource);
    QFETCH(QTextFormat, format);
    QFETCH(QByteArray, expected);
    QFETCH(QSize, pixels);
    const QByteArray rtf = writePicture(resource, format.toImageFormat());
    if (expected.isEmpty()) {
        QVERIFY2(!rtf.contains("\\pict"), rtf);
        return;
    }
    const qsizetype start = rtf.indexOf(expected);
    QVERIFY2(start >= 0, rtf);
    const qsizetype hexStart = start + expected.size();
    QByteArray hex = rtf.mid(hexStart, rtf.indexOf('}', hexStart) - hexStart);
    QVERIFY2(hex.startsWith("\r\n") && hex.endsWith("\r\n"), rtf);
    const QByteArray decoded = QByteArray::fromHex(hex.replace("\r\n", ""));
    // Encoded pictures keep their original bytes rather than being encoded again.
    if (resource.typeId() == QMetaType::QByteArray)
        QCOMPARE(decoded, resource.toByteArray());
    QCOMPARE(QImage::fromData(decoded).size(), pixels);
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

void TestRtfWriter::linkRunsShareOneField()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    QTextCharFormat link;
    link.setAnchor(true);
    link.setAnchorHref(QStringLiteral("https://example.org/a\"b"));
    cursor.insertText(QStringLiteral("see "));
    cursor.insertText(QStringLiteral("the "), link);
    link.setFontWeight(QFont::Bold);
    cursor.insertText(QStringLiteral("site"), link);
    cursor.insertText(QStringLiteral("."), QTextCharFormat());
    const QByteArray body = bodyOf(RtfWriter::write(document));
    QCOMPARE(body.count("\\field"), 1);
    verifyContainsAll(body, {"{\\field{\\*\\fldinst{HYPERLINK \"https://example.org/a%22b\"}}{\\fldrslt{",
                             " the }{\\f0\\fs", "\\b site}}}{"});
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

QTEST_MAIN(TestRtfWriter)
#include "test_rtf_writer.moc"
