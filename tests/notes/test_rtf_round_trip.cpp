#include "notes/rich_text_properties.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>

using Builder = void (*)(QTextCursor &);
Q_DECLARE_METATYPE(Builder)

namespace {

QTextCharFormat charFormat(const char *family, double size, QFont::Weight weight = QFont::Normal)
{
    QTextCharFormat format;
    format.setFontFamilies({QString::fromLatin1(family)});
    format.setFontPointSize(size);
    format.setFontWeight(weight);
    return format;
}

QByteArray encoded(const QImage &image, const char *kind)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, kind);
    return bytes;
}

void insertPicture(QTextCursor &cursor, const QString &name, const QVariant &resource, double width = 0)
{
    cursor.document()->addResource(QTextDocument::ImageResource, QUrl(name), resource);
    QTextImageFormat format;
    format.setName(name);
    if (width > 0)
        format.setWidth(width);
    cursor.insertImage(format);
}

void buildCharacters(QTextCursor &cursor)
{
    QTextCharFormat format = charFormat("Liberation Serif", 11);
    cursor.insertText(QStringLiteral("plain "), format);
    format.setFontWeight(QFont::Bold);
    cursor.insertText(QStringLiteral("bold "), format);
    format.setFontItalic(true);
    format.setFontUnderline(true);
    cursor.insertText(QStringLiteral("bold italic underlined "), format);
    format = charFormat("Liberation Mono", 9.5);
    format.setFontStrikeOut(true);
    format.setForeground(QColor(200, 10, 20));
    cursor.insertText(QStringLiteral("struck red "), format);
    format = charFormat("Liberation Sans", 20);
    format.setBackground(QColor(255, 255, 0));
    cursor.insertText(QStringLiteral("highlighted "), format);
    format.setVerticalAlignment(QTextCharFormat::AlignSuperScript);
    cursor.insertText(QStringLiteral("2"), format);
    format.setVerticalAlignment(QTextCharFormat::AlignSubScript);
    cursor.insertText(QStringLiteral("n"), format);
}

void buildText(QTextCursor &cursor)
{
    cursor.insertText(QString::fromUtf8("braces {x} and \\ back\tslash, caf\u00e9 \u20ac \u6f22\u5b57 ") +
                      QString::fromUcs4(U"\U0001F600") + QStringLiteral(u" line\u2028break\u00a0end"));
    cursor.insertBlock();
    cursor.insertText(QStringLiteral("  leading and trailing spaces  "));
}

void buildParagraphs(QTextCursor &cursor)
{
    const Qt::Alignment alignments[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight, Qt::AlignJustify};
    for (const Qt::Alignment alignment : alignments) {
        QTextBlockFormat format;
        format.setAlignment(alignment);
        cursor.insertBlock(format);
        cursor.insertText(QStringLiteral("aligned"));
    }
    QTextBlockFormat format;
    format.setLeftMargin(48);
    format.setRightMargin(24);
    format.setTextIndent(-12);
    format.setTopMargin(8);
    format.setBottomMargin(16);
    format.setLineHeight(115, QTextBlockFormat::ProportionalHeight);
    cursor.insertBlock(format);
    cursor.insertText(QStringLiteral("indented, spaced, 1.15 lines"));
    format = QTextBlockFormat();
    format.setLineHeight(20, QTextBlockFormat::MinimumHeight);
    cursor.insertBlock(format);
    cursor.insertText(QStringLiteral("at least 20 px"));
    format.setLineHeight(18, QTextBlockFormat::FixedHeight);
    cursor.insertBlock(format);
    cursor.insertText(QStringLiteral("exactly 18 px"));
    // Empty paragraphs keep the size of their paragraph mark.
    cursor.insertBlock(QTextBlockFormat(), charFormat("Liberation Sans", 28));
    cursor.insertBlock(QTextBlockFormat(), charFormat("Liberation Sans", 8));
}

void buildLists(QTextCursor &cursor)
{
    cursor.insertText(QStringLiteral("before"));
    cursor.insertList(QTextListFormat::ListDisc);
    cursor.insertText(QStringLiteral("bullet one"));
    QTextListFormat nested;
    nested.setStyle(QTextListFormat::ListLowerAlpha);
    nested.setIndent(2);
    nested.setNumberSuffix(QStringLiteral(")"));
    cursor.insertList(nested);
    cursor.insertText(QStringLiteral("nested a"));
    cursor.insertBlock();
    cursor.insertText(QStringLiteral("nested b"));
    QTextListFormat deeper;
    deeper.setStyle(QTextListFormat::ListUpperRoman);
    deeper.setIndent(3);
    cursor.insertList(deeper);
    cursor.insertText(QStringLiteral("deeper I"));
    cursor.insertBlock(QTextBlockFormat());
    cursor.insertText(QStringLiteral("between"));
    for (const auto style : {QTextListFormat::ListDecimal, QTextListFormat::ListDecimal,
                             QTextListFormat::ListSquare, QTextListFormat::ListCircle}) {
        cursor.insertList(style); // each a list of its own, so numbering starts again
        cursor.insertText(QStringLiteral("first"));
        cursor.insertBlock();
        cursor.insertText(QStringLiteral("second"));
        cursor.insertBlock(QTextBlockFormat());
        cursor.insertText(QStringLiteral("after"));
    }
}

