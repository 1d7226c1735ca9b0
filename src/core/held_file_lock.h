#pragma once

#include <QString>

#include <memory>

class QLockFile;

// A lock on a file that one process holds for as long as it runs: the kernel's advisory lock
// (flock) on an open file, let go by the kernel when the process ends however it ends, so a
// crashed holder never leaves it stale and no process id has to be written, synced to the disk
// and checked. Taking it writes nothing, so it works on a full disk. Windows, which has no such
// lock, uses QLockFile.
class HeldFileLock
{
public:
    enum class Result
    {
        Taken,
        HeldElsewhere,
        PermissionDenied, // the file cannot be made or opened here
        Failed,           // another error (the disk may be full)
    };

    HeldFileLock();
    ~HeldFileLock();
    HeldFileLock(const HeldFileLock &) = delete;
    HeldFileLock &operator=(const HeldFileLock &) = delete;

    // Makes the file when missing and takes the lock without waiting. Taken: held until this
    // object goes. Otherwise *error, when given, says why in words.
    Result tryLock(const QString &path, QString *error = nullptr);
    bool isHeld() const;

private:
#ifdef Q_OS_WIN
    std::unique_ptr<QLockFile> m_file;
#else
    int m_descriptor = -1;
#endif
};
