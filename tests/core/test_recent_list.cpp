#include "core/recent_list.h"
#include "core/settings_store.h"
#include "support/test_home.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QTest>

namespace {

const QString kTotalKey = QStringLiteral("SOFTWARE\\Vantora\\fnte_IDX\\Find\\Items Total");
const QString kDetailsKey = QStringLiteral("SOFTWARE\\Vantora\\fnte_IDX\\Find\\Details");
const QString kName = QStringLiteral("fnte_IDX\\Find");

QStringList itemsOf(const QComboBox &box)
{
    QStringList items;
    for (int i = 0; i < box.count(); ++i)
        items << box.itemText(i);
    return items;
}

QString storedEntry(const QString &key, const QString &name)
{
    return ReadSetting(Hive::CurrentUser, key, name, QStringLiteral("<none>"));
}

} // namespace

class TestRecentList : public QObject
{
    Q_OBJECT

private slots:
    void addRecentItem_data();
    void addRecentItem();
    void saveWritesOffByOneLayout();
    void restore_data();
    void restore();
    void saveThenRestoreKeepsOrder();
};

void TestRecentList::addRecentItem_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("after");
    QTest::addColumn<QString>("current");
    QTest::newRow("new text goes first") << QStringList{"a", "b"} << "x" << QStringList{"x", "a", "b"} << "x";
    QTest::newRow("third entry moves up")
        << QStringList{"a", "b", "c"} << "c" << QStringList{"c", "a", "b"} << "c";
    QTest::newRow("case counts") << QStringList{"a", "B"} << "b" << QStringList{"b", "a", "B"} << "b";
    QTest::newRow("every copy removed") << QStringList{"a", "x", "a"} << "a" << QStringList{"a", "x"} << "a";
    QTest::newRow("empty text ignored") << QStringList{"a", "b"} << "" << QStringList{"a", "b"} << "typed";
}

void TestRecentList::addRecentItem()
{
    QFETCH(QStringList, before);
    QFETCH(QString, text);
    QFETCH(QStringList, after);
    QFETCH(QString, current);
    QComboBox box;
    box.setEditable(true);
    box.addItems(before);
    box.setEditText(QStringLiteral("typed"));
    AddRecentItem(&box, text);
    QCOMPARE(itemsOf(box), after);
    QCOMPARE(box.currentText(), current);
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

void TestRecentList::saveWritesOffByOneLayout()
{
    TestHome home;
    QComboBox box;
    box.setEditable(true);
    box.addItems({QStringLiteral(" newest "), QStringLiteral("older")});
    box.setEditText(QStringLiteral("  being typed"));
    SaveList(&box, kName);
    QCOMPARE(storedEntry(kTotalKey, QStringLiteral("List Total")), QStringLiteral("2"));
    QCOMPARE(storedEntry(kDetailsKey, QStringLiteral("List Total")), QStringLiteral("<none>"));
    QCOMPARE(storedEntry(kDetailsKey, QStringLiteral("List 0")), QStringLiteral("being typed"));
    QCOMPARE(storedEntry(kDetailsKey, QStringLiteral("List 1")), QStringLiteral("newest"));
    QCOMPARE(storedEntry(kDetailsKey, QStringLiteral("List 2")), QStringLiteral("older"));
    QCOMPARE(storedEntry(kDetailsKey, QStringLiteral("List 3")), QStringLiteral("<none>"));
}

void TestRecentList::restore_data()
{
    QTest::addColumn<QString>("total");
    QTest::addColumn<QStringList>("entries"); // List 0, List 1, ...
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("empty second entry")
        << "3" << QStringList{"zero", "one", "", "three"} << QStringList{"one", "three"};
    QTest::newRow("duplicates collapse") << "3" << QStringList{"", "a", "b", "a"} << QStringList{"a", "b"};
    QTest::newRow("total smaller than entries") << "1" << QStringList{"", "a", "b"} << QStringList{"a"};
    QTest::newRow("total larger than entries") << "5" << QStringList{"", "a", "b"} << QStringList{"a", "b"};
    QTest::newRow("total not a number") << "many" << QStringList{"", "a"} << QStringList{};
    QTest::newRow("no total") << "" << QStringList{"", "a"} << QStringList{};
    QTest::newRow("damaged total") << "2000000000" << QStringList{"", "a"} << QStringList{};
}

void TestRecentList::restore()
{
    QFETCH(QString, total);
    QFETCH(QStringList, entries);
    QFETCH(QStringList, expected);
    TestHome home;
    if (!total.isEmpty())
        WriteSetting(Hive::CurrentUser, kTotalKey, QStringLiteral("List Total"), total);
    for (int k = 0; k < entries.size(); ++k)
        WriteSetting(Hive::CurrentUser, kDetailsKey, QStringLiteral("List %1").arg(k), entries.at(k));

    QComboBox box;
    box.setEditable(true);
    RestoreList(&box, kName);
    QCOMPARE(itemsOf(box), expected);
    QCOMPARE(box.currentText(), expected.value(0));
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
}

void TestRecentList::saveThenRestoreKeepsOrder()
{
    TestHome home;
    QComboBox saved;
    saved.addItems({QStringLiteral("c"), QStringLiteral("b"), QStringLiteral("a")});
    SaveList(&saved, kName);
    QComboBox restored;
    restored.addItem(QStringLiteral("already there"));
    RestoreList(&restored, kName);
    QCOMPARE(itemsOf(restored), (QStringList{"c", "b", "a", "already there"}));
    QCOMPARE(restored.currentText(), QStringLiteral("c"));
}

QTEST_MAIN(TestRecentList)
#include "test_recent_list.moc"
