// The calendar folder: notes and drawings come back after a restart, damaged files are moved
// aside with their bytes intact while the lines that read are shown, empty months leave no files,
// and a save that fails keeps the old file.
#include "calendar/calendar_store.h"
#include "calendar/month_layout.h"
#include "support/file_size_limit.h"
#include "support/test_home.h"

#include <QBuffer>
#include <QDir>
#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

namespace {

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

// The one file moved aside in `folder`; empty unless there is exactly one.
QString onlySetAside(const QString &folder)
{
    const QStringList names = QDir(folder).entryList({QStringLiteral("* damaged *")}, QDir::Files);
    return names.size() == 1 ? QDir(folder).filePath(names.first()) : QString();
}

QImage blank()
{
    QImage page(MonthLayout::pageSize(), QImage::Format_ARGB32_Premultiplied);
    page.fill(Qt::transparent);
    return page;
}

// Solid and half-transparent ink, so that anything lost on the way shows.
QImage drawing()
{
    QImage page = blank();
    QPainter painter(&page);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(200, 30, 30), 5));
    painter.drawLine(QPointF(20, 30), QPointF(1500, 900));
    painter.setPen(QPen(QColor(255, 230, 0, 90), 24));
    painter.drawLine(QPointF(100, 1000), QPointF(1600, 1000));
    return page;
}

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

} // namespace

class TestCalendarStore : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { m_home.reset(); }
    void notesComeBackAfterARestart_data();
    void notesComeBackAfterARestart();
    void drawingComesBackAfterARestart();
    void damagedNotesAreSetAside_data();
    void damagedNotesAreSetAside();
    void damagedDrawingIsSetAside_data();
    void damagedDrawingIsSetAside();
    void pictureOfAnotherSizeIsScaled();
    void emptyMonthsLeaveNoFiles();
    void failedSaveKeepsTheOldFile_data();
    void failedSaveKeepsTheOldFile();
    void setAsideNeverReplacesAnEarlierCopy();

private:
    std::unique_ptr<TestHome> m_home;
    QString m_folder;
};

void TestCalendarStore::init()
{
    m_home = std::make_unique<TestHome>();
    m_folder = CalendarStore::defaultFolder();
    QVERIFY(m_folder.startsWith(m_home->path()));
}

void TestCalendarStore::notesComeBackAfterARestart_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QByteArray>("line"); // as other tools see it in the file
    const auto row = [](const char *name, const QString &note, const QString &expected, const QString &line) {
        QTest::newRow(name) << note << expected << line.toUtf8();
    };
    row("backslashes before n and t", "C:\\new\\temp\\", "C:\\new\\temp\\",
        "2026-11-05 C:\\\\new\\\\temp\\\\\n");
    row("line breaks", "one\n\ntwo\r\nthree", "one\n\ntwo\nthree", "2026-11-05 one\\n\\ntwo\\nthree\n");
    row("starts with #", "# not a comment", "# not a comment", "2026-11-05 # not a comment\n");
    row("leading spaces kept, trailing dropped", "  indented \n ", "  indented", "2026-11-05   indented\n");
    row("not ASCII", "Geburtstag 🎂 café", "Geburtstag 🎂 café", "2026-11-05 Geburtstag 🎂 café\n");
}

void TestCalendarStore::notesComeBackAfterARestart()
{
    QFETCH(QString, note);
    QFETCH(QString, expected);
    QFETCH(QByteArray, line);
    MonthNotes notes(2026, 11);
    notes.setNote(5, note);
    notes.setNote(30, QStringLiteral("last day"));
    notes.setNote(31, QStringLiteral("no such day"));
    QString error;
    QVERIFY2(CalendarStore(m_folder).saveNotes(notes, &error), qPrintable(error));
    QVERIFY(readBytes(m_folder + "/2026-11.txt").contains("\n" + line));

    QString problem;
    const MonthNotes back = CalendarStore(m_folder).loadNotes(2026, 11, &problem);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    QCOMPARE(back.days(), QList<int>({5, 30}));
    QCOMPARE(back.note(5), expected);
    QCOMPARE(CalendarStore(m_folder).noteFor(QDate(2026, 11, 5)), expected);
}

