#pragma once

#include <QList>

class QTextDocument;

// One line of a laid-out document, in document coordinates: lines of table cells and frames
// too, in the order of the text.
struct LaidOutLine
{
    qreal top = 0;
    qreal bottom = 0;
    int firstChar = 0;
};

// One printed page: the band of the laid-out document it shows, and the characters that
// start on it. `nextChar` is the first character that did not fit, where the next page starts.
struct PageSlice
{
    qreal top = 0;
    qreal bottom = 0;
    int firstChar = 0;
    int nextChar = 0;
};

// Every line of `document`, which must be laid out (a page size set).
QList<LaidOutLine> CollectLaidOutLines(const QTextDocument &document);

// Breaks the lines into pages `pageHeight` high. Each page takes whole lines from where the
// last one stopped; a line that would cross the bottom of the page starts the next page, and
// so does every line beside it (in the other cells of a table row) that would be cut. Only a
// table row taller than a page, whose cells' lines overlap all the way up, is cut through
// lines beside the break. The first character that did not fit starts the next page.
//
// Breaking stops when that character reaches `textLength`, or when a page adds no characters
// (one line taller than a whole page): that page is kept, showing what fits, and nothing
// after it is broken, so an oversized object can never make the loop run on.
QList<PageSlice> BreakIntoPages(const QList<LaidOutLine> &lines, qreal pageHeight, int textLength);
