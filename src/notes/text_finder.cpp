#include "notes/text_finder.h"

#include <QTextDocument>

namespace {

QTextDocument::FindFlags flagsFor(const FindOptions &options)
{
    QTextDocument::FindFlags flags;
    if (options.matchCase)
        flags |= QTextDocument::FindCaseSensitively;
    if (options.wholeWord)
        flags |= QTextDocument::FindWholeWords;
    if (options.backward)
        flags |= QTextDocument::FindBackward;
    return flags;
}

} // namespace

FindResult TextFinder::find(const QTextDocument *document, const QTextCursor &from, const QString &text,
                            const FindOptions &options)
{
    FindResult result;
    if (!document || text.isEmpty())
        return result;
    const QTextDocument::FindFlags flags = flagsFor(options);
    result.match = document->find(text, from, flags);
    if (result.found() || !options.wrapAround)
        return result;
    // Start again from the far end: the first position, or past the last character.
    const int restart = options.backward ? document->characterCount() : 0;
    result.match = document->find(text, restart, flags);
    result.wrapped = result.found();
    return result;
}

bool TextFinder::isMatch(const QTextCursor &selection, const QString &text, const FindOptions &options)
{
    if (selection.isNull() || !selection.hasSelection() || text.isEmpty())
        return false;
    // Search forward from the selection's start with the same rules, so that case and word
    // boundaries are judged exactly as a search judges them.
    FindOptions forward = options;
    forward.backward = false;
    const QTextCursor found = selection.document()->find(text, selection.selectionStart(), flagsFor(forward));
    return !found.isNull() && found.selectionStart() == selection.selectionStart() &&
           found.selectionEnd() == selection.selectionEnd();
}

bool TextFinder::replaceCurrent(QTextCursor &cursor, const QString &text, const QString &replacement,
                                const FindOptions &options)
{
    if (!isMatch(cursor, text, options))
        return false;
    cursor.insertText(replacement);
    return true;
}

int TextFinder::replaceAll(QTextDocument *document, const QString &text, const QString &replacement,
                           const FindOptions &options)
{
    if (!document || text.isEmpty())
        return 0;
    FindOptions forward = options;
    forward.backward = false;
    const QTextDocument::FindFlags flags = flagsFor(forward);
    QTextCursor block(document);
    block.beginEditBlock();
    int count = 0;
    int position = 0;
    for (QTextCursor match = document->find(text, position, flags); !match.isNull();
         match = document->find(text, position, flags)) {
        match.insertText(replacement);
        position = match.position(); // just past the replacement
        ++count;
    }
    block.endEditBlock();
    return count;
}
