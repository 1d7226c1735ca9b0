// Day notes exported as an .ics file: another iCalendar reader (Python's icalendar package) and
// our own reader find the same days and texts; a second export names the same events; the
// chosen span of months is what is written.
#include "calendar/calendar_store.h"
#include "calendar/ical_calendar.h"
#include "calendar/ical_module.h"
#include "calendar/ics_note_writer.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

using Notes = QMap<QDate, QString>;

const QDateTime kStamp(QDate(2026, 11, 25), QTime(9, 30), Qt::UTC);

// Prints one JSON object per event: its day, summary, description and UID.
const char kReadBack[] = R"(
import sys, json, icalendar
with open(sys.argv[1], 'rb') as f:
    cal = icalendar.Calendar.from_ical(f.read())
out = []
for ev in cal.walk('VEVENT'):
    start = ev.decoded('DTSTART')
    end = ev.decoded('DTEND')
    out.append({'day': start.isoformat(), 'days': (end - start).days,
                'summary': str(ev.get('SUMMARY')), 'description': str(ev.get('DESCRIPTION')),
                'uid': str(ev.get('UID'))})
print(json.dumps(out))
)";

// A Python that has the icalendar package, or empty.
QString pythonWithIcalendar()
{
    QStringList candidates{QStringLiteral("/usr/bin/python3")};
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (!onPath.isEmpty())
        candidates << onPath;
    for (const QString &python : candidates) {
        QProcess probe;
        probe.start(python, {QStringLiteral("-c"), QStringLiteral("import icalendar")});
        if (probe.waitForFinished(20000) && probe.exitStatus() == QProcess::NormalExit &&
            probe.exitCode() == 0)
            return python;
    }
    return {};
}

Notes sampleNotes(const QString &which)
{
    if (which == QLatin1String("plain"))
        return {{QDate(2026, 11, 25), QStringLiteral("Dentist")}};
    if (which == QLatin1String("several lines"))
        return {{QDate(2026, 11, 3), QStringLiteral("Call Mum\nask about the weekend\nbring cake")},
                {QDate(2026, 11, 30), QStringLiteral("Rent")}};
    if (which == QLatin1String("characters iCalendar escapes"))
        return {{QDate(2026, 2, 28), QStringLiteral("Buy: milk, eggs; flour\\sugar")},
                {QDate(2028, 2, 29), QStringLiteral("Leap day, \"quoted\"")}};
    if (which == QLatin1String("long and not ASCII"))
        return {{QDate(2026, 12, 31),
                 QStringLiteral("Silvester \u00fc\u00f6\u00e4\u00df \u65e5\u672c\u8a9e \U0001F389 ")
                     .repeated(6)
                     .trimmed()}};
    return {};
}

QStringList allNoteKinds()
{
    return {QStringLiteral("plain"), QStringLiteral("several lines"),
            QStringLiteral("characters iCalendar escapes"), QStringLiteral("long and not ASCII")};
}

} // namespace

class TestIcsNoteWriter : public QObject
{
    Q_OBJECT
private slots:
    void anotherReaderFindsTheSameDaysAndTexts_data();
    void anotherReaderFindsTheSameDaysAndTexts();
    void ourReaderFindsTheSameDays_data();
    void ourReaderFindsTheSameDays();
    void aSecondExportNamesTheSameEvents();
    void linesStayWithinTheLengthLimit();
    void aFailedWriteSaysWhyAndLeavesNothing_data();
    void aFailedWriteSaysWhyAndLeavesNothing();
    void theChosenSpanIsExported_data();
    void theChosenSpanIsExported();
};

void TestIcsNoteWriter::anotherReaderFindsTheSameDaysAndTexts_data()
{
    QTest::addColumn<QString>("kind");
    for (const QString &kind : allNoteKinds())
        QTest::newRow(qPrintable(kind)) << kind;
}

void TestIcsNoteWriter::anotherReaderFindsTheSameDaysAndTexts()
{
    QFETCH(QString, kind);
    const QString python = pythonWithIcalendar();
    if (python.isEmpty())
        QSKIP("Python's icalendar package is not installed (packaging/install-build-deps.sh installs it)");
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("notes.ics"));
    const Notes notes = sampleNotes(kind);
    QString error;
    QVERIFY2(IcsNoteWriter::write(path, notes, kStamp, &error), qPrintable(error));

    QProcess reader;
    reader.start(python, {QStringLiteral("-c"), QString::fromLatin1(kReadBack), path});
    QVERIFY(reader.waitForFinished(30000));
    QVERIFY2(reader.exitCode() == 0, reader.readAllStandardError().constData());
    const QJsonArray events = QJsonDocument::fromJson(reader.readAllStandardOutput()).array();
    QCOMPARE(events.size(), notes.size());
    auto note = notes.constBegin();
    for (const QJsonValue &value : events) {
        const QJsonObject event = value.toObject();
        QCOMPARE(event.value(QStringLiteral("day")).toString(), note.key().toString(Qt::ISODate));
        QCOMPARE(event.value(QStringLiteral("days")).toInt(), 1);
        QCOMPARE(event.value(QStringLiteral("description")).toString(), note.value());
        QCOMPARE(event.value(QStringLiteral("summary")).toString(),
                 note.value().section(QLatin1Char('\n'), 0, 0));
        QCOMPARE(event.value(QStringLiteral("uid")).toString(), IcsNoteWriter::uidFor(note.key()));
        ++note;
    }
}

void TestIcsNoteWriter::ourReaderFindsTheSameDays_data()
{
    anotherReaderFindsTheSameDaysAndTexts_data();
}

