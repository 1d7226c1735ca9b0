#include "core/recovery_debounce.h"
#include "core/recovery_store.h"
#include "support/test_home.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <QThread>

#include <cstdio>

namespace {

const char kStoreAndKeepStoring[] = "--store-and-keep-storing";

// The content of version n of the document the child process keeps storing: large enough that
// a kill often lands in the middle of a write.
QByteArray Version(int n)
{
    return QByteArray::number(n).append(':').repeated(200 * 1024);
}

RecoveryEntry Entry(const QString &id, const QByteArray &content)
{
    RecoveryEntry entry;
    entry.id = id;
    entry.caption = QStringLiteral("RTF 3");
    entry.originalPath = QString::fromUtf8("/home/u/Brief – draft.rtf");
    entry.type = QStringLiteral("RTF");
    entry.savedAt = QDateTime(QDate(2024, 5, 6), QTime(7, 8, 9, 10), Qt::UTC);
    entry.content = content;
    return entry;
}

// The child process: stores version 1, says so, then stores versions 2, 3, ... until killed.
int StoreAndKeepStoring(const QString &folder)
{
    RecoveryStore store(folder);
    for (int n = 1;; ++n) {
        RecoveryEntry entry = Entry(QStringLiteral("doc"), Version(n));
        entry.caption = QString::number(n);
        if (!store.store(entry))
            return 1;
        if (n == 1) {
            std::puts("stored");
            std::fflush(stdout);
        }
    }
}

QDateTime At(int seconds)
{
    return QDateTime(QDate(2024, 1, 1), QTime(12, 0), Qt::UTC).addSecs(seconds);
}

} // namespace

class TestRecoveryStore : public QObject
{
    Q_OBJECT

private slots:
    void storeReplaceRemoveClear();
    void damagedEntriesAreSkipped_data();
    void damagedEntriesAreSkipped();
    void invalidIdIsRefused();
    void killedWhileStoringKeepsWholeCopy();
    void debounce_data();
    void debounce();
};

void TestRecoveryStore::storeReplaceRemoveClear()
{
    TestHome home;
    RecoveryStore store(home.filePath("recovery/notes"));
    QVERIFY(store.entries().isEmpty());
    QVERIFY(store.store(Entry("a", "first")));
    QVERIFY(store.store(Entry("b", QByteArray("\0\xff{\\rtf1}", 9))));
    QVERIFY(store.store(Entry("a", "second")));
    const QList<RecoveryEntry> entries = store.entries();
    QCOMPARE(entries.size(), 2);
    const RecoveryEntry &a = entries[0].id == "a" ? entries[0] : entries[1];
    const RecoveryEntry expected = Entry("a", "second");
    const auto fields = [](const RecoveryEntry &e) {
        return QStringList{e.caption, e.originalPath, e.type, e.savedAt.toString(Qt::ISODateWithMs), e.content};
    };
    QCOMPARE(fields(a), fields(expected));
    QCOMPARE(QDir(store.folder()).entryList({"a.*"}, QDir::Files).size(), 2); // no old content left
    store.remove("a");
    QCOMPARE(store.entries().size(), 1);
    QCOMPARE(store.entries().constFirst().content, QByteArray("\0\xff{\\rtf1}", 9));
    store.clear();
    QVERIFY(store.entries().isEmpty());
    QVERIFY(QDir(store.folder()).entryList(QDir::Files).isEmpty());
}

void TestRecoveryStore::damagedEntriesAreSkipped_data()
{
    QTest::addColumn<QString>("file"); // "entry" or "content"
    QTest::addColumn<QByteArray>("find");
    QTest::addColumn<QByteArray>("replace");
    QTest::newRow("content cut short") << "content" << QByteArray("tent") << QByteArray("t");
    QTest::newRow("content changed") << "content" << QByteArray("tent") << QByteArray("TENT");
    QTest::newRow("content gone") << "content" << QByteArray() << QByteArray();
    QTest::newRow("description not JSON") << "entry" << QByteArray("{") << QByteArray("");
    QTest::newRow("unknown type") << "entry" << QByteArray("\"RTF\"") << QByteArray("\"DOC\"");
    QTest::newRow("content outside the folder") << "entry" << QByteArray("\"content\": \"x.") << QByteArray("\"content\": \"../x.");
    QTest::newRow("id of another file") << "entry" << QByteArray("\"id\": \"x\"") << QByteArray("\"id\": \"y\"");
}

