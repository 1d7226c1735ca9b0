#include "notes/rtf_words.h"

#include <QByteArray>
#include <QHash>

namespace {

struct Entry
{
    const char *name;
    RtfWord word;
};

// Underline styles all count as underline; \ulc (underline colour) is not one of them.
constexpr Entry kEntries[] = {
    {"fonttbl", RtfWord::FontTable}, {"colortbl", RtfWord::ColorTable},
    {"listtable", RtfWord::ListTable}, {"listoverridetable", RtfWord::ListOverrideTable},
    {"field", RtfWord::Field}, {"fldinst", RtfWord::FieldInstruction}, {"fldrslt", RtfWord::FieldResult},
    {"pict", RtfWord::Picture}, {"shppict", RtfWord::ShapePicture}, {"nonshppict", RtfWord::NoShapePicture},
    {"shp", RtfWord::Shape}, {"shpinst", RtfWord::ShapeInstance}, {"sp", RtfWord::ShapeProperty},
    {"sn", RtfWord::ShapeName}, {"sv", RtfWord::ShapeValue}, {"object", RtfWord::Object},
    {"result", RtfWord::ObjectResult}, {"pn", RtfWord::OldListNumbering},
    {"nesttableprops", RtfWord::NestedTableProperties},
    // Destinations whose content is not part of the text the editor shows.
    {"info", RtfWord::SkippedDestination}, {"stylesheet", RtfWord::SkippedDestination},
    {"header", RtfWord::SkippedDestination}, {"headerl", RtfWord::SkippedDestination},
    {"headerr", RtfWord::SkippedDestination}, {"headerf", RtfWord::SkippedDestination},
    {"footer", RtfWord::SkippedDestination}, {"footerl", RtfWord::SkippedDestination},
    {"footerr", RtfWord::SkippedDestination}, {"footerf", RtfWord::SkippedDestination},
    {"footnote", RtfWord::SkippedDestination}, {"annotation", RtfWord::SkippedDestination},
    {"pntext", RtfWord::SkippedDestination}, {"listtext", RtfWord::SkippedDestination},
    {"nonesttables", RtfWord::SkippedDestination}, {"shprslt", RtfWord::SkippedDestination},
    {"shptxt", RtfWord::SkippedDestination}, {"ftnsep", RtfWord::SkippedDestination},
    {"ftnsepc", RtfWord::SkippedDestination}, {"ftncn", RtfWord::SkippedDestination},
    {"aftnsep", RtfWord::SkippedDestination}, {"aftnsepc", RtfWord::SkippedDestination},
    {"aftncn", RtfWord::SkippedDestination}, {"pnseclvl", RtfWord::SkippedDestination},
    {"txe", RtfWord::SkippedDestination}, {"xe", RtfWord::SkippedDestination},
    {"tc", RtfWord::SkippedDestination}, {"filetbl", RtfWord::SkippedDestination},
    {"revtbl", RtfWord::SkippedDestination}, {"upr", RtfWord::SkippedDestination},
    {"comment", RtfWord::SkippedDestination}, {"author", RtfWord::SkippedDestination},
    {"operator", RtfWord::SkippedDestination}, {"title", RtfWord::SkippedDestination},
    {"subject", RtfWord::SkippedDestination}, {"keywords", RtfWord::SkippedDestination},
    {"doccomm", RtfWord::SkippedDestination}, {"buptim", RtfWord::SkippedDestination},
    {"creatim", RtfWord::SkippedDestination}, {"revtim", RtfWord::SkippedDestination},
    {"printim", RtfWord::SkippedDestination}, {"template", RtfWord::SkippedDestination},
    {"objdata", RtfWord::SkippedDestination}, {"objclass", RtfWord::SkippedDestination},
    {"ansicpg", RtfWord::AnsiCodePage}, {"deff", RtfWord::DefaultFont}, {"mac", RtfWord::Mac},
    {"pc", RtfWord::Pc}, {"pca", RtfWord::Pca}, {"bin", RtfWord::Binary}, {"uc", RtfWord::UnicodeSkip},
    {"u", RtfWord::Unicode}, {"fcharset", RtfWord::Charset}, {"cpg", RtfWord::CodePage},
    {"red", RtfWord::Red}, {"green", RtfWord::Green}, {"blue", RtfWord::Blue},
    {"plain", RtfWord::Plain}, {"b", RtfWord::Bold}, {"i", RtfWord::Italic},
    {"ul", RtfWord::Underline}, {"uld", RtfWord::Underline}, {"uldash", RtfWord::Underline},
    {"uldashd", RtfWord::Underline}, {"uldashdd", RtfWord::Underline}, {"uldb", RtfWord::Underline},
    {"ulhwave", RtfWord::Underline}, {"ulldash", RtfWord::Underline}, {"ulth", RtfWord::Underline},
    {"ulthd", RtfWord::Underline}, {"ulthdash", RtfWord::Underline}, {"ulthdashd", RtfWord::Underline},
    {"ulthdashdd", RtfWord::Underline}, {"ulthldash", RtfWord::Underline},
    {"ululdbwave", RtfWord::Underline}, {"ulw", RtfWord::Underline}, {"ulwave", RtfWord::Underline},
    {"ulnone", RtfWord::UnderlineNone}, {"strike", RtfWord::Strike}, {"striked", RtfWord::Strike},
    {"v", RtfWord::Hidden}, {"caps", RtfWord::Caps}, {"scaps", RtfWord::SmallCaps},
    {"super", RtfWord::Super}, {"sub", RtfWord::Sub}, {"nosupersub", RtfWord::NoSuperSub},
    {"up", RtfWord::Up}, {"dn", RtfWord::Down}, {"f", RtfWord::Font}, {"fs", RtfWord::FontSize},
    {"cf", RtfWord::Foreground}, {"cb", RtfWord::Background}, {"highlight", RtfWord::Background},
    {"chcbpat", RtfWord::Background}, {"af", RtfWord::AssociatedFont}, {"loch", RtfWord::LowAnsiChars},
    {"hich", RtfWord::HighAnsiChars}, {"dbch", RtfWord::DoubleByteChars},
    {"pard", RtfWord::Pard}, {"ql", RtfWord::AlignLeft}, {"qc", RtfWord::AlignCenter},
    {"qr", RtfWord::AlignRight}, {"qj", RtfWord::AlignJustify}, {"qd", RtfWord::AlignJustify},
    {"li", RtfWord::LeftIndent}, {"lin", RtfWord::LeftIndent}, {"ri", RtfWord::RightIndent},
    {"rin", RtfWord::RightIndent}, {"fi", RtfWord::FirstIndent}, {"sb", RtfWord::SpaceBefore},
    {"sa", RtfWord::SpaceAfter}, {"sl", RtfWord::LineSpacing}, {"slmult", RtfWord::LineMultiple},
    {"intbl", RtfWord::InTable}, {"itap", RtfWord::TableLevel}, {"ls", RtfWord::ListOverride},
    {"ilvl", RtfWord::ListLevel}, {"pagebb", RtfWord::PageBreakBefore}, {"rtlpar", RtfWord::RightToLeftParagraph},
    {"ltrpar", RtfWord::LeftToRightParagraph},
    {"par", RtfWord::Par}, {"page", RtfWord::Page}, {"line", RtfWord::Line}, {"tab", RtfWord::Tab}, {"cell", RtfWord::Cell},
    {"row", RtfWord::Row}, {"nestcell", RtfWord::NestedCell}, {"nestrow", RtfWord::NestedRow},
    {"trowd", RtfWord::RowDefaults}, {"cellx", RtfWord::CellEdge}, {"trgaph", RtfWord::RowGap},
    {"clmgf", RtfWord::CellMergeFirst}, {"clmrg", RtfWord::CellMergeContinue},
    {"clvmgf", RtfWord::CellVerticalMergeFirst}, {"clvmrg", RtfWord::CellVerticalMergeContinue},
    {"emdash", RtfWord::EmDash}, {"endash", RtfWord::EnDash}, {"lquote", RtfWord::LeftQuote},
    {"rquote", RtfWord::RightQuote}, {"ldblquote", RtfWord::LeftDoubleQuote},
    {"rdblquote", RtfWord::RightDoubleQuote}, {"bullet", RtfWord::Bullet}, {"emspace", RtfWord::EmSpace},
    {"enspace", RtfWord::EnSpace}, {"qmspace", RtfWord::QuarterEmSpace}, {"zwj", RtfWord::ZeroWidthJoiner},
    {"zwnj", RtfWord::ZeroWidthNonJoiner}, {"ltrmark", RtfWord::LeftToRightMark},
    {"rtlmark", RtfWord::RightToLeftMark},
    {"list", RtfWord::List}, {"listlevel", RtfWord::ListLevelDefinition}, {"listid", RtfWord::ListId},
    {"levelnfc", RtfWord::LevelNumberFormat}, {"leveltext", RtfWord::LevelText},
    {"levelstartat", RtfWord::LevelStartAt}, {"listoverride", RtfWord::ListOverrideEntry},
    {"pnlvlblt", RtfWord::OldListBullet}, {"pnlvlbody", RtfWord::OldListBody},
    {"pnlvl", RtfWord::OldListLevel}, {"pndec", RtfWord::OldListDecimal},
    {"pnucltr", RtfWord::OldListUpperLetter}, {"pnlcltr", RtfWord::OldListLowerLetter},
    {"pnucrm", RtfWord::OldListUpperRoman}, {"pnlcrm", RtfWord::OldListLowerRoman},
    {"pnstart", RtfWord::OldListStart}, {"pntxta", RtfWord::OldListTextAfter},
    {"pntxtb", RtfWord::OldListTextBefore},
};

const QHash<QByteArray, RtfWord> &wordTable()
{
    static const QHash<QByteArray, RtfWord> table = [] {
        QHash<QByteArray, RtfWord> words;
        for (const Entry &entry : kEntries)
            words.insert(QByteArray(entry.name), entry.word);
        return words;
    }();
    return table;
}

} // namespace

RtfWord LookUpRtfWord(QByteArrayView word)
{
    return wordTable().value(QByteArray::fromRawData(word.data(), word.size()), RtfWord::Unknown);
}
