#include "notes/rich_text_properties.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

class TestRtfReader : public QObject
{
    Q_OBJECT
private slots:
    void corpusText_data();
    void corpusText();
    void corpusFormatting_data();
    void corpusFormatting();
    void faultFiles_data();
    void faultFiles();
    void corpusPictures_data();
    void corpusPictures();
    void snippets_data();
    void snippets();
    void damagedInput_data();
    void damagedInput();
};

namespace {

QByteArray corpusFile(const QString &name)
{
    QFile file(QStringLiteral(VANTORA_RTF_CORPUS "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The visible text with every run of blanks, breaks, cell ends and pictures as one space.
QString bodyText(const QTextDocument &document)
{
    QString text = document.toPlainText();
    for (QChar &c : text) {
        if (c == QChar::LineSeparator || c == QChar::ParagraphSeparator || c == QChar::ObjectReplacementCharacter
            || c == QChar::Nbsp)
            c = u' ';
    }
    return text.simplified();
}

QList<QTextImageFormat> pictures(const QTextDocument &document)
{
    QList<QTextImageFormat> found;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            if (it.fragment().charFormat().isImageFormat())
                found.append(it.fragment().charFormat().toImageFormat());
        }
    }
    return found;
}

QString listStyleName(QTextListFormat::Style style)
{
    switch (style) {
    case QTextListFormat::ListDisc: return QStringLiteral("disc");
    case QTextListFormat::ListSquare: return QStringLiteral("square");
    case QTextListFormat::ListCircle: return QStringLiteral("circle");
    case QTextListFormat::ListDecimal: return QStringLiteral("decimal");
    case QTextListFormat::ListLowerAlpha: return QStringLiteral("lower-alpha");
    case QTextListFormat::ListUpperAlpha: return QStringLiteral("upper-alpha");
    case QTextListFormat::ListLowerRoman: return QStringLiteral("lower-roman");
    case QTextListFormat::ListUpperRoman: return QStringLiteral("upper-roman");
    default: return QStringLiteral("other");
    }
}

QString alignmentName(Qt::Alignment alignment)
{
    if (alignment & Qt::AlignHCenter)
        return QStringLiteral("center");
    if (alignment & Qt::AlignRight)
        return QStringLiteral("right");
    if (alignment & Qt::AlignJustify)
        return QStringLiteral("justify");
    return QStringLiteral("left");
}

// The named property of the text at the cursor's selection, as the expectations spell it.
QString textProperty(const QTextCursor &found, const QString &name)
{
    QTextCursor at(found.document());
    at.setPosition(found.selectionStart() + 1);
    const QTextCharFormat chars = at.charFormat();
    const QTextBlock block = at.block();
    const QTextBlockFormat paragraph = block.blockFormat();
    if (name == u"b")
        return chars.fontWeight() == QFont::Bold ? "1" : "0";
    if (name == u"i")
        return chars.fontItalic() ? "1" : "0";
    if (name == u"u")
        return chars.fontUnderline() ? "1" : "0";
    if (name == u"s")
        return chars.fontStrikeOut() ? "1" : "0";
    if (name == u"va")
        return QString::number(int(chars.verticalAlignment()));
    if (name == u"fg")
        return chars.foreground().style() == Qt::NoBrush ? "auto" : chars.foreground().color().name();
    if (name == u"bg")
        return chars.background().style() == Qt::NoBrush ? "none" : chars.background().color().name();
    if (name == u"pt")
        return QString::number(chars.fontPointSize());
    if (name == u"font")
        return chars.fontFamilies().toStringList().value(0);
    if (name == u"families")
        return chars.fontFamilies().toStringList().join(u',');
    if (name == u"caps")
        return chars.fontCapitalization() == QFont::SmallCaps      ? QStringLiteral("small")
               : chars.fontCapitalization() == QFont::AllUppercase ? QStringLiteral("all")
                                                                   : QStringLiteral("none");
    if (name == u"paragraph")
        return block.text();
    if (name == u"break")
        return QString::number(int(paragraph.pageBreakPolicy()));
    if (name == u"direction")
        return paragraph.hasProperty(QTextFormat::LayoutDirection) ? QString::number(paragraph.layoutDirection())
                                                                   : QStringLiteral("none");
    if (name == u"numbering") {
        if (!block.textList())
            return QStringLiteral("none");
        const QTextListFormat list = block.textList()->format();
        return QStringLiteral("%1/%2 '%3' '%4' from %5 item %6")
            .arg(listStyleName(list.style()))
            .arg(list.indent())
            .arg(list.numberPrefix(),
                 list.hasProperty(QTextFormat::ListNumberSuffix) ? list.numberSuffix() : QStringLiteral("."))
            .arg(list.hasProperty(RichText::ListStartProperty) ? list.intProperty(RichText::ListStartProperty) : 1)
            .arg(block.textList()->itemNumber(block) + 1);
    }
    if (name == u"span") {
        const QTextTable *table = at.currentTable();
        if (!table)
            return QStringLiteral("none");
        const QTextTableCell cell = table->cellAt(at);
        return QStringLiteral("%1x%2 at %3,%4 of %5x%6")
            .arg(cell.rowSpan())
            .arg(cell.columnSpan())
            .arg(cell.row())
            .arg(cell.column())
            .arg(table->rows())
            .arg(table->columns());
    }
    if (name == u"href")
        return chars.anchorHref();
    if (name == u"align")
        return alignmentName(paragraph.alignment());
    if (name == u"margins")
        return QStringLiteral("%1,%2,%3,%4,%5").arg(paragraph.leftMargin()).arg(paragraph.rightMargin())
            .arg(paragraph.textIndent()).arg(paragraph.topMargin()).arg(paragraph.bottomMargin());
    if (name == u"lh")
        return QStringLiteral("%1/%2").arg(paragraph.lineHeight()).arg(paragraph.lineHeightType());
    if (name == u"list")
        return block.textList() ? QStringLiteral("%1/%2").arg(listStyleName(block.textList()->format().style()))
                                      .arg(block.textList()->format().indent())
                                : QStringLiteral("none");
    if (name == u"table") {
        const QTextTable *table = at.currentTable();
        return table ? QStringLiteral("%1x%2").arg(table->rows()).arg(table->columns()) : QStringLiteral("none");
    }
    return QStringLiteral("unknown property");
}

} // namespace

void TestRtfReader::corpusText_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QStringList>("mustContain");
    QTest::addColumn<QStringList>("mustNotContain");