void TestCalendarStore::drawingComesBackAfterARestart()
{
    QString error;
    QVERIFY2(CalendarStore(m_folder).saveDrawing(2026, 11, drawing(), &error), qPrintable(error));
    QVERIFY(QFileInfo::exists(m_folder + "/2026-11.png"));
    QString problem;
    const QImage back = CalendarStore(m_folder).loadDrawing(2026, 11, &problem);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    QCOMPARE(back.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(back, drawing());
}

void TestCalendarStore::damagedNotesAreSetAside_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("fourth"); // the note of the 4th, besides "kept" on the 3rd
    QTest::addColumn<bool>("damaged");
    const auto row = [](const char *name, const QByteArray &bytes, const QString &fourth, bool damaged) {
        QTest::newRow(name) << bytes << fourth << damaged;
    };
    const QByteArray good = "2026-11-03 kept\n";
    row("bad date", good + "2026-11-4 x\n", {}, true);
    row("other month", good + "2026-12-04 December\n", {}, true);
    row("impossible date", "2026-11-31 no such day\n" + good, {}, true);
    row("not UTF-8", good + "2026-11-04 caf\xe9\n", {}, true);
    row("second line for a day", good + "2026-11-03 again\n", {}, true);
    row("no space after the date", good + "2026-11-04\n", {}, true);
    row("CRLF", "2026-11-03 kept\r\n\r\n2026-11-04 a\\nb \r\n", "a\nb", false);
    row("byte-order mark", "\xEF\xBB\xBF" + good, {}, false);
    row("comments, blank lines, no last line end", "# mine\n\n  \t\n2026-11-04 a \\t b\n2026-11-03 kept",
        "a \\t b", false);
}

void TestCalendarStore::damagedNotesAreSetAside()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, fourth);
    QFETCH(bool, damaged);
    const CalendarStore store(m_folder);
    writeBytes(store.notesPath(2026, 11), bytes);
    // A glance at one day reads what it can and moves nothing.
    QCOMPARE(store.noteFor(QDate(2026, 11, 3)), QStringLiteral("kept"));
    QVERIFY(QFileInfo::exists(store.notesPath(2026, 11)));

    QString problem;
    const MonthNotes notes = store.loadNotes(2026, 11, &problem);
    QCOMPARE(notes.days(), (fourth.isEmpty() ? QList<int>{3} : QList<int>{3, 4}));
    QCOMPARE(notes.note(3), QStringLiteral("kept"));
    QCOMPARE(notes.note(4), fourth);
    QCOMPARE(!problem.isEmpty(), damaged);
    QCOMPARE(QFileInfo::exists(store.notesPath(2026, 11)), !damaged);
    if (damaged) {
        const QString aside = onlySetAside(m_folder);
        QCOMPARE(readBytes(aside), bytes);
        QVERIFY2(problem.contains(QDir::toNativeSeparators(aside)), qPrintable(problem));
    }
}

void TestCalendarStore::damagedDrawingIsSetAside_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QByteArray noise(4000, Qt::Uninitialized);
    for (char &c : noise)
        c = char(QRandomGenerator::global()->bounded(256));
    const QByteArray whole = png(drawing());
    QTest::newRow("random bytes") << noise;
    QTest::newRow("truncated PNG") << whole.left(whole.size() / 2);
    QTest::newRow("empty file") << QByteArray("");
}

