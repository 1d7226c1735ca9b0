#include "notes/page_breaker.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <limits>

namespace {

// Layout coordinates are fractional; a line ending this close to the cut still fits.
constexpr qreal kTolerance = 0.01;

// The highest cut at or above `boundary` that goes through no line: each line crossing it
// moves it up to that line's top, which may cut another line beside it, and so on.
qreal cutAbove(const QList<LaidOutLine> &lines, qreal boundary)
{
    qreal cut = boundary;
    bool moved = true;
    while (moved) {
        moved = false;
        for (const LaidOutLine &line : lines) {
            if (line.top < cut - kTolerance && line.bottom > cut + kTolerance) {
                cut = line.top;
                moved = true;
            }
        }
    }
    return cut;
}

// Where to cut when no cut above `boundary` misses every line (table cells beside each
// other whose lines interleave all the way up the page): at the highest top of the lines
// crossing it that start on this page, cutting the lines beside them. -1 when the one line
// crossing it starts at the top of the page: it is taller than a page.
qreal cutThroughCells(const QList<LaidOutLine> &lines, qreal top, qreal boundary)
{
    qreal cut = -1;
    for (const LaidOutLine &line : lines) {
        if (line.top > top + kTolerance && line.top < boundary - kTolerance && line.bottom > boundary + kTolerance)
            cut = cut < 0 ? line.top : std::min(cut, line.top);
    }
    return cut;
}

} // namespace

QList<LaidOutLine> CollectLaidOutLines(const QTextDocument &document)
{
    QList<LaidOutLine> lines;
    QAbstractTextDocumentLayout *layout = document.documentLayout();
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextLayout *text = block.layout();
        if (!text || !block.isVisible())
            continue;
        const qreal blockTop = layout->blockBoundingRect(block).top();
        for (int i = 0; i < text->lineCount(); ++i) {
            const QTextLine line = text->lineAt(i);
            const qreal top = blockTop + line.y();
            lines.append({top, top + line.height(), block.position() + line.textStart()});
        }
    }
    return lines;
}

QList<PageSlice> BreakIntoPages(const QList<LaidOutLine> &lines, qreal pageHeight, int textLength)
{
    QList<PageSlice> pages;
    if (pageHeight <= 0)
        return pages;
    qreal top = 0;
    int firstChar = 0;
    for (;;) {
        qreal cut = cutAbove(lines, top + pageHeight);
        if (cut <= top + kTolerance)
            cut = std::max(cut, cutThroughCells(lines, top, top + pageHeight));
        int nextChar = std::numeric_limits<int>::max();
        for (const LaidOutLine &line : lines) {
            if (line.bottom > cut + kTolerance)
                nextChar = std::min(nextChar, line.firstChar);
        }
        if (nextChar == std::numeric_limits<int>::max() || nextChar >= textLength) {
            pages.append({top, top + pageHeight, firstChar, textLength});
            break;
        }
        if (cut <= top + kTolerance || nextChar <= firstChar) {
            // Nothing whole fits: show the page as far as it goes and stop.
            pages.append({top, top + pageHeight, firstChar, firstChar});
            break;
        }
        pages.append({top, cut, firstChar, nextChar});
        top = cut;
        firstChar = nextChar;
    }
    return pages;
}
