#include "core/data_folders.h"

#include "core/app_paths.h"
#include "core/file_helpers.h"

const QList<DataFolderRow> &DataFolderRows()
{
    static const QList<DataFolderRow> rows = [] {
        QList<DataFolderRow> list{
            {QStringLiteral("whiteboards"), QStringLiteral("wboard")},
            {QStringLiteral("calendars"), QStringLiteral("calendar")},
            {QStringLiteral("wallpaper"), QStringLiteral("webcam")},
            {QStringLiteral("themes"), QStringLiteral("themes")},
        };
        for (const char *theme :
             {"custom", "classic", "contrast", "flat", "glass", "led", "retro", "white"}) {
            const QString name = QStringLiteral("themes\\") + QLatin1String(theme);
            list.append({name, name});
        }
        return list;
    }();
    return rows;
}

void PrepareDataFolder(const QString &oldName, const QString &newName)
{
    const QString base = WithTrailingBackslash(AppPaths::dataFolder());
    const QString oldPath = base + oldName;
    const QString newPath = base + newName;
    if (oldName != newName) {
        if (FolderExists(oldPath))
            MoveFolder(oldPath, newPath); // a release's old name: carry its files over
        else
            CreateFolderIfMissing(newPath);
    } else if (!FolderExists(oldPath)) {
        CreateFolderIfMissing(newPath);
    }
}

void PrepareAllDataFolders()
{
    CreateFolderIfMissing(AppPaths::dataFolder());
    for (const DataFolderRow &row : DataFolderRows())
        PrepareDataFolder(row.oldName, row.newName);
}
