#include "whiteboard/board_folder.h"

#include "core/file_helpers.h"
#include "whiteboard/board_file.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <algorithm>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("BoardFolder", text);
}
} // namespace

BoardFolder::BoardFolder(const QString &folder) : m_path(QDir::cleanPath(LocalPath(folder))) {}

QList<BoardEntry> BoardFolder::boards() const
{
    QStringList patterns;
    for (const QString &extension : BoardFile::extensions())
        patterns << QStringLiteral("*.") + extension;
    QDir dir(m_path);
    dir.setNameFilters(patterns);
    QList<BoardEntry> list;
    for (const QFileInfo &file : dir.entryInfoList(QDir::Files)) {
        // Name filters match without regard to case only on some systems.
        if (!BoardFile::formatOf(file.fileName()).isEmpty())
            list.append({file.absoluteFilePath(), file.fileName(), file.lastModified()});
    }
    std::stable_sort(list.begin(), list.end(), [](const BoardEntry &a, const BoardEntry &b) {
        return a.modified != b.modified ? a.modified > b.modified : a.name < b.name;
    });
    return list;
}

QString BoardFolder::freeName() const
{
    // A stem is taken by a board of any kind, whatever the case of its extension ("Board 2.JPG").
    QSet<QString> taken;
    for (const QFileInfo &file : QDir(m_path).entryInfoList(QDir::Files)) {
        if (!BoardFile::formatOf(file.fileName()).isEmpty())
            taken.insert(file.completeBaseName().toLower());
    }
    for (int n = 1;; ++n) {
        const QString stem = tr("Board %1").arg(n);
        if (!taken.contains(stem.toLower()))
            return stem + QStringLiteral(".png");
    }
}

bool BoardFolder::ensureExists(QString *error) const
{
    if (CreateFolderIfMissing(m_path))
        return true;
    *error = tr("The board folder %1 does not exist and cannot be created. Choose another folder in the "
                "whiteboard's settings.")
                 .arg(QDir::toNativeSeparators(m_path));
    return false;
}

bool BoardFolder::remove(const QString &path, QString *error)
{
    QFile file(LocalPath(path));
    if (!file.exists() || file.remove())
        return true;
    *error =
        tr("%1 could not be deleted: %2.").arg(QDir::toNativeSeparators(file.fileName()), file.errorString());
    return false;
}
