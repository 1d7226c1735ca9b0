#include "notes/print_engine.h"
#include "notes/print_page_view.h"
#include "notes/print_paper.h"
#include "notes/print_preview_window.h"
#include "notes/rtf_reader.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QAbstractTextDocumentLayout>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QStandardPaths>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <cmath>
#include <memory>

namespace {

// Document lengths are pixels of a 96 dpi page; paper is measured in points.
constexpr qreal kPointsPerPixel = 72.0 / 96.0;
constexpr qreal kMarginCm = 2.0;
constexpr qreal kMarginPt = kMarginCm / 2.54 * 72.0;
constexpr qreal kA4WidthPt = 210.0 / 25.4 * 72.0;
constexpr qreal kTextWidthPt = kA4WidthPt - 2 * kMarginPt;
// How far a printed word may be from where the page puts it.
constexpr qreal kTolerancePt = 2.0;
// How far apart the preview and the printed page may draw the same thing, in their pixels.
constexpr int kTolerancePx = 2;

const QColor kPictureColour(170, 210, 250);
const QColor kShiftedPictureColour(190, 240, 190);
constexpr int kPictureWidth = 192; // 2 in
constexpr int kPictureHeight = 96;

QTextCharFormat bodyText()
{
    QTextCharFormat format;
    format.setFontPointSize(12);
    return format;
}

void addParagraph(QTextCursor &cursor, const QString &text, const QTextBlockFormat &format)
{
    if (cursor.position() == 0)
        cursor.setBlockFormat(format);
    else
        cursor.insertBlock(format, bodyText());
    cursor.insertText(text, bodyText());
}

QTextBlockFormat indented(qreal left, qreal firstLine = 0, qreal right = 0)
{
    QTextBlockFormat format;
    format.setLeftMargin(left);
    format.setTextIndent(firstLine);
    format.setRightMargin(right);
    return format;
}

void addPicture(QTextDocument &document, QTextCursor &cursor, const QString &name, const QColor &colour,
                const QString &after, qreal indent)
{
    QImage picture(kPictureWidth, kPictureHeight, QImage::Format_RGB32);
    picture.fill(colour);
    document.addResource(QTextDocument::ImageResource, QUrl(name), picture);
    cursor.insertBlock(indented(indent), bodyText());
    QTextImageFormat image;
    image.setName(name);
    cursor.insertImage(image);
    cursor.insertText(after, bodyText());
}

// A paragraph as another word processor writes it: indented an inch (1440 twips).
void addRtfParagraph(QTextCursor &cursor)
{
    QTextDocument read;
    const QByteArray rtf =
        "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Arial;}}\\pard\\li1440\\fs24 Hrtf read from a file\\par}";
    QVERIFY(RtfReader::read(rtf, &read).ok);
    QCOMPARE(read.begin().blockFormat().leftMargin(), 96.0);
    const QTextBlock paragraph = read.begin();
    cursor.insertBlock(paragraph.blockFormat(), paragraph.charFormat());
    for (auto it = paragraph.begin(); !it.atEnd(); ++it)
        cursor.insertText(it.fragment().text(), it.fragment().charFormat());
}

// Each probe word starts a paragraph (or a cell, or follows a picture), all on the first page.
// Words with "fi" or "fl" are avoided: the PDF holds them as one ligature.
void buildSample(QTextDocument &document)
{
    QTextCursor cursor(&document);
    addParagraph(cursor, QStringLiteral("Hzero starts at the margin"), indented(0));
    addParagraph(cursor, QStringLiteral("Hhalf is indented half an inch"), indented(48));
    addParagraph(cursor, QStringLiteral("Honehalf is indented an inch and a half"), indented(144));
    addParagraph(cursor, QStringLiteral("Hstart has a first line indent under a left indent"),
                 indented(48, 48));
    QTextBlockFormat right = indented(0, 0, 72);
    right.setAlignment(Qt::AlignRight);
    addParagraph(cursor, QStringLiteral("Flush right three quarters in Hrightend"), right);
    addRtfParagraph(cursor);
    QTextBlockFormat above;
    above.setBottomMargin(24);
    addParagraph(cursor, QStringLiteral("Habove has room after it"), above);
    QTextBlockFormat below;
    below.setTopMargin(48);
    addParagraph(cursor, QStringLiteral("Hbelow has room before it"), below);
    addPicture(document, cursor, QStringLiteral("probe.png"), kPictureColour, QStringLiteral("Hpicture"), 0);
    addPicture(document, cursor, QStringLiteral("shifted.png"), kShiftedPictureColour,
               QStringLiteral("Hshifted"), 96);

    cursor.insertBlock(QTextBlockFormat(), bodyText());
    QTextTableFormat table;
    table.setColumnWidthConstraints(
        {QTextLength(QTextLength::FixedLength, 144), QTextLength(QTextLength::FixedLength, 192)});
    table.setCellPadding(8);
    table.setCellSpacing(4);
    table.setBorder(3);
    table.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
    // Light, so that only the text counts as ink in the pictures of the pages.
    table.setBorderBrush(QColor(200, 200, 200));
    QTextTable *cells = cursor.insertTable(1, 2, table);
    cells->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("Hcellone"), bodyText());
    cells->cellAt(0, 1).firstCursorPosition().insertText(QStringLiteral("Hcelltwo"), bodyText());
}

