#include "core/file_helpers.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr auto kWritableByOwner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

// Copies one file over whatever is at `to`, read-only or not.
bool copyFileOver(const QFileInfo &from, const QString &to)
{
    const QFileInfo target(to);
    if (target.exists() || target.isSymLink()) {
        if (target.isDir() && !target.isSymLink())
            return false; // a folder stands where the file should go
        QFile::setPermissions(to, target.permissions() | kWritableByOwner);
        if (!QFile::remove(to))
            return false;
    }
    if (from.isSymLink())
        return QFile::link(from.symLinkTarget(), to);
    return QFile::copy(from.absoluteFilePath(), to);
}

bool copyTree(const QString &source, const QString &destination)
{
    if (!QDir().mkpath(destination))
        return false;
    bool allCopied = true;
    const QFileInfoList entries =
        QDir(source).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        const QString target = destination + QLatin1Char('/') + entry.fileName();
        if (entry.isDir() && !entry.isSymLink())
            allCopied = copyTree(entry.absoluteFilePath(), target) && allCopied;
        else
            allCopied = copyFileOver(entry, target) && allCopied;
    }
    return allCopied;
}

// Deletes a tree, first making everything in it writable, since a read-only file (on Windows)
// or a read-only folder (elsewhere) would otherwise stay behind.
bool removeTreeForced(const QString &path)
{
    QFile::setPermissions(path, QFileInfo(path).permissions() | kWritableByOwner | QFileDevice::ExeOwner);
    QDirIterator it(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo info(it.next());
        if (info.isSymLink())
            continue;
        QFile::setPermissions(info.absoluteFilePath(),
                              info.permissions() | kWritableByOwner |
                                  (info.isDir() ? QFileDevice::ExeOwner : QFileDevice::Permissions()));
    }
    return QDir(path).removeRecursively();
}

} // namespace

QString FieldOf(const QString &text, QChar delimiter, int n)
{
    if (n < 1)
        return QString();
    qsizetype start = 0;
    for (int field = 1; field < n; ++field) {
        const qsizetype next = text.indexOf(delimiter, start);
        if (next < 0)
            return QString();
        start = next + 1;
    }
    const qsizetype end = text.indexOf(delimiter, start);
    return text.mid(start, end < 0 ? -1 : end - start);
}

QString FileNameOf(const QString &path)
{
    const qsizetype cut = std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
    return path.mid(cut + 1);
}

bool FileExists(const QString &path)
{
    return !path.isEmpty() && QFileInfo(LocalPath(path)).isFile();
}

bool FolderExists(const QString &path)
{
    return !path.isEmpty() && QFileInfo(LocalPath(path)).isDir();
}

bool CreateFolderIfMissing(const QString &path)
{
    if (path.isEmpty())
        return false;
    return FolderExists(path) || QDir().mkpath(LocalPath(path));
}

bool MoveFolder(const QString &source, const QString &destination)
{
    const QString from = LocalPath(source);
    const QString to = LocalPath(destination);
    if (!FolderExists(from))
        return true;
    if (IsSameOrInside(to, from))
        return false;
    if (!copyTree(from, to))
        return false;
    return removeTreeForced(from);
}

QString WithTrailingBackslash(const QString &text)
{
    if (text.endsWith(QLatin1Char('\\')) || text.endsWith(QLatin1Char('/')))
        return text;
#ifdef Q_OS_WIN
    return text + QLatin1Char('\\');
#else
    return text + QDir::separator();
#endif
}

QString LocalPath(const QString &path)
{
#ifdef Q_OS_WIN
    return path;
#else
    QString local = path;
    return local.replace(QLatin1Char('\\'), QLatin1Char('/'));
#endif
}

bool IsSameOrInside(const QString &inner, const QString &outer)
{
#ifdef Q_OS_WIN
    constexpr Qt::CaseSensitivity cs = Qt::CaseInsensitive;
#else
    constexpr Qt::CaseSensitivity cs = Qt::CaseSensitive;
#endif
    const QString a = QDir::cleanPath(QFileInfo(inner).absoluteFilePath());
    QString b = QDir::cleanPath(QFileInfo(outer).absoluteFilePath());
    if (a.compare(b, cs) == 0)
        return true;
    // A root ("/", "C:/") already ends in the separator.
    if (!b.endsWith(QLatin1Char('/')))
        b += QLatin1Char('/');
    return a.startsWith(b, cs);
}
