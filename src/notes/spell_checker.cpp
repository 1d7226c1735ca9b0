#include "notes/spell_checker.h"

#include "core/safe_file_write.h"
#include "core/shipped_data.h"
#include "notes/spell_dictionary.h"
#include "notes/spell_words.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextDocument>
#include <QThread>

namespace {

const QString kNotFound = QStringLiteral("Dictionary not found");
const QString kNoneFound = QStringLiteral("None Found");

} // namespace

SpellChecker::SpellChecker(QObject *parent)
    : QObject(parent)
    , m_settings(SpellSettings::load())
{
    setObjectName(QStringLiteral("cls_SPL"));
}

SpellChecker::~SpellChecker()
{
    if (m_loader) {
        m_loader->wait();
        delete m_loader;
    }
}

SpellChecker *SpellChecker::shared()
{
    static QPointer<SpellChecker> instance;
    if (!instance) {
        instance = new SpellChecker(QCoreApplication::instance());
        // Words the user added reach the file when the program ends, whatever else happens.
        if (QCoreApplication::instance())
            connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, instance,
                    [] { instance->DatabaseSave(); });
    }
    return instance;
}

void SpellChecker::reloadSettings()
{
    m_settings = SpellSettings::load();
    emit dictionaryChanged();
}

void SpellChecker::loadInBackground()
{
    if (m_loader)
        return;
    if (m_loaded && m_loadedLanguage != m_settings.language)
        leaveLanguage();
    if (!m_loaded || m_loadedLanguage != m_settings.language)
        startLoad();
}

void SpellChecker::leaveLanguage()
{
    // The words added so far belong to the old list's file.
    DatabaseSave();
    m_added.clear();
    m_changed = false;
}

void SpellChecker::startLoad()
{
    const QString path = m_settings.dictionaryPath();
    m_loadedLanguage = m_settings.language;
    m_loadedPath = path;
    auto result = std::make_shared<SpellDictionary>();
    m_loaderResult = result;
    m_loaderFound = false;
    bool *found = &m_loaderFound;
    m_loader = QThread::create([path, result, found] {
        // On a first run the start-up copies the shipped lists only after its first window;
        // an editor opened at once must not find them missing.
        if (!QFileInfo::exists(path))
            InstallMissingDictionaries();
        QDir().mkpath(QFileInfo(path).absolutePath());
        *found = result->load(path);
    });
    connect(m_loader, &QThread::finished, this, &SpellChecker::adoptLoadedDictionary);
    m_loader->start(QThread::LowPriority);
}

void SpellChecker::adoptLoadedDictionary()
{
    if (!m_loader)
        return; // already taken over by DatabaseLoadCheck
    m_loader->wait();
    m_loader->deleteLater();
    m_loader = nullptr;
    m_dictionary = std::move(m_loaderResult);
    m_missing = !m_loaderFound;
    m_loaded = true;
    emit dictionaryChanged();
}

void SpellChecker::DatabaseLoadCheck()
{
    // Another language was chosen since the list was read: the added words go to the old
    // list's file first, then the new list is read.
    if (m_loaded && !m_loader && m_loadedLanguage != m_settings.language) {
        leaveLanguage();
        startLoad();
    }
    if (!m_loaded && !m_loader)
        startLoad();
    adoptLoadedDictionary();
}

bool SpellChecker::DatabaseSave(QString *error)
{
    if (!m_changed || m_missing || !m_loaded)
        return true;
    QFile file(m_loadedPath);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    QByteArray bytes = file.readAll();
    file.close();
    // A list whose last line has no line end would swallow the first added word.
    if (!bytes.isEmpty() && !bytes.endsWith("\r\n"))
        bytes.append("\r\n");
    // The words added since the last save; once written they are in the file for good.
    for (const QString &word : std::as_const(m_added))
        bytes.append(word.toLower().toUtf8()).append("\r\n");
    if (!WriteFileSafely(m_loadedPath, bytes, error))
        return false;
    m_added.clear();
    m_changed = false;
    emit BeforeSave();
    return true;
}

