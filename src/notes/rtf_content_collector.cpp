#include "notes/rtf_content_collector.h"

#include <algorithm>

// A table being read: its finished rows, the row and the cell in progress.
struct RtfContentCollector::OpenTable
{
    std::unique_ptr<RtfTable> table = std::make_unique<RtfTable>();
    std::vector<RtfCell> row;
    RtfCell cell;
};

namespace {

// Deeper levels in a damaged file are kept at this depth rather than nesting without end.
constexpr int kDeepestTable = 16;

bool isEmpty(const RtfCell &cell)
{
    return std::all_of(cell.blocks.begin(), cell.blocks.end(),
                       [](const RtfBlock &block) { return !block.table && block.paragraph.runs.empty(); });
}

} // namespace

RtfContentCollector::RtfContentCollector() = default;
RtfContentCollector::~RtfContentCollector() = default;

void RtfContentCollector::appendText(const QString &text, const QTextCharFormat &format)
{
    if (text.isEmpty())
        return;
    if (!m_paragraph.runs.empty()) {
        RtfRun &last = m_paragraph.runs.back();
        if (!last.isPicture && last.format == format) {
            last.text += text;
            return;
        }
    }
    m_paragraph.runs.push_back(RtfRun{text, format, false});
}

void RtfContentCollector::appendPicture(const QTextCharFormat &imageFormat)
{
    m_paragraph.runs.push_back(RtfRun{QString(), imageFormat, true});
}

RtfParagraph RtfContentCollector::takeParagraph(const QTextBlockFormat &format, const QTextCharFormat &endFormat)
{
    RtfParagraph paragraph = std::move(m_paragraph);
    m_paragraph = RtfParagraph();
    paragraph.format = format;
    paragraph.endFormat = endFormat;
    return paragraph;
}

void RtfContentCollector::endParagraph(const QTextBlockFormat &format, const QTextCharFormat &endFormat,
                                       const RtfListItem &list, int tableLevel)
{
    std::vector<RtfBlock> &flow = flowAt(tableLevel);
    RtfBlock block;
    block.paragraph = takeParagraph(format, endFormat);
    block.paragraph.list = list;
    flow.push_back(std::move(block));
}

void RtfContentCollector::endCell(const QTextBlockFormat &format, const QTextCharFormat &endFormat, int tableLevel,
                                  const RtfListItem &list)
{
    tableLevel = std::max(tableLevel, 1);
    std::vector<RtfBlock> &flow = flowAt(tableLevel);
    // The text before \cell is the cell's last paragraph; a cell needs at least one, and a
    // table inside the cell is followed by one (it keeps its own paragraph-mark format).
    if (!m_paragraph.runs.empty() || flow.empty() || flow.back().table) {
        RtfBlock block;
        block.paragraph = takeParagraph(format, endFormat);
        block.paragraph.list = list;
        flow.push_back(std::move(block));
    }
    OpenTable &open = m_tables[size_t(std::min(tableLevel, kDeepestTable)) - 1];
    open.row.push_back(std::move(open.cell));
    open.cell = RtfCell();
}

void RtfContentCollector::endRow(int tableLevel, const RtfRowDefinition &definition)
{
    tableLevel = std::max(tableLevel, 1);
    std::vector<RtfBlock> &flow = flowAt(tableLevel);
    if (!m_paragraph.runs.empty()) {
        RtfBlock block;
        block.paragraph = takeParagraph(QTextBlockFormat(), QTextCharFormat());
        flow.push_back(std::move(block));
    }
    OpenTable &open = m_tables[size_t(std::min(tableLevel, kDeepestTable)) - 1];
    if (!open.cell.blocks.empty())
        open.row.push_back(std::move(open.cell));
    open.cell = RtfCell();
    const int definedCells = int(definition.cellEdges.size());
    while (int(open.row.size()) > std::max(definedCells, 1) && isEmpty(open.row.back()))
        open.row.pop_back();
    if (open.table->rows.empty())
        open.table->definition = definition;
    if (!open.row.empty()) {
        open.table->rows.push_back(std::move(open.row));
        open.table->rowDefinitions.push_back(definition);
    }
    open.row.clear();
}

std::vector<RtfBlock> &RtfContentCollector::flowAt(int tableLevel)
{
    tableLevel = std::clamp(tableLevel, 0, kDeepestTable);
    while (int(m_tables.size()) > tableLevel)
        closeDeepestTable();
    while (int(m_tables.size()) < tableLevel)
        m_tables.emplace_back();
    return m_tables.empty() ? m_body : m_tables.back().cell.blocks;
}

void RtfContentCollector::closeDeepestTable()
{
    OpenTable open = std::move(m_tables.back());
    m_tables.pop_back();
    if (!open.cell.blocks.empty())
        open.row.push_back(std::move(open.cell));
    if (!open.row.empty()) {
        open.table->rows.push_back(std::move(open.row));
        open.table->rowDefinitions.emplace_back(); // a row the file never ended
    }
    if (open.table->rows.empty())
        return;
    RtfBlock block;
    block.table = std::move(open.table);
    (m_tables.empty() ? m_body : m_tables.back().cell.blocks).push_back(std::move(block));
}

std::vector<RtfBlock> RtfContentCollector::finish(const QTextBlockFormat &format, const QTextCharFormat &endFormat)
{
    if (!m_paragraph.runs.empty()) {
        // Unfinished text belongs where the last paragraph went.
        endParagraph(format, endFormat, RtfListItem(), int(m_tables.size()));
    }
    while (!m_tables.empty())
        closeDeepestTable();
    return std::move(m_body);
}