void buildTables(QTextCursor &cursor)
{
    cursor.insertText(QStringLiteral("above"));
    QTextTableFormat format;
    format.setColumnWidthConstraints({QTextLength(QTextLength::FixedLength, 120),
                                      QTextLength(QTextLength::PercentageLength, 30), QTextLength()});
    QTextTable *table = cursor.insertTable(3, 3, format);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            table->cellAt(row, column)
                .firstCursorPosition()
                .insertText(QStringLiteral("r%1c%2").arg(row).arg(column),
                            charFormat("Liberation Sans", 10, row == 0 ? QFont::Bold : QFont::Normal));
        }
    }
    QTextCursor cell = table->cellAt(1, 1).lastCursorPosition();
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignHCenter);
    cell.insertBlock(centred);
    cell.insertText(QStringLiteral("second paragraph"));
    QTextTable *inner = table->cellAt(2, 2).lastCursorPosition().insertTable(2, 2);
    inner->cellAt(1, 0).firstCursorPosition().insertText(QStringLiteral("inner"));
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral("below"));
}

void buildPictures(QTextCursor &cursor)
{
    QImage image(6, 4, QImage::Format_RGB32);
    image.fill(QColor(10, 200, 30));
    cursor.insertText(QStringLiteral("png "));
    insertPicture(cursor, QStringLiteral("rtfpicture:1"), encoded(image, "PNG"));
    cursor.insertText(QStringLiteral(" jpeg "));
    insertPicture(cursor, QStringLiteral("rtfpicture:2"), encoded(image, "JPEG"), 60);
    QTextImageFormat raw;
    raw.setName(QStringLiteral("rtfpicture:3"));
    raw.setProperty(RichText::RawPictureProperty,
                    QByteArray("{\\pict\\wmetafile8\\picw100\\pich50\\picwgoal60\\pichgoal30 0102}"));
    cursor.document()->addResource(QTextDocument::ImageResource, QUrl(raw.name()),
                                   QImage(4, 2, QImage::Format_RGB32));
    cursor.insertImage(raw);
}

void buildLinks(QTextCursor &cursor)
{
    QTextCharFormat link;
    link.setAnchor(true);
    link.setAnchorHref(QStringLiteral("https://example.org/notes?a=1&b=2"));
    link.setForeground(QColor(0, 0, 255));
    link.setFontUnderline(true);
    cursor.insertText(QStringLiteral("see "));
    cursor.insertText(QStringLiteral("the "), link);
    link.setFontWeight(QFont::Bold);
    cursor.insertText(QStringLiteral("site"), link);
    cursor.insertText(QStringLiteral(" and "), QTextCharFormat());
    link.setAnchorHref(QStringLiteral("mailto:someone@example.org"));
    cursor.insertText(QStringLiteral("mail"), link);
}

void buildSavedOnly(QTextCursor &cursor)
{
    QTextCharFormat format = charFormat("Liberation Sans", 12);
    format.setFontCapitalization(QFont::SmallCaps);
    cursor.insertText(QStringLiteral("small capitals "), format);
    format.setFontCapitalization(QFont::AllUppercase);
    cursor.insertText(QStringLiteral("capitals"), format);
    QTextBlockFormat block;
    block.setLayoutDirection(Qt::RightToLeft);
    block.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    cursor.insertBlock(block);
    cursor.insertText(QStringLiteral(u"\u05e9\u05dc\u05d5\u05dd on a new page"));
    QTextListFormat list;
    list.setStyle(QTextListFormat::ListUpperAlpha);
    list.setProperty(RichText::ListStartProperty, 4);
    cursor.insertList(list);
    cursor.insertText(QStringLiteral("from D"));
    QTextBlockFormat indented;
    indented.setLeftMargin(20);
    cursor.insertBlock(indented);
    cursor.insertText(QStringLiteral("indented item"));
}

