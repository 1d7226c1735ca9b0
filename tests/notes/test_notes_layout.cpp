#include "notes/document_file.h"
#include "notes/note_document.h"
#include "notes/page_box.h"
#include "notes/rtf_document_builder.h"
#include "notes/rtf_writer.h"
#include "support/test_home.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QImage>
#include <QStackedWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextObjectInterface>
#include <QTextTable>

#include <functional>
#include <memory>

namespace {

// Stands in for the picture handler and counts how often a picture is sized: once per layout
// of its paragraph, and again whenever its line is drawn or the caret placed in it (the
// pictures of the tests below sit out of view and away from the caret).
class CountingPictureHandler : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)
public:
    int sized = 0;
    QSizeF intrinsicSize(QTextDocument *, int, const QTextFormat &) override
    {
        ++sized;
        return QSizeF(8, 8);
    }
    void drawObject(QPainter *, const QRectF &, QTextDocument *, int, const QTextFormat &) override {}
};

QByteArray pictureRtf()
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return "{\\pict\\pngblip\\picw4\\pich4 " + png.toHex() + "}";
}

QByteArray paragraphs(int count)
{
    QByteArray rtf;
    for (int i = 0; i < count; ++i)
        rtf += "\\pard Paragraph " + QByteArray::number(i) + " has a few words to wrap.\\par ";
    return rtf;
}

QByteArray table(int rows, const QByteArray &lastCell)
{
    QByteArray rtf;
    for (int row = 0; row < rows; ++row) {
        rtf += "\\trowd\\cellx2000\\cellx4000\\pard\\intbl Cell " + QByteArray::number(row) + "\\cell ";
        rtf += (row == rows - 1 ? lastCell : QByteArray("right")) + "\\cell\\row ";
    }
    return rtf;
}

// Tables nested `depth` deep, one cell each, as word processors write them: "level N" at the
// top of each cell, `extra` and then "deep" paragraphs in the deepest, "x" closing each inner
// cell, "y" the outer one.
QByteArray nestedTables(int depth, const QByteArray &extra = {})
{
    QByteArray rtf;
    for (int level = 1; level <= depth; ++level)
        rtf += "\\pard\\intbl\\itap" + QByteArray::number(level) + " level " + QByteArray::number(level) +
               "\\par ";
    rtf += "\\pard\\intbl\\itap" + QByteArray::number(depth) + " " + extra + "deep\\par ";
    for (int level = depth; level >= 2; --level)
        rtf += "\\pard\\intbl\\itap" + QByteArray::number(level) +
               " x\\nestcell{\\*\\nesttableprops\\trowd\\cellx1000\\cellx2000\\nestrow}{\\nonesttables\\par}";
    return rtf + "\\pard\\intbl\\itap1 y\\cell\\trowd\\cellx3000\\cellx6000\\row\\pard after\\par ";
}

QStringList nestedTexts(int depth)
{
    QStringList texts;
    for (int level = 1; level <= depth; ++level)
        texts << QStringLiteral("level %1").arg(level);
    texts << QStringLiteral("deep");
    for (int level = depth; level >= 2; --level)
        texts << QStringLiteral("x");
    return texts << QStringLiteral("y") << QStringLiteral("after");
}

QByteArray rtfOf(const QByteArray &body)
{
    return "{\\rtf1\\ansi " + body + "}";
}

QStringList blockTexts(const QTextDocument &document)
{
    QStringList texts;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (!block.text().isEmpty())
            texts << block.text();
    }
    return texts;
}

int tableDepth(const QTextFrame *frame)
{
    int deepest = 0;
    for (const QTextFrame *child : frame->childFrames())
        deepest = std::max(deepest, tableDepth(child));
    return deepest + (qobject_cast<const QTextTable *>(frame) ? 1 : 0);
}

// Sets up the counter on a document the moment it is handed to `page`, before the page does
// anything with it.
class AdoptionWatch : public QObject
{
public:
    AdoptionWatch(PageBox *page, CountingPictureHandler *handler) : m_page(page), m_handler(handler)
    {
        page->installEventFilter(this);
    }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() != QEvent::ChildAdded)
            return false;
        auto *document = qobject_cast<QTextDocument *>(static_cast<QChildEvent *>(event)->child());
        if (document && document != m_page->document()) {
            // A layout made at the default page size lays out at once; that is not the page's.
            document->setPageSize(QSizeF(0, 0));
            document->documentLayout()->registerHandler(QTextFormat::ImageObject, m_handler);
        }
        return false;
    }

private:
    PageBox *m_page;
    CountingPictureHandler *m_handler;
};

} // namespace