    // One row per corpus file, with the phrases its facts list.
    QFile facts(QStringLiteral(VANTORA_RTF_CORPUS "/facts.tsv"));
    QVERIFY(facts.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = facts.readAll().split('\n');
    const QString separator = QStringLiteral(" || ");
    int rows = 0;
    for (const QByteArray &line : lines.mid(1)) {
        const QStringList fields = QString::fromUtf8(line).split(u'\t');
        if (fields.size() < 7)
            continue;
        const QStringList must = fields[5].isEmpty() ? QStringList() : fields[5].split(separator);
        const QStringList mustNot = fields[6].isEmpty() ? QStringList() : fields[6].split(separator);
        QTest::newRow(qPrintable(fields[0])) << fields[0] << must << mustNot;
        ++rows;
    }
    QVERIFY(rows >= 20);
}

void TestRtfReader::corpusText()
{
    QFETCH(QString, file);
    QFETCH(QStringList, mustContain);
    QFETCH(QStringList, mustNotContain);

    const QByteArray rtf = corpusFile(file);
    QVERIFY(!rtf.isEmpty());
    QTextDocument document;
    const RtfReadResult result = RtfReader::read(rtf, &document);
    QVERIFY2(result.ok, qPrintable(result.error));
    const QString text = bodyText(document);
    QVERIFY(text.isValidUtf16());
    for (const QString &phrase : mustContain)
        QVERIFY2(text.contains(phrase), qPrintable(phrase));
    // Field instructions, hidden text, picture data and tables of the file never show.
    for (const QString &phrase : mustNotContain)
        QVERIFY2(!text.contains(phrase), qPrintable(phrase));
    QVERIFY(!text.contains(QLatin1String("fonttbl")));
    QVERIFY(!document.isUndoAvailable());
}

void TestRtfReader::corpusFormatting_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("phrase");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    const QString formatting = QStringLiteral("pandoc-formatting.rtf");
    QTest::newRow("bold") << formatting << "bold" << "b" << "1";
    QTest::newRow("italic") << formatting << "italics" << "i" << "1";
    QTest::newRow("bold and italic") << formatting << "and italics" << "b" << "1";
    QTest::newRow("underline") << formatting << "underlined" << "u" << "1";
    QTest::newRow("strike") << formatting << "strikeout" << "s" << "1";
    QTest::newRow("raised") << formatting << "superscript" << "va" << "1";
    QTest::newRow("lowered") << formatting << "subscript" << "va" << "2";
    QTest::newRow("plain is plain") << formatting << "This is a test" << "b" << "0";
    QTest::newRow("font table") << formatting << "bold" << "font" << "Helvetica";
    QTest::newRow("text colour") << "rtfjs-colors.rtf" << "Colored Line" << "fg" << "#00ff00";
    QTest::newRow("highlight") << "rtfjs-colors.rtf" << "Highlighted Line" << "bg" << "#ff0000";
    QTest::newRow("auto colour") << "rtfjs-colors.rtf" << "Normal Line 1" << "fg" << "auto";
    QTest::newRow("both colours") << "rtfjs-colors.rtf" << "Colored & Highlighted" << "bg" << "#0000ff";
    QTest::newRow("half points") << "rtfjs-colors.rtf" << "Normal Line 2" << "pt" << "8.5";
    QTest::newRow("size") << "rtfjs-paragraph-properties.rtf" << "is" << "pt" << "22";
    QTest::newRow("centred") << "rtfjs-paragraph-properties.rtf" << "second" << "align" << "center";
    QTest::newRow("right") << "rtfjs-paragraph-properties.rtf" << "fourth" << "align" << "right";
    QTest::newRow("left again") << "rtfjs-paragraph-properties.rtf" << "And this paragraph" << "align" << "left";
    QTest::newRow("line spacing 1.15") << "rtfjs-paragraph-properties.rtf" << "third" << "lh" << "115/1";
    // \qc arrives after the paragraph's first line: the whole paragraph is centred.
    QTest::newRow("alignment at par") << "rtfjs-hyperlink.rtf" << "This is a document" << "align" << "center";
    QTest::newRow("link target") << "rtfjs-hyperlink.rtf" << "project" << "href" << "https://github.com/tbluemel/rtf.js";
    QTest::newRow("link in starred result") << "gen-abiword-features.rtf" << "AbiSource" << "href"
                                            << "https://www.abisource.com/";
    QTest::newRow("link without scheme") << "striprtf-mac_textedit_hyperlink.rtf" << "striprtf.dev" << "href"
                                         << "striprtf.dev";
    QTest::newRow("background pattern") << "gen-libreoffice-features.rtf" << "blue on yellow" << "bg" << "#ffff00";
    QTest::newRow("indents and spacing") << "gen-libreoffice-features.rtf" << "Indented paragraph" << "margins"
                                         << "96,48,48,24,12";
    QTest::newRow("proportional spacing") << "gen-libreoffice-features.rtf" << "Indented paragraph" << "lh" << "150/1";
    QTest::newRow("justified") << "gen-libreoffice-features.rtf" << "Justified paragraph" << "align" << "justify";
    QTest::newRow("monospace font") << "gen-libreoffice-features.rtf" << "monospaced" << "font" << "Liberation Mono";
    QTest::newRow("outline heading is no list") << "gen-libreoffice-features.rtf" << "Corpus Test Document" << "list"
                                                << "none";
    QTest::newRow("sub-list") << "gen-libreoffice-features.rtf" << "Sub-step a" << "list" << "lower-alpha/2";
    QTest::newRow("cyrillic charset bold") << "striprtf-bytes.rtf" << "УХВАЛА" << "b" << "1";
    QTest::newRow("nested group state") << "gen-deep-nesting-300.rtf" << "Deepest text" << "b" << "0";
    QTest::newRow("state after nesting") << "gen-deep-nesting-300.rtf" << "Back at top level" << "i" << "0";
    QTest::newRow("word list decimal") << "pandoc-list_complex.rtf" << "Two" << "list" << "decimal/1";
    QTest::newRow("word list level 2") << "pandoc-list_complex.rtf" << "Three" << "list" << "lower-alpha/2";
    QTest::newRow("word list level 5") << "pandoc-list_complex.rtf" << "Nine" << "list" << "upper-roman/5";
    QTest::newRow("word list bullets") << "pandoc-list_complex.rtf" << "Twelve" << "list" << "circle/6";
    QTest::newRow("after the list") << "pandoc-list_complex.rtf" << "Out of list" << "list" << "none";
    QTest::newRow("cocoa sub-list") << "pandoc-list_simple.rtf" << "sub" << "list" << "disc/2";
    QTest::newRow("libreoffice 3 numbers") << "tika-testRTFListLibreOffice.rtf" << "two" << "list" << "decimal/1";
    QTest::newRow("old-style list") << "rtfpipe-Issue46.rtf" << "It is the last row" << "list" << "disc/1";
    QTest::newRow("more cells than cellx") << "pandoc-table_simple.rtf" << "H" << "table" << "2x4";
    QTest::newRow("inherited row definition") << "rtfpipe-Issue46.rtf" << "Last items" << "table" << "8x5";
    QTest::newRow("nested table") << "striprtf-calcium_score.rtf" << "LAD/RIVA" << "table" << "6x2";
    QTest::newRow("word table") << "tika-testRTFVarious.rtf" << "Row 2 Col 3" << "table" << "2x3";
    QTest::newRow("cell alignment") << "gen-pandoc-features.rtf" << "Count" << "align" << "right";
}

