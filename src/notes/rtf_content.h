#pragma once

#include <QString>
#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>

#include <memory>
#include <vector>

// What the RTF reader collects before it builds the document: paragraphs of formatted runs,
// and tables whose cells hold paragraphs and further tables. Collecting first lets a table be
// inserted in one piece once its size is known, and lets a paragraph take the properties in
// force at its end.

// A stretch of text in one format, or a picture when `isPicture` (format is then a
// QTextImageFormat and text is empty).
struct RtfRun
{
    QString text;
    QTextCharFormat format;
    bool isPicture = false;
};

// Which list a paragraph belongs to: paragraphs with the same key and level share one
// QTextList. A key of 0 means no list.
struct RtfListItem
{
    int key = 0;
    int level = 0;
    QTextListFormat::Style style = QTextListFormat::ListDisc;
    QString prefix;                       // text before a number
    QString suffix = QStringLiteral("."); // text after a number
    int start = 1;                        // the first item's number
};

struct RtfTable;

struct RtfParagraph
{
    QTextBlockFormat format;
    QTextCharFormat endFormat; // format of the paragraph mark, for empty paragraphs
    RtfListItem list;
    std::vector<RtfRun> runs;
};

// One item of a flow of content: a paragraph, or a table when `table` is set.
struct RtfBlock
{
    RtfParagraph paragraph;
    std::unique_ptr<RtfTable> table;
};

struct RtfCell
{
    std::vector<RtfBlock> blocks;
};

// How a cell joins its neighbours: \clvmgf starts a run of cells merged downwards and
// \clvmrg continues it; \clmgf and \clmrg do the same to the right.
enum class RtfCellMerge { None, VerticalFirst, VerticalContinue, HorizontalFirst, HorizontalContinue };

// A row definition: where each cell ends (\cellx, twips from the left), how each cell is
// merged, and the space between a cell's border and its text (\trgaph, twips; -1 when not given).
struct RtfRowDefinition
{
    std::vector<int> cellEdges;
    std::vector<RtfCellMerge> merges; // one per cell edge
    RtfCellMerge pendingMerge = RtfCellMerge::None;
    int gap = -1;
};

struct RtfTable
{
    std::vector<std::vector<RtfCell>> rows;
    std::vector<RtfRowDefinition> rowDefinitions; // one per row
    RtfRowDefinition definition; // of the first row: the table's column widths
};
