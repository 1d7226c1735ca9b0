#include "notes/rtf_reader.h"
#include "notes/rtf_document_builder.h"
#include "notes/rtf_parser.h"

#include <QTextDocument>

namespace {

// Where the root group starts: after a byte order mark and blank space, if any.
qsizetype rtfStart(const QByteArray &rtf)
{
    qsizetype start = rtf.startsWith("\xEF\xBB\xBF") ? 3 : 0;
    while (start < rtf.size() && (rtf[start] == ' ' || rtf[start] == '\t' || rtf[start] == '\r' || rtf[start] == '\n'))
        ++start;
    return start;
}

} // namespace

RtfReadResult RtfReader::read(const QByteArray &rtf, QTextDocument *document)
{
    RtfReadResult result;
    const qsizetype start = rtfStart(rtf);
    if (start >= rtf.size()) {
        result.error = QStringLiteral("The file is empty, so there is no rich text to show.");
        return result;
    }
    if (!QByteArrayView(rtf).sliced(start).startsWith("{\\rtf")) {
        result.error = QStringLiteral("The file does not start with {\\rtf, so it is not rich text.");
        return result;
    }
    const bool undo = document->isUndoRedoEnabled();
    document->setUndoRedoEnabled(false);
    document->clear();
    RtfParser parser(QByteArrayView(rtf).sliced(start), document);
    const std::vector<RtfBlock> blocks = parser.parse();
    RtfDocumentBuilder builder(document);
    builder.build(blocks);
    document->setUndoRedoEnabled(undo);
    result.ok = true;
    result.warnings = parser.warnings() + builder.warnings();
    return result;
}
