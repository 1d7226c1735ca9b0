#pragma once

#include <QByteArray>

class QTextDocument;

// Saves a notes document as RTF that other word processors open with the same formatting and
// that RtfReader reads back to the same document (see notes/rich_text_properties.h for how the
// formatting is kept in the QTextDocument).
//
// Lists are written as list tables (\listtable, \listoverridetable, \lsN \ilvlN), with
// the marker of every item repeated in a {\listtext ...} group for readers that know no lists,
// and each item's indent (\li, \fi) given on the paragraph too, as word processors take it
// from there. Each QTextList is a list of its own whose level is its indent minus one.
class RtfWriter
{
public:
    // The document as RTF bytes (7-bit ASCII). Deterministic: the same document gives the same bytes.
    static QByteArray write(const QTextDocument &document);
};