// Where the page view lays a word out: the editor's page at actual size (no paint device of
// its own, the screen's resolution), in pixels from the top left of the text.
QRectF onScreen(const QTextDocument &document, const QString &word)
{
    std::unique_ptr<QTextDocument> screen(document.clone());
    screen->setDocumentMargin(0);
    screen->setTextWidth(kTextWidthPt / kPointsPerPixel);
    screen->documentLayout()->documentSize(); // lays the whole document out
    const QTextCursor found = screen->find(word);
    if (found.isNull())
        return QRectF();
    const QTextBlock block = found.block();
    const int start = found.selectionStart() - block.position();
    const int end = found.selectionEnd() - block.position();
    const QTextLine line = block.layout()->lineForTextPosition(start);
    const QPointF origin = screen->documentLayout()->blockBoundingRect(block).topLeft();
    return QRectF(origin.x() + line.cursorToX(start), origin.y() + line.y(),
                  line.cursorToX(end) - line.cursorToX(start), line.height());
}

QString toolOrEmpty(const char *name)
{
    return QStandardPaths::findExecutable(QString::fromLatin1(name));
}

// The words of page `page` (1 for the first) of a PDF with their boxes in points, as pdftotext
// reads them.
QHash<QString, QRectF> wordsOf(const QString &pdf, int page = 1)
{
    QProcess process;
    const QString number = QString::number(page);
    process.start(toolOrEmpty("pdftotext"), {QStringLiteral("-bbox"), QStringLiteral("-f"), number,
                                             QStringLiteral("-l"), number, pdf, QStringLiteral("-")});
    process.waitForFinished(30000);
    static const QRegularExpression word(QStringLiteral(
        "<word xMin=\"([\\d.]+)\" yMin=\"([\\d.]+)\" xMax=\"([\\d.]+)\" yMax=\"([\\d.]+)\">([^<]*)</word>"));
    QHash<QString, QRectF> words;
    const QString xhtml = QString::fromUtf8(process.readAllStandardOutput());
    for (auto it = word.globalMatch(xhtml); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (!words.contains(match.captured(5)))
            words.insert(match.captured(5),
                         QRectF(QPointF(match.captured(1).toDouble(), match.captured(2).toDouble()),
                                QPointF(match.captured(3).toDouble(), match.captured(4).toDouble())));
    }
    return words;
}

// The first page of a PDF as a picture of `dpi` dots per inch.
QImage rasterOf(const QString &pdf, int dpi)
{
    const QString stem = pdf + QStringLiteral(".raster");
    QProcess::execute(toolOrEmpty("pdftoppm"),
                      {QStringLiteral("-png"), QStringLiteral("-r"), QString::number(dpi),
                       QStringLiteral("-singlefile"), QStringLiteral("-f"), QStringLiteral("1"),
                       QStringLiteral("-l"), QStringLiteral("1"), pdf, stem});
    return QImage(stem + QStringLiteral(".png")).convertToFormat(QImage::Format_RGB32);
}

// The leftmost dark pixel in rows `top` to `bottom` from column `from` on; -1 when none.
int firstInk(const QImage &image, int top, int bottom, int from)
{
    for (int x = std::max(0, from); x < image.width(); ++x) {
        for (int y = std::max(0, top); y <= std::min(bottom, image.height() - 1); ++y) {
            if (qGray(image.pixel(x, y)) < 128)
                return x;
        }
    }
    return -1;
}

