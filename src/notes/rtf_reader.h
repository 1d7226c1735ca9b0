#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

class QTextDocument;

struct RtfReadResult
{
    bool ok = false;      // false: nothing usable was read; error says why, for the user
    QString error;        // one sentence, e.g. "The file does not start with {\rtf, so it is not rich text."
    QStringList warnings; // best-effort repairs: "The file ends before all its groups are closed."
};

// Reads rich text (RTF) as word processors, converters and this program write it into a
// QTextDocument, keeping the conventions of notes/rich_text_properties.h. Damaged files give
// a best-effort document with warnings.
class RtfReader
{
public:
    // Replaces the document's content with the RTF. Never throws, never hangs.
    static RtfReadResult read(const QByteArray &rtf, QTextDocument *document);
};
