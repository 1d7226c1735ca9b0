#include "notes/spell_highlighter.h"

#include "notes/spell_checker.h"

#include <QElapsedTimer>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextDocument>
#include <QTimer>

namespace {

// A slice of a whole-document check stays well below a frame.
constexpr int kSliceMs = 8;
// An edit adding no more than this at one place is typing; a paste is checked at once.
constexpr int kTypedLength = 2;

} // namespace

SpellHighlighter::SpellHighlighter(SpellChecker *checker, QObject *parent)
    : QSyntaxHighlighter(parent)
    , m_checker(checker)
    , m_recheckTimer(new QTimer(this))
{
    m_format.setUnderlineStyle(QTextCharFormat::WaveUnderline);
    m_format.setUnderlineColor(QColor(220, 0, 0));
    m_recheckTimer->setInterval(0);
    connect(m_recheckTimer, &QTimer::timeout, this, &SpellHighlighter::recheckSlice);
    if (m_checker)
        connect(m_checker, &SpellChecker::dictionaryChanged, this, &SpellHighlighter::recheckAll);
}

// The base class detaches the document in its own destructor, which clears the underlines
// and so reports a change of the contents; by then this part of the object is gone, so the
// edit tracking lets go of the document first.
SpellHighlighter::~SpellHighlighter()
{
    if (QTextDocument *current = document())
        disconnect(current, &QTextDocument::contentsChange, this, &SpellHighlighter::noteEdit);
}

void SpellHighlighter::attach(QTextDocument *document)
{
    if (QTextDocument *old = this->document())
        disconnect(old, &QTextDocument::contentsChange, this, &SpellHighlighter::noteEdit);
    m_typingAt = -1;
    // Connected before the highlighter's own handler, so an edit is known to be typing when
    // its paragraph is checked.
    if (document)
        connect(document, &QTextDocument::contentsChange, this, &SpellHighlighter::noteEdit);
    // Qt checks a new document whole in one go, which could hold up the window for a long
    // one: that pass is left empty and the document is checked in slices right after it.
    m_skipWholePass = true;
    setDocument(document);
    QTimer::singleShot(0, this, [this] {
        m_skipWholePass = false;
        recheckAll();
    });
}

void SpellHighlighter::noteEdit(int position, int removed, int added)
{
    m_typingAt = (removed <= 1 && added <= kTypedLength && added > 0) ? position + added : -1;
    if (removed > 0 && added == 0)
        m_typingAt = position; // backspacing inside a word: leave it alone until the caret goes
}

void SpellHighlighter::caretMoved(int position)
{
    if (m_typingAt < 0 || position == m_typingAt || !document())
        return;
    const QTextBlock block = document()->findBlock(m_typingAt);
    m_typingAt = -1;
    if (block.isValid())
        recheckBlock(block);
}

void SpellHighlighter::recheckBlock(const QTextBlock &block)
{
    // Qt reports a rehighlighted paragraph as a change of the document's contents; nothing in
    // it changed, and the page's listeners (statistics, recovery copies) must not hear of it.
    // The layout is told directly, so the page still repaints.
    const QSignalBlocker quiet(document());
    rehighlightBlock(block);
}

QList<CutWord> SpellHighlighter::misspeltWords(const QString &blockText, int skipAt) const
{
    QList<CutWord> words;
    if (!m_checker || !m_checker->isReady())
        return words;
    const QString text = SpellWalkText(blockText);
    for (int position = 0; position < text.size();) {
        CutWord word = CutWordAt(text, position);
        position = word.end;
        if (word.length == 0 || m_checker->isCorrect(WordIn(text, word)))
            continue;
        if (skipAt >= word.start && skipAt <= word.start + word.length)
            continue;
        word.text = WordIn(text, word).toString();
        words.append(word);
    }
    return words;
}

void SpellHighlighter::highlightBlock(const QString &text)
{
    if (m_skipWholePass)
        return;
    const QTextBlock block = currentBlock();
    const int skipAt = m_typingAt >= block.position() ? m_typingAt - block.position() : -1;
    for (const CutWord &word : misspeltWords(text, skipAt))
        setFormat(word.start, word.length, m_format);
}

bool SpellHighlighter::misspeltWordAt(int position, CutWord *word) const
{
    if (!document())
        return false;
    const QTextBlock block = document()->findBlock(position);
    if (!block.isValid())
        return false;
    const int inBlock = position - block.position();
    for (const CutWord &found : misspeltWords(block.text(), -1)) {
        if (inBlock >= found.start && inBlock <= found.start + found.length) {
            *word = found;
            word->start += block.position();
            return true;
        }
    }
    return false;
}

void SpellHighlighter::recheckAll()
{
    if (!document())
        return;
    m_nextBlock = 0;
    m_recheckTimer->start();
}

void SpellHighlighter::recheckSlice()
{
    QTextDocument *doc = document();
    if (!doc || m_nextBlock < 0) {
        m_recheckTimer->stop();
        return;
    }
    QElapsedTimer clock;
    clock.start();
    QTextBlock block = doc->findBlockByNumber(m_nextBlock);
    while (block.isValid() && clock.elapsed() < kSliceMs) {
        recheckBlock(block);
        block = block.next();
    }
    if (block.isValid()) {
        m_nextBlock = block.blockNumber();
    } else {
        m_nextBlock = -1;
        m_recheckTimer->stop();
    }
}

bool SpellHighlighter::isIdle() const
{
    return m_nextBlock < 0;
}