void TestCalendarStore::damagedDrawingIsSetAside()
{
    QFETCH(QByteArray, bytes);
    const CalendarStore store(m_folder);
    writeBytes(store.drawingPath(2026, 11), bytes);
    QString problem;
    const QImage page = store.loadDrawing(2026, 11, &problem);
    QCOMPARE(page.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(page, blank());
    QVERIFY(!problem.isEmpty());
    QVERIFY(!QFileInfo::exists(store.drawingPath(2026, 11)));
    QCOMPARE(readBytes(onlySetAside(m_folder)), bytes);
}

void TestCalendarStore::pictureOfAnotherSizeIsScaled()
{
    QImage small(168, 108, QImage::Format_ARGB32);
    small.fill(Qt::transparent);
    QPainter(&small).fillRect(0, 0, 84, 108, Qt::red);
    const CalendarStore store(m_folder);
    writeBytes(store.drawingPath(2026, 11), png(small));
    QString problem;
    const QImage page = store.loadDrawing(2026, 11, &problem);
    QVERIFY(problem.isEmpty());
    QCOMPARE(page.size(), MonthLayout::pageSize());
    QCOMPARE(page.format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(page.pixel(400, 540), qRgb(255, 0, 0));
    QCOMPARE(qAlpha(page.pixel(1300, 540)), 0);
}

void TestCalendarStore::emptyMonthsLeaveNoFiles()
{
    const CalendarStore store(m_folder);
    MonthNotes notes(2026, 11);
    notes.setNote(1, QStringLiteral("x"));
    QVERIFY(store.saveNotes(notes));
    QVERIFY(store.saveDrawing(2026, 11, drawing()));
    notes.setNote(1, QStringLiteral(" \n\t "));
    QVERIFY(notes.isEmpty());
    QVERIFY(store.saveNotes(notes));
    QVERIFY(store.saveDrawing(2026, 11, blank()));
    QCOMPARE(QDir(m_folder).entryList(QDir::Files), QStringList());
    // A picture without alpha is all ink, however dark.
    QImage black(MonthLayout::pageSize(), QImage::Format_RGB32);
    black.fill(Qt::black);
    QVERIFY(store.saveDrawing(2026, 11, black));
    QVERIFY(QFileInfo::exists(store.drawingPath(2026, 11)));
}

void TestCalendarStore::failedSaveKeepsTheOldFile_data()
{
    QTest::addColumn<bool>("drawing");
    QTest::newRow("notes") << false;
    QTest::newRow("drawing") << true;
}

void TestCalendarStore::failedSaveKeepsTheOldFile()
{
#ifdef Q_OS_UNIX
    QFETCH(bool, drawing);
    const CalendarStore store(m_folder);
    MonthNotes notes(2026, 11);
    notes.setNote(2, QStringLiteral("old"));
    QImage page = blank();
    page.setPixel(10, 10, qRgb(0, 0, 0));
    QVERIFY(drawing ? store.saveDrawing(2026, 11, page) : store.saveNotes(notes));
    const QString path = drawing ? store.drawingPath(2026, 11) : store.notesPath(2026, 11);
    const QByteArray old = readBytes(path);

    for (int y = 0; y < page.height(); ++y) // noise does not compress below the limit
        for (int x = 0; x < page.width(); x += 2)
            page.setPixel(x, y, QRandomGenerator::global()->generate() | 0xff000000);
    notes.setNote(2, QString(100000, QLatin1Char('n')));
    QString error;
    {
        FileSizeLimit limit(64 * 1024);
        QVERIFY(limit.isActive());
        QVERIFY(drawing ? !store.saveDrawing(2026, 11, page, &error) : !store.saveNotes(notes, &error));
    }
    QVERIFY(!error.isEmpty());
    QCOMPARE(readBytes(path), old);
    QCOMPARE(QDir(m_folder).entryList(QDir::Files).size(), 1);
#else
    QSKIP("needs a file size limit");
#endif
}

void TestCalendarStore::setAsideNeverReplacesAnEarlierCopy()
{
    const QString path = m_home->filePath(QStringLiteral("2026-11.txt"));
    const QRegularExpression name(QStringLiteral("^2026-11 damaged \\d{8}-\\d{6}( \\d+)?\\.txt$"));
    for (const QByteArray bytes : {"first", "second", "third"}) {
        writeBytes(path, bytes);
        const QString aside = CalendarStore::setAside(path);
        QVERIFY2(name.match(QFileInfo(aside).fileName()).hasMatch(), qPrintable(aside));
        QCOMPARE(readBytes(aside), bytes);
    }
    QCOMPARE(QDir(m_home->path()).entryList({QStringLiteral("2026-11 damaged *")}).size(), 3);
}

QTEST_MAIN(TestCalendarStore)
#include "test_calendar_store.moc"
