#pragma once

#include "notes/spell_settings.h"

#include <QObject>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QTextCursor>

#include <memory>

class QTextDocument;
class QThread;
class SpellDictionary;

// cls_SPL, the spell checker: the word list of the chosen language, the lookup with its skip
// checks, and the checking walk through a document, which stops at each unknown word with its
// suggestions until the user ignores, changes or adds it.
//
// One checker serves the whole program (shared()); the editor's documents ask it while the
// user types, so the word list is read on a worker thread and the windows never wait for it.
class SpellChecker : public QObject
{
    Q_OBJECT
public:
    explicit SpellChecker(QObject *parent = nullptr);
    ~SpellChecker() override;

    // The program's checker, made on first call (the start-up makes it) and kept to the end.
    static SpellChecker *shared();

    // Reads the settings again; a new language is read at the next check.
    void reloadSettings();
    const SpellSettings &settings() const { return m_settings; }

    // Starts reading the word list on a worker thread, unless it is read or being read.
    void loadInBackground();
    // Reads the word list now, waiting for a read already under way. Once read it stays.
    void DatabaseLoadCheck();
    bool isLoaded() const { return m_loaded; }
    bool isDictionaryMissing() const { return m_missing; }
    // Whether words can be looked up: read and found.
    bool isReady() const { return m_loaded && !m_missing; }

    // Appends the words added and not yet written, lower-cased, one per line, to the
    // word list's file (through a temporary file, so a crash leaves the old list whole). False,
    // with the reason, when the file could not be written.
    bool DatabaseSave(QString *error = nullptr);

    // Whether `word` (cut and stripped as the walk does) passes: the skip checks, the words
    // ignored for this session, "e.g" and "i.e", then the word list. Until the list is read,
    // or when it is missing, only the skip checks pass a word.
    bool isCorrect(QStringView word) const;
    // The suggestion list for `word` as the walk shows it: "Dictionary not found" when the
    // list is missing, "None Found" when nothing is close.
    QStringList suggestionsFor(const QString &word) const;
    // Suggestions for the menu of an underlined word: as above, and for a word starting with a
    // capital that gets none, those of its lower-case form, capitalised. Empty when none.
    QStringList menuSuggestionsFor(const QString &word) const;
    // Passes `word` everywhere until the program ends.
    void ignoreAll(const QString &word);
    // Adds `word` to the word list and writes it to the file at once (saveFailed when that
    // fails; the word is then kept for the next DatabaseSave).
    void addWord(const QString &word);

    // The walk. CheckFile starts at `caret` of `document` and stops at the first unknown word
    // (wordFound) or at the end (CompleteSpellCheck).
    void CheckFile(QTextDocument *document, int caret);
    void WordIgnore();
    void WordChng(const QString &newText);
    void WordAdd();
    // Forgets the walk (its document went away or another was chosen).
    void stopWalk();
    bool isWalking() const { return !m_walkDocument.isNull() && !m_currentWord.isEmpty(); }
    QTextDocument *walkDocument() const { return m_walkDocument; }
    QString currentWord() const { return m_currentWord; }
    // The unknown word in the walk's document, selected.
    QTextCursor currentSelection() const { return m_wordCursor; }

signals:
    void CompleteSpellCheck();
    void BeforeAdd(const QString &word);
    void BeforeChange(const QString &newText);
    void BeforeSave();
    // The walk stopped at an unknown word; currentSelection() covers it.
    void wordFound(const QString &word, const QStringList &suggestions);
    // The list was read, or a word added or ignored: what is underlined may change.
    void dictionaryChanged();
    // An added word could not be written to the word list's file: `error` says why.
    void saveFailed(const QString &error);

private:
    void startLoad();
    void adoptLoadedDictionary();
    void leaveLanguage();
    void continueWalk(int from);
    void finishWalk();

    SpellSettings m_settings;
    std::shared_ptr<SpellDictionary> m_dictionary;
    QString m_loadedLanguage;
    QString m_loadedPath;
    QThread *m_loader = nullptr;
    std::shared_ptr<SpellDictionary> m_loaderResult;
    bool m_loaderFound = false;
    bool m_loaded = false;
    bool m_missing = false;
    bool m_changed = false;
    QStringList m_added;
    QSet<QString> m_ignored;

    QPointer<QTextDocument> m_walkDocument;
    QTextCursor m_wordCursor;  // the unknown word, selected
    QTextCursor m_nextCursor;  // where the walk goes on after it
    QString m_currentWord;
};
