#include "notes/document_naming.h"
#include "notes/document_table.h"

#include <QColor>
#include <QTest>
#include <QTextCharFormat>
#include <QTextDocument>

#include <memory>
#include <vector>

class TestDocumentNaming : public QObject
{
    Q_OBJECT

private slots:
    void typeForPath_data();
    void typeForPath();
    void saveAsTarget_data();
    void saveAsTarget();
    void chosenFilter_data();
    void chosenFilter();
    void plainTextLoss_data();
    void plainTextLoss();
    void nameFilters_data();
    void nameFilters();
    void tableReusesLowestFreeSlot();
    void fullTableRefuses();
};

void TestDocumentNaming::typeForPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("type");
    QTest::newRow("rtf") << "/d/a.rtf" << "RTF";
    QTest::newRow("Rtf") << "/d/a.Rtf" << "RTF";
    QTest::newRow("RTF") << "C:\\d\\A.RTF" << "RTF";
    QTest::newRow("log") << "/d/a.log" << "TXT";
    QTest::newRow("rtf backup") << "/d/a.rtf.bak" << "TXT";
    QTest::newRow("folder named rtf") << "/d.rtf/a" << "TXT";
}

void TestDocumentNaming::typeForPath()
{
    QFETCH(QString, path);
    QFETCH(QString, type);
    QCOMPARE(DocumentTypeForPath(path), type);
}

void TestDocumentNaming::saveAsTarget_data()
{
    QTest::addColumn<QString>("chosen");
    QTest::addColumn<int>("filterIndex");
    QTest::addColumn<QString>("documentType");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("path");
    QTest::newRow("rich text gets .rtf") << "/d/a" << 1 << "TXT" << "RTF" << "/d/a.rtf";
    QTest::newRow("typed .rtf is not doubled") << "/d/shopping3.rtf" << 1 << "RTF" << "RTF" << "/d/shopping3.rtf";
    QTest::newRow("upper-case extension kept") << "/d/a.RTF" << 1 << "RTF" << "RTF" << "/d/a.RTF";
    QTest::newRow("rich text named .txt") << "/d/a.txt" << 1 << "RTF" << "RTF" << "/d/a.txt.rtf";
    QTest::newRow("dotted name") << "/d/v1.2" << 1 << "RTF" << "RTF" << "/d/v1.2.rtf";
    QTest::newRow("plain text gets .txt") << "/d/a" << 2 << "RTF" << "TXT" << "/d/a.txt";
    QTest::newRow("plain .TXT kept") << "/d/a.TXT" << 2 << "RTF" << "TXT" << "/d/a.TXT";
    QTest::newRow("plain text named .rtf") << "/d/a.rtf" << 2 << "RTF" << "TXT" << "/d/a.rtf.txt";
    QTest::newRow("no filter: .txt is plain") << "/d/a.txt" << 0 << "RTF" << "TXT" << "/d/a.txt";
    QTest::newRow("no filter: .Rtf is rich") << "/d/a.Rtf" << 0 << "TXT" << "RTF" << "/d/a.Rtf";
    QTest::newRow("no filter: rich document stays rich") << "/d/a" << 0 << "RTF" << "RTF" << "/d/a.rtf";
    QTest::newRow("no filter: plain document stays plain") << "/d/a.log" << 0 << "TXT" << "TXT" << "/d/a.log.txt";
}

void TestDocumentNaming::saveAsTarget()
{
    QFETCH(QString, chosen);
    QFETCH(int, filterIndex);
    QFETCH(QString, documentType);
    QFETCH(QString, type);
    QFETCH(QString, path);
    const SaveTarget target = SaveAsTarget(chosen, filterIndex, documentType);
    QCOMPARE(target.type, type);
    QCOMPARE(target.path, path);
}

// The filter a dialog reports, in the forms Qt's own dialog and platform dialogs use.
void TestDocumentNaming::chosenFilter_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<int>("index");
    QTest::newRow("rich, as given") << "Rich Text Paper (*.rtf) (*.rtf)" << 1;
    QTest::newRow("rich, details hidden") << "Rich Text Paper (*.rtf)" << 1;
    QTest::newRow("rich, details hidden with a trailing blank") << "Rich Text Paper (*.rtf) " << 1;
    QTest::newRow("rich, description alone") << "Rich Text Paper" << 1;
    QTest::newRow("rich, other case") << "RICH TEXT PAPER (*.RTF)" << 1;
    QTest::newRow("plain, as given") << "Plain Text Note (*.txt)" << 2;
    QTest::newRow("plain, details hidden") << "Plain Text Note" << 2;
    QTest::newRow("plain, padded") << "  Plain Text Note  " << 2;
    QTest::newRow("nothing reported") << "" << 0;
    QTest::newRow("pattern alone") << "*.rtf" << 0;
    QTest::newRow("a filter of another dialog") << "All files (*.*)" << 0;
}

void TestDocumentNaming::chosenFilter()
{
    QFETCH(QString, selected);
    QFETCH(int, index);
    QCOMPARE(ChosenFilterIndex(NameFiltersOf(QLatin1String(kSaveAsDialogFilter)), selected), index);
}

