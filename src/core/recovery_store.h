#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

// One document's recovery copy: what an editor (the notes editor, the whiteboard) needs to
// give the user back a document that was open, changed and unsaved when the program stopped.
struct RecoveryEntry
{
    QString id;           // letters, digits, '-' and '_' only (see RecoveryStore::newId)
    QString caption;      // the document's caption ("RTF 3", "letter.rtf")
    QString originalPath; // its file, empty for a document never saved
    QString type;         // the kind of content: "RTF" or "TXT" for notes, "PNG" for a board
    QDateTime savedAt;    // when the copy was taken
    QByteArray content;   // the document's bytes in that kind
};

// Recovery copies of an editor's documents, in one folder of its own.
//
// Each copy is a content file, "<id>.<unique>.content", and a small description,
// "<id>.entry", that names the content file and holds its size and checksum. Both are written
// with WriteFileSafely, content first, so a copy interrupted at any point leaves the previous
// copy of that document whole and listed; the content files the description no longer names
// are removed only after it has been written. A description that cannot be read, or whose
// content file is missing or differs from its size or checksum, is not listed.
class RecoveryStore
{
public:
    // `types` are the kinds of content the editor can take back; a copy of another kind is
    // not listed (it is damaged, or not the editor's).
    explicit RecoveryStore(const QString &folder, const QStringList &types = {QStringLiteral("RTF"), QStringLiteral("TXT")});

    // A fresh id for a document of this run that no earlier run has used.
    static QString newId();
    static bool isValidId(const QString &id);

    // Writes `entry` (replacing the copy with the same id); savedAt defaults to now. False,
    // with *error in words for the user, when it could not be written or the id is invalid.
    bool store(const RecoveryEntry &entry, QString *error = nullptr);

    // Removes the copy with this id, description first.
    void remove(const QString &id);

    // True when no copy is described at all; cheap (no content is read), for start-up.
    bool isEmpty() const;
    // The complete copies, oldest first.
    QList<RecoveryEntry> entries() const;

    // Removes every copy and every leftover of an interrupted one.
    void clear();

    QString folder() const { return m_folder; }

private:
    QString descriptionPath(const QString &id) const;
    void removeContentFilesExcept(const QString &id, const QString &keep) const;

    QString m_folder;
    QStringList m_types;
};