void TestRtfReader::corpusFormatting()
{
    QFETCH(QString, file);
    QFETCH(QString, phrase);
    QFETCH(QString, name);
    QFETCH(QString, value);

    QTextDocument document;
    QVERIFY(RtfReader::read(corpusFile(file), &document).ok);
    QTextCursor found = document.find(phrase, 0, QTextDocument::FindCaseSensitively | QTextDocument::FindWholeWords);
    if (found.isNull()) // "x" + "superscript" is one word
        found = document.find(phrase, 0, QTextDocument::FindCaseSensitively);
    QVERIFY2(!found.isNull(), qPrintable(phrase));
    QCOMPARE(textProperty(found, name), value);
}

void TestRtfReader::faultFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("phrase");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("value");

    QTest::newRow("font named in GBK") << "font-name-cjk.rtf" << "测试" << "font" << "宋体";
    QTest::newRow("small caps") << "caps.rtf" << "Small caps" << "caps" << "small";
    QTest::newRow("all caps") << "caps.rtf" << "all caps" << "caps" << "all";
    QTest::newRow("no caps") << "caps.rtf" << "text" << "caps" << "none";
    QTest::newRow("merged down") << "merged-cells.rtf" << "B spans" << "span" << "2x1 at 0,1 of 4x2";
    QTest::newRow("beside the merge") << "merged-cells.rtf" << "C" << "span" << "1x1 at 1,0 of 4x2";
    QTest::newRow("wide cell spans columns") << "merged-cells.rtf" << "D spans" << "span" << "1x2 at 2,0 of 4x2";
    QTest::newRow("after merges") << "merged-cells.rtf" << "F" << "span" << "1x1 at 3,1 of 4x2";
    QTest::newRow("pagebb") << "page-breaks.rtf" << "Page two starts" << "break" << "1";
    QTest::newRow("no break") << "page-breaks.rtf" << "Still page two" << "break" << "0";
    QTest::newRow("page ends paragraph") << "page-breaks.rtf" << "Still page two" << "paragraph"
                                         << "Still page two.";
    QTest::newRow("page breaks before next") << "page-breaks.rtf" << "Page three" << "break" << "1";
    QTest::newRow("huge uc skips one") << "uc-huge.rtf" << "CDEFGHIJ" << "paragraph"
                                       << "AЖCDEFGHIJ text after the unicode char must stay.";
    QTest::newRow("pn with stray ls") << "legacy-pn-with-ls.rtf" << "Second numbered" << "numbering"
                                      << "decimal/1 '' '.' from 1 item 2";
    QTest::newRow("pn without ls") << "legacy-pn-with-ls.rtf" << "second" << "numbering"
                                   << "decimal/1 '' '.' from 1 item 2";
    QTest::newRow("pn start and texts") << "legacy-pn-start.rtf" << "Fourth item" << "numbering"
                                        << "lower-roman/1 '(' ')' from 3 item 2";
    QTest::newRow("pn list ends") << "legacy-pn-with-ls.rtf" << "Plain paragraph" << "numbering" << "none";
    QTest::newRow("list without indents") << "list-written-by-vantora.rtf" << "Level two 2" << "numbering"
                                          << "decimal/2 '' '.' from 1 item 2";
    QTest::newRow("list margins") << "list-written-by-vantora.rtf" << "Level one B" << "margins" << "0,0,0,0,0";
    QTest::newRow("nested table") << "nested-table-written-by-vantora.rtf" << "in4" << "span" << "1x1 at 1,1 of 2x2";
    QTest::newRow("right to left") << "rtl-paragraph.rtf" << "right to left" << "direction" << "1";
    QTest::newRow("left to right") << "rtl-paragraph.rtf" << "Left to right" << "direction" << "0";
    QTest::newRow("east asian font") << "cjk-associated-font.rtf" << "Latin and" << "families"
                                     << "Liberation Serif,Noto Serif CJK JP";
    QTest::newRow("af after hich") << "cjk-associated-font.rtf" << "no East Asian" << "families"
                                   << "Liberation Serif";
}

