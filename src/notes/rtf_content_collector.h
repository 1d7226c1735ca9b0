#pragma once

#include "notes/rtf_content.h"

// Gathers the runs, paragraphs, cells and rows the RTF reader finds into a flow of blocks,
// opening and closing (nested) tables as the table level of each paragraph asks. Level 0 is
// the body, level 1 a table, level 2 a table inside a cell of it, and so on; a paragraph at a
// lower level closes the deeper tables first, so text is never lost or reordered, even when
// the levels in the file skip or contradict each other.
class RtfContentCollector
{
public:
    RtfContentCollector();
    ~RtfContentCollector();

    void appendText(const QString &text, const QTextCharFormat &format);
    void appendPicture(const QTextCharFormat &imageFormat);
    bool paragraphIsEmpty() const { return m_paragraph.runs.empty(); }

    void endParagraph(const QTextBlockFormat &format, const QTextCharFormat &endFormat,
                      const RtfListItem &list, int tableLevel);
    // Ends the paragraph in progress as the last one of the current cell at `tableLevel`.
    void endCell(const QTextBlockFormat &format, const QTextCharFormat &endFormat, int tableLevel,
                 const RtfListItem &list = RtfListItem());
    // Ends the row; empty cells beyond the `definedCells` the row definition gave are dropped.
    void endRow(int tableLevel, const RtfRowDefinition &definition);

    // The collected flow; a paragraph still in progress becomes the last block.
    std::vector<RtfBlock> finish(const QTextBlockFormat &format, const QTextCharFormat &endFormat);

private:
    struct OpenTable;

    std::vector<RtfBlock> &flowAt(int tableLevel);
    void closeDeepestTable();
    RtfParagraph takeParagraph(const QTextBlockFormat &format, const QTextCharFormat &endFormat);

    std::vector<RtfBlock> m_body;
    std::vector<OpenTable> m_tables;
    RtfParagraph m_paragraph;
};
