#include "notes/document_naming.h"
#include "notes/document_table.h"

#include <QTest>

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
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("path");
    QTest::newRow("rich text gets .rtf") << "/d/a" << 1 << "RTF" << "/d/a.rtf";
    QTest::newRow("upper-case extension kept") << "/d/a.RTF" << 1 << "RTF" << "/d/a.RTF";
    QTest::newRow("plain text gets .txt") << "/d/a" << 2 << "TXT" << "/d/a.txt";
    QTest::newRow("plain text named .rtf") << "/d/a.rtf" << 2 << "TXT" << "/d/a.rtf.txt";
    QTest::newRow("no filter index is plain") << "/d/a" << 0 << "TXT" << "/d/a.txt";
}

void TestDocumentNaming::saveAsTarget()
{
    QFETCH(QString, chosen);
    QFETCH(int, filterIndex);
    QFETCH(QString, type);
    QFETCH(QString, path);
    const SaveTarget target = SaveAsTarget(chosen, filterIndex);
    QCOMPARE(target.type, type);
    QCOMPARE(target.path, path);
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

QTEST_GUILESS_MAIN(TestDocumentNaming)
#include "test_document_naming.moc"