class TestNotesLayout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void openLaysOutOnce_data();
    void openLaysOutOnce();
    void deepTablesFlatten_data();
    void deepTablesFlatten();
    void runsSurviveRoundTrip_data();
    void runsSurviveRoundTrip();
    void longStretchWrapsAnywhere_data();
    void longStretchWrapsAnywhere();

private:
    QString write(const QByteArray &rtf);

    std::unique_ptr<TestHome> m_home;
    int m_files = 0;
};

void TestNotesLayout::initTestCase()
{
    m_home = std::make_unique<TestHome>();
    QVERIFY(m_home->isValid());
}

QString TestNotesLayout::write(const QByteArray &rtf)
{
    const QString path = m_home->filePath(QStringLiteral("note%1.rtf").arg(++m_files));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(rtf) != rtf.size())
        return QString();
    return path;
}

void TestNotesLayout::openLaysOutOnce_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<int>("zoom");
    const QByteArray picture = pictureRtf();
    QTest::newRow("paragraphs, picture last") << rtfOf(paragraphs(40) + "\\pard " + picture + "\\par") << 100;
    QTest::newRow("zoomed in before opening") << rtfOf(paragraphs(40) + "\\pard " + picture + "\\par") << 150;
    QTest::newRow("zoomed out before opening")
        << rtfOf(paragraphs(150) + "\\pard " + picture + "\\par") << 50;
    QTest::newRow("table first, picture in it") << rtfOf(table(60, picture) + "\\pard after\\par") << 100;
    QTest::newRow("nested tables, picture deepest")
        << rtfOf(paragraphs(40) + nestedTables(6, picture)) << 100;
}

// The editor loads a document into a page of its stack that is not in front yet, then brings
// it there. The picture's paragraph must be laid out as often as in one layout of the same
// document at the page's width, however the zoom stands.
void TestNotesLayout::openLaysOutOnce()
{
    QFETCH(QByteArray, rtf);
    QFETCH(int, zoom);
    const QString path = write(rtf);
    QVERIFY(!path.isEmpty());

    QStackedWidget stack;
    stack.addWidget(new QWidget);
    stack.resize(700, 500);
    stack.show();
    QVERIFY(QTest::qWaitForWindowExposed(&stack));
    auto *note = new NoteDocument(0, 1, QStringLiteral("RTF"));
    stack.addWidget(note);
    note->page()->setZoom(zoom);
    QCoreApplication::processEvents();

    CountingPictureHandler onPage;
    AdoptionWatch watch(note->page(), &onPage);
    QVERIFY(note->load(path).ok);
    stack.setCurrentWidget(note);
    QTest::qWait(50);
    note->page()->document()->documentLayout()->documentSize();
    QCoreApplication::processEvents();

    QTextDocument once;
    QVERIFY(DocumentFile::richFromBytes(rtf, &once).ok);
    once.setPageSize(QSizeF(0, 0));
    CountingPictureHandler alone;
    once.documentLayout()->registerHandler(QTextFormat::ImageObject, &alone);
    once.setPageSize(QSizeF(note->page()->viewport()->width(), -1));
    once.documentLayout()->documentSize();

    QVERIFY(alone.sized > 0);
    QCOMPARE(onPage.sized, alone.sized);
    QCOMPARE(note->page()->document()->pageSize().width(), qreal(note->page()->viewport()->width()));
}

void TestNotesLayout::deepTablesFlatten_data()
{
    QTest::addColumn<int>("depth");
    QTest::addColumn<int>("shownDepth");
    QTest::addColumn<bool>("warned");
    QTest::newRow("one table") << 1 << 1 << false;
    QTest::newRow("as deep as laid out")
        << RtfDocumentBuilder::kDeepestTable << RtfDocumentBuilder::kDeepestTable << false;
    QTest::newRow("one level deeper")
        << RtfDocumentBuilder::kDeepestTable + 1 << RtfDocumentBuilder::kDeepestTable << true;
    QTest::newRow("16 deep") << 16 << RtfDocumentBuilder::kDeepestTable << true;
}

// Tables deeper than the layout can afford become paragraphs of the cell around them: every
// text stays, in its order, and the user is told once.
void TestNotesLayout::deepTablesFlatten()
{
    QFETCH(int, depth);
    QFETCH(int, shownDepth);
    QFETCH(bool, warned);
    QTextDocument document;
    const DocumentFileResult result = DocumentFile::richFromBytes(rtfOf(nestedTables(depth)), &document);
    QVERIFY(result.ok);
    QCOMPARE(tableDepth(document.rootFrame()), shownDepth);
    QCOMPARE(blockTexts(document), nestedTexts(depth));
    const QStringList flattened = result.warnings.filter(QStringLiteral("flattened"));
    QCOMPARE(flattened.size(), warned ? 1 : 0);
    if (warned)
        QVERIFY(flattened.first().startsWith(
            QStringLiteral("Tables nested deeper than 8 levels were flattened")));
}

