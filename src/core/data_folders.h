#pragma once

#include <QList>
#include <QString>

// The data folders below the program's data folder (AppPaths::dataFolder()), prepared at
// every start. Earlier releases used other names for three of them; their folders are moved
// to the new names with their contents.

struct DataFolderRow
{
    QString oldName; // relative to the data folder, '\' between levels
    QString newName;
};

// The rows in the order they are prepared: a parent always comes before its sub-folders.
const QList<DataFolderRow> &DataFolderRows();

// When the names differ: moves an existing old folder onto the new one (MoveFolder: contents
// copied over, same-named files replaced, old folder deleted), or creates the new folder
// when there is no old one. When they are equal: creates the folder unless it exists.
// Names are relative to the data folder. Errors are swallowed.
void PrepareDataFolder(const QString &oldName, const QString &newName);

// Creates the data folder itself when missing, then prepares every row in order; a row that
// fails does not stop the next.
void PrepareAllDataFolders();