// Each fault file read as it is, and again after it was saved and reopened.
void TestRtfReader::faultFiles()
{
    QFETCH(QString, file);
    QFETCH(QString, phrase);
    QFETCH(QString, name);
    QFETCH(QString, value);

    QTextDocument document;
    QVERIFY(RtfReader::read(corpusFile(QStringLiteral("faults/") + file), &document).ok);
    for (const char *pass : {"read", "saved and reopened"}) {
        QTextCursor found = document.find(phrase, 0, QTextDocument::FindCaseSensitively | QTextDocument::FindWholeWords);
        if (found.isNull())
            found = document.find(phrase, 0, QTextDocument::FindCaseSensitively);
        QVERIFY2(!found.isNull(), qPrintable(phrase));
        QVERIFY2(textProperty(found, name) == value,
                 qPrintable(QStringLiteral("%1: %2").arg(QLatin1String(pass), textProperty(found, name))));
        const QByteArray written = RtfWriter::write(document);
        QVERIFY(RtfReader::read(written, &document).ok);
    }
}

void TestRtfReader::corpusPictures_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("count");
    QTest::addColumn<QSize>("firstSize"); // pixels, rounded
    QTest::addColumn<QByteArray>("kind");  // leading bytes of the kept data, or "{\pict" for a placeholder

    QTest::newRow("jpeg after bare bin") << "pandoc-image.rtf" << 1 << QSize(192, 192) << QByteArray("\xFF\xD8");
    QTest::newRow("shppict, not nonshppict") << "tika-testRTFRegularImages.rtf" << 2 << QSize(40, 27)
                                             << QByteArray("\xFF\xD8");
    QTest::newRow("metafiles") << "rtfjs-simplepict.rtf" << 3 << QSize(134, 62) << QByteArray("{\\pict");
    QTest::newRow("shape picture, not its fill") << "gen-libreoffice-features.rtf" << 1 << QSize(100, 50)
                                                 << QByteArray("\x89PNG");
    QTest::newRow("pandoc png") << "gen-pandoc-features.rtf" << 1 << QSize(133, 67) << QByteArray("\x89PNG");
    QTest::newRow("abiword png") << "gen-abiword-features.rtf" << 1 << QSize(85, 42) << QByteArray("\x89PNG");
    QTest::newRow("no pictures") << "tika-testRTFVarious.rtf" << 0 << QSize() << QByteArray();
}

