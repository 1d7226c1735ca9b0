#pragma once

#include <QString>

// The statistics under the notes editor's page: words and characters of the whole text and of
// the selection (lblCHARS), and the caret's line (lblLINESTAT).
//
// The counts work on text in which every line break is a CR LF pair, as the editor's users
// have always seen them counted: a break counts two characters, and a CR LF pair separates
// words. StatisticsText() turns the text of a QTextDocument (or of a QTextCursor selection)
// into that form.

// `documentText` with each paragraph separator (U+2029), line separator (U+2028), frame mark
// (U+FDD0, U+FDD1: the edges of a table) and "\n" written as CR LF. It takes the raw text of a
// document (QTextDocument::toRawText()), whose no-break spaces do not separate words.
QString StatisticsText(const QString &documentText);

// The number of words: "-" and CR LF pairs separate words, every single space separates
// words (so two spaces in a row count an empty word: "a  b" is 3), tabs and lone CR or LF
// do not. Spaces at either end are not counted; an empty text has 0 words.
int WordCount(const QString &text);

// The text of lblCHARS: "12 words (60 chars). ", followed, when `selectedText` is not empty,
// by "2 sel words (9 sel chars). ". Both texts in the CR LF form.
QString CharacterStatistics(const QString &text, const QString &selectedText);

// The text of lblLINESTAT: "3 of 10 lines. ". Each line break before the caret moves the
// current line on by one; the total is the number of line breaks plus one. A line break is a
// "\n", U+2029, U+2028 or a frame mark, so this takes the text as QTextDocument::toRawText() or
// toPlainText() give it, with `caretPosition` a QTextCursor position in it (a CR LF pair counts
// once as well). Positions outside the text are clamped.
QString LineStatistics(const QString &text, int caretPosition);