void TestRecoveryStore::damagedEntriesAreSkipped()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, find);
    QFETCH(QByteArray, replace);
    TestHome home;
    RecoveryStore store(home.path());
    QVERIFY(store.store(Entry("x", "content")));
    QVERIFY(store.store(Entry("intact", "kept")));
    const QStringList files = QDir(home.path()).entryList({"x.*" + file}, QDir::Files);
    QCOMPARE(files.size(), 1);
    QFile damaged(home.filePath(files.constFirst()));
    QVERIFY(damaged.open(QIODevice::ReadOnly));
    QByteArray bytes = damaged.readAll();
    damaged.close();
    if (find.isEmpty()) {
        QVERIFY(damaged.remove());
    } else {
        QVERIFY2(bytes.contains(find), bytes.constData());
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write(bytes.replace(find, replace));
        damaged.close();
    }
    const QList<RecoveryEntry> entries = store.entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries.constFirst().id, "intact");
}

void TestRecoveryStore::invalidIdIsRefused()
{
    TestHome home;
    RecoveryStore store(home.path());
    QString error;
    QVERIFY(!store.store(Entry("../escape", "x"), &error));
    QVERIFY(!error.isEmpty());
    QVERIFY(RecoveryStore::isValidId(RecoveryStore::newId()));
    QVERIFY(QDir(home.path()).entryList(QDir::Files).isEmpty());
}

void TestRecoveryStore::killedWhileStoringKeepsWholeCopy()
{
    TestHome home;
    const QString folder = home.filePath("recovery");
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {kStoreAndKeepStoring, folder});
    QVERIFY(child.waitForStarted());
    QVERIFY(child.waitForReadyRead(20000));
    QCOMPARE(child.readLine().trimmed(), "stored");
    QThread::msleep(150);
    child.kill();
    QVERIFY(child.waitForFinished(10000));
    QCOMPARE(child.exitStatus(), QProcess::CrashExit);
    const QList<RecoveryEntry> entries = RecoveryStore(folder).entries();
    QCOMPARE(entries.size(), 1);
    const int version = entries.constFirst().caption.toInt();
    QVERIFY(version >= 1);
    QVERIFY(entries.constFirst().content == Version(version));
}

void TestRecoveryStore::debounce_data()
{
    // Events "c<s>" (change at s seconds) and "s" (copied or saved), then the time asked about.
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<int>("now");
    QTest::addColumn<bool>("due");
    QTest::addColumn<int>("nextDue"); // seconds, -1 for none
    QTest::newRow("nothing changed") << QStringList{} << 100 << false << -1;
    QTest::newRow("29 s after a change") << QStringList{"c0"} << 29 << false << 30;
    QTest::newRow("30 s after a change") << QStringList{"c0"} << 30 << true << 30;
    QTest::newRow("typing on does not delay") << QStringList{"c0", "c10", "c20", "c29"} << 30 << true << 30;
    QTest::newRow("copied, then changed again") << QStringList{"c0", "s", "c10"} << 35 << false << 40;
    QTest::newRow("copied and unchanged") << QStringList{"c0", "s"} << 60 << false << -1;
}

void TestRecoveryStore::debounce()
{
    QFETCH(QStringList, events);
    QFETCH(int, now);
    QFETCH(bool, due);
    QFETCH(int, nextDue);
    RecoveryDebounce debounce;
    debounce.markChanged("other", At(5)); // another document with its own clock
    debounce.markSaved("other");
    for (const QString &event : events) {
        if (event == "s")
            debounce.markSaved("doc");
        else
            debounce.markChanged("doc", At(event.mid(1).toInt()));
    }
    QCOMPARE(debounce.dueIds(At(now)), due ? QStringList{"doc"} : QStringList{});
    QCOMPARE(debounce.nextDue(), nextDue < 0 ? std::nullopt : std::optional<QDateTime>(At(nextDue)));
}

int main(int argc, char *argv[])
{
    if (argc == 3 && qstrcmp(argv[1], kStoreAndKeepStoring) == 0)
        return StoreAndKeepStoring(QString::fromLocal8Bit(argv[2]));
    QCoreApplication app(argc, argv);
    TestRecoveryStore test;
    return QTest::qExec(&test, argc, argv);
}

#include "test_recovery_store.moc"
