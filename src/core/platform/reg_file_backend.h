#pragma once

#include "core/platform/reg_file_document.h"
#include "core/platform/settings_backend.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QList>
#include <QString>
#include <functional>

// Settings kept in one regedit-format file (see RegFileDocument for the format).
//
// The whole file is held in memory. Every write re-reads the file, merges its own value in and
// saves the whole file through a temporary file and a rename, holding a lock file beside it
// ("settings.reg.lock") from the read to the rename, so two copies of the program merge: the
// last write of each value wins. Reads look at the file's time stamp at most once a second and
// re-read the file when it changed. A value whose save failed (a full disk, a read-only
// folder) stays in memory and is written again with the next successful save, and the file on
// disk stays as it was; a file that vanished or cannot be read leaves the values in memory.
// Temporary files left by a save that was killed are removed when the store opens.
//
// A file with lines that make no sense, or bytes that are not UTF-8 or UTF-16 text, would lose
// them at the next save: before that can happen a copy of it is kept beside it
// ("settings.reg.damaged", numbered when that name is taken). That, and a save that fails, is
// reported once through the problem reporter in a sentence for the user.
class RegFileBackend : public SettingsBackend
{
public:
    using ProblemReporter = std::function<void(const QString &message)>;

    explicit RegFileBackend(const QString &filePath, ProblemReporter reporter = {});

    SettingsValue read(Hive hive, const QString &key, const QString &name) override;
    bool write(Hive hive, const QString &key, const QString &name, const SettingsValue &value) override;

    QString filePath() const { return m_filePath; }

    // Why the last save failed; empty after a successful one.
    QString lastError() const { return m_lastError; }

    // How often reads may look at the file's time stamp. One second by default.
    void setRecheckInterval(int milliseconds) { m_recheckMs = milliseconds; }

private:
    struct Pending
    {
        QString section;
        RegFileDocument::Entry entry;
    };
    struct FileStamp
    {
        bool exists = false;
        qint64 size = -1;
        QDateTime modified;
        bool operator==(const FileStamp &other) const = default;
    };

    FileStamp stampNow() const;
    void recheckIfDue();
    void syncFromDisk();
    bool save();
    void keepDamagedCopy(const QByteArray &bytes, int unreadable);
    void report(const QString &message);

    QString m_filePath;
    RegFileDocument m_doc;
    QList<Pending> m_pending; // writes not yet in the file
    QByteArray m_diskBytes;   // the file's content when last read or written by us
    FileStamp m_stamp;
    QElapsedTimer m_sinceCheck;
    int m_recheckMs = 1000;
    QString m_lastError;
    ProblemReporter m_reporter;
    QByteArray m_keptDamaged; // the damaged content already kept aside
};
