#include "notes/rich_text_properties.h"
#include "notes/rtf_writer.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

// Files the writer saves, opened by another word processor: LibreOffice converts them to HTML
// (all in one start, which takes most of the time), and the HTML shows what it understood.
namespace {

using Builder = void (*)(QTextCursor &);

QTextCharFormat font(const char *family)
{
    QTextCharFormat format;
    format.setFontFamilies({QString::fromLatin1(family)});
    format.setFontPointSize(12);
    return format;
}

void buildNestedList(QTextCursor &cursor)
{
    cursor.insertText(QStringLiteral("Before the list"), font("Liberation Sans"));
    const QTextListFormat::Style styles[] = {QTextListFormat::ListDisc, QTextListFormat::ListDecimal,
                                             QTextListFormat::ListLowerAlpha};
    QList<QTextList *> lists;
    for (int level = 0; level < 3; ++level) {
        cursor.insertBlock();
        QTextListFormat format;
        format.setStyle(styles[level]);
        format.setIndent(level + 1);
        lists << cursor.createList(format);
        cursor.insertText(QStringLiteral("Level %1 item").arg(level + 1));
    }
    cursor.insertBlock();
    lists.first()->add(cursor.block());
    cursor.insertText(QStringLiteral("Back at level 1"));
}

void buildNestedTable(QTextCursor &cursor)
{
    cursor.insertText(QStringLiteral("Table follows"));
    QTextTableFormat format;
    format.setBorder(1);
    QTextTable *outer = cursor.insertTable(2, 2, format);
    QTextCursor first = outer->cellAt(0, 0).firstCursorPosition();
    first.insertText(QStringLiteral("Outer A"));
    QTextTable *inner = first.insertTable(1, 2, format);
    inner->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("Inner left"));
    inner->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("Inner right"));
    outer->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("Outer B"));
    outer->cellAt(1, 0).firstCursorPosition().insertText(QStringLiteral("Outer C"));
    outer->cellAt(1, 1).firstCursorPosition().insertText(QStringLiteral("Outer D"));
}

void buildPicture(QTextCursor &cursor)
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(QColor(200, 30, 30));
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    const QString name = QStringLiteral("%1:1").arg(QLatin1String(RichText::kPictureScheme));
    cursor.document()->addResource(QTextDocument::ImageResource, QUrl(name), png);
    cursor.insertText(QStringLiteral("A picture: "));
    QTextImageFormat format;
    format.setName(name);
    cursor.insertImage(format);
}

void buildCjkAndColour(QTextCursor &cursor)
{
    cursor.insertText(QStringLiteral(u"Chinese \u6f22\u5b57\u6587\u672c and Japanese \u3072\u3089\u304c\u306a"),
                      font("Liberation Serif"));
    cursor.insertBlock();
    QTextCharFormat bold = font("Liberation Serif");
    bold.setFontWeight(QFont::Bold);
    bold.setForeground(QColor(255, 0, 0));
    cursor.insertText(QStringLiteral("Bold red words"), bold);
}

void buildLayout(QTextCursor &cursor)
{
    const std::pair<QFont::Capitalization, const char *> runs[] = {{QFont::SmallCaps, "Small capitals"},
                                                                   {QFont::AllUppercase, " all capitals"}};
    for (const auto &[capitalization, text] : runs) {
        QTextCharFormat format = font("Liberation Sans");
        format.setFontCapitalization(capitalization);
        cursor.insertText(QString::fromLatin1(text), format);
    }
    QTextBlockFormat block;
    block.setLayoutDirection(Qt::RightToLeft);
    block.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    cursor.insertBlock(block);
    cursor.insertText(QStringLiteral(u"\u05e9\u05dc\u05d5\u05dd on a new page"));
    cursor.insertBlock(QTextBlockFormat());
    QTextCharFormat song;
    song.setFontFamilies({QStringLiteral(u"\u5b8b\u4f53")}); // a font named in Chinese
    cursor.insertText(QStringLiteral(u"\u5b8b\u4f53\u5b57"), song);
    QTextTable *table = cursor.insertTable(3, 2);
    table->mergeCells(0, 0, 2, 1);
    table->mergeCells(2, 0, 1, 2);
    table->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("Two rows"));
    table->cellAt(2, 0).firstCursorPosition().insertText(QStringLiteral("Two columns"));
}