void TestRtfReader::corpusPictures()
{
    QFETCH(QString, file);
    QFETCH(int, count);
    QFETCH(QSize, firstSize);
    QFETCH(QByteArray, kind);

    QTextDocument document;
    QVERIFY(RtfReader::read(corpusFile(file), &document).ok);
    const QList<QTextImageFormat> found = pictures(document);
    QCOMPARE(found.size(), count);
    if (count == 0)
        return;
    const QTextImageFormat &first = found.first();
    QCOMPARE(QSize(qRound(first.width()), qRound(first.height())), firstSize);
    QVERIFY(first.name().startsWith(QLatin1String(RichText::kPictureScheme) + u':'));
    const QVariant resource = document.resource(QTextDocument::ImageResource, QUrl(first.name()));
    if (kind.startsWith('{')) {
        QCOMPARE(resource.typeId(), QMetaType::QImage);
        const QByteArray raw = first.property(RichText::RawPictureProperty).toByteArray();
        QVERIFY(raw.startsWith(kind));
        QVERIFY(raw.endsWith('}'));
    } else {
        QVERIFY(resource.toByteArray().startsWith(kind));
        QVERIFY(!first.hasProperty(RichText::RawPictureProperty));
    }
}

void TestRtfReader::snippets_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");

    QTest::newRow("fallback skipped") << QByteArray("\\u8364?x") << QString::fromUtf16(u"€x");
    QTest::newRow("uc2 in a group") << QByteArray("{\\uc2\\u228\\'E8a}b") << QString::fromUtf16(u"äb");
    QTest::newRow("uc0") << QByteArray("\\uc0\\u8364 x") << QString::fromUtf16(u"€x");
    // A fallback is at most 4 bytes long (GB18030); a longer \\uc is damage and counts as 1.
    QTest::newRow("uc4") << QByteArray("{\\uc4\\u1046 abcd}e") << QString::fromUtf16(u"Жe");
    QTest::newRow("uc5 is damage") << QByteArray("\\uc5\\u1046 abcdef") << QString::fromUtf16(u"Жbcdef");
    QTest::newRow("negative uc") << QByteArray("\\uc-3\\u1046 ab") << QString::fromUtf16(u"Жb");
    QTest::newRow("page ends paragraph") << QByteArray("a\\page b") << QString::fromUtf16(u"a\u2029b");
    QTest::newRow("page after par") << QByteArray("a\\par\\page b") << QString::fromUtf16(u"a\u2029b");
    QTest::newRow("negative pair") << QByteArray("\\u-10179?\\u-9047?") << QString::fromUtf16(u"💩");
    QTest::newRow("pair across uc") << QByteArray("\\uc0 \\u55357\\uc1 \\u56832\\'3f.") << QString::fromUtf16(u"😀.");
    QTest::newRow("lone high") << QByteArray("\\u55296?x") << QString::fromUtf16(u"\uFFFDx");
    QTest::newRow("lone low") << QByteArray("\\u56320?x") << QString::fromUtf16(u"\uFFFDx");
    QTest::newRow("code page default") << QByteArray("\\'93hi\\'94") << QString::fromUtf16(u"“hi”");
    QTest::newRow("escapes") << QByteArray("\\\\ \\{ \\}") << QString::fromUtf16(u"\\ { }");
    QTest::newRow("unknown starred") << QByteArray("{\\*\\whatever secret}shown") << QString::fromUtf16(u"shown");
    QTest::newRow("hidden") << QByteArray("{\\v secret}shown") << QString::fromUtf16(u"shown");
    QTest::newRow("specials") << QByteArray("a\\tab b\\line c\\emdash\\~d") << QString::fromUtf16(u"a\tb\u2028c—\u00A0d");
    QTest::newRow("structure characters")
        << QByteArray("a\\u-560?b\\u-4?c\\u8233?d") << QString::fromUtf16(u"a\uFFFDb\uFFFDc\u2028d");
    QTest::newRow("binary in skipped group") << QByteArray("{\\*\\x\\bin3 }}}}ok") << QString::fromUtf16(u"ok");
}