// What a plain-text save would lose, from documents built as the editor builds them.
void TestDocumentNaming::plainTextLoss_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("lost");
    QTest::newRow("text in the plain look") << "<p style=\"font-family:Tahoma; font-size:12pt\">milk, eggs</p>" << "";
    QTest::newRow("text with no look of its own") << "<p>milk</p><p>eggs</p>" << "";
    QTest::newRow("bold") << "<p>milk <b>eggs</b></p>" << "formatting";
    QTest::newRow("italic") << "<p><i>milk</i></p>" << "formatting";
    QTest::newRow("red text") << "<p><span style=\"color:#ff0000\">milk</span></p>" << "formatting";
    QTest::newRow("plain-look colour") << "<p><span style=\"color:#000000\">milk</span></p>" << "";
    QTest::newRow("another font") << "<p><span style=\"font-family:Courier\">milk</span></p>" << "formatting";
    QTest::newRow("same font in other case") << "<p><span style=\"font-family:tahoma\">milk</span></p>" << "";
    QTest::newRow("larger text") << "<p><span style=\"font-size:20pt\">milk</span></p>" << "formatting";
    QTest::newRow("raised") << "<p>x<sup>2</sup></p>" << "formatting";
    QTest::newRow("centred") << "<p align=\"center\">milk</p>" << "formatting";
    QTest::newRow("bullets") << "<ul><li>milk</li><li>eggs</li></ul>" << "lists";
    QTest::newRow("table") << "<table><tr><td>milk</td><td>2</td></tr></table>" << "tables";
    QTest::newRow("picture") << "<p>milk <img src=\"rtfpicture:1\"></p>" << "pictures";
    QTest::newRow("everything") << "<p><b>milk</b></p><ul><li>eggs</li></ul><table><tr><td>1</td></tr></table>"
                                   "<p><img src=\"rtfpicture:1\"></p>"
                                << "formatting, lists, tables and pictures";
}

void TestDocumentNaming::plainTextLoss()
{
    QFETCH(QString, html);
    QFETCH(QString, lost);
    QTextDocument document;
    document.setHtml(html);
    QTextCharFormat plainLook;
    plainLook.setFontFamilies(QStringList{QStringLiteral("Tahoma")});
    plainLook.setFontPointSize(12);
    plainLook.setForeground(QColor(Qt::black));
    const PlainTextLoss loss = PlainTextLossOf(document, plainLook);
    QCOMPARE(loss.describe(), lost);
    QCOMPARE(loss.any(), !lost.isEmpty());
}

void TestDocumentNaming::nameFilters_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QStringList>("nameFilters");
    QTest::newRow("open") << QString(kOpenDialogFilter)
                          << QStringList{"All Documents (*.rtf; *.txt) (*.rtf *.txt)", "Rich Text Paper (*.rtf) (*.rtf)",
                                         "Plain Text Note (*.txt) (*.txt)", "All files (*.*) (*.*)"};
    QTest::newRow("save as, last entry without pattern")
        << QString(kSaveAsDialogFilter) << QStringList{"Rich Text Paper (*.rtf) (*.rtf)", "Plain Text Note (*.txt)"};
    QTest::newRow("empty") << "" << QStringList();
}

void TestDocumentNaming::nameFilters()
{
    QFETCH(QString, filter);
    QFETCH(QStringList, nameFilters);
    QCOMPARE(NameFiltersOf(filter), nameFilters);
}

void TestDocumentNaming::tableReusesLowestFreeSlot()
{
    DocumentTable table;
    QObject a, b, c;
    auto d = std::make_unique<QObject>();
    QCOMPARE(table.takeSlot(&a), 0);
    QCOMPARE(table.takeSlot(&b), 1);
    QCOMPARE(table.takeSlot(d.get()), 2);
    table.release(1);
    QCOMPARE(table.at(1), nullptr);
    QCOMPARE(table.slotOf(&b), -1);
    d.reset(); // a window deleted without release frees its slot too
    QCOMPARE(table.count(), 1);
    QCOMPARE(table.takeSlot(&c), 1);
    QCOMPARE(table.takeSlot(&b), 2);
    QCOMPARE(table.slotOf(&c), 1);
    QCOMPARE(table.takeSlot(nullptr), -1);
}

void TestDocumentNaming::fullTableRefuses()
{
    DocumentTable table;
    std::vector<std::unique_ptr<QObject>> documents;
    for (int i = 0; i < DocumentTable::kSlotCount; ++i) {
        documents.push_back(std::make_unique<QObject>());
        QCOMPARE(table.takeSlot(documents.back().get()), i);
    }
    QObject extra;
    QCOMPARE(table.takeSlot(&extra), -1);
    QCOMPARE(table.count(), 301);
    QCOMPARE(table.at(300), documents.back().get());
    for (const int outOfRange : {301, -1}) {
        QVERIFY(!DocumentTable::isValidSlot(outOfRange));
        QCOMPARE(table.at(outOfRange), nullptr);
        table.release(outOfRange);
    }
    QCOMPARE(table.count(), 301);
    table.release(300);
    QCOMPARE(table.takeSlot(&extra), 300);
}

QTEST_MAIN(TestDocumentNaming)
#include "test_document_naming.moc"
