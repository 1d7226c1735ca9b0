#include "core/recovery_store.h"
#include "core/settings_store.h"
#include "notes/document_naming.h"
#include "notes/note_document.h"
#include "notes/notes_editor.h"
#include "notes/page_box.h"
#include "notes/spell_checker.h"
#include "themes/folder_browser.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/theme.h"
#include "themes/theme_painter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QTextList>
#include <QPushButton>
#include <QPointer>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif
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
    void partsBuiltWhenFirstShownTakeTheTheme_data();
    void partsBuiltWhenFirstShownTakeTheTheme();
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
    void plainTextSaveAsksBeforeDroppingContent_data();
    void plainTextSaveAsksBeforeDroppingContent();
    void picturesDroppedOnAPlainNoteAreRefused_data();
    void picturesDroppedOnAPlainNoteAreRefused();
    void statisticsKeepNoBreakSpaces_data();
    void statisticsKeepNoBreakSpaces();
    void recoveryRestoresTheDocumentSet();
    void aSafetyCopyThatCannotBeWrittenIsToldOnce();
    void pipesAndDevicesAreNotOpened_data();
    void pipesAndDevicesAreNotOpened();
    void addedWordsAreWrittenAtOnce();
    void savedFileShowsInTheDocumentBrowser();
    void tabScrollButtonsShowTheirArrows();

private:
    std::unique_ptr<TestHome> m_home;
    QPointer<NotesEditor> m_editor;
    QList<int> m_asked;
    QStringList m_notices;
    int m_answer = AnswerCancel;
};

void TestNotesEditor::init()
{
    m_home = std::make_unique<TestHome>();
    m_asked.clear();
    m_notices.clear();
    SetMessageResponderForTesting([this](bool question, int number, const QString &text) {
        if (question)
            m_asked.append(number);
        else
            m_notices.append(text);
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

// What a plain-text file cannot hold is only dropped when the user says so.
void TestNotesEditor::plainTextSaveAsksBeforeDroppingContent_data()
{
    QTest::addColumn<QString>("added"); // "words", "bold", "list" or "picture"
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("asked");
    QTest::addColumn<QByteArray>("onDisk");
    QTest::newRow("words alone: no question") << "words" << int(AnswerCancel) << false << QByteArray("old milk");
    QTest::newRow("bold, cancelled") << "bold" << int(AnswerCancel) << true << QByteArray("old");
    QTest::newRow("bold, agreed") << "bold" << int(AnswerYes) << true << QByteArray("old milk");
    QTest::newRow("list, agreed") << "list" << int(AnswerYes) << true << QByteArray("old milk");
    QTest::newRow("picture, cancelled") << "picture" << int(AnswerCancel) << true << QByteArray("old");
}

void TestNotesEditor::plainTextSaveAsksBeforeDroppingContent()
{
    QFETCH(QString, added);
    QFETCH(int, answer);
    QFETCH(bool, asked);
    QFETCH(QByteArray, onDisk);
    const QString path = writeFile(m_home->path(), "list.txt", "old");
    QVERIFY(m_editor->openFile(path));
    NoteDocument *document = m_editor->activeDocument();
    QTextCursor cursor(document->document());
    cursor.movePosition(QTextCursor::End);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    cursor.insertText(QStringLiteral(" milk"), added == QLatin1String("bold") ? bold : QTextCharFormat());
    if (added == QLatin1String("list"))
        cursor.createList(QTextListFormat::ListDisc);
    if (added == QLatin1String("picture")) {
        QImage image(4, 4, QImage::Format_RGB32);
        image.fill(Qt::red);
        document->document()->addResource(QTextDocument::ImageResource, QUrl("rtfpicture:1"), image);
        cursor.insertImage(QStringLiteral("rtfpicture:1"));
    }
    QStringList questions;
    SetMessageResponderForTesting([&](bool question, int, const QString &text) {
        if (question)
            questions.append(text);
        return answer;
    });
    const bool saved = m_editor->DocumentSaveMain();
    QCOMPARE(questions.size(), asked ? 1 : 0);
    if (asked)
        QVERIFY2(questions.first().contains(added == QLatin1String("bold") ? QStringLiteral("formatting") : added + u's'),
                 qPrintable(questions.first()));
    QCOMPARE(saved, answer == AnswerYes || !asked);
    QCOMPARE(readFile(path).trimmed(), onDisk);
    // Cancelled: the page keeps everything. Saved: it shows what the file holds.
    QCOMPARE(document->DocumentEdited(), !saved);
    const PlainTextLoss loss = PlainTextLossOf(*document->document(), document->plainLook());
    QCOMPARE(loss.any(), asked && !saved);
}

void TestNotesEditor::picturesDroppedOnAPlainNoteAreRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("notices");
    QTest::addColumn<int>("documents");
    QTest::newRow("picture") << "photo.PNG" << 1 << 1;
    QTest::newRow("document") << "other.txt" << 0 << 2;
}

void TestNotesEditor::picturesDroppedOnAPlainNoteAreRefused()
{
    QFETCH(QString, name);
    QFETCH(int, notices);
    QFETCH(int, documents);
    QVERIFY(m_editor->openFile(writeFile(m_home->path(), "plain.txt", "text")));
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::blue);
    const QString dropped = m_home->filePath(name);
    QVERIFY(name.endsWith(QLatin1String(".txt")) ? !writeFile(m_home->path(), name, "x").isEmpty()
                                                 : image.save(dropped, "PNG"));
    QStringList told;
    SetMessageResponderForTesting([&](bool question, int, const QString &text) {
        if (!question)
            told.append(text);
        return int(AnswerCancel);
    });
    emit m_editor->activeDocument()->page()->filesDropped({dropped});
    QCOMPARE(told.size(), notices);
    if (notices > 0)
        QVERIFY2(told.first().contains(name), qPrintable(told.first()));
    QCOMPARE(m_editor->documents().size(), documents);
}

void TestNotesEditor::statisticsKeepNoBreakSpaces_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("label");
    QTest::newRow("no-break space joins") << QString("a\u00A0b") << "1 word (3 chars). ";
    QTest::newRow("space separates") << QString("a b") << "2 words (3 chars). ";
    QTest::newRow("number and unit") << QString("5\u00A0kg of flour") << "3 words (13 chars). ";
}

