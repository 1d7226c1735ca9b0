#pragma once

#include "notes/rtf_content.h"

#include <QList>

#include <vector>

// Where the cells of a table read from RTF go in a QTextTable. RTF gives each row its own
// cell right edges; the table's columns are all the edges of all rows, so a cell reaching
// over several of them spans those columns. Cells merged with \clvmrg or \clmrg are covered
// by the cell they continue.
struct RtfCellPlacement
{
    int row = 0;
    int column = 0;
    int rowSpan = 1;
    int columnSpan = 1;
    bool covered = false; // merged into another cell
};

struct RtfTableGrid
{
    int columns = 1;
    QList<int> columnEdges; // right edges in twips, one per column; empty when the file gives none that fit
    std::vector<std::vector<RtfCellPlacement>> cells; // per row, per cell of the file
};

RtfTableGrid LayOutRtfTable(const RtfTable &table);
