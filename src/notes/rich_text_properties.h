#pragma once

#include <QTextFormat>

// How the notes editor keeps rich text in a QTextDocument, shared by the RTF reader, the RTF
// writer and the editor, so that what one puts in the others find.
//
// Lengths: RTF counts in twips (1/20 point). QTextDocument lengths (margins, indents, picture
// sizes) are in pixels of a 96 dpi page, so one pixel is 15 twips. Font sizes stay in points.
//
// Characters: QTextCharFormat fontFamilies (the run's font first; a second entry is the East
// Asian font of its CJK characters, RTF \dbch\af), fontPointSize, fontWeight (Bold or Normal),
// fontItalic, fontUnderline, fontStrikeOut, fontCapitalization (AllUppercase for \caps,
// SmallCaps for \scaps), foreground (text colour), background (highlight), verticalAlignment
// (AlignSuperScript / AlignSubScript / AlignNormal), and anchor + anchorHref for the text of a
// hyperlink.
//
// Paragraphs: QTextBlockFormat alignment (AlignLeft, AlignHCenter, AlignRight, AlignJustify),
// leftMargin, rightMargin, textIndent (first line), topMargin (before), bottomMargin (after),
// lineHeight: ProportionalHeight in percent of single spacing (115 = 1.15 lines),
// MinimumHeight or FixedHeight in pixels (RTF \slN with \slmult0, positive or negative),
// layoutDirection (\rtlpar, \ltrpar) and pageBreakPolicy (PageBreak_AlwaysBefore for \pagebb
// and for the paragraph after a \page).
// Lists are QTextLists (ListDisc for bullets, ListDecimal and the letter and roman styles for
// numbers) whose indent is the nesting level plus one; a list paragraph's leftMargin is what
// it is indented beyond its level. Tables are QTextTables, merged cells QTextTable merges.
//
// Pictures: a QTextImageFormat whose name() is a resource of the document
// (QTextDocument::ImageResource). PNG and JPEG pictures are kept as their original encoded
// bytes (a QByteArray resource, which Qt decodes for painting), so saving writes the same bytes
// back. A picture of a kind the editor cannot show (metafiles, device-independent bitmaps, ...)
// is shown as a placeholder image and keeps its whole original RTF group in
// RawPictureProperty, which the writer puts back unchanged.
namespace RichText {

// QByteArray: the complete original "{\pict ...}" group of a picture shown as a placeholder.
constexpr int RawPictureProperty = QTextFormat::UserProperty + 1;

// int: the number of a numbered list's first item when it is not 1 (kept for saving; the
// list is shown counting from 1).
constexpr int ListStartProperty = QTextFormat::UserProperty + 2;

// Resource names of pictures read from RTF or inserted by the user: "rtfpicture:<n>".
inline constexpr char kPictureScheme[] = "rtfpicture";

constexpr double kTwipsPerPixel = 15.0;

inline double TwipsToPixels(double twips) { return twips / kTwipsPerPixel; }
inline int PixelsToTwips(double pixels) { return qRound(pixels * kTwipsPerPixel); }

// Where an RTF list paragraph's text starts (\li) at a nesting level (0 for a top-level list):
// one document indent per level, the way Qt indents a QTextList. The marker hangs in front of
// the text by kListHangingTwips (\fi). A list paragraph's own left margin adds to this.
constexpr int kListHangingTwips = -360;
inline int ListLeftIndentTwips(int level, double indentWidthPixels)
{
    return (level + 1) * PixelsToTwips(indentWidthPixels);
}

} // namespace RichText