bool SpellChecker::isCorrect(QStringView word) const
{
    if (IsSkippedWord(word, m_settings.skip) || IsAbbreviationWord(word))
        return true;
    if (!m_ignored.isEmpty() && m_ignored.contains(word.toString()))
        return true;
    return isReady() && m_dictionary->contains(word);
}

QStringList SpellChecker::suggestionsFor(const QString &word) const
{
    if (m_missing)
        return {kNotFound};
    const QStringList found = m_dictionary ? m_dictionary->suggestions(word) : QStringList();
    return found.isEmpty() ? QStringList{kNoneFound} : found;
}

QStringList SpellChecker::menuSuggestionsFor(const QString &word) const
{
    if (!isReady())
        return {};
    QStringList found = m_dictionary->suggestions(word);
    if (found.isEmpty() && !word.isEmpty() && word.front().isUpper()) {
        QString lower = word;
        lower[0] = lower[0].toLower();
        found = m_dictionary->suggestions(lower);
        for (QString &s : found)
            s[0] = s[0].toUpper();
    }
    found.removeDuplicates();
    return found;
}

void SpellChecker::ignoreAll(const QString &word)
{
    m_ignored.insert(word);
    emit dictionaryChanged();
}

void SpellChecker::addWord(const QString &word)
{
    DatabaseLoadCheck();
    if (m_missing || word.isEmpty() || !m_dictionary->add(word))
        return;
    m_added.append(word);
    m_changed = true;
    emit dictionaryChanged();
    // Written at once, so a crash later in the run does not lose the word.
    QString error;
    if (!DatabaseSave(&error))
        emit saveFailed(error);
}

void SpellChecker::CheckFile(QTextDocument *document, int caret)
{
    m_settings = SpellSettings::load();
    DatabaseLoadCheck();
    m_walkDocument = document;
    m_currentWord.clear();
    if (!document)
        return;
    continueWalk(caret);
}

void SpellChecker::continueWalk(int from)
{
    const QString text = SpellWalkText(m_walkDocument->toRawText());
    int position = qBound(0, from, int(text.size()));
    while (position < text.size()) {
        const CutWord word = CutWordAt(text, position);
        position = word.end;
        // With no word list every word the skip checks leave stops the walk, and its
        // suggestion list says why.
        if (word.length == 0 || isCorrect(WordIn(text, word)))
            continue;
        m_currentWord = WordIn(text, word).toString();
        m_wordCursor = QTextCursor(m_walkDocument);
        m_wordCursor.setPosition(word.start);
        m_wordCursor.setPosition(word.start + word.length, QTextCursor::KeepAnchor);
        m_nextCursor = QTextCursor(m_walkDocument);
        m_nextCursor.setPosition(qMin(word.end, m_walkDocument->characterCount() - 1));
        emit wordFound(m_currentWord, suggestionsFor(m_currentWord));
        return;
    }
    finishWalk();
}

void SpellChecker::finishWalk()
{
    stopWalk();
    emit CompleteSpellCheck();
}

void SpellChecker::stopWalk()
{
    m_walkDocument.clear();
    m_currentWord.clear();
    m_wordCursor = QTextCursor();
    m_nextCursor = QTextCursor();
}

void SpellChecker::WordIgnore()
{
    if (isWalking())
        continueWalk(m_nextCursor.position());
}

void SpellChecker::WordChng(const QString &newText)
{
    if (!isWalking())
        return;
    emit BeforeChange(newText);
    if (m_wordCursor.hasSelection())
        m_wordCursor.insertText(newText);
    continueWalk(m_wordCursor.position());
}

void SpellChecker::WordAdd()
{
    if (!isWalking())
        return;
    emit BeforeAdd(m_currentWord);
    addWord(m_currentWord);
    continueWalk(m_nextCursor.position());
}
