#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class PlainTextFile;
class QTextDocument;

// The outcome of reading or writing a notes document: `error` names the file and says why
// when it failed; `warnings` tell of repairs made to a damaged file, or of a change of
// encoding on save.
struct DocumentFileResult
{
    bool ok = false;
    QString error;
    QStringList warnings;
};

// Reading and writing notes documents: rich text through the RTF reader and writer, plain
// text through PlainTextFile. Reads fill a document the caller then shows, so a failed read
// leaves the open document as it was; writes go through WriteFileSafely, so a failed write
// leaves the file on disk as it was.
namespace DocumentFile {

// Larger files are refused before anything is read: the editor is for notes.
constexpr qint64 kLargestFile = 256 * 1024 * 1024;

DocumentFileResult readRich(const QString &path, QTextDocument *document);
DocumentFileResult readPlain(const QString &path, QTextDocument *document, PlainTextFile *file);
DocumentFileResult richFromBytes(const QByteArray &bytes, QTextDocument *document);
DocumentFileResult plainFromBytes(const QByteArray &bytes, QTextDocument *document, PlainTextFile *file);

QByteArray richBytes(const QTextDocument &document);
// The document's text in the file's encoding and line ends. When the text no longer fits a
// Windows-1252 file, the file switches to UTF-8 (the caller tells the user).
QByteArray plainBytes(const QTextDocument &document, PlainTextFile *file);

DocumentFileResult writeBytes(const QString &path, const QByteArray &bytes);

} // namespace DocumentFile
