#pragma once

#include "notes/spell_words.h"

#include <QPointer>
#include <QSyntaxHighlighter>

class QTimer;
#include "notes/spell_checker.h"

// Underlines unknown words of a document in red as the user types. Qt hands it only the
// paragraphs an edit touched, so typing costs the checking of one paragraph; after the word
// list changes (read, a word added or ignored) the whole document is checked again a slice at
// a time, so a long document never holds up the window. The underlines are drawn over the
// text: the document itself, its undo history and its modified flag are left alone.
//
// The word being typed is not underlined until the caret leaves it.
class SpellHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT
public:
    SpellHighlighter(SpellChecker *checker, QObject *parent);
    ~SpellHighlighter() override;

    // Underlines `document` (nullptr: none). Use this rather than setDocument.
    void attach(QTextDocument *document);
    // The caret of the page moved: a word left behind gets its underline.
    void caretMoved(int position);

    // The underlined word at `position` of the document, if any.
    bool misspeltWordAt(int position, CutWord *word) const;

    SpellChecker *checker() const { return m_checker; }

    // Tests: whether every paragraph has been checked since the last change of the word list.
    bool isIdle() const;

protected:
    void highlightBlock(const QString &text) override;

private:
    void noteEdit(int position, int removed, int added);
    void recheckAll();
    void recheckSlice();
    void recheckBlock(const QTextBlock &block);
    // The words of a paragraph that are underlined, `skipAt` (a position in the paragraph)
    // excepted.
    QList<CutWord> misspeltWords(const QString &blockText, int skipAt) const;

    QPointer<SpellChecker> m_checker;
    QTextCharFormat m_format;
    QTimer *m_recheckTimer;
    int m_nextBlock = -1; // the next paragraph of a whole-document check, -1 when none is due
    bool m_skipWholePass = false;
    int m_typingAt = -1;  // where the last typed character ended, -1 when the last edit was not typing
};
