#pragma once

#include "core/platform/settings_backend.h"

#include <QByteArray>
#include <QDateTime>
#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QString>
#include <functional>

// Settings kept in one text file in the registry editor's export layout (version 5):
//
//     Windows Registry Editor Version 5.00
//
//     [HKEY_CURRENT_USER\SOFTWARE\Vantora\falc_SET\Details]
//     "Alarm Sound"="BELL"
//     "Count"=dword:0000000a
//
// The file is written as the registry editor writes its exports (UTF-16LE with a byte-order
// mark, CR LF line ends), so it can be imported on Windows unchanged; it is read as UTF-16 or
// UTF-8, with either line end. Strings escape '\' and '"' with a backslash; a string holding a
// line break, another control character or a lone surrogate is written as hex(1): (UTF-16LE
// bytes and a terminator) so that every value stays on its line exactly. Key paths and value
// names are matched without regard to case and written back as first written. Values of other
// types (dword, hex, lines that make no sense) are kept and written back as they were, so a
// hand edit never loses anything; text that is neither a section nor a value is dropped.
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

    // "HKEY_CURRENT_USER" or "HKEY_LOCAL_MACHINE".
    static QString hiveName(Hive hive);

private:
    struct Entry
    {
        QString name; // as first written ("" is the key's default value, written @)
        SettingsValue value;
        QString raw; // for Other: the text after '=' exactly as it was in the file
    };
    struct Section
    {
        QString name; // "HKEY_...\path" as first written
        QList<Entry> entries;
        QHash<QString, int> index; // case-folded name -> entries position
    };
    struct Document
    {
        QList<Section> sections;
        QHash<QString, int> index; // case-folded section name -> sections position

        Section &section(const QString &name);
        const Entry *find(const QString &sectionName, const QString &name) const;
        bool set(const QString &sectionName, const Entry &entry); // false when nothing changed
    };
    struct Pending
    {
        QString section;
        Entry entry;
    };
    struct FileStamp
    {
        bool exists = false;
        qint64 size = -1;
        QDateTime modified;
        bool operator==(const FileStamp &other) const = default;
    };

    // `unreadable` counts the lines that were dropped, and a decoding that lost bytes.
    static Document parse(const QByteArray &bytes, int *unreadable = nullptr);
    static bool parseValueLine(const QString &line, Document &doc, const QString &section);
    static QByteArray serialise(const Document &doc);
    static QString sectionName(Hive hive, const QString &key);

    FileStamp stampNow() const;
    void recheckIfDue();
    void syncFromDisk();
    bool save();
    void keepDamagedCopy(const QByteArray &bytes, int unreadable);
    void report(const QString &message);

    QString m_filePath;
    Document m_doc;
    QList<Pending> m_pending; // writes not yet in the file
    QByteArray m_diskBytes;   // the file's content when last read or written by us
    FileStamp m_stamp;
    QElapsedTimer m_sinceCheck;
    int m_recheckMs = 1000;
    QString m_lastError;
    ProblemReporter m_reporter;
    QByteArray m_keptDamaged; // the damaged content already kept aside
};