void TestNotesEditor::statisticsKeepNoBreakSpaces()
{
    QFETCH(QString, text);
    QFETCH(QString, label);
    type(m_editor->activeDocument(), text);
    QCOMPARE(m_editor->findChild<QLabel *>("lblCHARS")->text(), label);
}

void TestNotesEditor::recoveryRestoresTheDocumentSet()
{
    // "RTF 1" is the untouched one the editor opened with; "RTF 2" is closed; "RTF 3" is typed
    // in; kept.txt is saved and open.
    m_editor->DocumentNew();
    QVERIFY(m_editor->DocumentClose());
    m_editor->DocumentNew();
    type(m_editor->activeDocument(), QStringLiteral("unsaved"));
    QCOMPARE(m_editor->activeDocument()->caption(), QStringLiteral("RTF 3"));
    const QString kept = writeFile(m_home->path(), "kept.txt", "saved");
    QVERIFY(m_editor->openFile(kept));
    m_editor->writeRecoveryCopies();
    delete m_editor; // a crash: nothing is settled

    m_answer = AnswerYes;
    m_editor = new NotesEditor;
    m_editor->offerRecoveredDocuments();
    QStringList captions;
    for (NoteDocument *document : m_editor->documents())
        captions.append(document->caption());
    captions.sort();
    QCOMPARE(captions, (QStringList{"RTF 3", "kept.txt"}));
    auto *tabs = m_editor->findChild<QTabBar *>("tabDOCS");
    QCOMPARE(tabs->count(), 2);
    // A new note after them does not take the recovered one's caption.
    m_editor->DocumentNew();
    QVERIFY(m_editor->activeDocument()->caption() != QLatin1String("RTF 3"));
    QVERIFY(m_editor->DocumentClose());
    // A second crash before any new copy brings back the same set.
    delete m_editor;
    m_editor = new NotesEditor;
    m_editor->offerRecoveredDocuments();
    QCOMPARE(m_editor->documents().size(), 2);
}

