#include "notes/rtf_writer_tables.h"

#include "notes/rich_text_properties.h"
#include "notes/rtf_writer_output.h"

#include <QTextList>

namespace {

// A font family's class from its name; readers use it only to pick a substitute.
const char *fontClass(const QString &family)
{
    const QString name = family.toLower();
    auto has = [&name](const char *word) { return name.contains(QLatin1String(word)); };
    if (has("mono") || has("courier") || has("consol") || has("code"))
        return "fmodern";
    if (has("sans") || has("arial") || has("helvetica") || has("verdana") || has("tahoma") ||
        has("calibri") || has("segoe") || has("ubuntu") || has("noto") || has("cantarell"))
        return "fswiss";
    if (has("serif") || has("times") || has("roman") || has("georgia") || has("garamond") || has("cambria") ||
        has("palatino") || has("book"))
        return "froman";
    return "fnil";
}

// The level's number format (\levelnfc): decimal, roman and letter numbers, or a bullet.
int numberFormat(QTextListFormat::Style style)
{
    switch (style) {
    case QTextListFormat::ListDecimal:
        return 0;
    case QTextListFormat::ListUpperRoman:
        return 1;
    case QTextListFormat::ListLowerRoman:
        return 2;
    case QTextListFormat::ListUpperAlpha:
        return 3;
    case QTextListFormat::ListLowerAlpha:
        return 4;
    default:
        return 23;
    }
}

} // namespace

QString RtfWriterTables::bullet(QTextListFormat::Style style)
{
    switch (style) {
    case QTextListFormat::ListCircle:
        return QStringLiteral(u"\u25e6");
    case QTextListFormat::ListSquare:
        return QStringLiteral(u"\u25aa");
    case QTextListFormat::ListDisc:
        return QStringLiteral(u"\u2022");
    default:
        return {};
    }
}

int RtfWriterTables::fontIndex(const QString &family)
{
    const auto found = m_fontIndex.constFind(family);
    if (found != m_fontIndex.constEnd())
        return *found;
    m_fonts.append(family);
    m_fontIndex.insert(family, int(m_fonts.size() - 1));
    return int(m_fonts.size() - 1);
}

int RtfWriterTables::colorIndex(const QColor &color)
{
    const QRgb rgb = color.rgb();
    const auto found = m_colorIndex.constFind(rgb);
    if (found != m_colorIndex.constEnd())
        return *found;
    m_colors.append(QColor(rgb));
    m_colorIndex.insert(rgb, int(m_colors.size()));
    return int(m_colors.size());
}

int RtfWriterTables::listIndex(const QTextList *list, int indentWidthTwips)
{
    const auto found = m_listIndex.constFind(list);
    if (found != m_listIndex.constEnd())
        return *found;
    m_lists.append({list->format(), indentWidthTwips});
    m_listIndex.insert(list, int(m_lists.size()));
    return int(m_lists.size());
}

void RtfWriterTables::write(RtfWriterOutput &out) const
{
    writeFonts(out);
    writeColors(out);
    if (!m_lists.isEmpty())
        writeLists(out);
}

void RtfWriterTables::writeFonts(RtfWriterOutput &out) const
{
    out.openGroup();
    out.controlWord("fonttbl");
    for (int i = 0; i < m_fonts.size(); ++i) {
        out.openGroup();
        out.controlWord("f", i);
        out.controlWord(fontClass(m_fonts[i]));
        out.controlWord("fcharset", 0);
        // A semicolon would end the name early.
        out.text(QString(m_fonts[i]).remove(QLatin1Char(';')));
        out.punctuation(';');
        out.closeGroup();
    }
    out.closeGroup();
    out.newLine();
}

void RtfWriterTables::writeColors(RtfWriterOutput &out) const
{
    out.openGroup();
    out.controlWord("colortbl");
    out.text(u";");
    for (const QColor &color : m_colors) {
        out.controlWord("red", color.red());
        out.controlWord("green", color.green());
        out.controlWord("blue", color.blue());
        out.punctuation(';');
    }
    out.closeGroup();
    out.newLine();
}

// Each list has the levels up to its own; a nested QTextList is a list of its own at a deeper
// level, which is how Qt keeps nesting.
void RtfWriterTables::writeLists(RtfWriterOutput &out) const
{
    out.openIgnorableGroup("listtable");
    for (int i = 0; i < m_lists.size(); ++i) {
        out.newLine();
        out.openGroup();
        out.controlWord("list");
        out.controlWord("listtemplateid", i + 1);
        const int ownLevel = std::clamp(m_lists[i].format.indent() - 1, 0, 8);
        for (int level = 0; level <= ownLevel; ++level)
            writeListLevel(out, m_lists[i], level);
        out.openGroup();
        out.controlWord("listname");
        out.punctuation(';');
        out.closeGroup();
        out.controlWord("listid", i + 1);
        out.closeGroup();
    }
    out.closeGroup();
    out.newLine();
    out.openIgnorableGroup("listoverridetable");
    for (int i = 0; i < m_lists.size(); ++i) {
        out.openGroup();
        out.controlWord("listoverride");
        out.controlWord("listid", i + 1);
        out.controlWord("listoverridecount", 0);
        out.controlWord("ls", i + 1);
        out.closeGroup();
    }
    out.closeGroup();
    out.newLine();
}

void RtfWriterTables::writeListLevel(RtfWriterOutput &out, const ListEntry &list, int level)
{
    const QTextListFormat::Style style = list.format.style();
    const int format = numberFormat(style);
    out.openGroup();
    out.controlWord("listlevel");
    out.controlWord("levelnfc", format);
    out.controlWord("levelnfcn", format);
    out.controlWord("leveljc", 0);
    out.controlWord("leveljcn", 0);
    out.controlWord("levelfollow", 0);
    const bool ownStart = list.format.hasProperty(RichText::ListStartProperty);
    out.controlWord("levelstartat", ownStart ? list.format.intProperty(RichText::ListStartProperty) : 1);
    // The level text starts with its length; a number is a byte holding its level, whose
    // place \levelnumbers gives.
    out.openGroup();
    out.controlWord("leveltext");
    const QString marker = bullet(style);
    if (marker.isEmpty()) {
        const QString prefix = list.format.numberPrefix();
        // Without a suffix of its own a list shows "." after the number.
        const QString suffix = list.format.hasProperty(QTextFormat::ListNumberSuffix) ? list.format.numberSuffix()
                                                                                       : QStringLiteral(".");
        out.byteEscape(int(prefix.size() + 1 + suffix.size()));
        out.text(prefix);
        out.byteEscape(level);
        out.text(suffix);
        out.punctuation(';');
        out.closeGroup();
        out.openGroup();
        out.controlWord("levelnumbers");
        out.byteEscape(int(prefix.size() + 1));
    } else {
        out.byteEscape(1);
        out.text(marker);
        out.punctuation(';');
        out.closeGroup();
        out.openGroup();
        out.controlWord("levelnumbers");
    }
    out.punctuation(';');
    out.closeGroup();
    out.controlWord("fi", RichText::kListHangingTwips);
    out.controlWord("li", (level + 1) * list.indentWidthTwips);
    out.closeGroup();
}