void buildMergedCells(QTextCursor &cursor)
{
    // The last row keeps every column edge: a file has no columns that no row ends at.
    QTextTable *table = cursor.insertTable(4, 3);
    table->mergeCells(0, 0, 2, 1);
    table->mergeCells(2, 1, 1, 2);
    table->mergeCells(0, 1, 2, 2);
    table->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("two rows"));
    table->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("two by two"));
    table->cellAt(2, 1).firstCursorPosition().insertText(QStringLiteral("two columns"));
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(QStringLiteral("after"));
}

void buildEmpty(QTextCursor &) {}

QString colorName(const QBrush &brush)
{
    return brush.style() == Qt::NoBrush ? QStringLiteral("-") : brush.color().name();
}

// What a reader and a writer must agree on about a document, one line per run, paragraph and
// table, with formats resolved against the document's default font.
class Description
{
public:
    explicit Description(const QTextDocument &document) : m_document(document)
    {
        describeFrame(document.rootFrame()->begin(), 0);
    }
    QStringList lines;

private:
    void describeFrame(QTextFrame::iterator it, int depth)
    {
        for (; !it.atEnd(); ++it) {
            if (const auto *table = qobject_cast<QTextTable *>(it.currentFrame())) {
                lines << QStringLiteral("%1table %2x%3").arg(depth).arg(table->rows()).arg(table->columns());
                for (int row = 0; row < table->rows(); ++row) {
                    for (int column = 0; column < table->columns(); ++column) {
                        const QTextTableCell cell = table->cellAt(row, column);
                        if (cell.row() != row || cell.column() != column)
                            continue; // covered by a merged cell
                        lines << QStringLiteral("%1cell %2x%3").arg(depth).arg(cell.rowSpan()).arg(cell.columnSpan());
                        describeFrame(cell.begin(), depth + 1);
                    }
                }
            } else if (it.currentBlock().isValid()) {
                describeBlock(it.currentBlock(), depth);
            }
        }
    }

    void describeBlock(const QTextBlock &block, int depth)
    {
        const QTextBlockFormat f = block.blockFormat();
        QString list = QStringLiteral("-");
        if (const QTextList *textList = block.textList()) {
            if (!m_lists.contains(textList))
                m_lists.append(textList);
            const QTextListFormat lf = textList->format();
            list = QStringLiteral("%1:%2/%3/%4%5")
                       .arg(m_lists.indexOf(textList))
                       .arg(lf.style())
                       .arg(lf.indent())
                       .arg(lf.numberPrefix(), lf.numberSuffix());
        }
        lines << QStringLiteral("%1par align %2 margins %3 %4 %5 %6 %7 line %8/%9 list %10")
                     .arg(depth)
                     .arg(int(f.alignment() & Qt::AlignHorizontal_Mask))
                     .arg(f.leftMargin())
                     .arg(f.rightMargin())
                     .arg(f.textIndent())
                     .arg(f.topMargin())
                     .arg(f.bottomMargin())
                     .arg(f.lineHeightType())
                     .arg(f.lineHeightType() == 0 ? 0 : f.lineHeight())
                     .arg(list);
        if (block.length() == 1)
            lines << QStringLiteral("   mark %1").arg(pointSize(block.charFormat()));
        lines << QStringLiteral("   direction %1 break %2 start %3")
                     .arg(f.hasProperty(QTextFormat::LayoutDirection) ? int(f.layoutDirection()) : -1)
                     .arg(int(f.pageBreakPolicy()))
                     .arg(block.textList() ? block.textList()->format().intProperty(RichText::ListStartProperty) : -1);
        for (auto it = block.begin(); !it.atEnd(); ++it)
            describeFragment(it.fragment());
    }

    void describeFragment(const QTextFragment &fragment)
    {
        const QTextCharFormat f = fragment.charFormat();
        if (f.isImageFormat()) {
            const QTextImageFormat image = f.toImageFormat();
            const QByteArray raw = image.property(RichText::RawPictureProperty).toByteArray();
            const QVariant resource = m_document.resource(QTextDocument::ImageResource, QUrl(image.name()));
            QByteArray data = raw.isEmpty() ? resource.toByteArray() : raw;
            const QImage shown =
                resource.typeId() == QMetaType::QImage ? resource.value<QImage>() : QImage::fromData(data);
            if (data.isEmpty()) // held as a QImage: compare its pixels
                data = encoded(shown, "PNG");
            const double width = image.width() > 0 ? image.width() : shown.width();
            lines << QStringLiteral("   picture %1 width %2")
                         .arg(QString::fromLatin1(
                             QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex()))
                         .arg(width);
            return;
        }
        QStringList families = f.property(QTextFormat::FontFamilies).toStringList();
        lines << QStringLiteral("   \"%1\" %2 %3 w%4 i%5 u%6 s%7 c%12 v%8 fg %9 bg %10 link %11")
                     .arg(fragment.text(), families.value(0, m_document.defaultFont().family()))
                     .arg(pointSize(f))
                     .arg(f.fontWeight() >= QFont::DemiBold)
                     .arg(f.fontItalic())
                     .arg(f.fontUnderline())
                     .arg(f.fontStrikeOut())
                     .arg(f.verticalAlignment())
                     .arg(colorName(f.foreground()), colorName(f.background()),
                          f.isAnchor() ? f.anchorHref() : QStringLiteral("-"))
                     .arg(int(f.fontCapitalization()));
    }

