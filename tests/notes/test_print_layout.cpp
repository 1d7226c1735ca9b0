#include "core/clock_source.h"
#include "core/settings_store.h"
#include "notes/print_layout.h"
#include "notes/print_paper.h"
#include "support/test_home.h"

#include <QBuffer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QUrl>

namespace {

// "Line 0001" to "Line <count>", one short paragraph each: how many fit on a page depends on
// the paper's height only.
void fillLines(QTextDocument &document, int count)
{
    QTextCursor cursor(&document);
    QTextCharFormat format;
    format.setFontPointSize(12);
    for (int i = 1; i <= count; ++i) {
        if (i > 1)
            cursor.insertBlock();
        cursor.insertText(QStringLiteral("Line %1").arg(i, 4, 10, QLatin1Char('0')), format);
    }
}

const PrintLayout::Context kContext{QStringLiteral("report.rtf"), QDateTime(QDate(2026, 11, 24), QTime(9, 5, 3)),
                                    QMarginsF(6.35, 6.35, 6.35, 6.35)};

int pagesFor(const QTextDocument &document, const PrintSettings &settings)
{
    PrintLayout layout;
    layout.layOut(document, settings, kContext);
    return layout.pageCount();
}

// The text of each page of a PDF, as pdftotext reads it back.
QStringList pdfPages(const QByteArray &pdf)
{
    const QString tool = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (tool.isEmpty()) {
        qWarning("pdftotext (poppler-utils) is needed to read the PDF back");
        return {};
    }
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("pages.pdf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size())
        return {};
    file.close();
    QProcess process;
    process.start(tool, {QStringLiteral("-layout"), file.fileName(), QStringLiteral("-")});
    process.waitForFinished(30000);
    QStringList pages = QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\f'));
    if (!pages.isEmpty() && pages.last().trimmed().isEmpty())
        pages.removeLast();
    return pages;
}

QStringList printedPages(const QTextDocument &document, const PrintSettings &settings)
{
    PrintLayout layout;
    layout.layOut(document, settings, kContext);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!layout.writePdf(buffer, QStringLiteral("test")))
        return {};
    return pdfPages(buffer.data());
}

QList<LaidOutLine> linesOf(const QList<std::pair<qreal, qreal>> &spans)
{
    QList<LaidOutLine> lines;
    for (int i = 0; i < spans.size(); ++i)
        lines.append({spans[i].first, spans[i].second, i * 10});
    return lines;
}

} // namespace

// Breaking documents into pages, the papers, and what a printed page carries.
class TestPrintLayout : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_home.isValid()); }

    void breakIntoPages_data();
    void breakIntoPages();
    void paperTable();
    void pageCountFollowsPaper();
    void everyLinePrintedOnce();
    void oversizedPictureFitsAndTextAfterItPrints();
    void headAndFootOnEveryPage_data();
    void headAndFootOnEveryPage();
    void decimalPoint_data();
    void decimalPoint();
    void settingsKeepTheirNames();

private:
    TestHome m_home;
};

void TestPrintLayout::breakIntoPages_data()
{
    QTest::addColumn<QList<LaidOutLine>>("lines");
    QTest::addColumn<qreal>("pageHeight");
    QTest::addColumn<QString>("expected"); // "top-bottom:first-next" per page

    // Ten lines of 10, the text being 100 characters (10 a line).
    QList<std::pair<qreal, qreal>> ten;
    for (int i = 0; i < 10; ++i)
        ten.append({i * 10.0, i * 10.0 + 10});
    QTest::newRow("whole lines per page") << linesOf(ten) << 35.0 << "0-30:0-30 30-60:30-60 60-90:60-90 90-125:90-100";
    QTest::newRow("exact fit") << linesOf(ten) << 50.0 << "0-50:0-50 50-100:50-100";
    QTest::newRow("everything on one page") << linesOf(ten) << 500.0 << "0-500:0-100";
    // The second line is taller than a page: its page adds nothing, is kept, and ends it.
    QTest::newRow("line taller than a page stops")
        << linesOf({{0, 10}, {10, 400}, {400, 410}}) << 100.0 << "0-10:0-10 10-110:10-10";
    // A table row of two cells with lines of one height: the break goes above the row's
    // second lines, in both cells.
    QTest::newRow("table row breaks between lines")
        << linesOf({{0, 10}, {10, 20}, {20, 30}, {30, 40}, {10, 20}, {20, 30}, {40, 50}}) << 25.0
        << "0-20:0-20 20-40:20-60 40-65:60-70";
    // Two cells whose lines overlap all the way up: a row taller than a page is cut through
    // the lines beside the break, rather than stopping.
    QTest::newRow("overlapping cells cut through")
        << linesOf({{0, 10}, {10, 20}, {20, 30}, {30, 40}, {40, 50}, {10, 22}, {22, 34}, {34, 46}, {50, 60}})
        << 25.0 << "0-10:0-10 10-30:10-30 30-50:30-80 50-75:80-90";
}