void TestNotesLayout::runsSurviveRoundTrip_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<int>("fragments");
    QByteArray colours = "{\\colortbl;\\red200\\green0\\blue0;\\red0\\green0\\blue200;}\\pard ";
    QByteArray glued = "\\pard ";
    QByteArray repeated = "\\pard ";
    for (int i = 0; i < 50000; ++i) {
        colours += "{\\cf" + QByteArray::number(1 + i % 2) + (i % 3 == 0 ? "\\b" : "") + " w" +
                   QByteArray::number(i % 10) + " }";
        glued += (i % 2 == 0 ? "{\\b a}" : "{\\i b}");
        repeated += "{\\b c}";
    }
    // Three formats in turn (colour and bold), so no neighbours share one.
    QTest::newRow("50,000 runs of words") << rtfOf(colours + "\\par") << 50000;
    QTest::newRow("50,000 runs in one word") << rtfOf(glued + "\\par") << 50000;
    QTest::newRow("equal neighbours are one run") << rtfOf(repeated + "\\par") << 1;
}

// A paragraph of many runs is built with one fragment per run, and what is written from it
// reads back to the same runs and is written the same again.
void TestNotesLayout::runsSurviveRoundTrip()
{
    QFETCH(QByteArray, rtf);
    QFETCH(int, fragments);
    QTextDocument read;
    QVERIFY(DocumentFile::richFromBytes(rtf, &read).ok);
    const QByteArray written = RtfWriter::write(read);
    QTextDocument again;
    QVERIFY(DocumentFile::richFromBytes(written, &again).ok);
    QCOMPARE(RtfWriter::write(again), written);

    QTextBlock first = read.begin();
    QTextBlock second = again.begin();
    QCOMPARE(second.text(), first.text());
    int count = 0;
    QTextBlock::iterator a = first.begin();
    QTextBlock::iterator b = second.begin();
    for (; !a.atEnd() && !b.atEnd(); ++a, ++b, ++count) {
        QCOMPARE(b.fragment().text(), a.fragment().text());
        QCOMPARE(b.fragment().charFormat().fontWeight(), a.fragment().charFormat().fontWeight());
        QCOMPARE(b.fragment().charFormat().fontItalic(), a.fragment().charFormat().fontItalic());
        QCOMPARE(b.fragment().charFormat().foreground(), a.fragment().charFormat().foreground());
    }
    QVERIFY(a.atEnd() && b.atEnd());
    QCOMPARE(count, fragments);
}

void TestNotesLayout::longStretchWrapsAnywhere_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("wrap");
    const QByteArray words = QByteArray("lorem ipsum ").repeated(5000);
    const QByteArray solid = QByteArray("loremipsum").repeated(3000);
    const int word = QTextOption::WrapAtWordBoundaryOrAnywhere;
    const int anywhere = QTextOption::WrapAnywhere;
    QTest::newRow("rich, 60,000 characters of words") << "RTF" << rtfOf("\\pard " + words + "\\par") << word;
    QTest::newRow("rich, 30,000 characters in one word")
        << "RTF" << rtfOf("\\pard " + solid + "\\par") << anywhere;
    QTest::newRow("rich, one word in a table cell")
        << "RTF" << rtfOf(table(1, solid) + "\\pard after\\par") << anywhere;
    QTest::newRow("plain, words") << "TXT" << words << word;
    QTest::newRow("plain, one word") << "TXT" << QByteArray("x ") + solid << anywhere;
}

// A stretch of text with nowhere to break a line makes the page wrap anywhere (Qt would look
// for a break to the end of the stretch for every line); the text itself is left alone.
void TestNotesLayout::longStretchWrapsAnywhere()
{
    QFETCH(QString, type);
    QFETCH(QByteArray, content);
    QFETCH(int, wrap);
    const QString path = write(content);
    NoteDocument note(0, 1, type);
    note.resize(600, 400);
    note.show();
    QVERIFY(note.load(path).ok);
    QCOMPARE(int(note.page()->wordWrapMode()), wrap);
    QCOMPARE(int(note.document()->defaultTextOption().wrapMode()), wrap);
    if (type == QLatin1String("TXT"))
        QCOMPARE(note.document()->toPlainText(), QString::fromLatin1(content));
    // The next document with ordinary text wraps at words again.
    QVERIFY(note.load(write(type == QLatin1String("TXT") ? QByteArray("short words")
                                                         : rtfOf("\\pard short\\par")))
                .ok);
    QCOMPARE(note.page()->wordWrapMode(), QTextOption::WrapAtWordBoundaryOrAnywhere);
}

QTEST_MAIN(TestNotesLayout)
#include "test_notes_layout.moc"
