#include "core/settings_store.h"
#include "notes/note_document.h"
#include "notes/notes_editor.h"
#include "notes/page_box.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QPointer>
#include <QTabBar>
#include <QTest>

#include <memory>

namespace {

QString writeFile(const QString &folder, const QString &name, const QByteArray &bytes)
{
    const QString path = QDir(folder).filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("cannot write %s", qPrintable(path));
    return path;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void type(NoteDocument *document, const QString &text)
{
    QTextCursor cursor = document->page()->textCursor();
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(text);
    document->page()->setTextCursor(cursor);
}

} // namespace

// The editor's document rules: what opening, saving and closing do to the tabs, the files and
// the unsaved work.
class TestNotesEditor : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void openingPicksTheTypeByExtension_data();
    void openingPicksTheTypeByExtension();
    void openingAnOpenFileSelectsItsTab();
    void closingAsksAboutUnsavedChanges_data();
    void closingAsksAboutUnsavedChanges();
    void closingTheLastDocumentLeavesAnEmptyOne();
    void closingTheEditorAsksPerDocumentAndCanBeCancelled();
    void aFailedSaveKeepsTheDocumentAndTheFile();
    void statisticsFollowTheCaret();
    void unsavedWorkSurvivesACrash();
    void spellCheckWalksTheActiveDocument();

private:
    std::unique_ptr<TestHome> m_home;
    QPointer<NotesEditor> m_editor;
    QList<int> m_asked;
    int m_answer = AnswerCancel;
};

void TestNotesEditor::init()
{
    m_home = std::make_unique<TestHome>();
    m_asked.clear();
    SetMessageResponderForTesting([this](bool question, int number, const QString &) {
        if (question)
            m_asked.append(number);
        return m_answer;
    });
    // The word list is read only by the test that checks spelling.
    WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Spell Check Load on First"), QStringLiteral("0"));
    m_editor = new NotesEditor;
}

void TestNotesEditor::cleanup()
{
    delete m_editor;
    SetMessageResponderForTesting({});
    m_home.reset();
}

void TestNotesEditor::openingPicksTheTypeByExtension_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("text");
    QTest::newRow("rich text") << "a.rtf" << QByteArray("{\\rtf1\\ansi {\\b bold} words\\par}") << "RTF"
                               << "bold words";
    QTest::newRow("upper-case extension") << "B.RTF" << QByteArray("{\\rtf1 shout\\par}") << "RTF" << "shout";
    QTest::newRow("log file is plain text") << "c.log" << QByteArray("{\\rtf1 not parsed}") << "TXT"
                                            << "{\\rtf1 not parsed}";
    QTest::newRow("no extension") << "README" << QByteArray("line one\r\nline two\r\n") << "TXT"
                                  << "line one\nline two\n";
}

void TestNotesEditor::openingPicksTheTypeByExtension()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, type);
    QFETCH(QString, text);
    QVERIFY(m_editor->openFile(writeFile(m_home->path(), name, bytes)));
    NoteDocument *document = m_editor->activeDocument();
    QCOMPARE(document->DocumentType(), type);
    QCOMPARE(document->document()->toPlainText().trimmed(), text.trimmed());
    QCOMPARE(document->caption(), name);
    QVERIFY(!document->DocumentEdited()); // loading is not an edit
    // The empty document the editor opened with made way for the file.
    QCOMPARE(m_editor->documents().size(), 1);
}

void TestNotesEditor::openingAnOpenFileSelectsItsTab()
{
    const QString first = writeFile(m_home->path(), "one.txt", "one");
    const QString second = writeFile(m_home->path(), "two.txt", "two");
    QVERIFY(m_editor->openFile(first));
    QVERIFY(m_editor->openFile(second));
    type(m_editor->activeDocument(), " edited");
    QVERIFY(m_editor->openFile(first));
    QCOMPARE(m_editor->documents().size(), 2);
    QCOMPARE(m_editor->activeDocument()->caption(), QStringLiteral("one.txt"));
    QVERIFY(m_editor->openFile(QDir(m_home->path()).filePath("./two.txt")));
    QCOMPARE(m_editor->documents().size(), 2);
    QVERIFY(m_editor->activeDocument()->DocumentEdited()); // not read again over the edit
}

