#include "notes/rich_text_properties.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QDir>
#include <QImage>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>

// Read (or build) -> write -> read -> write -> read: the second and third documents must be the
// same in everything listed in `Outline`, and the second and third files the same bytes. The
// first document may differ from the second where the file cannot say what it holds (a
// fractional pixel margin is rounded to a twip, a CJK run gains its East Asian font).
namespace {

constexpr int kGeneratedDocuments = 300;

QString colorName(const QBrush &brush)
{
    return brush.style() == Qt::NoBrush ? QStringLiteral("-") : brush.color().name(QColor::HexArgb);
}

// The compared properties of a document, one line per table, cell, paragraph and fragment:
// - tables: nesting depth, rows x columns, column width constraints, and each cell's position
//   and row and column span;
// - paragraphs: alignment, left, right, first-line, top and bottom margins, line height and its
//   kind, layout direction, page break policy, list (style, indent, number prefix and suffix,
//   first number, item number), and the point size of an empty paragraph's mark;
// - fragments: text, font families, point size, bold, italic, underline, strike-out,
//   capitalization, vertical alignment, text and background colours and link target;
//   pictures: a hash of their data and their shown width and height.
struct Outline
{
    const QTextDocument &document;
    QStringList lines;

    void addFrame(QTextFrame::iterator it, int depth)
    {
        while (!it.atEnd()) {
            const auto *table = qobject_cast<QTextTable *>(it.currentFrame());
            if (table)
                describeTable(table, depth);
            if (!table && it.currentBlock().isValid())
                describeBlock(it.currentBlock(), depth);
            ++it;
        }
    }

    void describeTable(const QTextTable *table, int depth)
    {
        QStringList widths;
        for (const QTextLength &length : table->format().columnWidthConstraints())
            widths << QStringLiteral("%1:%2").arg(length.type()).arg(length.rawValue());
        lines << QStringLiteral("%1table %2x%3 widths %4")
                     .arg(depth)
                     .arg(table->rows())
                     .arg(table->columns())
                     .arg(widths.join(u' '));
        for (int row = 0; row < table->rows(); ++row) {
            for (int column = 0; column < table->columns(); ++column) {
                const QTextTableCell cell = table->cellAt(row, column);
                if (cell.row() != row || cell.column() != column)
                    continue;
                lines << QStringLiteral("%1cell %2,%3 span %4x%5")
                             .arg(depth)
                             .arg(row)
                             .arg(column)
                             .arg(cell.rowSpan())
                             .arg(cell.columnSpan());
                addFrame(cell.begin(), depth + 1);
            }
        }
    }

    void describeBlock(const QTextBlock &block, int depth)
    {
        const QTextBlockFormat f = block.blockFormat();
        QString list = QStringLiteral("-");
        if (const QTextList *textList = block.textList()) {
            const QTextListFormat lf = textList->format();
            list = QStringLiteral("%1/%2 '%3' '%4' from %5 item %6")
                       .arg(lf.style())
                       .arg(lf.indent())
                       .arg(lf.numberPrefix(), lf.numberSuffix())
                       .arg(lf.intProperty(RichText::ListStartProperty))
                       .arg(textList->itemNumber(block));
        }
        QStringList lengths;
        for (const double length : {f.leftMargin(), f.rightMargin(), f.textIndent(), f.topMargin(), f.bottomMargin(),
                                    f.lineHeightType() == 0 ? 0.0 : f.lineHeight()})
            lengths << QString::number(length);
        const int direction = f.hasProperty(QTextFormat::LayoutDirection) ? int(f.layoutDirection()) : -1;
        lines << QStringLiteral("%1par align %2 lengths %3 line type %4 dir %5 break %6 list %7")
                     .arg(QString::number(depth), QString::number(int(f.alignment() & Qt::AlignHorizontal_Mask)),
                          lengths.join(u' '), QString::number(f.lineHeightType()), QString::number(direction),
                          QString::number(int(f.pageBreakPolicy())), list);
        if (block.length() == 1)
            lines << QStringLiteral("   mark %1").arg(block.charFormat().fontPointSize());
        for (auto it = block.begin(); !it.atEnd(); ++it)
            describeFragment(it.fragment());
    }