void TestNotesEditor::aSafetyCopyThatCannotBeWrittenIsToldOnce()
{
    // A file where the recovery folder should be: no copy can be written, as on a full disk.
    const QString folder = m_home->filePath(QStringLiteral("recovery/notes"));
    QVERIFY(QDir().mkpath(QFileInfo(folder).path()));
    QDir(folder).removeRecursively();
    writeFile(QFileInfo(folder).path(), "notes", "in the way");

    type(m_editor->activeDocument(), QStringLiteral("first words"));
    m_editor->writeRecoveryCopies();
    QCOMPARE(m_notices.size(), 1);
    QVERIFY2(m_notices.first().contains(QLatin1String("RTF 1")), qPrintable(m_notices.first()));
    type(m_editor->activeDocument(), QStringLiteral(" and more"));
    m_editor->writeRecoveryCopies();
    QCOMPARE(m_notices.size(), 1); // still failing: not told again

    QVERIFY(QFile::remove(folder));
    type(m_editor->activeDocument(), QStringLiteral(" and the end"));
    m_editor->writeRecoveryCopies();
    QCOMPARE(m_notices.size(), 1);
    QVERIFY(!RecoveryStore(folder).isEmpty());
    m_answer = AnswerNo; // closing: do not save the note
}

void TestNotesEditor::pipesAndDevicesAreNotOpened_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("pipe with no writer") << QStringLiteral("fifo"); // made in the test's folder
    QTest::newRow("endless device") << QStringLiteral("/dev/zero");
    QTest::newRow("folder") << QStringLiteral("/tmp");
}

void TestNotesEditor::pipesAndDevicesAreNotOpened()
{
    QFETCH(QString, path);
#ifdef Q_OS_UNIX
    if (path == QLatin1String("fifo")) {
        path = m_home->filePath(QStringLiteral("notes.fifo"));
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    }
    const int before = int(m_editor->documents().size());
    // Opening a pipe for reading would wait for a writer for good; this returns at once.
    QVERIFY(!m_editor->openFile(path));
    QCOMPARE(int(m_editor->documents().size()), before);
    QCOMPARE(m_notices.size(), 1);
    QVERIFY2(m_notices.first().contains(QLatin1String("not a document")), qPrintable(m_notices.first()));
#else
    QSKIP("pipes and devices are a Unix matter");
#endif
}

void TestNotesEditor::addedWordsAreWrittenAtOnce()
{
    QVERIFY(QDir().mkpath(m_home->filePath("notes")));
    const QString list = writeFile(m_home->filePath("notes"), "wordsuk.dct", "the\r\ncat\r\n");
    // The program's one checker may have read a list of an earlier test's folder: another
    // language makes it read this one.
    WriteDetail(QStringLiteral("fnte_IDX"), QStringLiteral("Spell Checker Language Version"), QStringLiteral("wordsuk.dct"));
    SpellChecker::shared()->reloadSettings();
    m_answer = AnswerYes;
    NoteDocument *document = m_editor->activeDocument();
    type(document, QStringLiteral("the zorp cat blix"));
    document->page()->moveCursor(QTextCursor::Start);
    m_editor->DocumentSpellCheck();
    m_editor->findChild<QPushButton *>("btnINCLUDE")->click();
    // On disk before anything else happens, as a crash now would find it.
    QCOMPARE(readFile(list), QByteArray("the\r\ncat\r\nzorp\r\n"));
    m_editor->findChild<QPushButton *>("btnINCLUDE")->click();
    QCOMPARE(readFile(list), QByteArray("the\r\ncat\r\nzorp\r\nblix\r\n"));
    m_answer = AnswerNo; // closing: do not save the note
    m_editor->close();
    QCOMPARE(readFile(list), QByteArray("the\r\ncat\r\nzorp\r\nblix\r\n"));
}

