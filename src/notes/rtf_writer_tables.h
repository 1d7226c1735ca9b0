#pragma once

#include <QColor>
#include <QHash>
#include <QList>
#include <QStringList>
#include <QTextListFormat>

class QTextList;
class RtfWriterOutput;

// The font, colour and list tables at the head of an RTF file. Entries are numbered in the
// order the body first uses them, so the same document always gives the same numbers (font 0,
// the default font, is the first one used); colour 0 is the "auto" colour.
class RtfWriterTables
{
public:
    int fontIndex(const QString &family);
    int colorIndex(const QColor &color);
    // The \ls number of a list (from 1). Each QTextList is a list of its own, so that two
    // lists one after the other each start from their first number.
    int listIndex(const QTextList *list, int indentWidthTwips);

    // The marker of a bulleted list style; empty for numbered styles.
    static QString bullet(QTextListFormat::Style style);

    void write(RtfWriterOutput &out) const;

private:
    struct ListEntry
    {
        QTextListFormat format;
        int indentWidthTwips = 0;
    };

    void writeFonts(RtfWriterOutput &out) const;
    void writeColors(RtfWriterOutput &out) const;
    void writeLists(RtfWriterOutput &out) const;
    static void writeListLevel(RtfWriterOutput &out, const ListEntry &list, int level);

    QStringList m_fonts;
    QHash<QString, int> m_fontIndex;
    QList<QColor> m_colors;
    QHash<QRgb, int> m_colorIndex;
    QList<ListEntry> m_lists;
    QHash<const QTextList *, int> m_listIndex;
};
