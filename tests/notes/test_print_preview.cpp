#include "core/settings_store.h"
#include "notes/note_document.h"
#include "notes/notes_editor.h"
#include "notes/print_engine.h"
#include "notes/print_paper.h"
#include "notes/print_preview_window.h"
#include "themes/message_box.h"
#include "support/test_home.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
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
    void windowShowsTheSetupAsWritten();
    void typedMarginRelaysThePages();
    void editorOpensThePreview();

private:
    std::unique_ptr<TestHome> m_home;
    QList<int> m_messages;
};

void TestPrintPreview::init()
{
    m_home = std::make_unique<TestHome>();
    m_messages.clear();
    SetMessageResponderForTesting([this](bool, int number, const QString &) {
        m_messages.append(number);
        return int(AnswerCancel);
    });
    PrintEngine::setPrintersForTesting(QStringList());
}

void TestPrintPreview::cleanup()
{
    PrintEngine::setPrintersForTesting(std::nullopt);
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
