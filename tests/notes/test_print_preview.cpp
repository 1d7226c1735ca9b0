#include "core/settings_store.h"
#include "notes/note_document.h"
#include "notes/notes_editor.h"
#include "notes/print_engine.h"
#include "notes/print_paper.h"
#include "notes/print_preview_window.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTabWidget>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>

#include <memory>

namespace {

void fillLines(QTextDocument &document, int count)
{
    QTextCursor cursor(&document);
    for (int i = 1; i <= count; ++i) {
        if (i > 1)
            cursor.insertBlock();
        cursor.insertText(QStringLiteral("Line %1").arg(i));
    }
}

// The first page's size in a PDF file, in points, as its media box gives it.
QSize pdfPageSize(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression box(
        QStringLiteral(R"(/MediaBox\s*\[\s*0\s+0\s+([\d.]+)\s+([\d.]+)\s*\])"));
    const QRegularExpressionMatch match = box.match(QString::fromLatin1(file.readAll()));
    return match.hasMatch()
               ? QSize(qRound(match.captured(1).toDouble()), qRound(match.captured(2).toDouble()))
               : QSize();
}

} // namespace

// The print engine as the preview drives it (the messages, zoom, turning pages, refreshing)
// and the preview window over it.
class TestPrintPreview : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void printingTellsWhatIsMissing_data();
    void printingTellsWhatIsMissing();
    void zoomStaysWithinBounds_data();
    void zoomStaysWithinBounds();
    void refreshKeepsThePageOfTheText();
    void pdfNotWrittenOverAFailure();
    void printingWithoutThePrintModule_data();
    void printingWithoutThePrintModule();
    void printedOnThePaperSetUp_data();
    void printedOnThePaperSetUp();
    void windowShowsTheSetupAsWritten();
    void typedMarginRelaysThePages();
    void editorOpensThePreview();

private:
    std::unique_ptr<TestHome> m_home;
    QList<int> m_messages;
    QStringList m_messageTexts;
};

void TestPrintPreview::init()
{
    m_home = std::make_unique<TestHome>();
    m_messages.clear();
    m_messageTexts.clear();
    SetMessageResponderForTesting([this](bool, int number, const QString &text) {
        m_messages.append(number);
        m_messageTexts.append(text);
        return int(AnswerCancel);
    });
    PrintEngine::setPrintersForTesting(QStringList());
}

void TestPrintPreview::cleanup()
{
    PrintEngine::setPrintersForTesting(std::nullopt);
    PrintEngine::setPrintModuleForTesting(QStringLiteral("vantora_print"));
    SetMessageResponderForTesting({});
    m_home.reset();
}

void TestPrintPreview::printingTellsWhatIsMissing_data()
{
    QTest::addColumn<QStringList>("printers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("message");
    QTest::newRow("no printer") << QStringList() << "Some text" << 5;
    QTest::newRow("no printer, empty document: the printer is asked first") << QStringList() << "" << 5;
    QTest::newRow("empty document") << QStringList{QStringLiteral("Office")} << "" << 6;
}

void TestPrintPreview::printingTellsWhatIsMissing()
{
    QFETCH(QStringList, printers);
    QFETCH(QString, text);
    QFETCH(int, message);
    PrintEngine::setPrintersForTesting(printers);
    QTextDocument document(text);
    PrintEngine engine;
    engine.PrintPreview(&document, QStringLiteral("a.rtf"));
    QCOMPARE(engine.PrinterAvailableCheck(), !printers.isEmpty());
    QVERIFY(!engine.PagesPrint(nullptr));
    QCOMPARE(m_messages, QList<int>{message});
}

void TestPrintPreview::zoomStaysWithinBounds_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expected");
    QTest::newRow("in to the next level") << 100 << "in" << 150;
    QTest::newRow("in from between levels") << 12 << "in" << 15;
    QTest::newRow("in at the top") << 200 << "in" << 200;
    QTest::newRow("out to the level below") << 50 << "out" << 45;
    QTest::newRow("out past the list to the bound") << 15 << "out" << 10;
    QTest::newRow("out at the bound") << 10 << "out" << 10;
    QTest::newRow("typed below the bound") << 50 << "5" << 10;
    QTest::newRow("typed above the bound") << 50 << "500" << 200;
    QTest::newRow("typed between levels") << 50 << "66" << 66;
}