// The rectangle a picture of one colour covers (within a little, for smoothing at its edges):
// found from a pixel inside it out to its edges. Empty when there is none.
QRect areaOf(const QImage &image, const QColor &colour)
{
    const auto inside = [&](int x, int y) {
        if (!image.rect().contains(x, y))
            return false;
        const QColor pixel = image.pixelColor(x, y);
        return std::abs(pixel.red() - colour.red()) + std::abs(pixel.green() - colour.green()) +
                   std::abs(pixel.blue() - colour.blue()) <
               12;
    };
    constexpr int kStep = 4; // pictures are far larger
    for (int y = 0; y < image.height(); y += kStep) {
        for (int x = 0; x < image.width(); x += kStep) {
            if (!inside(x, y))
                continue;
            QRect area(x, y, 1, 1);
            while (inside(area.left() - 1, y))
                area.setLeft(area.left() - 1);
            while (inside(area.right() + 1, y))
                area.setRight(area.right() + 1);
            while (inside(x, area.top() - 1))
                area.setTop(area.top() - 1);
            while (inside(x, area.bottom() + 1))
                area.setBottom(area.bottom() + 1);
            return area;
        }
    }
    return QRect();
}

QString describe(const QRect &area)
{
    return QStringLiteral("%1,%2 %3x%4").arg(area.x()).arg(area.y()).arg(area.width()).arg(area.height());
}

} // namespace

// What the page view shows is what prints: indents, spacing, tables and pictures at the size
// they have on the page, in the PDF, on a printer and in the preview.
class TestPrintPositions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void printedWhereThePageShowsIt_data();
    void printedWhereThePageShowsIt();
    void previewShowsWhatPrints_data();
    void previewShowsWhatPrints();
    void pagesFillDownToTheBottomMargin_data();
    void pagesFillDownToTheBottomMargin();

private:
    // The PDF written by `route`, made once.
    QString printedBy(const QString &route);

    std::unique_ptr<TestHome> m_home;
    QTextDocument m_document;
    std::unique_ptr<PrintEngine> m_engine;
    QHash<QString, QString> m_pdfs;
};

void TestPrintPositions::initTestCase()
{
    if (toolOrEmpty("pdftotext").isEmpty() || toolOrEmpty("pdftoppm").isEmpty())
        QSKIP("pdftotext and pdftoppm (poppler-utils) are needed to read the printed pages back");
    if (qRound(QGuiApplication::primaryScreen()->logicalDotsPerInchY()) != 96)
        QSKIP("the sizes are checked on a 96 dpi screen, where the page view shows a pixel as 1/96 in");
    m_home = std::make_unique<TestHome>();
    // No printer: the PDF and a printer writing to a file need none.
    PrintEngine::setPrintersForTesting(QStringList());
    SetMessageResponderForTesting([](bool, int number, const QString &) {
        qWarning("unexpected message %d", number);
        return int(AnswerCancel);
    });
    buildSample(m_document);
    PrintSettings settings;
    for (double &margin : settings.marginCm)
        margin = kMarginCm;
    settings.title = settings.headLine = settings.date = settings.time = false;
    settings.footName = settings.footFileName = settings.footLine = settings.pageNumber = false;
    m_engine = std::make_unique<PrintEngine>();
    m_engine->setSettings(settings);
    m_engine->PageZoomSelected(100);
    m_engine->PrintPreview(&m_document, QStringLiteral("positions.rtf"));
    QCOMPARE(m_engine->pageCount(), 1);
}

void TestPrintPositions::cleanupTestCase()
{
    m_engine.reset();
    PrintEngine::setPrintersForTesting(std::nullopt);
    SetMessageResponderForTesting({});
}

QString TestPrintPositions::printedBy(const QString &route)
{
    if (m_pdfs.contains(route))
        return m_pdfs.value(route);
    const QString path =
        m_home->filePath(QString(route).replace(QLatin1Char(' '), QLatin1Char('-')) + ".pdf");
    bool written = false;
    if (route == QLatin1String("saved as PDF")) {
        written = m_engine->savePdf(path, nullptr);
    } else {
        const int dotsPerInch = route == QLatin1String("printer at 300 dpi") ? 300 : 0;
        written = m_engine->printToFile(path, dotsPerInch, nullptr);
    }
    if (!written || !QFile::exists(path))
        return QString();
    m_pdfs.insert(route, path);
    return path;
}

