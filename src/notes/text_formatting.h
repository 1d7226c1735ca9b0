#pragma once

#include <QTextCharFormat>
#include <QTextCursor>

// The paragraph and character changes of the notes editor's format bar, applied to the
// paragraphs a cursor's selection touches (or the caret's paragraph). Each change is one undo
// step. Lengths follow rich_text_properties.h: pixels of a 96 dpi page.
namespace TextFormatting {

// One indent step: half an inch.
constexpr double kIndentStepPixels = 48.0;

// Line spacing as a multiple of single spacing; 1 where the paragraph has none of its own or
// a fixed one. The caret's paragraph (the first of a selection) decides.
double LineSpacing(const QTextCursor &cursor);
void SetLineSpacing(const QTextCursor &cursor, double multiple);

Qt::Alignment Alignment(const QTextCursor &cursor);
void SetAlignment(const QTextCursor &cursor, Qt::Alignment alignment);

// True when the caret's paragraph is a bulleted list item.
bool HasBullets(const QTextCursor &cursor);
// Bullets on for every selected paragraph, or off for all when the first already has them.
void ToggleBullets(const QTextCursor &cursor);

// Moves the left indent of the selected paragraphs by `steps` indent steps (negative: left),
// never below zero. List items move one nesting level instead.
void ShiftIndent(const QTextCursor &cursor, int steps);

// Space before and after each selected paragraph, in points.
double SpacingBefore(const QTextCursor &cursor);
double SpacingAfter(const QTextCursor &cursor);
void SetSpacingBefore(const QTextCursor &cursor, double points);
void SetSpacingAfter(const QTextCursor &cursor, double points);

// Normal, raised or lowered script for the selection.
void SetScript(const QTextCursor &cursor, QTextCharFormat::VerticalAlignment script);

// Takes bold, italic, underline, strike-out, colours, script and links off the selection; the
// font and size become `base` (the document's own font).
void RemoveCharacterFormatting(const QTextCursor &cursor, const QTextCharFormat &base);

// Single spacing and no indents for the selected paragraphs (they stay in their lists).
void ResetParagraphs(const QTextCursor &cursor);

double PointsToPixels(double points);
double PixelsToPoints(double pixels);

} // namespace TextFormatting