void TestPrintPreview::zoomStaysWithinBounds()
{
    QFETCH(int, start);
    QFETCH(QString, action);
    QFETCH(int, expected);
    PrintEngine engine;
    engine.PageZoomSelected(start);
    if (action == QLatin1String("in"))
        engine.PageZoomIn();
    else if (action == QLatin1String("out"))
        engine.PageZoomOut();
    else
        engine.PageZoomSelected(action.toInt());
    QCOMPARE(engine.zoom(), expected);
    engine.saveSettings();
    QCOMPARE(ReadDetail(QStringLiteral("fnte_PRN"), QStringLiteral("Print Zoom"), QString()),
             QString::number(expected));
}

void TestPrintPreview::refreshKeepsThePageOfTheText()
{
    QTextDocument document;
    fillLines(document, 600);
    PrintEngine engine;
    engine.PrintPreview(&document, QStringLiteral("a.rtf"));
    QVERIFY(engine.pageCount() > 6);
    engine.PageSelect(5);
    const int shownFrom = engine.layout().pages()[5].firstChar;

    PrintSettings wider = engine.settings();
    for (double &margin : wider.marginCm)
        margin = 5.0;
    const int pagesBefore = engine.pageCount();
    engine.setSettings(wider);
    QSignalSpy turned(&engine, &PrintEngine::pageChanged);
    engine.ReviewRefresh();
    QVERIFY(engine.pageCount() > pagesBefore);
    const PageSlice &page = engine.layout().pages()[engine.currentPage()];
    QVERIFY(page.firstChar <= shownFrom && shownFrom < page.nextChar);
    QCOMPARE(turned.last().at(1).toInt(), engine.pageCount());
}

void TestPrintPreview::pdfNotWrittenOverAFailure()
{
    QTextDocument document(QStringLiteral("Some text"));
    PrintEngine engine;
    engine.PrintPreview(&document, QStringLiteral("a.rtf"));
    const QString target = m_home->filePath(QStringLiteral("out.pdf"));
    QVERIFY(engine.savePdf(target, nullptr));
    QFile written(target);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().startsWith("%PDF-"));
    QVERIFY(m_messages.isEmpty());

    // A folder in the way: the user hears why, and nothing is left behind.
    const QString blocked = m_home->filePath(QStringLiteral("folder.pdf"));
    QVERIFY(QDir().mkpath(blocked + QStringLiteral("/inside")));
    QVERIFY(!engine.savePdf(blocked, nullptr));
    QCOMPARE(m_messages, QList<int>{0});
    QCOMPARE(QDir(m_home->path()).entryList({QStringLiteral("*.tmp")}, QDir::Files), QStringList());

    QTextDocument empty;
    engine.PrintPreview(&empty, QStringLiteral("b.rtf"));
    QVERIFY(!engine.savePdf(m_home->filePath(QStringLiteral("empty.pdf")), nullptr));
    QCOMPARE(m_messages.last(), 6);
    QVERIFY(!QFile::exists(m_home->filePath(QStringLiteral("empty.pdf"))));
}

void TestPrintPreview::printingWithoutThePrintModule_data()
{
    QTest::addColumn<QString>("module");
    QTest::addColumn<QString>("action");
    QTest::addColumn<bool>("written");
    const QString missing = QStringLiteral("vantora_print_missing");
    QTest::newRow("print: told why") << missing << "print" << false;
    QTest::newRow("print to a file: told why") << missing << "print to a file" << false;
    QTest::newRow("save as PDF: needs no printer") << missing << "save as PDF" << true;
    QTest::newRow("print to a file through the module") << "vantora_print"
                                                        << "print to a file" << true;
}

