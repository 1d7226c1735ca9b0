#include "notes/rtf_table_grid.h"

#include <algorithm>

namespace {

// Edges closer than this (1/72 inch) are one column boundary: rows written by hand or by
// converters rarely line up to the twip.
constexpr int kSameEdgeTwips = 20;
constexpr int kMostColumns = 63;

// The edges of each row when every row defines a right edge for each of its cells, in
// ascending order; empty otherwise (cells are then placed one column each).
bool rowsHaveEdges(const RtfTable &table)
{
    if (table.rowDefinitions.size() != table.rows.size())
        return false;
    for (size_t r = 0; r < table.rows.size(); ++r) {
        const std::vector<int> &edges = table.rowDefinitions[r].cellEdges;
        if (edges.size() < table.rows[r].size() || edges.empty())
            return false;
        int left = 0;
        for (size_t c = 0; c < table.rows[r].size(); ++c) {
            if (edges[c] <= left)
                return false;
            left = edges[c];
        }
    }
    return true;
}

QList<int> gridEdges(const RtfTable &table)
{
    QList<int> all;
    for (size_t r = 0; r < table.rows.size(); ++r) {
        const std::vector<int> &edges = table.rowDefinitions[r].cellEdges;
        all.append(QList<int>(edges.begin(), edges.begin() + qsizetype(table.rows[r].size())));
    }
    std::sort(all.begin(), all.end());
    QList<int> grid;
    for (const int edge : all) {
        if (grid.isEmpty() || edge - grid.last() >= kSameEdgeTwips)
            grid.append(edge);
    }
    return grid;
}

// The column whose right edge is `edge` (the nearest one not left of it, within the snap).
int columnOf(const QList<int> &grid, int edge)
{
    const auto it = std::lower_bound(grid.begin(), grid.end(), edge - kSameEdgeTwips + 1);
    return int(std::min<qsizetype>(it - grid.begin(), grid.size() - 1));
}

RtfCellMerge mergeOf(const RtfTable &table, size_t row, size_t cell)
{
    if (row >= table.rowDefinitions.size())
        return RtfCellMerge::None;
    const std::vector<RtfCellMerge> &merges = table.rowDefinitions[row].merges;
    return cell < merges.size() ? merges[cell] : RtfCellMerge::None;
}

void placeOnGrid(const RtfTable &table, RtfTableGrid &grid)
{
    grid.columnEdges = gridEdges(table);
    grid.columns = int(grid.columnEdges.size());
    for (size_t r = 0; r < table.rows.size(); ++r) {
        const std::vector<int> &edges = table.rowDefinitions[r].cellEdges;
        int firstFree = 0;
        for (size_t c = 0; c < table.rows[r].size(); ++c) {
            RtfCellPlacement &cell = grid.cells[r][c];
            const int last = std::max(firstFree, columnOf(grid.columnEdges, edges[c]));
            cell.column = std::min(firstFree, grid.columns - 1);
            cell.columnSpan = std::max(1, last - cell.column + 1);
            firstFree = cell.column + cell.columnSpan;
        }
    }
}

void placeInOrder(const RtfTable &table, RtfTableGrid &grid)
{
    grid.columns = 1;
    for (size_t r = 0; r < table.rows.size(); ++r) {
        grid.columns = std::max(grid.columns, int(table.rows[r].size()));
        for (size_t c = 0; c < table.rows[r].size(); ++c)
            grid.cells[r][c].column = int(c);
    }
}

// \clmrg: the cell joins the one on its left.
void mergeAcross(const RtfTable &table, RtfTableGrid &grid)
{
    for (size_t r = 0; r < grid.cells.size(); ++r) {
        RtfCellPlacement *owner = nullptr;
        for (size_t c = 0; c < grid.cells[r].size(); ++c) {
            RtfCellPlacement &cell = grid.cells[r][c];
            if (mergeOf(table, r, c) == RtfCellMerge::HorizontalContinue && owner) {
                owner->columnSpan = cell.column + cell.columnSpan - owner->column;
                cell.covered = true;
            } else {
                owner = &cell;
            }
        }
    }
}

// \clvmgf starts a cell that the \clvmrg cells below it, in the same column, continue.
void mergeDown(const RtfTable &table, RtfTableGrid &grid)
{
    for (size_t r = 0; r < grid.cells.size(); ++r) {
        for (size_t c = 0; c < grid.cells[r].size(); ++c) {
            RtfCellPlacement &first = grid.cells[r][c];
            if (first.covered || mergeOf(table, r, c) != RtfCellMerge::VerticalFirst)
                continue;
            for (size_t below = r + 1; below < grid.cells.size(); ++below) {
                auto &row = grid.cells[below];
                const auto it = std::find_if(row.begin(), row.end(), [&](const RtfCellPlacement &cell) {
                    return cell.column == first.column && !cell.covered;
                });
                if (it == row.end() || mergeOf(table, below, size_t(it - row.begin())) != RtfCellMerge::VerticalContinue)
                    break;
                it->covered = true;
                ++first.rowSpan;
            }
        }
    }
}

} // namespace

RtfTableGrid LayOutRtfTable(const RtfTable &table)
{
    RtfTableGrid grid;
    grid.cells.resize(table.rows.size());
    for (size_t r = 0; r < table.rows.size(); ++r) {
        grid.cells[r].resize(table.rows[r].size());
        for (RtfCellPlacement &cell : grid.cells[r])
            cell.row = int(r);
    }
    if (rowsHaveEdges(table) && gridEdges(table).size() <= kMostColumns)
        placeOnGrid(table, grid);
    else
        placeInOrder(table, grid);
    mergeAcross(table, grid);
    mergeDown(table, grid);
    return grid;
}
