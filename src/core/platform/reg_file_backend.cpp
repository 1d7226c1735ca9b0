#include "core/platform/reg_file_backend.h"

#include "core/safe_file_write.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcSettingsFile, "vantora.settings")

namespace {

// A temporary file this old beside the settings is left over from a save that was killed:
// saves take milliseconds, and another copy of the program may be in the middle of one.
constexpr int kStaleTemporaryFileSeconds = 60;

// Saves hold the lock beside the file for milliseconds. One older than this belongs to a
// copy of the program that hangs (one whose process has gone is taken over at once).
constexpr int kStaleLockMs = 10000;
// How long a save waits for another copy's save before it goes ahead without the lock.
constexpr int kLockWaitMs = 5000;

// Beside the file: "settings.reg.damaged", then "settings.reg.damaged-2", ... The first one
// that is free, or already holds exactly these bytes.
QString damagedCopyPath(const QString &filePath, const QByteArray &bytes, bool *alreadyKept)
{
    *alreadyKept = false;
    const QString base = filePath + QStringLiteral(".damaged");
    for (int n = 1;; ++n) {
        const QString candidate = n == 1 ? base : base + QStringLiteral("-%1").arg(n);
        QFile existing(candidate);
        if (!existing.exists())
            return candidate;
        if (existing.open(QIODevice::ReadOnly) && existing.readAll() == bytes) {
            *alreadyKept = true;
            return candidate;
        }
    }
}

} // namespace

RegFileBackend::RegFileBackend(const QString &filePath, ProblemReporter reporter)
    : m_filePath(filePath), m_reporter(std::move(reporter))
{
    RemoveStaleTemporaryFiles(m_filePath, kStaleTemporaryFileSeconds);
    syncFromDisk();
}

SettingsValue RegFileBackend::read(Hive hive, const QString &key, const QString &name)
{
    recheckIfDue();
    const RegFileDocument::Entry *entry = m_doc.find(RegFileDocument::sectionName(hive, key), name);
    return entry ? entry->value : SettingsValue();
}

bool RegFileBackend::write(Hive hive, const QString &key, const QString &name, const SettingsValue &value)
{
    if (value.type != SettingsValueType::Text && value.type != SettingsValueType::Number)
        return false;
    // From the read to the rename no other copy of the program may save, or the one that
    // renames last would drop the other's values.
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QLockFile lock(m_filePath + QStringLiteral(".lock"));
    lock.setStaleLockTime(kStaleLockMs);
    if (!lock.tryLock(kLockWaitMs))
        qCWarning(lcSettingsFile, "Saving settings without the lock on %s (error %d)",
                  qUtf8Printable(lock.fileName()), int(lock.error()));
    syncFromDisk(); // another copy of the program may have saved since: merge onto its file

    const QString section = RegFileDocument::sectionName(hive, key);
    const RegFileDocument::Entry entry{name, value, QString()};
    const bool changed = m_doc.set(section, entry);
    if (!changed && m_pending.isEmpty() && m_stamp.exists)
        return true; // already in the file as it is

    const QString foldedSection = section.toCaseFolded();
    const QString foldedName = name.toCaseFolded();
    m_pending.removeIf([&](const Pending &p) {
        return p.section.toCaseFolded() == foldedSection && p.entry.name.toCaseFolded() == foldedName;
    });
    m_pending.append({section, entry});
    if (!save())
        return false;
    m_pending.clear();
    return true;
}

RegFileBackend::FileStamp RegFileBackend::stampNow() const
{
    const QFileInfo info(m_filePath);
    if (!info.isFile())
        return {};
    return {true, info.size(), info.lastModified()};
}

void RegFileBackend::recheckIfDue()
{
    if (m_sinceCheck.isValid() && m_sinceCheck.elapsed() < m_recheckMs)
        return;
    m_sinceCheck.start();
    if (stampNow() != m_stamp)
        syncFromDisk();
}

void RegFileBackend::syncFromDisk()
{
    m_sinceCheck.start();
    m_stamp = stampNow();
    if (!m_stamp.exists)
        return; // nothing (yet, or any more) on disk: what is in memory stays
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError || bytes == m_diskBytes)
        return;
    int unreadable = 0;
    RegFileDocument doc = RegFileDocument::fromBytes(bytes, &unreadable);
    if (unreadable > 0)
        keepDamagedCopy(bytes, unreadable);
    for (const Pending &p : std::as_const(m_pending))
        doc.set(p.section, p.entry);
    m_doc = std::move(doc);
    m_diskBytes = bytes;
}

bool RegFileBackend::save()
{
    const QByteArray bytes = m_doc.toBytes();
    const QFileInfo info(m_filePath);
    QString error;
    if (!QDir().mkpath(info.absolutePath()))
        error = QStringLiteral("cannot create the folder %1").arg(info.absolutePath());
    else
        WriteFileSafely(m_filePath, bytes, &error);

    if (!error.isEmpty()) {
        if (error != m_lastError) { // once per new problem, not once per write
            qCWarning(lcSettingsFile, "Settings not saved to %s: %s", qUtf8Printable(m_filePath),
                      qUtf8Printable(error));
            report(QStringLiteral("Vantora cannot save its settings to %1 (%2). Changes made now "
                                  "last only until Vantora ends.")
                       .arg(QDir::toNativeSeparators(m_filePath), error));
        }
        m_lastError = error;
        return false;
    }
    m_lastError.clear();
    m_diskBytes = bytes;
    m_stamp = stampNow();
    return true;
}

void RegFileBackend::keepDamagedCopy(const QByteArray &bytes, int unreadable)
{
    if (bytes == m_keptDamaged)
        return;
    m_keptDamaged = bytes;
    bool alreadyKept = false;
    const QString copyPath = damagedCopyPath(m_filePath, bytes, &alreadyKept);
    const QString file = QDir::toNativeSeparators(m_filePath);
    if (!alreadyKept) {
        QString error;
        if (!WriteFileSafely(copyPath, bytes, &error)) {
            report(QStringLiteral("Part of the settings file %1 could not be read (%2 unreadable "
                                  "lines), and no copy of it could be kept (%3). Settings that "
                                  "could not be read are back at their defaults.")
                       .arg(file)
                       .arg(unreadable)
                       .arg(error));
            return;
        }
    }
    report(QStringLiteral("Part of the settings file %1 could not be read (%2 unreadable lines). "
                          "The file as it was is kept as %3; settings that could not be read are "
                          "back at their defaults.")
               .arg(file)
               .arg(unreadable)
               .arg(QDir::toNativeSeparators(copyPath)));
}

void RegFileBackend::report(const QString &message)
{
    if (m_reporter)
        m_reporter(message);
}
