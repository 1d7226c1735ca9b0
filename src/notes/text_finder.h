#pragma once

#include <QString>
#include <QTextCursor>

class QTextDocument;

// How a search compares and moves.
struct FindOptions
{
    bool matchCase = false;
    bool wholeWord = false;
    bool wrapAround = true;
    bool backward = false;
};

// What a search found: a cursor selecting the match (null when nothing was found) and whether
// the search had to start again from the other end of the document to find it.
struct FindResult
{
    QTextCursor match;
    bool wrapped = false;

    bool found() const { return !match.isNull(); }
};

// Find and replace in a rich-text document. Matches never span paragraphs; an empty search
// text finds nothing.
class TextFinder
{
public:
    // The next match after `from` (its selection's end), or the previous one before it (its
    // selection's start) when searching backward.
    static FindResult find(const QTextDocument *document, const QTextCursor &from, const QString &text,
                           const FindOptions &options);

    // True when `selection` selects exactly one match of `text`.
    static bool isMatch(const QTextCursor &selection, const QString &text, const FindOptions &options);

    // Replaces the selection of `cursor` when it is a match; false (nothing changed) otherwise.
    static bool replaceCurrent(QTextCursor &cursor, const QString &text, const QString &replacement,
                               const FindOptions &options);

    // Replaces every match in one undo step and returns how many were replaced. Text that a
    // replacement put in is never searched again, so a replacement may contain `text`.
    static int replaceAll(QTextDocument *document, const QString &text, const QString &replacement,
                          const FindOptions &options);
};