void TestNotesEditor::closingAsksAboutUnsavedChanges_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("stillOpen");
    QTest::addColumn<QByteArray>("onDisk");
    QTest::newRow("save") << int(AnswerYes) << false << QByteArray("kept more");
    QTest::newRow("do not save") << int(AnswerNo) << false << QByteArray("kept");
    QTest::newRow("cancel") << int(AnswerCancel) << true << QByteArray("kept");
}

void TestNotesEditor::closingAsksAboutUnsavedChanges()
{
    QFETCH(int, answer);
    QFETCH(bool, stillOpen);
    QFETCH(QByteArray, onDisk);
    const QString path = writeFile(m_home->path(), "note.txt", "kept");
    QVERIFY(m_editor->openFile(path));
    NoteDocument *document = m_editor->activeDocument();
    type(document, " more");
    m_answer = answer;
    QCOMPARE(m_editor->DocumentClose(), !stillOpen);
    QCOMPARE(m_asked, QList<int>{2});
    QCOMPARE(readFile(path), onDisk);
    QCOMPARE(m_editor->documents().contains(document), stillOpen);
    if (stillOpen)
        QCOMPARE(document->document()->toPlainText(), QStringLiteral("kept more"));
}

void TestNotesEditor::closingTheLastDocumentLeavesAnEmptyOne()
{
    NoteDocument *first = m_editor->activeDocument();
    QCOMPARE(first->caption(), QStringLiteral("RTF 1"));
    QVERIFY(m_editor->DocumentClose());
    QVERIFY(m_asked.isEmpty()); // nothing typed, nothing asked
    QCOMPARE(m_editor->documents().size(), 1);
    NoteDocument *fresh = m_editor->activeDocument();
    QVERIFY(fresh != first);
    QCOMPARE(fresh->caption(), QStringLiteral("RTF 2"));
    QVERIFY(fresh->document()->isEmpty());
    QCOMPARE(m_editor->findChild<QTabBar *>("tabDOCS")->count(), 1);
}

void TestNotesEditor::closingTheEditorAsksPerDocumentAndCanBeCancelled()
{
    const QString a = writeFile(m_home->path(), "a.txt", "a");
    const QString b = writeFile(m_home->path(), "b.txt", "b");
    QVERIFY(m_editor->openFile(a));
    type(m_editor->activeDocument(), "1");
    QVERIFY(m_editor->openFile(b));
    type(m_editor->activeDocument(), "2");
    m_editor->show();
    m_answer = AnswerCancel;
    QVERIFY(!m_editor->close());
    QCOMPARE(m_asked, QList<int>{2});
    QCOMPARE(m_editor->documents().size(), 2);
    m_asked.clear();
    m_answer = AnswerYes;
    QVERIFY(m_editor->close());
    QCOMPARE(m_asked, (QList<int>{2, 2}));
    QCOMPARE(readFile(a), QByteArray("a1"));
    QCOMPARE(readFile(b), QByteArray("b2"));
}

void TestNotesEditor::aFailedSaveKeepsTheDocumentAndTheFile()
{
    const QString path = writeFile(m_home->path(), "n.txt", "old");
    QVERIFY(m_editor->openFile(path));
    type(m_editor->activeDocument(), " new");
    // Something the save cannot replace now stands where the file was (root cannot either).
    QVERIFY(QFile::remove(path));
    QVERIFY(QDir().mkpath(path));
    writeFile(path, "inside", "untouched");
    QList<QString> notices;
    SetMessageResponderForTesting([&](bool question, int, const QString &text) {
        if (!question)
            notices.append(text);
        return int(AnswerCancel);
    });
    QVERIFY(!m_editor->DocumentSaveMain());
    QCOMPARE(notices.size(), 1);
    QVERIFY2(notices.first().contains(QStringLiteral("n.txt")), qPrintable(notices.first()));
    QVERIFY(m_editor->activeDocument()->DocumentEdited());
    QCOMPARE(readFile(QDir(path).filePath("inside")), QByteArray("untouched"));
    QCOMPARE(QDir(m_home->path()).entryList({"*.tmp"}, QDir::Files), QStringList());
}

