#pragma once

#include "notes/rtf_content.h"
#include "notes/rtf_table_grid.h"

#include <QHash>
#include <QPair>
#include <QStringList>
#include <QTextCursor>

class QTextDocument;
class QTextList;
class QTextTable;

// Writes collected RTF content into a QTextDocument: one insertText per run, one insertTable
// per table, and QTextLists for list paragraphs (one list per list key and level; a deeper
// level starts afresh after each item of a shallower one).
class RtfDocumentBuilder
{
public:
    explicit RtfDocumentBuilder(QTextDocument *document);

    void build(const std::vector<RtfBlock> &blocks);
    // What the user should know about the document as built (tables flattened).
    QStringList warnings() const;

    // Tables nested deeper are written as the paragraphs of their cells: Qt's layout of a
    // table lays out each cell more than once, so its cost doubles with every level.
    static constexpr int kDeepestTable = 8;

private:
    // `fresh`: the cursor stands in an empty block that the next paragraph can use.
    void writeFlow(QTextCursor &cursor, const std::vector<RtfBlock> &blocks, bool fresh);
    void writeParagraph(QTextCursor &cursor, const RtfParagraph &paragraph, bool fresh);
    void writeTable(QTextCursor &cursor, const RtfTable &table);
    // The cells' content, cell after cell, in the flow the table stood in.
    void writeFlattened(QTextCursor &cursor, const RtfTable &table, bool fresh);
    void attachToList(QTextCursor &cursor, const RtfListItem &item);
    static QList<QTextLength> columnWidths(const RtfTableGrid &grid, const RtfRowDefinition &definition);
    static void mergeCells(QTextTable *table, const RtfTableGrid &grid);
    static bool hasContent(const RtfCell &cell);
    static QTextCharFormat withCellSpans(QTextCharFormat format, const QTextCharFormat &current);

    QTextDocument *m_document;
    QHash<QPair<int, int>, QTextList *> m_lists;
    int m_tableDepth = 0;
    bool m_flattened = false;
};