void TestPrintLayout::breakIntoPages()
{
    QFETCH(QList<LaidOutLine>, lines);
    QFETCH(qreal, pageHeight);
    QFETCH(QString, expected);
    const int textLength = int(lines.size()) * 10;
    QStringList pages;
    for (const PageSlice &page : BreakIntoPages(lines, pageHeight, textLength))
        pages << QStringLiteral("%1-%2:%3-%4").arg(page.top).arg(page.bottom).arg(page.firstChar).arg(page.nextChar);
    QCOMPARE(pages.join(QLatin1Char(' ')), expected);
}

void TestPrintLayout::paperTable()
{
    const QList<PaperChoice> &papers = PaperChoices();
    QCOMPARE(papers.size(), 38);
    QCOMPARE(QString::fromLatin1(papers.first().caption), QStringLiteral("A3, 297 X 420 mm"));
    QCOMPARE(QString::fromLatin1(papers[34].caption), QStringLiteral("Quarto, 215 X 275 mm "));
    QCOMPARE(QString::fromLatin1(papers.last().caption), QStringLiteral("User-defined"));
    // Codes are unique, so a stored code finds one paper.
    QSet<int> codes;
    for (const PaperChoice &paper : papers)
        codes.insert(paper.code);
    QCOMPARE(codes.size(), papers.size());

    QCOMPARE(PageSizeOfPaper(kPaperA4, {}).id(), QPageSize::A4);
    QCOMPARE(PageSizeOfPaper(1, {}).id(), QPageSize::Letter);
    QCOMPARE(PageSizeOfPaper(4242, {}).id(), QPageSize::A4);
    const QSizeF user = PageSizeOfPaper(kPaperUserDefined, QSizeF(100, 150)).size(QPageSize::Millimeter);
    QVERIFY(qAbs(user.width() - 100) < 0.5 && qAbs(user.height() - 150) < 0.5);
}

void TestPrintLayout::pageCountFollowsPaper()
{
    QTextDocument document;
    fillLines(document, 2000);
    PrintSettings a4;
    PrintSettings letter;
    letter.paperCode = 1;
    PrintSettings landscape;
    landscape.orientation = QPageLayout::Landscape;
    PrintSettings wide;
    for (double &margin : wide.marginCm)
        margin = 4.0;

    const int a4Pages = pagesFor(document, a4);
    QVERIFY2(a4Pages > 5, qPrintable(QString::number(a4Pages)));
    // Letter is 18 mm shorter than A4; short lines make the height all that counts.
    QVERIFY(pagesFor(document, letter) > a4Pages);
    QVERIFY(pagesFor(document, landscape) > pagesFor(document, letter));
    QVERIFY(pagesFor(document, wide) > a4Pages);

    // Without a head and foot the text has their room.
    PrintSettings bare;
    bare.title = bare.headLine = bare.date = bare.time = false;
    bare.footName = bare.footFileName = bare.footLine = bare.pageNumber = false;
    QVERIFY(pagesFor(document, bare) <= a4Pages);
    PrintLayout layout;
    layout.layOut(document, bare, kContext);
    QVERIFY(layout.headRect().isEmpty() && layout.footRect().isEmpty());
}

void TestPrintLayout::everyLinePrintedOnce()
{
    QTextDocument document;
    fillLines(document, 300);
    PrintSettings settings;
    settings.paperCode = 11; // A5: many page breaks
    const QStringList pages = printedPages(document, settings);
    QVERIFY(pages.size() > 3);
    // Each line is on exactly one page, in order: none cut in two, lost or shown twice at a break.
    const QRegularExpression line(QStringLiteral("Line (\\d{4})"));
    int expected = 1;
    for (const QString &page : pages) {
        for (auto it = line.globalMatch(page); it.hasNext();)
            QCOMPARE(it.next().captured(1).toInt(), expected++);
    }
    QCOMPARE(expected, 301);
}

