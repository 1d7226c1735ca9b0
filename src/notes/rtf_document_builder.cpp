#include "notes/rtf_document_builder.h"

#include "notes/rich_text_properties.h"

#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

#include <algorithm>

RtfDocumentBuilder::RtfDocumentBuilder(QTextDocument *document) : m_document(document) {}

void RtfDocumentBuilder::build(const std::vector<RtfBlock> &blocks)
{
    QTextCursor cursor(m_document);
    // One edit block: the document tells its views about the change once, at the end.
    cursor.beginEditBlock();
    writeFlow(cursor, blocks, true);
    cursor.endEditBlock();
}

QStringList RtfDocumentBuilder::warnings() const
{
    if (!m_flattened)
        return {};
    return {QStringLiteral("Tables nested deeper than %1 levels were flattened into their enclosing cell; "
                           "their text is kept as paragraphs.")
                .arg(kDeepestTable)};
}

void RtfDocumentBuilder::writeFlow(QTextCursor &cursor, const std::vector<RtfBlock> &blocks, bool fresh)
{
    for (const RtfBlock &block : blocks) {
        if (block.table && m_tableDepth >= kDeepestTable) {
            writeFlattened(cursor, *block.table, fresh);
            fresh = false;
            continue;
        }
        if (block.table) {
            writeTable(cursor, *block.table);
        } else {
            writeParagraph(cursor, block.paragraph, fresh);
        }
        // After a table the cursor stands in the empty block that follows it.
        fresh = bool(block.table);
    }
}

void RtfDocumentBuilder::writeFlattened(QTextCursor &cursor, const RtfTable &table, bool fresh)
{
    m_flattened = true;
    for (const auto &row : table.rows) {
        for (const RtfCell &cell : row) {
            // A cell with nothing in it would only leave an empty line behind.
            const bool empty = std::all_of(cell.blocks.begin(), cell.blocks.end(), [](const RtfBlock &block) {
                return !block.table && block.paragraph.runs.empty();
            });
            if (empty)
                continue;
            writeFlow(cursor, cell.blocks, fresh);
            fresh = false;
        }
    }
}

void RtfDocumentBuilder::writeParagraph(QTextCursor &cursor, const RtfParagraph &paragraph, bool fresh)
{
    if (fresh) {
        cursor.setBlockFormat(paragraph.format);
        cursor.setBlockCharFormat(withCellSpans(paragraph.endFormat, cursor.blockCharFormat()));
    } else {
        cursor.insertBlock(paragraph.format, paragraph.endFormat);
    }
    if (paragraph.list.key != 0)
        attachToList(cursor, paragraph.list);
    for (const RtfRun &run : paragraph.runs) {
        if (run.isPicture)
            cursor.insertImage(run.format.toImageFormat());
        else
            cursor.insertText(run.text, run.format);
    }
}

bool RtfDocumentBuilder::hasContent(const RtfCell &cell)
{
    return std::any_of(cell.blocks.begin(), cell.blocks.end(),
                       [](const RtfBlock &block) { return block.table || !block.paragraph.runs.empty(); });
}

// The first block of a table cell carries the cell's spans in its character format: a merged
// cell stays merged when its first paragraph takes the format read for it.
QTextCharFormat RtfDocumentBuilder::withCellSpans(QTextCharFormat format, const QTextCharFormat &current)
{
    for (const int property : {int(QTextFormat::TableCellRowSpan), int(QTextFormat::TableCellColumnSpan)}) {
        if (current.hasProperty(property))
            format.setProperty(property, current.property(property));
    }
    return format;
}

void RtfDocumentBuilder::writeTable(QTextCursor &cursor, const RtfTable &table)
{
    const RtfTableGrid grid = LayOutRtfTable(table);
    const int columns = grid.columns;
    QTextTableFormat format;
    const RtfRowDefinition &definition = table.definition;
    format.setCellPadding(definition.gap >= 0 ? RichText::TwipsToPixels(definition.gap) : 2);
    format.setBorderCollapse(true);
    format.setColumnWidthConstraints(columnWidths(grid, definition));
    QTextTable *textTable = cursor.insertTable(int(table.rows.size()), columns, format);
    mergeCells(textTable, grid);
    ++m_tableDepth;
    for (int r = 0; r < int(table.rows.size()); ++r) {
        const auto &row = table.rows[size_t(r)];
        for (int c = 0; c < int(row.size()); ++c) {
            const RtfCellPlacement &place = grid.cells[size_t(r)][size_t(c)];
            const QTextTableCell cell = textTable->cellAt(r, place.column);
            // A merged-over cell rarely holds text; what it holds goes after its owner's.
            if (place.covered && !hasContent(row[size_t(c)]))
                continue;
            QTextCursor cellCursor = place.covered ? cell.lastCursorPosition() : cell.firstCursorPosition();
            writeFlow(cellCursor, row[size_t(c)].blocks, !place.covered);
        }
    }
    --m_tableDepth;
    cursor.setPosition(textTable->lastPosition() + 1);
}

// Column widths from the grid's edges, or else from the first row's cell edges when they fit
// the columns and ascend.
QList<QTextLength> RtfDocumentBuilder::columnWidths(const RtfTableGrid &grid, const RtfRowDefinition &definition)
{
    const QList<int> edges = !grid.columnEdges.isEmpty()
        ? grid.columnEdges
        : QList<int>(definition.cellEdges.begin(), definition.cellEdges.end());
    QList<QTextLength> widths;
    if (edges.size() != grid.columns)
        return widths;
    int left = 0;
    for (int edge : edges) {
        if (edge <= left)
            return {};
        widths.append(QTextLength(QTextLength::FixedLength, RichText::TwipsToPixels(edge - left)));
        left = edge;
    }
    return widths;
}

void RtfDocumentBuilder::mergeCells(QTextTable *table, const RtfTableGrid &grid)
{
    for (const auto &row : grid.cells) {
        for (const RtfCellPlacement &cell : row) {
            if (!cell.covered && (cell.rowSpan > 1 || cell.columnSpan > 1))
                table->mergeCells(cell.row, cell.column, cell.rowSpan, cell.columnSpan);
        }
    }
}

void RtfDocumentBuilder::attachToList(QTextCursor &cursor, const RtfListItem &item)
{
    // An item of a shallower level ends the sub-lists below it, so they restart.
    for (auto it = m_lists.begin(); it != m_lists.end();) {
        if (it.key().first == item.key && it.key().second > item.level)
            it = m_lists.erase(it);
        else
            ++it;
    }
    const QPair<int, int> key(item.key, item.level);
    if (QTextList *list = m_lists.value(key)) {
        list->add(cursor.block());
        return;
    }
    QTextListFormat format;
    format.setStyle(item.style);
    format.setIndent(item.level + 1);
    // Qt puts "." after a number unless told otherwise; only other texts are set, so a list
    // read back from what the writer wrote has the same format as the one written.
    if (!item.prefix.isEmpty())
        format.setNumberPrefix(item.prefix);
    if (item.suffix != QLatin1String("."))
        format.setNumberSuffix(item.suffix);
    if (item.start != 1)
        format.setProperty(RichText::ListStartProperty, item.start);
    m_lists.insert(key, cursor.createList(format));
}