void TestPrintPositions::printedWhereThePageShowsIt_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<QString>("word");
    // "left": where the word starts, from the left edge of the text; "right": where it ends,
    // from the right edge; "below <word>": how far below that word it starts.
    QTest::addColumn<QString>("measure");
    // Where the document's own measures put it, in points; NaN: where the page view puts it.
    QTest::addColumn<qreal>("expectedPt");

    const qreal asOnScreen = qQNaN();
    for (const char *route : {"saved as PDF", "printer", "printer at 300 dpi"}) {
        const auto row = [route](const char *name) -> QTestData & {
            return QTest::addRow("%s: %s", route, name) << QString::fromLatin1(route);
        };
        row("no indent") << "Hzero"
                         << "left" << 0.0;
        row("half an inch") << "Hhalf"
                            << "left" << 36.0;
        row("an inch and a half") << "Honehalf"
                                  << "left" << 108.0;
        row("first line indent") << "Hstart"
                                 << "left" << 72.0;
        row("right indent") << "Hrightend"
                            << "right" << -54.0;
        row("an inch read from RTF") << "Hrtf"
                                     << "left" << 72.0;
        row("spacing before and after") << "Hbelow"
                                        << "below Habove" << asOnScreen;
        row("after a picture") << "Hpicture"
                               << "left" << 144.0;
        row("after a picture, indented") << "Hshifted"
                                         << "left" << 216.0;
        row("first table cell") << "Hcellone"
                                << "left" << asOnScreen;
        row("second table cell") << "Hcelltwo"
                                 << "left" << asOnScreen;
    }
}

void TestPrintPositions::printedWhereThePageShowsIt()
{
    QFETCH(QString, route);
    QFETCH(QString, word);
    QFETCH(QString, measure);
    QFETCH(qreal, expectedPt);
    const QString pdf = printedBy(route);
    QVERIFY2(!pdf.isEmpty(), "the pages were not printed");
    const QHash<QString, QRectF> words = wordsOf(pdf);
    QVERIFY2(words.contains(word), qPrintable(QStringList(words.keys()).join(QLatin1Char(' '))));
    const QRectF printed = words.value(word);
    const QRectF screen = onScreen(m_document, word);

    qreal actual = 0;
    if (measure == QLatin1String("left")) {
        actual = printed.left() - kMarginPt;
        if (std::isnan(expectedPt))
            expectedPt = screen.left() * kPointsPerPixel;
    } else if (measure == QLatin1String("right")) {
        actual = printed.right() - (kMarginPt + kTextWidthPt);
        if (std::isnan(expectedPt))
            expectedPt = screen.right() * kPointsPerPixel - kTextWidthPt;
    } else {
        const QString above = measure.section(QLatin1Char(' '), 1);
        QVERIFY(words.contains(above));
        actual = printed.top() - words.value(above).top();
        expectedPt = (screen.top() - onScreen(m_document, above).top()) * kPointsPerPixel;
    }
    QVERIFY2(
        std::abs(actual - expectedPt) <= kTolerancePt,
        qPrintable(
            QStringLiteral("%1 printed %2 pt, the page shows %3 pt").arg(word).arg(actual).arg(expectedPt)));
}

void TestPrintPositions::previewShowsWhatPrints_data()
{
    QTest::addColumn<QString>("word");
    QTest::addColumn<QColor>("picture"); // a picture's colour: its area is compared instead
    for (const char *word : {"Hzero", "Hhalf", "Honehalf", "Hstart", "Hrtf", "Hcellone", "Hcelltwo"})
        QTest::newRow(word) << word << QColor();
    QTest::newRow("picture") << "Hpicture" << kPictureColour;
    QTest::newRow("indented picture") << "Hshifted" << kShiftedPictureColour;
}

void TestPrintPositions::previewShowsWhatPrints()
{
    QFETCH(QString, word);
    QFETCH(QColor, picture);
    PrintPreviewWindow window(m_engine.get(), &m_document, QStringLiteral("positions.rtf"));
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *view = window.findChild<PrintPageView *>();
    QVERIFY(view);
    QCOMPARE(m_engine->zoom(), 100);
    // The page in the preview, and the printed page drawn at the preview's resolution.
    const QImage shown = view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRect page = m_engine->PageReposition(view->size(), view->dotsPerMm());
    const int dpi = view->logicalDpiX();
    const QString pdf = printedBy(QStringLiteral("saved as PDF"));
    QVERIFY(!pdf.isEmpty());
    const QImage printed = rasterOf(pdf, dpi);
    QCOMPARE(printed.size(), page.size());
    const QImage preview = shown.copy(page);

    if (picture.isValid()) {
        const QRect inPreview = areaOf(preview, picture);
        const QRect onPaper = areaOf(printed, picture);
        QVERIFY(!onPaper.isEmpty());
        QVERIFY2(
            (inPreview.topLeft() - onPaper.topLeft()).manhattanLength() <= kTolerancePx &&
                std::abs(inPreview.width() - onPaper.width()) <= kTolerancePx &&
                std::abs(inPreview.height() - onPaper.height()) <= kTolerancePx,
            qPrintable(QStringLiteral("preview %1, paper %2").arg(describe(inPreview), describe(onPaper))));
        // Printed at its size on the page: 2 in by 1 in.
        QVERIFY(std::abs(onPaper.width() - 2 * dpi) <= kTolerancePx);
        QVERIFY(std::abs(onPaper.height() - dpi) <= kTolerancePx);
        return;
    }
    // The word's row, and the first ink from a little before where the PDF says it starts.
    const QRectF box = wordsOf(pdf).value(word);
    QVERIFY(!box.isEmpty());
    const qreal dotsPerPoint = dpi / 72.0;
    const int top = qRound(box.top() * dotsPerPoint) + 1;
    const int bottom = qRound(box.bottom() * dotsPerPoint) - 1;
    const int from = qRound((box.left() - 6) * dotsPerPoint);
    const int onPaper = firstInk(printed, top, bottom, from);
    const int inPreview = firstInk(preview, top, bottom, from);
    QVERIFY(onPaper >= 0);
    QVERIFY2(std::abs(inPreview - onPaper) <= kTolerancePx,
             qPrintable(QStringLiteral("preview x %1 px, paper x %2 px").arg(inPreview).arg(onPaper)));
}