void TestPrintLayout::oversizedPictureFitsAndTextAfterItPrints()
{
    QTextDocument document;
    QImage tall(400, 20000, QImage::Format_RGB32);
    tall.fill(Qt::darkGreen);
    document.addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("tall.png")), tall);
    QTextCursor cursor(&document);
    // Enough text before it that the picture, fitted to a page, needs a page of its own.
    for (int i = 0; i < 10; ++i) {
        cursor.insertText(QStringLiteral("Before the picture"));
        cursor.insertBlock();
    }
    QTextImageFormat picture;
    picture.setName(QStringLiteral("tall.png"));
    cursor.insertImage(picture);
    cursor.insertBlock();
    cursor.insertText(QStringLiteral("After the picture"));

    const QStringList pages = printedPages(document, PrintSettings());
    QCOMPARE(pages.size(), 2);
    QVERIFY(pages.first().contains(QStringLiteral("Before the picture")));
    QVERIFY(pages.last().contains(QStringLiteral("After the picture")));
    // The document itself keeps the picture's size.
    QVERIFY(!document.findBlockByNumber(10).begin().fragment().charFormat().toImageFormat().hasProperty(
        QTextFormat::ImageHeight));
}

void TestPrintLayout::headAndFootOnEveryPage_data()
{
    QTest::addColumn<bool>("on");
    QTest::newRow("all shown") << true;
    QTest::newRow("all switched off") << false;
}

void TestPrintLayout::headAndFootOnEveryPage()
{
    QFETCH(bool, on);
    QTextDocument document;
    fillLines(document, 200);
    PrintSettings settings;
    settings.title = settings.date = settings.time = settings.footName = settings.footFileName =
        settings.pageNumber = on;
    settings.printField1 = QStringLiteral("Ada Example");
    // What the page setup writes is not what printing reads.
    settings.pageTitle = QStringLiteral("Typed Title");

    const QStringList pages = printedPages(document, settings);
    QVERIFY(pages.size() >= 3);
    for (int i = 0; i < pages.size(); ++i) {
        const QString &page = pages[i];
        const QStringList expected = {QStringLiteral("Journal Report."), QStringLiteral("24/11/2026"),
                                      QStringLiteral("9:05:03"), QStringLiteral("Ada Example"),
                                      QStringLiteral("report.rtf"),
                                      QStringLiteral("Page %1 of %2").arg(i + 1).arg(pages.size())};
        for (const QString &text : expected)
            QVERIFY2(page.contains(text) == on, qPrintable(QStringLiteral("page %1: %2").arg(i + 1).arg(text)));
        QVERIFY(!page.contains(QStringLiteral("Typed Title")));
    }
}

void TestPrintLayout::decimalPoint_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("normalised");
    QTest::newRow("comma") << "2,5" << "2.5";
    QTest::newRow("full stop, blanks") << " 3.25 " << "3.25";
    QTest::newRow("leading comma") << ",5" << ".5";
    QTest::newRow("thousands left alone") << "1,000.5" << "1,000.5";
    QTest::newRow("not a number") << "two" << "two";
}

void TestPrintLayout::decimalPoint()
{
    QFETCH(QString, typed);
    QFETCH(QString, normalised);
    QCOMPARE(NormaliseDecimalPoint(typed), normalised);
}

void TestPrintLayout::settingsKeepTheirNames()
{
    const QString window = QLatin1String(kPrintWindowName);
    WriteDetail(window, QStringLiteral("Print Page Margin 1"), QStringLiteral("2,5"));
    WriteDetail(window, QStringLiteral("Print Page Margin 2"), QStringLiteral("-3"));
    WriteDetail(window, QStringLiteral("Print Text Title"), QStringLiteral("Read Title"));
    PrintSettings settings = PrintSettings::load();
    QCOMPARE(settings.marginCm[1], 2.5);
    QCOMPARE(settings.marginCm[2], 0.0);
    QCOMPARE(settings.printTitle, QStringLiteral("Read Title"));
    QCOMPARE(settings.pageTitle, QStringLiteral("Journal Report"));

    settings.pageTitle = QStringLiteral("Written Title");
    settings.save();
    QCOMPARE(ReadDetail(window, QStringLiteral("Print Page Text Title"), QString()), QStringLiteral("Written Title"));
    QCOMPARE(ReadDetail(window, QStringLiteral("Print Text Title"), QString()), QStringLiteral("Read Title"));
    QCOMPARE(ReadDetail(window, QStringLiteral("Print Page Margin 1"), QString()), QStringLiteral("2.5"));
    QCOMPARE(ReadDetail(window, QStringLiteral("Print Page Check Title"), QString()), QStringLiteral("1"));
}

QTEST_MAIN(TestPrintLayout)
#include "test_print_layout.moc"