void TestNotesEditor::savedFileShowsInTheDocumentBrowser()
{
    auto *browser = m_editor->findChild<FolderBrowser *>();
    browser->setFolder(m_home->path());
    const QString path = writeFile(m_home->path(), "n.txt", "old");
    QVERIFY(m_editor->openFile(path));
    type(m_editor->activeDocument(), QStringLiteral(" new"));
    QVERIFY(QFile::remove(path));
    browser->refresh();
    auto *files = browser->findChild<QListWidget *>("flbLIST");
    QVERIFY(files->findItems(QStringLiteral("n.txt"), Qt::MatchExactly).isEmpty());
    QVERIFY(m_editor->DocumentSaveMain());
    QCOMPARE(files->findItems(QStringLiteral("n.txt"), Qt::MatchExactly).size(), 1);
}

// With more tabs than fit, the scroll buttons show an arrow a user can see: a solid patch of
// the page's text colour, not a dot.
void TestNotesEditor::tabScrollButtonsShowTheirArrows()
{
    m_editor->resize(700, 500);
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor));
    for (int i = 0; i < 20; ++i)
        m_editor->DocumentNew();
    auto *tabs = m_editor->findChild<QTabBar *>("tabDOCS");
    const QColor ink = m_editor->activeDocument()->page()->palette().color(QPalette::Text);
    QList<QToolButton *> shown;
    for (QToolButton *button : tabs->findChildren<QToolButton *>()) {
        if (button->isVisible())
            shown.append(button);
    }
    QCOMPARE(shown.size(), 2);
    for (QToolButton *button : std::as_const(shown)) {
        QVERIFY2(button->width() >= 18 && button->height() >= 16,
                 qPrintable(QStringLiteral("%1x%2").arg(button->width()).arg(button->height())));
        const QImage image = button->grab().toImage();
        int inked = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor c = image.pixelColor(x, y);
                inked += qAbs(c.red() - ink.red()) + qAbs(c.green() - ink.green()) + qAbs(c.blue() - ink.blue()) < 90;
            }
        }
        // The button at the end it cannot go past is paler, yet still drawn; the other is ink.
        if (button->isEnabled())
            QVERIFY2(inked >= 12, qPrintable(QString::number(inked)));
    }
}

void TestNotesEditor::partsBuiltWhenFirstShownTakeTheTheme_data()
{
    QTest::addColumn<int>("tool");
    QTest::addColumn<QString>("part");
    QTest::newRow("find bar") << 2 << "cboFIND";
    QTest::newRow("replace bar") << 3 << "cboREPLACE";
    QTest::newRow("pictures page") << 1 << "btnINSPICTURE";
    QTest::newRow("spelling page, its tab chosen") << -1 << "lstSUGGESTIONS";
}

// The find bar and the side panel's later pages are made when first asked for, after the theme
// was applied to the editor: they must still be in the theme's panel font, and work.
void TestNotesEditor::partsBuiltWhenFirstShownTakeTheTheme()
{
    QFETCH(int, tool);
    QFETCH(QString, part);
    Theme theme = CurrentTheme();
    theme.PanelFont = QStringLiteral("DejaVu Serif");
    SetCurrentTheme(theme);
    ApplyTheme(m_editor);
    m_editor->show();
    QVERIFY(!m_editor->findChild<QWidget *>(part));

    if (tool >= 0)
        m_editor->NoteTool(tool);
    else
        m_editor->findChild<QTabWidget *>(QStringLiteral("tabSIDEPANEL"))->setCurrentIndex(2);
    auto *widget = m_editor->findChild<QWidget *>(part);
    QVERIFY(widget);
    QCOMPARE(widget->font().family(), QStringLiteral("DejaVu Serif"));
    QVERIFY(widget->isVisibleTo(m_editor));
    SetCurrentTheme(Theme());
}

QTEST_MAIN(TestNotesEditor)
#include "test_notes_editor.moc"