    double pointSize(const QTextCharFormat &f) const
    {
        return f.fontPointSize() > 0 ? f.fontPointSize() : m_document.defaultFont().pointSizeF();
    }

    const QTextDocument &m_document;
    QList<const QTextList *> m_lists;
};

QStringList corpusFiles()
{
    const QDir folder(QFINDTESTDATA("../data/rtf"));
    return folder.entryList({QStringLiteral("*.rtf")}, QDir::Files, QDir::Name);
}

QByteArray readAndWrite(const QByteArray &rtf, QTextDocument &document)
{
    const RtfReadResult result = RtfReader::read(rtf, &document);
    if (!result.ok)
        qWarning("read failed: %s", qPrintable(result.error));
    return RtfWriter::write(document);
}

// Where two written files first differ, for a readable failure.
QString firstDifference(const QByteArray &first, const QByteArray &second)
{
    const QByteArrayList a = first.split('\n');
    const QByteArrayList b = second.split('\n');
    for (qsizetype i = 0; i < std::max(a.size(), b.size()); ++i) {
        if (a.value(i) != b.value(i))
            return QStringLiteral("line %1:\n  first:  %2\n  second: %3")
                .arg(i + 1)
                .arg(a.value(i), b.value(i));
    }
    return {};
}

} // namespace

class TestRtfRoundTrip : public QObject
{
    Q_OBJECT
private slots:
    void builtDocuments_data();
    void builtDocuments();
    void corpusWritesStably_data();
    void corpusWritesStably();
};

void TestRtfRoundTrip::builtDocuments_data()
{
    QTest::addColumn<Builder>("build");
    QTest::newRow("characters") << Builder(buildCharacters);
    QTest::newRow("text") << Builder(buildText);
    QTest::newRow("paragraphs") << Builder(buildParagraphs);
    QTest::newRow("lists") << Builder(buildLists);
    QTest::newRow("tables") << Builder(buildTables);
    QTest::newRow("pictures") << Builder(buildPictures);
    QTest::newRow("links") << Builder(buildLinks);
    QTest::newRow("saved only") << Builder(buildSavedOnly);
    QTest::newRow("merged cells") << Builder(buildMergedCells);
    QTest::newRow("empty") << Builder(buildEmpty);
}

// Written, read back and written again: the same document, and the same bytes.
void TestRtfRoundTrip::builtDocuments()
{
    QFETCH(Builder, build);
    QTextDocument original;
    original.setDefaultFont(QFont(QStringLiteral("Liberation Serif"), 12));
    QTextCursor cursor(&original);
    build(cursor);
    const QByteArray written = RtfWriter::write(original);
    QTextDocument readBack;
    const QByteArray again = readAndWrite(written, readBack);
    QCOMPARE(Description(readBack).lines, Description(original).lines);
    QVERIFY2(again == written, qPrintable(firstDifference(written, again)));
}

void TestRtfRoundTrip::corpusWritesStably_data()
{
    QTest::addColumn<QString>("path");
    const QString folder = QFINDTESTDATA("../data/rtf");
    const QStringList files = corpusFiles();
    QVERIFY2(!files.isEmpty(), "no RTF files in tests/data/rtf");
    for (const QString &name : files)
        QTest::newRow(qPrintable(name)) << folder + QLatin1Char('/') + name;
}

// A file of another program, once read, is written in a form that reads back to the same
// document: writing it a second time gives the same bytes.
void TestRtfRoundTrip::corpusWritesStably()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QTextDocument first;
    const QByteArray written = readAndWrite(file.readAll(), first);
    QTextDocument second;
    const QByteArray again = readAndWrite(written, second);
    QVERIFY2(again == written, qPrintable(firstDifference(written, again)));
}

QTEST_MAIN(TestRtfRoundTrip)
#include "test_rtf_round_trip.moc"
