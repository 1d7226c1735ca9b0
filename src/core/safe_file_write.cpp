#include "core/safe_file_write.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace {

// The file a save replaces: the target of a symbolic link, so that the link survives.
QString fileToReplace(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isSymLink())
        return info.absoluteFilePath();
    return QFileInfo(info.symLinkTarget()).absoluteFilePath();
}

// A temporary file's name is "<target>.XXXXXX.tmp", the Xs made random by QTemporaryFile.
constexpr qsizetype kRandomLength = 6;
constexpr QLatin1StringView kTemporarySuffix(".tmp");

QString temporaryName(const QString &target, QChar randomPart)
{
    return target + QLatin1Char('.') + QString(kRandomLength, randomPart) + kTemporarySuffix;
}

// Whether `name` is one of the temporary files made for the file named `target`, as
// TemporaryFilePattern() matches it.
bool isTemporaryFileOf(QStringView name, QStringView target)
{
#ifdef Q_OS_WIN
    constexpr Qt::CaseSensitivity kCase = Qt::CaseInsensitive;
#else
    constexpr Qt::CaseSensitivity kCase = Qt::CaseSensitive;
#endif
    return name.size() == target.size() + 1 + kRandomLength + kTemporarySuffix.size()
           && name.startsWith(target, kCase) && name[target.size()] == QLatin1Char('.')
           && name.endsWith(kTemporarySuffix, kCase);
}

// Asks the system to put the file's data on the disk before the rename makes it the file:
// without this, a power cut soon after a save can leave the new name on an empty file.
bool syncToDisk(QFileDevice &file)
{
#ifdef Q_OS_WIN
    return _commit(file.handle()) == 0;
#else
    return ::fsync(file.handle()) == 0;
#endif
}

// Makes the rename itself durable (the folder's entry). Failures are ignored: not every file
// system can sync a folder, and the data is already safe either way.
void syncFolder(const QString &folder)
{
#ifndef Q_OS_WIN
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    Q_UNUSED(folder);
#endif
}

QString systemError(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

bool fail(QString *error, const QString &why)
{
    if (error)
        *error = why;
    return false;
}

bool renameOver(const QString &from, const QString &to, QString *error)
{
    std::error_code code;
    std::filesystem::rename(std::filesystem::path(from.toStdU16String()),
                            std::filesystem::path(to.toStdU16String()), code);
    if (code)
        return fail(error, QString::fromStdString(code.message()));
    return true;
}

} // namespace

QString TemporaryFilePattern(const QString &path)
{
    return temporaryName(QFileInfo(path).fileName(), QLatin1Char('?'));
}

bool WriteFileSafely(const QString &path, const QByteArray &bytes, QString *error)
{
    const QString target = fileToReplace(path);
    QTemporaryFile temp(temporaryName(target, QLatin1Char('X')));
    if (!temp.open())
        return fail(error, temp.errorString());

    // Checked piece by piece: a short write is how a full disk or a size limit shows. The
    // system's reason is taken before anything else can overwrite it.
    errno = 0;
    if (temp.write(bytes) != bytes.size() || !temp.flush() || temp.error() != QFileDevice::NoError)
        return fail(error, errno != 0 ? systemError(errno) : temp.errorString());
    if (!syncToDisk(temp))
        return fail(error, systemError(errno));

    const QFileInfo existing(target);
    const QFileDevice::Permissions permissions = existing.exists()
                                                     ? existing.permissions()
                                                     : QFileDevice::ReadOwner | QFileDevice::WriteOwner |
                                                           QFileDevice::ReadGroup | QFileDevice::ReadOther;
    temp.setPermissions(permissions);
    temp.close();
    if (temp.error() != QFileDevice::NoError)
        return fail(error, temp.errorString());

    if (!renameOver(temp.fileName(), target, error))
        return false; // the temporary file is removed with `temp`
    temp.setAutoRemove(false);
    syncFolder(QFileInfo(target).absolutePath());
    return true;
}

int RemoveStaleTemporaryFiles(const QString &path, int minimumAgeSeconds)
{
    const QFileInfo info(fileToReplace(path));
    const QString target = info.fileName();
    const QDateTime cutOff = QDateTime::currentDateTimeUtc().addSecs(-minimumAgeSeconds);
    int removed = 0;
    // Unsorted, and the names compared by hand: a wildcard filter would compile a regular
    // expression, and the settings file runs this on every start.
    QDirIterator entries(info.absolutePath(), QDir::Files | QDir::Hidden);
    while (entries.hasNext()) {
        entries.next();
        if (!isTemporaryFileOf(entries.fileName(), target))
            continue;
        const QFileInfo candidate = entries.fileInfo();
        if (candidate.lastModified().toUTC() <= cutOff && QFile::remove(candidate.absoluteFilePath()))
            ++removed;
    }
    return removed;
}