    void describeFragment(const QTextFragment &fragment)
    {
        const QTextCharFormat f = fragment.charFormat();
        if (f.isImageFormat()) {
            const QTextImageFormat image = f.toImageFormat();
            const QVariant resource = document.resource(QTextDocument::ImageResource, QUrl(image.name()));
            const QByteArray raw = image.property(RichText::RawPictureProperty).toByteArray();
            const QByteArray data = raw.isEmpty() ? resource.toByteArray() : raw;
            lines << QStringLiteral("   picture %1 %2x%3")
                         .arg(QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex()))
                         .arg(image.width())
                         .arg(image.height());
            return;
        }
        QString flags;
        for (const bool on : {f.fontWeight() >= QFont::DemiBold, f.fontItalic(), f.fontUnderline(), f.fontStrikeOut()})
            flags += on ? u'1' : u'0';
        lines << QStringLiteral("   \"%1\" [%2] %3pt bius %4 caps %5 valign %6 colours %7 link %8")
                     .arg(fragment.text(), f.fontFamilies().toStringList().join(u','), QString::number(f.fontPointSize()),
                          flags, QString::number(int(f.fontCapitalization())),
                          QString::number(int(f.verticalAlignment())),
                          colorName(f.foreground()) + u'/' + colorName(f.background()),
                          f.isAnchor() ? f.anchorHref() : QStringLiteral("-"));
    }
};

QStringList outline(const QTextDocument &document)
{
    Outline outline{document, {}};
    outline.addFrame(document.rootFrame()->begin(), 0);
    return outline.lines;
}

// Random documents with everything the editor can put in one.
class DocumentGenerator
{
public:
    explicit DocumentGenerator(quint32 seed) : m_random(seed) {}

    void build(QTextDocument &document)
    {
        QTextCursor cursor(&document);
        const int parts = 2 + pick(8);
        for (int i = 0; i < parts; ++i) {
            switch (pick(6)) {
            case 0: addList(cursor); break;
            case 1: addTable(cursor, 1); break;
            case 2: addPicture(cursor); break;
            default: addParagraph(cursor); break;
            }
        }
    }

private:
    int pick(int count) { return int(m_random.bounded(count)); }
    bool chance(int percent) { return pick(100) < percent; }

    QString words()
    {
        static const QStringList kWords = {
            QStringLiteral("plain"), QStringLiteral("Text"), QStringLiteral(u"caf\u00e9"),
            QStringLiteral(u"na\u00efve \u20ac"), QStringLiteral(u"\u0395\u03bb\u03bb\u03ac\u03b4\u03b1"),
            QStringLiteral(u"\u041c\u043e\u0441\u043a\u0432\u0430"), QStringLiteral(u"\u05e9\u05dc\u05d5\u05dd"),
            QStringLiteral(u"\u0645\u0631\u062d\u0628\u0627"), QStringLiteral(u"\u6f22\u5b57\u304b\u306a"),
            QStringLiteral(u"\ud55c\uad6d\uc5b4"), QStringLiteral(u"\u0939\u093f\u0928\u094d\u0926\u0940"),
            QStringLiteral(u"\U0001F600 smile"), QStringLiteral("{braces} and \\"), QStringLiteral("tab\there"),
            QStringLiteral(u"line\u2028break"), QStringLiteral(u"\u201cquoted\u201d"), QStringLiteral("x"),
        };
        QStringList chosen;
        const int count = 1 + pick(4);
        for (int i = 0; i < count; ++i)
            chosen << kWords[pick(int(kWords.size()))];
        return chosen.join(u' ');
    }

    QColor color()
    {
        static const QColor kColors[] = {Qt::red, Qt::blue, QColor(0, 128, 0), QColor(255, 255, 0),
                                         QColor(12, 34, 56), Qt::black};
        return kColors[pick(6)];
    }

    QTextCharFormat charFormat()
    {
        static const QStringList kFamilies = {QStringLiteral("Liberation Serif"), QStringLiteral("Liberation Sans"),
                                              QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans"),
                                              QStringLiteral(u"\u5b8b\u4f53"), QStringLiteral("Noto Sans CJK JP")};
        QTextCharFormat format;
        format.setFontFamilies({kFamilies[pick(int(kFamilies.size()))]});
        format.setFontPointSize(8 + pick(57) * 0.5);
        if (chance(30))
            format.setFontWeight(QFont::Bold);
        if (chance(30))
            format.setFontItalic(true);
        if (chance(20))
            format.setFontUnderline(true);
        if (chance(15))
            format.setFontStrikeOut(true);
        if (chance(15))
            format.setFontCapitalization(chance(50) ? QFont::AllUppercase : QFont::SmallCaps);
        if (chance(15))
            format.setVerticalAlignment(chance(50) ? QTextCharFormat::AlignSuperScript
                                                   : QTextCharFormat::AlignSubScript);
        if (chance(25))
            format.setForeground(color());
        if (chance(15))
            format.setBackground(color());
        if (chance(5)) {
            format.setAnchor(true);
            format.setAnchorHref(QStringLiteral("https://example.org/%1").arg(pick(5)));
        }
        return format;
    }