void TestIcsNoteWriter::ourReaderFindsTheSameDays()
{
    QFETCH(QString, kind);
    const Notes notes = sampleNotes(kind);
    QString error;
    const IcalCalendar calendar = IcalCalendar::fromBytes(IcsNoteWriter::toIcs(notes, kStamp), &error);
    QVERIFY2(!calendar.isNull(), qPrintable(error));
    QList<IcalOccurrence> expected;
    for (auto it = notes.constBegin(); it != notes.constEnd(); ++it)
        expected.append({it.key(), QTime(), it.value().section(QLatin1Char('\n'), 0, 0)});
    QCOMPARE(calendar.occurrences(QDate(2020, 1, 1), QDate(2030, 12, 31)), expected);
}

void TestIcsNoteWriter::aSecondExportNamesTheSameEvents()
{
    Notes notes = sampleNotes(QStringLiteral("several lines"));
    const QByteArray first = IcsNoteWriter::toIcs(notes, kStamp);
    notes[QDate(2026, 11, 3)] = QStringLiteral("Call Mum (done)");
    const QByteArray second = IcsNoteWriter::toIcs(notes, kStamp.addDays(2));
    const auto uids = [](const QByteArray &ics) {
        QStringList found;
        for (const QByteArray &line : ics.split('\n'))
            if (line.startsWith("UID:"))
                found << QString::fromUtf8(line.mid(4).trimmed());
        return found;
    };
    QCOMPARE(uids(first).size(), 2);
    QCOMPARE(uids(second), uids(first));
    QVERIFY(second.contains("DTSTAMP:20261127T093000Z"));
}

void TestIcsNoteWriter::linesStayWithinTheLengthLimit()
{
    // Lines are folded at 75 bytes without cutting a character in two.
    const QByteArray ics = IcsNoteWriter::toIcs(sampleNotes(QStringLiteral("long and not ASCII")), kStamp);
    for (const QByteArray &line : ics.split('\n')) {
        QVERIFY2(line.trimmed().size() <= 75, line.constData());
        QVERIFY2(QString::fromUtf8(line).toUtf8() == line, "a character is cut at a fold");
    }
}

void TestIcsNoteWriter::aFailedWriteSaysWhyAndLeavesNothing_data()
{
    QTest::addColumn<QString>("target"); // below the temporary folder, which holds "plain file"
    QTest::addColumn<QString>("module"); // empty: the program's own
    QTest::addColumn<QString>("saysContains");
    QTest::newRow("a plain file in the way") << "plain file/notes.ics"
                                             << ""
                                             << "notes.ics";
    QTest::newRow("no iCalendar module") << "plain file"
                                         << "vantora_missing"
                                         << "iCalendar files cannot be written: the module vantora_missing";
}

void TestIcsNoteWriter::aFailedWriteSaysWhyAndLeavesNothing()
{
    QFETCH(QString, target);
    QFETCH(QString, module);
    QFETCH(QString, saysContains);
    QTemporaryDir dir;
    QFile blocker(dir.filePath(QStringLiteral("plain file")));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.write("an earlier export");
    blocker.close();
    SetIcalModuleName(module);
    const auto ownModule = qScopeGuard([] { SetIcalModuleName({}); });
    QString error;
    QVERIFY(
        !IcsNoteWriter::write(dir.filePath(target), sampleNotes(QStringLiteral("plain")), kStamp, &error));
    QVERIFY2(error.contains(saysContains), qPrintable(error));
    QCOMPARE(QDir(dir.path()).entryList(QDir::Files | QDir::NoDotAndDotDot), QStringList{"plain file"});
    QVERIFY(blocker.open(QIODevice::ReadOnly));
    QCOMPARE(blocker.readAll(), QByteArray("an earlier export"));
}

void TestIcsNoteWriter::theChosenSpanIsExported_data()
{
    QTest::addColumn<QDate>("first");
    QTest::addColumn<QDate>("last");
    QTest::addColumn<QList<QDate>>("days");
    const QDate a(2025, 12, 31), b(2026, 1, 1), c(2026, 11, 3), d(2026, 11, 30), e(2027, 1, 15);
    QTest::newRow("a month") << QDate(2026, 11, 1) << QDate(2026, 11, 30) << QList<QDate>{c, d};
    QTest::newRow("a year") << QDate(2026, 1, 1) << QDate(2026, 12, 31) << QList<QDate>{b, c, d};
    QTest::newRow("everything") << QDate(1, 1, 1) << QDate(9999, 12, 31) << QList<QDate>{a, b, c, d, e};
}

void TestIcsNoteWriter::theChosenSpanIsExported()
{
    QFETCH(QDate, first);
    QFETCH(QDate, last);
    QFETCH(QList<QDate>, days);
    TestHome home;
    CalendarStore store(CalendarStore::defaultFolder());
    for (const QDate &day : {QDate(2025, 12, 31), QDate(2026, 1, 1), QDate(2026, 11, 3), QDate(2026, 11, 30),
                             QDate(2027, 1, 15)}) {
        MonthNotes notes = store.loadNotes(day.year(), day.month());
        notes.setNote(day.day(), day.toString(Qt::ISODate));
        QVERIFY(store.saveNotes(notes));
    }
    // A file set aside as damaged is not a month of notes.
    QFile::copy(store.notesPath(2026, 11),
                QDir(store.folder()).filePath(QStringLiteral("2026-11 damaged 1.txt")));
    const Notes exported = store.notesBetween(first, last);
    QCOMPARE(exported.keys(), days);
    for (const QDate &day : days)
        QCOMPARE(exported.value(day), day.toString(Qt::ISODate));
}

QTEST_GUILESS_MAIN(TestIcsNoteWriter)
#include "test_ics_note_writer.moc"