void TestNotesEditor::statisticsFollowTheCaret()
{
    QLabel *chars = m_editor->findChild<QLabel *>("lblCHARS");
    QLabel *lines = m_editor->findChild<QLabel *>("lblLINESTAT");
    QCOMPARE(chars->text(), QStringLiteral("0 words (0 chars). "));
    QCOMPARE(lines->text(), QStringLiteral("1 of 1 line. "));
    NoteDocument *document = m_editor->activeDocument();
    type(document, QStringLiteral("well-known words\nsecond line"));
    QTextCursor cursor = document->page()->textCursor();
    cursor.setPosition(0);
    cursor.setPosition(4, QTextCursor::KeepAnchor);
    document->page()->setTextCursor(cursor);
    QCOMPARE(lines->text(), QStringLiteral("1 of 2 lines. "));
    QVERIFY2(chars->text().endsWith(QStringLiteral("1 sel word (4 sel chars). ")), qPrintable(chars->text()));
}

void TestNotesEditor::unsavedWorkSurvivesACrash()
{
    type(m_editor->activeDocument(), QStringLiteral("never saved"));
    const QString path = writeFile(m_home->path(), "kept.txt", "on disk");
    QVERIFY(m_editor->openFile(path));
    type(m_editor->activeDocument(), QStringLiteral(" and typed"));
    m_editor->writeRecoveryCopies();
    // A crash: the editor goes without closing, so its copies stay.
    delete m_editor;
    QVERIFY(NotesEditor::hasRecoveredDocuments());

    m_answer = AnswerYes;
    m_editor = new NotesEditor;
    m_editor->offerRecoveredDocuments();
    QStringList texts;
    for (NoteDocument *document : m_editor->documents()) {
        if (document->DocumentEdited())
            texts.append(document->document()->toPlainText());
    }
    texts.sort();
    QCOMPARE(texts, (QStringList{"never saved", "on disk and typed"}));
    NoteDocument *restored = m_editor->activeDocument();
    QVERIFY(restored->DocumentEdited());
    // Saving the restored file writes it where it came from.
    if (restored->path() == path) {
        QVERIFY(m_editor->DocumentSaveMain());
        QCOMPARE(readFile(path), QByteArray("on disk and typed"));
    }
}

void TestNotesEditor::spellCheckWalksTheActiveDocument()
{
    QVERIFY(QDir().mkpath(m_home->filePath("notes")));
    writeFile(m_home->filePath("notes"), "wordsus.dct", "the\r\ncat\r\nsat\r\n");
    QList<int> messages;
    SetMessageResponderForTesting([&messages](bool question, int number, const QString &) {
        if (!question)
            messages.append(number);
        return int(AnswerYes);
    });
    NoteDocument *document = m_editor->activeDocument();
    type(document, QStringLiteral("the cta\tsat on teh"));
    document->page()->moveCursor(QTextCursor::Start);
    m_editor->DocumentSpellCheck();

    auto *word = m_editor->findChild<QLabel *>("lblSPELLWORD");
    QVERIFY(word);
    QCOMPARE(word->text(), QStringLiteral("cta"));
    QCOMPARE(document->page()->textCursor().selectedText(), QStringLiteral("cta"));
    m_editor->findChild<QLineEdit *>("txtSUGG")->setText(QStringLiteral("cat"));
    m_editor->findChild<QPushButton *>("btnCHANGE")->click();
    QCOMPARE(word->text(), QStringLiteral("on"));
    m_editor->findChild<QPushButton *>("btnIGNORE")->click();
    QCOMPARE(document->page()->textCursor().selectedText(), QStringLiteral("teh"));
    QVERIFY(messages.isEmpty());
    m_editor->findChild<QPushButton *>("btnINCLUDE")->click();
    QCOMPARE(messages, QList<int>{1});
    QCOMPARE(document->document()->toPlainText(), QStringLiteral("the cat\tsat on teh"));
    QVERIFY(!m_editor->findChild<QPushButton *>("btnCHANGE")->isEnabled());
}

QTEST_MAIN(TestNotesEditor)
#include "test_notes_editor.moc"