void TestPrintPreview::printingWithoutThePrintModule()
{
    QFETCH(QString, module);
    QFETCH(QString, action);
    QFETCH(bool, written);
    PrintEngine::setPrintersForTesting(std::nullopt);
    PrintEngine::setPrintModuleForTesting(module);
    QTextDocument document(QStringLiteral("Some text"));
    PrintEngine engine;
    engine.PrintPreview(&document, QStringLiteral("a.rtf"));
    QCOMPARE(engine.pageCount(), 1);
    if (module != QLatin1String("vantora_print")) {
        // As without a printer: nothing listed, nothing chosen, the pages laid out all the same.
        QVERIFY(!engine.PrinterAvailableCheck());
        QVERIFY(engine.printers().isEmpty());
        QCOMPARE(engine.printerName(), QString());
    }

    const QString target = m_home->filePath(QStringLiteral("out.pdf"));
    bool done = false;
    if (action == QLatin1String("print"))
        done = engine.PagesPrint(nullptr);
    else if (action == QLatin1String("print to a file"))
        done = engine.printToFile(target, 0, nullptr);
    else
        done = engine.savePdf(target, nullptr);
    QCOMPARE(done, written);
    QFile file(target);
    QCOMPARE(file.open(QIODevice::ReadOnly) && file.readAll().startsWith("%PDF-"), written);
    if (written) {
        QVERIFY(m_messages.isEmpty());
    } else {
        QCOMPARE(m_messages, QList<int>{0});
        QVERIFY2(m_messageTexts.value(0).contains(module), qPrintable(m_messageTexts.value(0)));
    }
}

void TestPrintPreview::printedOnThePaperSetUp_data()
{
    QTest::addColumn<QString>("route");
    QTest::addColumn<int>("paper");
    QTest::addColumn<QPageLayout::Orientation>("orientation");
    QTest::addColumn<QSizeF>("userPaperCm");
    QTest::addColumn<QSize>("expectedPt");
    for (const char *route : {"saved as PDF", "printed"}) {
        const auto row = [route](const char *name, int paper,
                                 QPageLayout::Orientation orientation) -> QTestData & {
            return QTest::addRow("%s: %s", route, name) << QString::fromLatin1(route) << paper << orientation;
        };
        row("A4", kPaperA4, QPageLayout::Portrait) << QSizeF() << QSize(595, 842);
        row("A4 across", kPaperA4, QPageLayout::Landscape) << QSizeF() << QSize(842, 595);
        row("A5", 11, QPageLayout::Portrait) << QSizeF() << QSize(420, 595);
        row("11 X 17 across", 17, QPageLayout::Landscape) << QSizeF() << QSize(1224, 792);
        row("user-defined", kPaperUserDefined, QPageLayout::Portrait)
            << QSizeF(10.0, 15.0) << QSize(283, 425);
    }
}

void TestPrintPreview::printedOnThePaperSetUp()
{
    QFETCH(QString, route);
    QFETCH(int, paper);
    QFETCH(QPageLayout::Orientation, orientation);
    QFETCH(QSizeF, userPaperCm);
    QFETCH(QSize, expectedPt);
    QTextDocument document(QStringLiteral("Some text"));
    PrintEngine engine;
    PrintSettings settings = engine.settings();
    settings.paperCode = paper;
    settings.orientation = orientation;
    if (userPaperCm.isValid())
        settings.userPaperCm = userPaperCm;
    engine.setSettings(settings);
    engine.PrintPreview(&document, QStringLiteral("a.rtf"));
    const QString target = m_home->filePath(QStringLiteral("out.pdf"));
    const bool printed = route == QLatin1String("printed");
    QVERIFY(printed ? engine.printToFile(target, 0, nullptr) : engine.savePdf(target, nullptr));
    QCOMPARE(pdfPageSize(target), expectedPt);
}