    QTextBlockFormat blockFormat()
    {
        static const Qt::Alignment kAlignments[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight,
                                                    Qt::AlignJustify};
        QTextBlockFormat format;
        format.setAlignment(kAlignments[pick(4)]);
        if (chance(30))
            format.setLeftMargin(pick(120));
        if (chance(20))
            format.setRightMargin(pick(60));
        if (chance(20))
            format.setTextIndent(pick(60) - 20);
        if (chance(30))
            format.setTopMargin(pick(30));
        if (chance(30))
            format.setBottomMargin(pick(30));
        switch (pick(6)) {
        case 0: format.setLineHeight(100 + pick(200), QTextBlockFormat::ProportionalHeight); break;
        case 1: format.setLineHeight(10 + pick(30), QTextBlockFormat::MinimumHeight); break;
        case 2: format.setLineHeight(10 + pick(30), QTextBlockFormat::FixedHeight); break;
        default: break;
        }
        if (chance(15))
            format.setLayoutDirection(chance(70) ? Qt::RightToLeft : Qt::LeftToRight);
        if (chance(8))
            format.setPageBreakPolicy(chance(50) ? QTextFormat::PageBreak_AlwaysBefore
                                                 : QTextFormat::PageBreak_AlwaysAfter);
        return format;
    }

    void addRuns(QTextCursor &cursor)
    {
        const int runs = pick(4);
        for (int i = 0; i < runs; ++i)
            cursor.insertText(words() + u' ', charFormat());
    }

    void addParagraph(QTextCursor &cursor)
    {
        cursor.insertBlock(blockFormat(), charFormat());
        addRuns(cursor);
    }

    QTextListFormat listFormat(int indent)
    {
        static const QTextListFormat::Style kStyles[] = {
            QTextListFormat::ListDisc,       QTextListFormat::ListCircle,     QTextListFormat::ListSquare,
            QTextListFormat::ListDecimal,    QTextListFormat::ListLowerAlpha, QTextListFormat::ListUpperAlpha,
            QTextListFormat::ListLowerRoman, QTextListFormat::ListUpperRoman};
        QTextListFormat format;
        format.setStyle(kStyles[pick(8)]);
        format.setIndent(indent);
        if (chance(20))
            format.setNumberSuffix(QStringLiteral(")"));
        if (chance(10))
            format.setNumberPrefix(QStringLiteral("("));
        if (chance(10))
            format.setProperty(RichText::ListStartProperty, 2 + pick(8));
        return format;
    }

    // Items of up to four levels, each level a QTextList of its own as the editor makes them.
    void addList(QTextCursor &cursor)
    {
        QList<QTextList *> levels;
        const int items = 1 + pick(6);
        for (int i = 0; i < items; ++i) {
            int level = levels.isEmpty() ? 0 : std::clamp(int(levels.size()) - 1 + pick(3) - 1, 0, 3);
            level = std::min(level, int(levels.size()));
            cursor.insertBlock(blockFormat(), charFormat());
            levels.resize(level + 1);
            if (levels[level])
                levels[level]->add(cursor.block());
            else
                levels[level] = cursor.createList(listFormat(level + 1));
            addRuns(cursor);
        }
    }

    void addTable(QTextCursor &cursor, int depth)
    {
        const int rows = 1 + pick(3);
        const int columns = 1 + pick(3);
        QTextTableFormat format;
        format.setCellPadding(2 + pick(8));
        if (chance(40)) {
            QList<QTextLength> widths;
            for (int c = 0; c < columns; ++c)
                widths << (chance(50) ? QTextLength(QTextLength::FixedLength, 40 + pick(200))
                                      : QTextLength(QTextLength::PercentageLength, 10 + pick(30)));
            format.setColumnWidthConstraints(widths);
        }
        QTextTable *table = cursor.insertTable(rows, columns, format);
        if (rows > 1 && chance(40))
            table->mergeCells(0, 0, 2, 1);
        if (columns > 1 && chance(40))
            table->mergeCells(rows - 1, columns - 2, 1, 2);
        for (int r = 0; r < rows; ++r) {
            for (int c = 0; c < columns; ++c) {
                const QTextTableCell cell = table->cellAt(r, c);
                if (cell.row() != r || cell.column() != c)
                    continue;
                QTextCursor inCell = cell.firstCursorPosition();
                inCell.insertText(words(), charFormat());
                if (depth < 3 && chance(15))
                    addTable(inCell, depth + 1);
                else if (chance(20))
                    addParagraph(inCell);
            }
        }
        cursor.movePosition(QTextCursor::End);
    }