void TestRtfReader::snippets()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, text);

    QTextDocument document;
    const RtfReadResult result = RtfReader::read("{\\rtf1\\ansi " + body + "}", &document);
    QVERIFY(result.ok);
    QCOMPARE(document.toRawText(), text);
}

void TestRtfReader::damagedInput_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("outcome"); // "error", "warning" or "read" (repaired without a word)

    const QByteArray real = corpusFile(QStringLiteral("gen-libreoffice-features.rtf"));
    for (int percent : {1, 10, 35, 60, 90, 99})
        QTest::addRow("truncated at %d%%", percent) << real.left(real.size() * percent / 100) << "warning";
    QTest::newRow("truncated in a picture") << real.left(real.indexOf("\\pngblip") + 200) << "warning";
    QTest::newRow("unclosed groups") << QByteArray("{\\rtf1 {\\b bold {\\i more") << "warning";
    QTest::newRow("extra closing braces") << QByteArray("{\\rtf1 text}}}} after") << "warning";
    QTest::newRow("huge bin length") << QByteArray("{\\rtf1 \\bin2147483647 x}") << "warning";
    QTest::newRow("huge numbers") << QByteArray("{\\rtf1 \\fs99999999999999\\uc2147483647\\u99999999 x}") << "read";
    QTest::newRow("nested 100000 deep") << "{\\rtf1 " + QByteArray(100000, '{') + "x" + QByteArray(100000, '}') + "}"
                                        << "warning";
    QTest::newRow("open 100000 deep") << "{\\rtf1 " + QByteArray(100000, '{') + "{\\pict" << "warning";
    QTest::newRow("broken png") << QByteArray("{\\rtf1 {\\pict\\pngblip\\picwgoal99999999 89504e470d0a}}") << "read";
    // Level 99 is kept at 16, and what lies deeper than 8 is flattened, with a warning.
    QTest::newRow("malformed table") << QByteArray("{\\rtf1 \\row\\cell\\nestrow\\itap99\\intbl x\\nestcell\\cell}")
                                     << "warning";
    QByteArray garbage(65536, '\0');
    QRandomGenerator random(7);
    for (char &c : garbage)
        c = "{}\\'*abu019 -;"[random.bounded(14)];
    QTest::newRow("garbage") << "{\\rtf1" + garbage << "warning";
    QTest::newRow("empty") << QByteArray() << "error";
    QTest::newRow("blank") << QByteArray(" \r\n") << "error";
    QTest::newRow("plain text") << QByteArray("Hello {\\rtf1}") << "error";
    QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n", 8) << "error";
}

void TestRtfReader::damagedInput()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, outcome);

    QTextDocument document;
    QElapsedTimer timer;
    timer.start();
    const RtfReadResult result = RtfReader::read(rtf, &document);
    QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(result.ok, outcome != u"error");
    QCOMPARE(result.error.isEmpty(), outcome != u"error");
    QCOMPARE(result.warnings.isEmpty(), outcome != u"warning");
    QVERIFY(document.toRawText().isValidUtf16());
}

QTEST_MAIN(TestRtfReader)
#include "test_rtf_reader.moc"