void TestPrintPositions::pagesFillDownToTheBottomMargin_data()
{
    QTest::addColumn<int>("paperCode");
    QTest::addColumn<double>("marginCm");
    QTest::addColumn<qreal>("points");
    QTest::newRow("A4, 2 cm, 12 pt") << 9 << 2.0 << 12.0;
    QTest::newRow("A5, 1 cm, 10 pt") << 11 << 1.0 << 10.0;
    QTest::newRow("Letter, 3 cm, 20 pt") << 1 << 3.0 << 20.0;
}

void TestPrintPositions::pagesFillDownToTheBottomMargin()
{
    QFETCH(int, paperCode);
    QFETCH(double, marginCm);
    QFETCH(qreal, points);
    QTextDocument document;
    QTextCursor cursor(&document);
    QTextCharFormat format;
    format.setFontPointSize(points);
    for (int i = 1; i <= 200; ++i) {
        if (i > 1)
            cursor.insertBlock();
        cursor.insertText(QStringLiteral("Row%1").arg(i, 4, 10, QLatin1Char('0')), format);
    }
    PrintSettings settings;
    settings.paperCode = paperCode;
    for (double &margin : settings.marginCm)
        margin = marginCm;
    PrintLayout layout;
    layout.layOut(document, settings, {QStringLiteral("rows.rtf"), QDateTime(), QMarginsF()});
    QVERIFY(layout.pageCount() > 2);
    const QString pdf =
        m_home->filePath(QStringLiteral("rows-%1.pdf").arg(QTest::currentDataTag()).replace(' ', '-'));
    QFile file(pdf);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(layout.writePdf(file, QStringLiteral("rows")));
    file.close();

    // The lines of the first page: the last ends above the bottom margin (and its foot), and
    // one more would not have fitted.
    const QHash<QString, QRectF> words = wordsOf(pdf);
    QList<QRectF> rows;
    for (auto it = words.begin(); it != words.end(); ++it) {
        if (it.key().startsWith(QLatin1String("Row")))
            rows.append(it.value());
    }
    std::sort(rows.begin(), rows.end(), [](const QRectF &a, const QRectF &b) { return a.top() < b.top(); });
    QVERIFY(rows.size() > 5);
    const qreal pitch = (rows.last().top() - rows.first().top()) / (rows.size() - 1);
    const qreal textBottom = layout.textRect().bottom() / PrintLayout::kDotsPerInch * 72.0;
    const qreal paperHeight = PageSizeOfPaper(paperCode, {}).size(QPageSize::Point).height();
    QVERIFY(textBottom < paperHeight - marginCm / 2.54 * 72.0);
    const qreal lastBottom = rows.first().bottom() + pitch * (rows.size() - 1);
    QVERIFY2(lastBottom <= textBottom + kTolerancePt && lastBottom + pitch > textBottom - kTolerancePt,
             qPrintable(QStringLiteral("%1 rows of %2 pt end at %3 pt, the text at %4 pt")
                            .arg(rows.size())
                            .arg(pitch)
                            .arg(lastBottom)
                            .arg(textBottom)));
    // And the next page goes on with the next line.
    const QString next = QStringLiteral("Row%1").arg(rows.size() + 1, 4, 10, QLatin1Char('0'));
    QVERIFY(wordsOf(pdf, 2).contains(next));
}

QTEST_MAIN(TestPrintPositions)
#include "test_print_positions.moc"
