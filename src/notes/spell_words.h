#pragma once

#include <QString>
#include <QStringView>

// How the spell checker cuts a text into words and which words it takes without looking
// them up. Shared by the checking walk and the underlines drawn while typing.

// The checks that count a word as correct before the word list is asked; all on by default.
struct SpellSkipOptions
{
    bool numbers = true;    // a word with a digit 1 to 9 ("R2D2")
    bool capitals = true;   // a word of capitals A to Z only ("NASA")
    bool characters = true; // a word with a sign such as - @ & or a character beyond z ("e-mail")
};

// Whether `word` is taken as correct by the checks of `options` alone. An empty word is.
bool IsSkippedWord(QStringView word, const SpellSkipOptions &options);

// "e.g" and "i.e" (their last full stop stripped) pass unchecked, in lower case only.
bool IsAbbreviationWord(QStringView word);

// A word of a text: `start` and `length` cover the word without the punctuation stripped from
// its edges; `end` is where the next word may begin (past its separator). `text` is filled by
// whoever keeps the word beyond the text it was cut from.
struct CutWord
{
    int start = 0;
    int length = 0;
    int end = 0;
    QString text;
};

// The word that begins at `from`: it runs to the first character below 33 (space, tab, line
// ends, control characters) or to the end of the text, so it never holds a blank or a line
// end and separators are never bridged. Then each of _ . ' , ? ( ) [ ] and the double quote
// in turn is stripped once from its end and once from its start.
CutWord CutWordAt(QStringView text, int from);

// The characters of `word` in `text`.
inline QStringView WordIn(QStringView text, const CutWord &word)
{
    return text.mid(word.start, word.length);
}

// The text of a document as the walk sees it, one character per cursor position: paragraph
// and line breaks, tabs, table borders and pictures become blanks, so every one of them ends
// a word and positions in it are positions in the document.
QString SpellWalkText(QString raw);