    void addPicture(QTextCursor &cursor)
    {
        QImage image(2 + pick(6), 2 + pick(6), QImage::Format_RGB32);
        image.fill(color());
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        const QString name = QStringLiteral("%1:%2").arg(QLatin1String(RichText::kPictureScheme)).arg(++m_pictures);
        cursor.document()->addResource(QTextDocument::ImageResource, QUrl(name), png);
        QTextImageFormat format;
        format.setName(name);
        if (chance(50))
            format.setWidth(10 + pick(100));
        cursor.insertBlock(blockFormat());
        cursor.insertText(words(), charFormat());
        cursor.insertImage(format);
    }

    QRandomGenerator m_random;
    int m_pictures = 0;
};

// Where two outlines first differ, for a readable failure.
QString firstDifference(const QStringList &first, const QStringList &second)
{
    for (qsizetype i = 0; i < std::max(first.size(), second.size()); ++i) {
        if (first.value(i) != second.value(i))
            return QStringLiteral("line %1:\n  second: %2\n  third:  %3").arg(i + 1).arg(first.value(i), second.value(i));
    }
    return {};
}

// The document's characters without paragraph, cell and picture marks: what no round trip
// may change, however it lays them out.
QString characters(const QTextDocument &document)
{
    QString text = document.toRawText();
    text.removeIf([](QChar c) {
        return c == QChar::ParagraphSeparator || c == QChar::ObjectReplacementCharacter || c.unicode() == 0xFDD0
            || c.unicode() == 0xFDD1;
    });
    return text;
}

QStringList filesIn(const QString &folder)
{
    QStringList paths;
    const QDir dir(folder);
    for (const QString &name : dir.entryList({QStringLiteral("*.rtf")}, QDir::Files, QDir::Name))
        paths << dir.filePath(name);
    return paths;
}

} // namespace

class TestRtfRoundTripProperty : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void documentsSurviveRoundTrips();
    void writerCoversReaderWords_data();
    void writerCoversReaderWords();

private:
    // Writes, reads, writes and reads `first`, noting any difference between the last two.
    void checkRoundTrip(const QString &name, QTextDocument &first);

    QSet<QString> m_writtenWords;
    int m_documents = 0;
    QStringList m_failures;
};

void TestRtfRoundTripProperty::initTestCase()
{
    const QString data = QFINDTESTDATA("../data/rtf");
    QVERIFY(!data.isEmpty());
    QStringList files = filesIn(data) + filesIn(data + QStringLiteral("/faults"));
    QVERIFY(files.size() >= 40);
    for (const QString &path : files) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTextDocument document;
        QVERIFY(RtfReader::read(file.readAll(), &document).ok);
        checkRoundTrip(QFileInfo(path).fileName(), document);
    }
    for (int seed = 1; seed <= kGeneratedDocuments; ++seed) {
        QTextDocument document;
        DocumentGenerator(quint32(seed)).build(document);
        checkRoundTrip(QStringLiteral("generated %1").arg(seed), document);
    }
    qInfo("%d documents (%lld files, %d generated) round-tripped; the written files hold %lld distinct control words",
          m_documents, qlonglong(files.size()), kGeneratedDocuments, qlonglong(m_writtenWords.size()));
}

void TestRtfRoundTripProperty::checkRoundTrip(const QString &name, QTextDocument &first)
{
    ++m_documents;
    static const QRegularExpression controlWord(QStringLiteral("\\\\([a-z]+)"));
    const QByteArray written1 = RtfWriter::write(first);
    QTextDocument second;
    RtfReader::read(written1, &second);
    const QByteArray written2 = RtfWriter::write(second);
    QTextDocument third;
    RtfReader::read(written2, &third);
    // A backslash in the text is written doubled; it starts no control word.
    const QString withoutEscapes = QString::fromLatin1(written1 + written2).remove(QLatin1String("\\\\"));
    for (const QRegularExpressionMatch &match : controlWord.globalMatch(withoutEscapes))
        m_writtenWords.insert(match.captured(1));
    const QStringList outline2 = outline(second);
    const QStringList outline3 = outline(third);
    // Nothing of the text may be lost on the way, even where formats change.
    if (characters(first) != characters(second))
        m_failures << name + QStringLiteral(": the text changed on the first round trip: ")
                + firstDifference({characters(first)}, {characters(second)});
    else if (outline2 != outline3)
        m_failures << name + QStringLiteral(": ") + firstDifference(outline2, outline3);
    else if (RtfWriter::write(third) != written2)
        m_failures << name + QStringLiteral(": written again, the bytes differ");
}