void TestPrintPreview::windowShowsTheSetupAsWritten()
{
    QTextDocument document(QStringLiteral("Some text"));
    PrintEngine engine;
    PrintPreviewWindow window(&engine, &document, QStringLiteral("a.rtf"));
    auto *tabs = window.findChild<QTabWidget *>(QStringLiteral("tabSETUP"));
    QVERIFY(tabs);
    QStringList captions;
    for (int i = 0; i < tabs->count(); ++i)
        captions << tabs->tabText(i).replace(QStringLiteral("&&"), QStringLiteral("&"));
    QCOMPARE(captions, (QStringList{QStringLiteral("Page"), QStringLiteral("Mgns"), QStringLiteral("H&F")}));

    auto *paper = window.findChild<QComboBox *>(QStringLiteral("cboPAPER"));
    QCOMPARE(paper->count(), int(PaperChoices().size()));
    QCOMPARE(paper->itemText(34), QStringLiteral("Quarto, 215 X 275 mm "));
    QCOMPARE(paper->currentText(), QStringLiteral("A4, 210 X 297 mm"));
    auto *printer = window.findChild<QComboBox *>(QStringLiteral("cboPRINTER"));
    QVERIFY(!printer->isEnabled());

    PrintEngine::setPrintersForTesting(QStringList{QStringLiteral("Office"), QStringLiteral("Hall")});
    PrintPreviewWindow withPrinters(&engine, &document, QStringLiteral("a.rtf"));
    auto *list = withPrinters.findChild<QComboBox *>(QStringLiteral("cboPRINTER"));
    QCOMPARE(list->itemText(1), QStringLiteral("Hall On this computer"));

    // A zoom typed out of bounds shows the bound in use.
    auto *zoom = window.findChild<QComboBox *>(QStringLiteral("cboZOOM"));
    zoom->lineEdit()->setText(QStringLiteral("500"));
    emit zoom->lineEdit()->editingFinished();
    QCOMPARE(zoom->currentText(), QStringLiteral("200 %"));
}

void TestPrintPreview::typedMarginRelaysThePages()
{
    QTextDocument document;
    fillLines(document, 300);
    PrintEngine engine;
    PrintPreviewWindow window(&engine, &document, QStringLiteral("a.rtf"));
    window.show();
    const int pagesBefore = engine.pageCount();
    auto *lock = window.findChild<QWidget *>(QStringLiteral("chkLOCK"));
    QTest::mouseClick(lock, Qt::LeftButton, {}, QPoint(4, lock->height() / 2));
    auto *top = window.findChild<QLineEdit *>(QStringLiteral("txtMARGIN_1"));
    top->selectAll();
    QTest::keyClicks(top, QStringLiteral("6,5"));
    QTRY_VERIFY(engine.pageCount() > pagesBefore);
    QCOMPARE(engine.settings().marginCm[3], 6.5);
    QCOMPARE(window.findChild<QLineEdit *>(QStringLiteral("txtMARGIN_0"))->text(), QStringLiteral("6.5"));

    window.reject();
    QCOMPARE(ReadDetail(QStringLiteral("fnte_PRN"), QStringLiteral("Print Page Margin 2"), QString()),
             QStringLiteral("6.5"));
    QCOMPARE(ReadDetail(QStringLiteral("fnte_PRN"), QStringLiteral("Print Check Lock"), QString()),
             QStringLiteral("1"));
}

void TestPrintPreview::editorOpensThePreview()
{
    WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Spell Check Load on First"), QStringLiteral("0"));
    NotesEditor editor;
    editor.show();
    editor.activeDocument()->document()->setPlainText(QStringLiteral("Print me"));
    editor.DocumentPrint();
    auto *preview = editor.findChild<PrintPreviewWindow *>(QStringLiteral("fnte_PRN"));
    QVERIFY(preview);
    QVERIFY(preview->isVisible());
    QCOMPARE(PrintEngine::shared()->pageCount(), 1);
    preview->reject();
    // The engine lives on; the copy of the document does not.
    QCOMPARE(PrintEngine::shared()->pageCount(), 0);
}

QTEST_MAIN(TestPrintPreview)
#include "test_print_preview.moc"