struct Sample
{
    const char *name;
    Builder build;
};

const Sample kSamples[] = {
    {"nested-list", buildNestedList},
    {"nested-table", buildNestedTable},
    {"picture", buildPicture},
    {"cjk-bold-colour", buildCjkAndColour},
    {"layout", buildLayout},
};

// What an HTML page holds, read with a small tag scanner: the text with blanks collapsed,
// the list nesting at each text, the tables (rows and columns, and the width given to each
// table and to the cell around it), and the number of pictures.
struct HtmlPage
{
    struct Table
    {
        int depth = 0;
        int rows = 0;
        int columns = 0;
        int width = 0;
        int enclosingCellWidth = 0; // 0 for a table outside tables
    };

    QString text;
    QList<QPair<QString, int>> listDepths; // each text run and the lists around it
    QList<QPair<QString, QString>> faces;  // each text run and the innermost font face around it
    QList<Table> tables;
    int pictures = 0;
    QStringList colours;
    QStringList tags;
    int boldRuns = 0;

    QString faceOf(const QString &phrase) const
    {
        for (const auto &[runText, face] : faces) {
            if (runText.contains(phrase))
                return face;
        }
        return QStringLiteral("(text not found)");
    }

    int listDepthOf(const QString &phrase) const
    {
        for (const auto &[runText, depth] : listDepths) {
            if (runText.contains(phrase))
                return depth;
        }
        return -1;
    }
};

int attributeNumber(const QString &tag, const char *name)
{
    const QRegularExpression pattern(QStringLiteral("%1=\"?(\\d+)").arg(QLatin1String(name)));
    return pattern.match(tag).captured(1).toInt();
}

HtmlPage readHtml(const QString &html)
{
    HtmlPage page;
    struct OpenTable
    {
        int index;
        int cellsInRow = 0;
        int cellWidth = 0;
    };
    QList<OpenTable> open;
    int listDepth = 0;
    QStringList fontStack; // the face of each open <font>, empty where it names none
    static const QRegularExpression token(QStringLiteral("<([^>]*)>|([^<]+)"));
    const qsizetype bodyStart = html.indexOf(QLatin1String("<body"));
    for (const QRegularExpressionMatch &match : token.globalMatch(html.mid(std::max<qsizetype>(0, bodyStart)))) {
        const QString tag = match.captured(1);
        if (tag.isNull()) {
            const QString text = match.captured(2).simplified();
            if (!text.isEmpty()) {
                page.text += text + u' ';
                page.listDepths.append({text, listDepth});
                const auto face = std::find_if(fontStack.crbegin(), fontStack.crend(),
                                               [](const QString &name) { return !name.isEmpty(); });
                page.faces.append({text, face == fontStack.crend() ? QString() : *face});
            }
            continue;
        }
        const QString name = tag.section(u' ', 0, 0).toLower();
        page.tags << tag;
        if (name == u"ul" || name == u"ol")
            ++listDepth;
        else if (name == u"/ul" || name == u"/ol")
            --listDepth;
        else if (name == u"img")
            ++page.pictures;
        else if (name == u"b")
            ++page.boldRuns;
        else if (name == u"font") {
            const QRegularExpression face(QStringLiteral("face=\"([^\"]*)\"")), color(QStringLiteral("color=\"([^\"]*)\""));
            fontStack << face.match(tag).captured(1);
            page.colours << color.match(tag).captured(1);
        } else if (name == u"/font") {
            if (!fontStack.isEmpty())
                fontStack.removeLast();
        } else if (name == u"table") {
            HtmlPage::Table table;
            table.depth = int(open.size());
            table.width = attributeNumber(tag, "width");
            table.enclosingCellWidth = open.isEmpty() ? 0 : open.last().cellWidth;
            page.tables.append(table);
            open.append(OpenTable{int(page.tables.size() - 1)});
        } else if (name == u"/table" && !open.isEmpty()) {
            open.removeLast();
        } else if (name == u"tr" && !open.isEmpty()) {
            ++page.tables[open.last().index].rows;
            open.last().cellsInRow = 0;
        } else if (name == u"td" && !open.isEmpty()) {
            HtmlPage::Table &table = page.tables[open.last().index];
            table.columns = std::max(table.columns, ++open.last().cellsInRow);
            open.last().cellWidth = attributeNumber(tag, "width");
        }
    }
    page.text.replace(QLatin1String("&amp;"), QLatin1String("&"));
    return page;
}

} // namespace