void TestRtfRoundTripProperty::documentsSurviveRoundTrips()
{
    QVERIFY2(m_failures.isEmpty(), qPrintable(QStringLiteral("%1 of %2 documents changed:\n%3")
                                                  .arg(m_failures.size())
                                                  .arg(m_documents)
                                                  .arg(m_failures.mid(0, 5).join(u'\n'))));
}

// The control words the reader acts on, and whether the writer writes them: those it does not
// are other programs' ways of saying what the writer says with another word.
void TestRtfRoundTripProperty::writerCoversReaderWords_data()
{
    QTest::addColumn<bool>("written");
    const char *const kWritten[] = {
        "rtf", "ansicpg", "deff", "uc", "u", "fonttbl", "fcharset", "colortbl", "red", "green", "blue",
        "listtable", "list", "listid", "listlevel", "levelnfc", "leveltext", "levelstartat", "listoverridetable",
        "listoverride", "ls", "ilvl", "field", "fldinst", "fldrslt", "pict", "pard", "plain", "f", "af", "dbch",
        "loch", "fs", "b", "i", "ul", "strike", "caps", "scaps", "super", "sub", "cf", "highlight", "qc",
        "qr", "qj", "li", "ri", "fi", "sb", "sa", "sl", "slmult", "pagebb", "page", "rtlpar", "ltrpar", "intbl",
        "itap", "par", "line", "tab", "cell", "row", "nestcell", "nestrow", "nesttableprops", "nonesttables",
        "trowd", "trgaph", "cellx", "clvmgf", "clvmrg", "listtext",
    };
    const char *const kReadOnly[] = {
        "mac", "pc", "pca", "bin", "cpg", "v", "uld", "uldb", "ulw", "ulnone", "striked", "nosupersub", "up", "dn",
        "cb", "chcbpat", "hich", "ql", "qd", "lin", "rin", "clmgf", "clmrg", "emdash", "endash", "lquote", "rquote",
        "ldblquote", "rdblquote", "bullet", "emspace", "enspace", "qmspace", "zwj", "zwnj", "ltrmark", "rtlmark",
        "shppict", "nonshppict", "shp", "shpinst", "sp", "sn", "sv", "object", "result", "pn", "pnlvlblt",
        "pnlvlbody", "pnlvl", "pndec", "pnucltr", "pnlcltr", "pnucrm", "pnlcrm", "pnstart", "pntxta", "pntxtb",
        "uldash", "uldashd", "uldashdd", "ulhwave", "ulldash", "ulth", "ulthd", "ulthdash", "ulthdashd",
        "ulthdashdd", "ulthldash", "ululdbwave", "ulwave",
        // destinations whose text is not shown
        "info", "stylesheet", "header", "headerl", "headerr", "headerf", "footer", "footerl", "footerr", "footerf",
        "footnote", "annotation", "pntext", "shprslt", "shptxt", "ftnsep", "ftnsepc", "ftncn", "aftnsep",
        "aftnsepc", "aftncn", "pnseclvl", "txe", "xe", "tc", "filetbl", "revtbl", "upr", "comment", "author",
        "operator", "title", "subject", "keywords", "doccomm", "buptim", "creatim", "revtim", "printim",
        "template", "objdata", "objclass",
    };
    qInfo("the reader acts on %d control words; the writer writes %d of them",
          int(std::size(kWritten) + std::size(kReadOnly)), int(std::size(kWritten)));
    for (const char *word : kWritten)
        QTest::newRow(word) << true;
    for (const char *word : kReadOnly)
        QTest::newRow(word) << false;
}

void TestRtfRoundTripProperty::writerCoversReaderWords()
{
    QFETCH(bool, written);
    const QString word = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(m_writtenWords.contains(word), written);
}

QTEST_MAIN(TestRtfRoundTripProperty)
#include "test_rtf_round_trip_property.moc"
