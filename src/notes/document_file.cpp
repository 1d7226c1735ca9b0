#include "notes/document_file.h"

#include "core/platform/regular_file.h"
#include "core/safe_file_write.h"
#include "notes/plain_text_file.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QTextDocument>

namespace DocumentFile {

namespace {

QString Shown(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// The whole file, or an error that names it.
bool ReadAll(const QString &path, QByteArray *bytes, QString *error)
{
    QFile file;
    QString problem;
    if (!OpenRegularFile(&file, path, &problem)) {
        *error = QObject::tr("%1 could not be opened: %2.").arg(Shown(path), problem);
        return false;
    }
    // Read no further than the limit, whatever the size said: the file may grow meanwhile.
    if (file.size() <= kLargestFile)
        *bytes = file.read(kLargestFile + 1);
    if (file.size() > kLargestFile || bytes->size() > kLargestFile) {
        *error = QObject::tr("%1 is %2 MB, larger than the %3 MB a note can be.")
                     .arg(Shown(path))
                     .arg(qMax<qint64>(file.size(), bytes->size()) / (1024 * 1024))
                     .arg(kLargestFile / (1024 * 1024));
        bytes->clear();
        return false;
    }
    if (file.error() != QFileDevice::NoError) {
        *error = QObject::tr("%1 could not be read: %2.").arg(Shown(path), file.errorString());
        return false;
    }
    return true;
}

} // namespace

DocumentFileResult richFromBytes(const QByteArray &bytes, QTextDocument *document)
{
    const RtfReadResult read = RtfReader::read(bytes, document);
    DocumentFileResult result;
    result.ok = read.ok;
    result.error = read.error;
    result.warnings = read.warnings;
    return result;
}

DocumentFileResult plainFromBytes(const QByteArray &bytes, QTextDocument *document, PlainTextFile *file)
{
    *file = PlainTextFile::fromBytes(bytes);
    document->setUndoRedoEnabled(false);
    document->setPlainText(file->text());
    document->setUndoRedoEnabled(true);
    DocumentFileResult result;
    result.ok = true;
    return result;
}

DocumentFileResult readRich(const QString &path, QTextDocument *document)
{
    DocumentFileResult result;
    QByteArray bytes;
    if (!ReadAll(path, &bytes, &result.error))
        return result;
    result = richFromBytes(bytes, document);
    if (!result.ok)
        result.error = QObject::tr("%1 could not be opened as rich text: %2").arg(Shown(path), result.error);
    return result;
}

DocumentFileResult readPlain(const QString &path, QTextDocument *document, PlainTextFile *file)
{
    DocumentFileResult result;
    QByteArray bytes;
    if (!ReadAll(path, &bytes, &result.error))
        return result;
    return plainFromBytes(bytes, document, file);
}

QByteArray richBytes(const QTextDocument &document)
{
    return RtfWriter::write(document);
}

QByteArray plainBytes(const QTextDocument &document, PlainTextFile *file)
{
    file->setText(document.toPlainText());
    if (!file->canEncodeLosslessly())
        file->switchToUtf8();
    return file->toBytes();
}

DocumentFileResult writeBytes(const QString &path, const QByteArray &bytes)
{
    DocumentFileResult result;
    QString reason;
    result.ok = WriteFileSafely(path, bytes, &reason);
    if (!result.ok)
        result.error = QObject::tr("%1 could not be saved: %2. The file on disk is as it was.").arg(Shown(path), reason);
    return result;
}

} // namespace DocumentFile
