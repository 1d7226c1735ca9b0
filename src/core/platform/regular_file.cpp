#include "core/platform/regular_file.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

bool OpenRegularFile(QFile *file, const QString &path, QString *problem)
{
#ifdef Q_OS_UNIX
    // Without O_NONBLOCK the open itself would wait for a pipe's writer; on a regular file the
    // flag changes nothing.
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        *problem = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    struct stat status {};
    if (::fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(fd);
        *problem = QStringLiteral("it is not a document but a folder, a pipe or a device");
        return false;
    }
    file->setFileName(path);
    if (!file->open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        *problem = file->errorString();
        return false;
    }
    return true;
#else
    if (!QFileInfo(path).isFile()) {
        *problem = QStringLiteral("it is not a document but a folder or a device");
        return false;
    }
    file->setFileName(path);
    if (!file->open(QIODevice::ReadOnly)) {
        *problem = file->errorString();
        return false;
    }
    return true;
#endif
}