class TestRtfReadByLibreOffice : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void page_data();
    void page();

private:
    QTemporaryDir m_folder{QDir::tempPath() + QStringLiteral("/rtf-lo-XXXXXX")};
    QHash<QString, HtmlPage> m_pages;
};

void TestRtfReadByLibreOffice::initTestCase()
{
    const QString soffice = QStandardPaths::findExecutable(QStringLiteral("soffice"));
    if (soffice.isEmpty())
        QSKIP("soffice (LibreOffice) is not installed: packaging/install-build-deps.sh installs it");
    QVERIFY(m_folder.isValid());
    m_folder.setAutoRemove(qEnvironmentVariableIsEmpty("VANTORA_KEEP_TEST_FILES"));
    QStringList files;
    for (const Sample &sample : kSamples) {
        QTextDocument document;
        document.setDefaultFont(QFont(QStringLiteral("Liberation Serif"), 12));
        QTextCursor cursor(&document);
        sample.build(cursor);
        QFile file(m_folder.filePath(QLatin1String(sample.name) + QStringLiteral(".rtf")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write(RtfWriter::write(document)) > 0);
        files << file.fileName();
    }
    // A profile and home folder of its own: nothing of the user's LibreOffice is read or changed.
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), m_folder.path());
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    const QString out = m_folder.filePath(QStringLiteral("html"));
    process.start(soffice, QStringList{QStringLiteral("-env:UserInstallation=") +
                                           QUrl::fromLocalFile(m_folder.filePath(QStringLiteral("profile"))).toString(),
                                       QStringLiteral("--headless"), QStringLiteral("--convert-to"),
                                       QStringLiteral("html"), QStringLiteral("--outdir"), out} +
                                files);
    QVERIFY2(process.waitForFinished(150000), "LibreOffice did not finish converting within 150 s");
    const QByteArray log = process.readAll();
    QVERIFY2(process.exitCode() == 0, log.constData());
    for (const Sample &sample : kSamples) {
        QFile html(out + u'/' + QLatin1String(sample.name) + QStringLiteral(".html"));
        QVERIFY2(html.open(QIODevice::ReadOnly), qPrintable(html.fileName() + u'\n' + QString::fromLocal8Bit(log)));
        m_pages.insert(QLatin1String(sample.name), readHtml(QString::fromUtf8(html.readAll())));
    }
}

