#include "core/held_file_lock.h"

#include <QFile>

#ifdef Q_OS_WIN
#include <QLockFile>
#endif

#ifndef Q_OS_WIN
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace {
void setError(QString *error, const QString &text)
{
    if (error)
        *error = text;
}
} // namespace

HeldFileLock::HeldFileLock() = default;

#ifdef Q_OS_WIN

HeldFileLock::~HeldFileLock() = default;

HeldFileLock::Result HeldFileLock::tryLock(const QString &path, QString *error)
{
    auto file = std::make_unique<QLockFile>(path);
    // Held for the whole run: only a holder that is gone makes it stale, never its age.
    file->setStaleLockTime(0);
    if (file->tryLock(0)) {
        m_file = std::move(file);
        return Result::Taken;
    }
    switch (file->error()) {
    case QLockFile::LockFailedError:
        return Result::HeldElsewhere;
    case QLockFile::PermissionError:
        setError(error, QStringLiteral("permission denied"));
        return Result::PermissionDenied;
    default:
        setError(error, QStringLiteral("it cannot be written"));
        return Result::Failed;
    }
}

bool HeldFileLock::isHeld() const
{
    return m_file != nullptr;
}

#else

HeldFileLock::~HeldFileLock()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor); // lets go of the lock; the file stays for the next holder
}

HeldFileLock::Result HeldFileLock::tryLock(const QString &path, QString *error)
{
    if (m_descriptor >= 0)
        return Result::Taken;
    // Not inherited by programs started from here (a browser), which would keep it after we end.
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        const int cause = errno;
        setError(error, QString::fromLocal8Bit(std::strerror(cause)));
        return cause == EACCES || cause == EPERM || cause == EROFS ? Result::PermissionDenied
                                                                   : Result::Failed;
    }
    int locked;
    do {
        locked = ::flock(descriptor, LOCK_EX | LOCK_NB);
    } while (locked != 0 && errno == EINTR);
    if (locked != 0) {
        const int cause = errno;
        ::close(descriptor);
        if (cause == EWOULDBLOCK)
            return Result::HeldElsewhere;
        setError(error, QString::fromLocal8Bit(std::strerror(cause)));
        return Result::Failed;
    }
    m_descriptor = descriptor;
    return Result::Taken;
}

bool HeldFileLock::isHeld() const
{
    return m_descriptor >= 0;
}

#endif