void TestRtfReadByLibreOffice::page_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("check");
    QTest::addColumn<QString>("expected");

    QTest::newRow("list text") << "nested-list" << "contains" << "Level 3 item";
    QTest::newRow("level 1 depth") << "nested-list" << "list depth:Level 1 item" << "1";
    QTest::newRow("level 2 depth") << "nested-list" << "list depth:Level 2 item" << "2";
    QTest::newRow("level 3 depth") << "nested-list" << "list depth:Level 3 item" << "3";
    QTest::newRow("back at level 1") << "nested-list" << "list depth:Back at level 1" << "1";
    QTest::newRow("not a list") << "nested-list" << "list depth:Before the list" << "0";
    QTest::newRow("table text") << "nested-table" << "contains" << "Inner right";
    QTest::newRow("tables") << "nested-table" << "tables" << "0:2x2 1:1x2";
    QTest::newRow("inner table fits its cell") << "nested-table" << "nested fits" << "yes";
    QTest::newRow("picture shown") << "picture" << "pictures" << "1";
    QTest::newRow("picture text") << "picture" << "contains" << "A picture:";
    QTest::newRow("cjk text") << "cjk-bold-colour" << "contains" << QString::fromUtf16(u"\u6f22\u5b57\u6587\u672c");
    QTest::newRow("kana") << "cjk-bold-colour" << "contains" << QString::fromUtf16(u"\u3072\u3089\u304c\u306a");
    QTest::newRow("east asian font") << "cjk-bold-colour" << QString::fromUtf16(u"face of:\u6f22\u5b57")
                                     << "Noto Sans CJK SC";
    QTest::newRow("font named in Chinese") << "layout" << QString::fromUtf16(u"face of:\u5b8b\u4f53\u5b57")
                                           << QString::fromUtf16(u"\u5b8b\u4f53");
    QTest::newRow("latin font kept") << "cjk-bold-colour" << "face of:Chinese" << "Liberation Serif, serif";
    QTest::newRow("bold") << "cjk-bold-colour" << "bold runs" << "1";
    QTest::newRow("red") << "cjk-bold-colour" << "colour" << "#ff0000";
    QTest::newRow("small caps") << "layout" << "tag with:small-caps" << "yes";
    QTest::newRow("all caps") << "layout" << "tag with:uppercase" << "yes";
    QTest::newRow("right to left") << "layout" << "tag with:dir=\"rtl\"" << "yes";
    QTest::newRow("page break") << "layout" << "tag with:page-break-before: always" << "yes";
    QTest::newRow("rows merged") << "layout" << "tag with:rowspan=\"2\"" << "yes";
    QTest::newRow("columns merged") << "layout" << "tag with:colspan=\"2\"" << "yes";
}

void TestRtfReadByLibreOffice::page()
{
    QFETCH(QString, file);
    QFETCH(QString, check);
    QFETCH(QString, expected);
    const HtmlPage page = m_pages.value(file);
    QString found;
    if (check == u"contains") {
        found = page.text.contains(expected) ? expected : page.text;
    } else if (check.startsWith(u"list depth:")) {
        found = QString::number(page.listDepthOf(check.section(u':', 1)));
    } else if (check == u"tables") {
        QStringList shapes;
        for (const HtmlPage::Table &table : page.tables)
            shapes << QStringLiteral("%1:%2x%3").arg(table.depth).arg(table.rows).arg(table.columns);
        found = shapes.join(u' ');
    } else if (check == u"nested fits") {
        found = QStringLiteral("yes");
        for (const HtmlPage::Table &table : page.tables) {
            // HTML widths are whole pixels, each rounded on its own.
            if (table.enclosingCellWidth > 0 && table.width > table.enclosingCellWidth + 1)
                found = QStringLiteral("no: a table %1 wide in a cell %2 wide").arg(table.width).arg(table.enclosingCellWidth);
        }
    } else if (check.startsWith(u"face of:")) {
        found = page.faceOf(check.section(u':', 1));
    } else if (check.startsWith(u"tag with:")) {
        const QString part = check.section(u':', 1);
        found = std::any_of(page.tags.begin(), page.tags.end(), [&](const QString &tag) { return tag.contains(part); })
            ? QStringLiteral("yes")
            : QStringLiteral("no");
    } else if (check == u"pictures") {
        found = QString::number(page.pictures);
    } else if (check == u"bold runs") {
        found = QString::number(std::min(page.boldRuns, 1));
    } else if (check == u"colour") {
        found = page.colours.contains(expected, Qt::CaseInsensitive) ? expected : page.colours.join(u',');
    }
    qInfo("%s.rtf: %s -> %s", qPrintable(file), qPrintable(check), qPrintable(found));
    QCOMPARE(found, expected);
}

QTEST_MAIN(TestRtfReadByLibreOffice)
#include "test_rtf_read_by_libreoffice.moc"
