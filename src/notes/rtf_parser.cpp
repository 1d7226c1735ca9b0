#include "notes/rtf_parser.h"
#include "notes/code_page.h"
#include "notes/rich_text_properties.h"

#include <QTextDocument>

#include <algorithm>

namespace {

constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kLineSeparator = 0x2028;
// The longest fallback of a \uN: a character takes at most 4 bytes in any code page
// (GB18030). A larger \ucN is damage, read as the default of 1, as other readers do;
// honouring it would swallow the real text that follows.
constexpr int kLongestFallback = 4;
constexpr int kMostColors = 65536;
constexpr int kMostListLevels = 9;
// Limits of a row definition; larger values are damage.
constexpr size_t kMostCellEdges = 63;
constexpr int kWidestTableTwips = 31680; // 22 inches
constexpr double kLargestIndent = 5000.0; // pixels
// A list level "without number" (outline headings): its paragraphs are not list items.
constexpr int kNoNumber = 255;

QTextListFormat::Style styleForNumberFormat(int format)
{
    switch (format) {
    case 1: return QTextListFormat::ListUpperRoman;
    case 2: return QTextListFormat::ListLowerRoman;
    case 3: return QTextListFormat::ListUpperAlpha;
    case 4: return QTextListFormat::ListLowerAlpha;
    case 23: return QTextListFormat::ListDisc;
    case kNoNumber: return QTextListFormat::ListStyleUndefined;
    default: return QTextListFormat::ListDecimal;
    }
}

double twipsToPixels(int twips)
{
    return std::clamp(RichText::TwipsToPixels(twips), -kLargestIndent, kLargestIndent);
}

// The arguments of a field instruction: quoted strings or blank-separated words.
QStringList instructionArguments(const QString &instruction)
{
    QStringList arguments;
    qsizetype i = 0;
    const qsizetype n = instruction.size();
    while (i < n) {
        while (i < n && instruction[i].isSpace())
            ++i;
        if (i >= n)
            break;
        if (instruction[i] == u'"') {
            const qsizetype close = instruction.indexOf(u'"', i + 1);
            const qsizetype end = close < 0 ? n : close;
            arguments.append(instruction.mid(i + 1, end - i - 1));
            i = end + 1;
        } else {
            const qsizetype start = i;
            while (i < n && !instruction[i].isSpace())
                ++i;
            arguments.append(instruction.mid(start, i - start));
        }
    }
    return arguments;
}

// The target of a HYPERLINK field: its address, and "#place" for a \l switch.
QString hyperlinkTarget(const QString &instruction)
{
    const QStringList arguments = instructionArguments(instruction);
    if (arguments.isEmpty() || arguments.first().compare(QLatin1String("HYPERLINK"), Qt::CaseInsensitive) != 0)
        return QString();
    QString address;
    QString place;
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments[i];
        if (argument.startsWith(u'\\')) {
            const QString name = argument.mid(1).toLower();
            if ((name == u"l" || name == u"o" || name == u"t") && i + 1 < arguments.size()) {
                if (name == u"l")
                    place = arguments[i + 1];
                ++i;
            }
        } else if (address.isEmpty()) {
            address = argument;
        }
    }
    if (!place.isEmpty())
        address += u'#' + place;
    return address;
}

// Characters that would change the document's structure if inserted as text.
void makeInsertable(QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c >= 0x20 && c < 0x2028)
            continue;
        if (c == u'\n' || c == u'\r' || c == 0x2029)
            text[i] = QChar(kLineSeparator);
        else if (c == 0xFDD0 || c == 0xFDD1 || c == 0xFFFC)
            text[i] = QChar(kReplacement);
        else if (c < 0x20 && c != u'\t')
            text.remove(i--, 1);
    }
}

} // namespace

RtfParser::RtfParser(QByteArrayView rtf, QTextDocument *document)
    : m_input(rtf), m_tokenizer(rtf), m_document(document)
{
    m_stack.reserve(64);
    m_stack.emplace_back(); // the state outside the root group
}

std::vector<RtfBlock> RtfParser::parse()
{
    for (RtfTokenizer::Token token = m_tokenizer.next(); token.type != RtfTokenizer::Type::End;
         token = m_tokenizer.next())
        handleToken(token);
    flushBytes();
    if (m_stack.size() > 1 || m_untrackedDepth > 0) {
        warnOnce(QStringLiteral("The file ends before all its groups are closed."));
        m_untrackedDepth = 0;
        while (m_stack.size() > 1) {
            ++m_syntheticCloses;
            closeGroup(m_input.size());
        }
    }
    resolvePendingSurrogate();
    flushRun();
    return m_collector.finish(blockFormat(state().paragraph, -1), charFormat(state().chars));
}

void RtfParser::handleToken(const RtfTokenizer::Token &token)
{
    using Type = RtfTokenizer::Type;
    if (m_rootClosed && m_stack.size() == 1 && token.type != Type::GroupEnd
        && !(token.type == Type::Text && token.word.trimmed().isEmpty()))
        warnOnce(QStringLiteral("The file goes on after its last group closes; that part was read too."));
    switch (token.type) {
    case Type::Text:
        handleText(token.word);
        break;
    case Type::HexByte:
        handleHexByte(token.symbol);
        break;
    case Type::Symbol:
        handleSymbol(token.symbol);
        break;
    case Type::Word:
        handleWord(token);
        break;
    case Type::GroupStart:
        flushBytes();
        m_skipCount = 0;
        openGroup(token.offset);
        break;
    case Type::GroupEnd:
        flushBytes();
        m_skipCount = 0;
        closeGroup(token.offset + 1);
        break;
    case Type::End:
        break;
    }
}

void RtfParser::openGroup(qsizetype offset)
{
    if (m_untrackedDepth > 0 || m_stack.size() >= size_t(kDeepestTrackedGroup)) {
        ++m_untrackedDepth;
        warnOnce(QStringLiteral("The file nests groups more than %1 deep; the deepest ones share one format.")
                     .arg(kDeepestTrackedGroup));
        return;
    }
    state().atStart = false;
    GroupState next = state();
    next.atStart = true;
    next.starred = false;
    next.opensField = false;
    next.opensPicture = false;
    next.openOffset = offset;
    m_stack.push_back(next);
}

void RtfParser::closeGroup(qsizetype endOffset)
{
    if (m_untrackedDepth > 0) {
        --m_untrackedDepth;
        return;
    }
    if (m_stack.size() <= 1) {
        warnOnce(QStringLiteral("The file has more closing braces than opening ones; the extra ones were ignored."));
        return;
    }
    const GroupState &closing = m_stack.back();
    const Destination outer = m_stack[m_stack.size() - 2].destination;
    if (closing.opensPicture)
        finishPicture(closing.openOffset, endOffset);
    if (closing.destination == Destination::FontTable && m_fontIndex >= 0)
        commitFont();
    if (closing.destination == Destination::LevelText && outer != Destination::LevelText && !m_listLevels.isEmpty())
        m_listLevels.last().text = m_levelText.mid(1); // the first character is the length
    if (closing.destination == Destination::ListTable && outer != Destination::ListTable)
        commitList();
    if (closing.destination == Destination::ListOverrides && outer != Destination::ListOverrides)
        commitListOverride();
    if (closing.opensField && !m_fields.isEmpty())
        m_fields.removeLast();
    m_stack.pop_back();
    if (m_stack.size() == 1)
        m_rootClosed = true;
}

void RtfParser::handleText(QByteArrayView text)
{
    state().atStart = false;
    if (m_skipCount > 0) {
        const qsizetype skipped = std::min<qsizetype>(m_skipCount, text.size());
        m_skipCount -= int(skipped);
        text = text.sliced(skipped);
    }
    if (text.isEmpty())
        return;
    switch (state().destination) {
    case Destination::Body:
        if (!state().chars.hidden)
            addBytes(text);
        break;
    case Destination::FieldInstruction:
        addBytes(text);
        break;
    case Destination::Picture:
        if (m_picture)
            m_picture->appendHex(text);
        break;
    case Destination::FontTable:
        for (const char c : text) {
            if (c == ';')
                commitFont();
            else
                m_fontName.append(c);
        }
        break;
    case Destination::ListNumberText:
        addBytes(text);
        break;
    case Destination::ColorTable:
        for (const char c : text) {
            if (c == ';')
                commitColor();
        }
        break;
    case Destination::ShapeName:
        m_shapeName += QString::fromLatin1(text);
        break;
    case Destination::LevelText:
        for (const char c : text) {
            if (c != ';')
                m_levelText += QLatin1Char(c);
        }
        break;
    default:
        break;
    }
}

void RtfParser::handleHexByte(char byte)
{
    state().atStart = false;
    if (m_skipCount > 0) {
        --m_skipCount;
        return;
    }
    const Destination destination = state().destination;
    if (destination == Destination::FontTable)
        m_fontName.append(byte);
    else if (destination == Destination::LevelText)
        m_levelText += QChar(uchar(byte));
    else if ((destination == Destination::Body && !state().chars.hidden) || destination == Destination::FieldInstruction
             || destination == Destination::ListNumberText)
        addBytes(QByteArrayView(&byte, 1));
}

void RtfParser::handleSymbol(char symbol)
{
    if (symbol == '*') {
        if (state().atStart)
            state().starred = true;
        return;
    }
    if (symbol == '\\' || symbol == '{' || symbol == '}') {
        handleText(QByteArrayView(&symbol, 1));
        return;
    }
    state().atStart = false;
    if (m_skipCount > 0) {
        --m_skipCount;
        return;
    }
    flushBytes();
    switch (symbol) {
    case '~': emitText(QString(QChar(0x00A0))); break;
    case '-': emitText(QString(QChar(0x00AD))); break;
    case '_': emitText(QString(QChar(0x2011))); break;
    case '\n':
    case '\r':
        if (state().destination == Destination::Body)
            endParagraph();
        break;
    default: break;
    }
}

void RtfParser::handleWord(const RtfTokenizer::Token &token)
{
    const RtfWord word = LookUpRtfWord(token.word);
    const int value = token.hasParameter ? token.parameter : 0;
    if (word == RtfWord::Binary) {
        flushBytes();
        state().atStart = false;
        handleBinary(token.hasParameter ? token.parameter : 0);
        return;
    }
    if (m_skipCount > 0) {
        --m_skipCount;
        return;
    }
    flushBytes();
    GroupState &s = state();
    const bool atStart = s.atStart;
    s.atStart = false;
    if (s.destination == Destination::Skip)
        return;
    if (atStart && startDestination(word))
        return;
    if (atStart && s.starred) {
        s.destination = Destination::Skip; // an optional destination this reader does not know
        return;
    }
    if (s.destination == Destination::FontTable && (word == RtfWord::Unicode || word == RtfWord::UnicodeSkip)) {
        handleDocumentWord(word, value); // a font name outside the file's code page
        return;
    }
    switch (s.destination) {
    case Destination::FontTable:
    case Destination::ColorTable:
    case Destination::ListTable:
    case Destination::ListOverrides:
        handleTableDefinitionWord(word, value);
        return;
    case Destination::Picture:
        if (m_picture)
            m_picture->applyWord(token.word, value, token.hasParameter);
        return;
    case Destination::ListNumbering:
        handleOldListWord(word, value);
        return;
    case Destination::ShapeName:
    case Destination::Skip:
        return;
    default:
        break;
    }
    if (handleDocumentWord(word, value) || handleCharacterWord(word, value, token.hasParameter)
        || handleParagraphWord(word, value, token.hasParameter) || handleTableWord(word, value))
        return;
    handleSpecialCharacter(word);
}

bool RtfParser::startDestination(RtfWord word)
{
    GroupState &s = state();
    const Destination outer = s.destination;
    if (word == RtfWord::SkippedDestination || word == RtfWord::NoShapePicture) {
        s.destination = Destination::Skip;
        return true;
    }
    if ((word == RtfWord::OldListTextBefore || word == RtfWord::OldListTextAfter) && outer == Destination::ListNumbering) {
        s.destination = Destination::ListNumberText;
        m_oldListTextBefore = word == RtfWord::OldListTextBefore;
        if (m_oldListOwner < m_stack.size() - 1) {
            ParagraphState &p = m_stack[m_oldListOwner].paragraph;
            (m_oldListTextBefore ? p.oldListPrefix : p.oldListSuffix).clear();
        }
        return true;
    }
    if (word == RtfWord::LevelText && outer == Destination::ListTable) {
        s.destination = Destination::LevelText;
        m_levelText.clear();
        return true;
    }
    if (outer != Destination::Body && outer != Destination::NoText)
        return false;
    switch (word) {
    case RtfWord::FontTable:
        s.destination = Destination::FontTable;
        m_fontIndex = -1;
        m_fontName.clear();
        m_fontNameText.clear();
        return true;
    case RtfWord::ColorTable:
        s.destination = Destination::ColorTable;
        m_colors.clear();
        m_colorSet = false;
        m_cacheValid = false;
        return true;
    case RtfWord::ListTable:
        s.destination = Destination::ListTable;
        return true;
    case RtfWord::ListOverrideTable:
        s.destination = Destination::ListOverrides;
        return true;
    case RtfWord::Field:
        s.opensField = true;
        m_fields.append(Field{QString(), outer});
        return true;
    case RtfWord::FieldInstruction:
        s.destination = m_fields.isEmpty() ? Destination::Skip : Destination::FieldInstruction;
        return true;
    case RtfWord::FieldResult:
        startFieldResult();
        return true;
    case RtfWord::Picture:
        if (m_picture) {
            s.destination = Destination::Skip; // a picture inside a picture is damage
        } else {
            m_picture.emplace();
            s.opensPicture = true;
            s.destination = Destination::Picture;
        }
        return true;
    case RtfWord::ShapePicture:
    case RtfWord::Shape:
    case RtfWord::ShapeInstance:
    case RtfWord::ShapeProperty:
    case RtfWord::Object:
    case RtfWord::NestedTableProperties:
        s.destination = Destination::NoText;
        return true;
    case RtfWord::ShapeName:
        s.destination = Destination::ShapeName;
        m_shapeName.clear();
        return true;
    case RtfWord::ShapeValue:
        // Only the shape's own picture is shown, not its fill or other property pictures.
        s.destination = m_shapeName.trimmed() == u"pib" ? Destination::NoText : Destination::Skip;
        return true;
    case RtfWord::ObjectResult:
        s.destination = Destination::Body;
        return true;
    case RtfWord::OldListNumbering:
        s.destination = Destination::ListNumbering;
        m_oldListOwner = m_stack.size() - 2;
        return true;
    default:
        return false;
    }
}

void RtfParser::startFieldResult()
{
    GroupState &s = state();
    if (m_fields.isEmpty())
        return;
    const Field &field = m_fields.constLast();
    s.destination = field.outer;
    const QString target = hyperlinkTarget(field.instruction);
    if (!target.isEmpty()) {
        s.chars.link = int(m_links.size());
        m_links.append(target);
    }
}

bool RtfParser::handleDocumentWord(RtfWord word, int value)
{
    switch (word) {
    case RtfWord::AnsiCodePage:
        if (value > 0)
            m_ansiCodePage = value;
        return true;
    case RtfWord::Mac: m_ansiCodePage = 10000; return true;
    case RtfWord::Pc: m_ansiCodePage = 437; return true;
    case RtfWord::Pca: m_ansiCodePage = 850; return true;
    case RtfWord::DefaultFont:
        m_defaultFont = value;
        m_cacheValid = false;
        return true;
    case RtfWord::UnicodeSkip:
        state().unicodeSkip = value < 0 || value > kLongestFallback ? 1 : value;
        return true;
    case RtfWord::Unicode:
        emitUnicode(value);
        return true;
    default:
        return false;
    }
}

bool RtfParser::handleCharacterWord(RtfWord word, int value, bool hasValue)
{
    CharState &c = state().chars;
    const bool on = !hasValue || value != 0;
    switch (word) {
    case RtfWord::AssociatedFont:
        // Only the East Asian font is kept; \af after \loch, \hich or \rtlch names fonts
        // for scripts that the run's own font covers.
        if (c.doubleByte)
            c.asianFont = value;
        return true;
    case RtfWord::DoubleByteChars: c.doubleByte = true; return true;
    case RtfWord::LowAnsiChars:
    case RtfWord::HighAnsiChars: c.doubleByte = false; return true;
    case RtfWord::Plain: {
        const int link = c.link;
        c = CharState();
        c.link = link; // a link's format may be reset inside its text
        return true;
    }
    case RtfWord::Bold: c.bold = on; return true;
    case RtfWord::Italic: c.italic = on; return true;
    case RtfWord::Underline: c.underline = on; return true;
    case RtfWord::UnderlineNone: c.underline = false; return true;
    case RtfWord::Strike: c.strike = on; return true;
    case RtfWord::Hidden: c.hidden = on; return true;
    case RtfWord::Caps: c.caps = on ? 1 : 0; return true;
    case RtfWord::SmallCaps: c.caps = on ? 2 : 0; return true;
    case RtfWord::Super: c.vertical = 1; return true;
    case RtfWord::Sub: c.vertical = 2; return true;
    case RtfWord::NoSuperSub: c.vertical = 0; return true;
    case RtfWord::Up: c.vertical = on ? 1 : 0; return true;
    case RtfWord::Down: c.vertical = on ? 2 : 0; return true;
    case RtfWord::Font: c.font = value; return true;
    case RtfWord::FontSize: c.halfPoints = hasValue ? std::clamp(value, 2, 3276) : 24; return true;
    case RtfWord::Foreground: c.foreground = value > 0 ? value : -1; return true;
    case RtfWord::Background: c.background = value > 0 ? value : -1; return true;
    default: return false;
    }
}

bool RtfParser::handleParagraphWord(RtfWord word, int value, bool hasValue)
{
    ParagraphState &p = state().paragraph;
    switch (word) {
    case RtfWord::Pard: p = ParagraphState(); return true;
    case RtfWord::AlignLeft: p.alignment = Qt::AlignLeft; return true;
    case RtfWord::AlignCenter: p.alignment = Qt::AlignHCenter; return true;
    case RtfWord::AlignRight: p.alignment = Qt::AlignRight; return true;
    case RtfWord::AlignJustify: p.alignment = Qt::AlignJustify; return true;
    case RtfWord::LeftIndent: p.left = value; return true;
    case RtfWord::RightIndent: p.right = value; return true;
    case RtfWord::FirstIndent: p.firstLine = value; return true;
    case RtfWord::SpaceBefore: p.before = value; return true;
    case RtfWord::SpaceAfter: p.after = value; return true;
    case RtfWord::LineSpacing: p.lineSpacing = value; return true;
    case RtfWord::LineMultiple: p.lineMultiple = !hasValue || value != 0; return true;
    case RtfWord::InTable: p.inTable = true; return true;
    case RtfWord::TableLevel: p.tableLevel = std::clamp(value, 0, 64); return true;
    case RtfWord::ListOverride: p.listOverride = value; return true;
    case RtfWord::ListLevel: p.listLevel = std::clamp(value, 0, kMostListLevels - 1); return true;
    case RtfWord::PageBreakBefore: p.pageBreakBefore = !hasValue || value != 0; return true;
    case RtfWord::RightToLeftParagraph: p.direction = 2; return true;
    case RtfWord::LeftToRightParagraph: p.direction = 1; return true;
    default: return false;
    }
}

bool RtfParser::handleTableWord(RtfWord word, int value)
{
    const Destination destination = state().destination;
    if (destination != Destination::Body && destination != Destination::NoText)
        return word == RtfWord::Par || word == RtfWord::Cell || word == RtfWord::Row
            || word == RtfWord::NestedCell || word == RtfWord::NestedRow;
    switch (word) {
    case RtfWord::Par:
        if (destination == Destination::Body)
            endParagraph();
        return true;
    case RtfWord::Page:
        // A page break ends the paragraph it stands in (unless nothing came before it), and
        // the next paragraph starts a page.
        if (destination == Destination::Body) {
            if (!m_runText.isEmpty() || !m_collector.paragraphIsEmpty())
                endParagraph();
            m_pageBreakPending = true;
        }
        return true;
    case RtfWord::CellVerticalMergeFirst:
    case RtfWord::CellVerticalMergeContinue:
    case RtfWord::CellMergeFirst:
    case RtfWord::CellMergeContinue: {
        const RtfCellMerge merge = word == RtfWord::CellVerticalMergeFirst      ? RtfCellMerge::VerticalFirst
                                   : word == RtfWord::CellVerticalMergeContinue ? RtfCellMerge::VerticalContinue
                                   : word == RtfWord::CellMergeFirst            ? RtfCellMerge::HorizontalFirst
                                                                                : RtfCellMerge::HorizontalContinue;
        m_rowDefinitions[std::max(1, effectiveTableLevel())].pendingMerge = merge;
        return true;
    }
    case RtfWord::Cell:
        endCell(1);
        return true;
    case RtfWord::NestedCell:
        endCell(std::max(2, effectiveTableLevel()));
        return true;
    case RtfWord::Row:
    case RtfWord::NestedRow: {
        resolvePendingSurrogate();
        flushRun();
        const int level = word == RtfWord::Row ? 1 : std::max(2, effectiveTableLevel());
        m_collector.endRow(level, m_rowDefinitions.value(level));
        return true;
    }
    case RtfWord::RowDefaults:
        m_rowDefinitions.insert(std::max(1, effectiveTableLevel()), RtfRowDefinition());
        return true;
    case RtfWord::CellEdge: {
        RtfRowDefinition &definition = m_rowDefinitions[std::max(1, effectiveTableLevel())];
        if (definition.cellEdges.size() < kMostCellEdges) {
            definition.cellEdges.push_back(std::clamp(value, 0, kWidestTableTwips));
            definition.merges.push_back(definition.pendingMerge);
        }
        definition.pendingMerge = RtfCellMerge::None;
        return true;
    }
    case RtfWord::RowGap:
        m_rowDefinitions[std::max(1, effectiveTableLevel())].gap = std::clamp(value, 0, kWidestTableTwips);
        return true;
    default:
        return false;
    }
}

bool RtfParser::handleSpecialCharacter(RtfWord word)
{
    char16_t c = 0;
    switch (word) {
    case RtfWord::Line: c = kLineSeparator; break;
    case RtfWord::Tab: c = u'\t'; break;
    case RtfWord::EmDash: c = 0x2014; break;
    case RtfWord::EnDash: c = 0x2013; break;
    case RtfWord::LeftQuote: c = 0x2018; break;
    case RtfWord::RightQuote: c = 0x2019; break;
    case RtfWord::LeftDoubleQuote: c = 0x201C; break;
    case RtfWord::RightDoubleQuote: c = 0x201D; break;
    case RtfWord::Bullet: c = 0x2022; break;
    case RtfWord::EmSpace: c = 0x2003; break;
    case RtfWord::EnSpace: c = 0x2002; break;
    case RtfWord::QuarterEmSpace: c = 0x2005; break;
    case RtfWord::ZeroWidthJoiner: c = 0x200D; break;
    case RtfWord::ZeroWidthNonJoiner: c = 0x200C; break;
    case RtfWord::LeftToRightMark: c = 0x200E; break;
    case RtfWord::RightToLeftMark: c = 0x200F; break;
    default: return false;
    }
    emitText(QString(QChar(c)));
    return true;
}

void RtfParser::handleTableDefinitionWord(RtfWord word, int value)
{
    switch (word) {
    case RtfWord::Font:
        if (m_fontIndex >= 0)
            commitFont();
        m_fontName.clear();
        m_fontNameText.clear();
        m_fontIndex = value;
        m_fontCodePage = -1;
        break;
    case RtfWord::Charset: m_fontCodePage = CodePageForCharset(value); break;
    case RtfWord::CodePage: m_fontCodePage = value; break;
    case RtfWord::Red: m_red = std::clamp(value, 0, 255); m_colorSet = true; break;
    case RtfWord::Green: m_green = std::clamp(value, 0, 255); m_colorSet = true; break;
    case RtfWord::Blue: m_blue = std::clamp(value, 0, 255); m_colorSet = true; break;
    case RtfWord::List:
        commitList();
        m_listPending = true;
        m_listLevels.clear();
        m_listId = 0;
        break;
    case RtfWord::ListLevelDefinition:
        if (m_listLevels.size() < kMostListLevels)
            m_listLevels.append(ListLevel());
        break;
    case RtfWord::LevelNumberFormat:
        if (state().destination == Destination::ListTable && !m_listLevels.isEmpty())
            m_listLevels.last().numberFormat = value;
        break;
    case RtfWord::LevelStartAt:
        if (state().destination == Destination::ListTable && !m_listLevels.isEmpty())
            m_listLevels.last().start = std::max(0, value);
        break;
    case RtfWord::ListOverrideEntry:
        commitListOverride();
        m_overridePending = true;
        m_overrideListId = 0;
        m_overrideNumber = 0;
        break;
    case RtfWord::ListId:
        (state().destination == Destination::ListTable ? m_listId : m_overrideListId) = value;
        break;
    case RtfWord::ListOverride:
        m_overrideNumber = value;
        break;
    default:
        break;
    }
}

void RtfParser::handleOldListWord(RtfWord word, int value)
{
    if (m_oldListOwner >= m_stack.size())
        return;
    ParagraphState &p = m_stack[m_oldListOwner].paragraph;
    const bool numbered = p.oldListStyle != 0 && p.oldListStyle != QTextListFormat::ListDisc;
    switch (word) {
    case RtfWord::OldListBullet:
        p.oldListStyle = QTextListFormat::ListDisc;
        p.oldListLevel = 0;
        break;
    case RtfWord::OldListBody:
        if (!numbered)
            p.oldListStyle = QTextListFormat::ListDecimal;
        p.oldListLevel = 0;
        break;
    case RtfWord::OldListLevel:
        if (!numbered)
            p.oldListStyle = QTextListFormat::ListDecimal;
        p.oldListLevel = std::clamp(value - 1, 0, kMostListLevels - 1);
        break;
    case RtfWord::OldListDecimal: p.oldListStyle = QTextListFormat::ListDecimal; break;
    case RtfWord::OldListUpperLetter: p.oldListStyle = QTextListFormat::ListUpperAlpha; break;
    case RtfWord::OldListLowerLetter: p.oldListStyle = QTextListFormat::ListLowerAlpha; break;
    case RtfWord::OldListUpperRoman: p.oldListStyle = QTextListFormat::ListUpperRoman; break;
    case RtfWord::OldListLowerRoman: p.oldListStyle = QTextListFormat::ListLowerRoman; break;
    case RtfWord::OldListStart: p.oldListStart = std::max(0, value); break;
    default: break;
    }
}

void RtfParser::appendOldListText(const QString &text)
{
    if (m_oldListOwner >= m_stack.size())
        return;
    ParagraphState &p = m_stack[m_oldListOwner].paragraph;
    (m_oldListTextBefore ? p.oldListPrefix : p.oldListSuffix) += text;
}

void RtfParser::appendFontNameCharacter(char16_t c)
{
    // Bytes before the character are decoded first, so the name keeps its order.
    m_fontNameText += DecodeCodePage(m_fontName, m_fontCodePage >= 0 ? m_fontCodePage : m_ansiCodePage);
    m_fontName.clear();
    m_fontNameText += QChar(c);
}

void RtfParser::handleBinary(qint64 length)
{
    length = std::max<qint64>(length, 0);
    const QByteArrayView bytes = m_tokenizer.readBinary(length);
    if (bytes.size() < length)
        warnOnce(QStringLiteral("The file ends inside binary data that it says is longer."));
    if (state().destination == Destination::Picture && m_picture && m_untrackedDepth == 0)
        m_picture->appendBinary(bytes);
}

void RtfParser::addBytes(QByteArrayView bytes)
{
    const int codePage = currentCodePage();
    if (!m_pendingBytes.isEmpty() && codePage != m_pendingCodePage)
        flushBytes();
    m_pendingCodePage = codePage;
    m_pendingBytes.append(bytes);
}

void RtfParser::flushBytes()
{
    if (m_pendingBytes.isEmpty())
        return;
    const QString text = DecodeCodePage(m_pendingBytes, m_pendingCodePage);
    m_pendingBytes.clear();
    emitText(text);
}

void RtfParser::emitText(const QString &text, bool keepSurrogate)
{
    if (!keepSurrogate)
        resolvePendingSurrogate();
    switch (state().destination) {
    case Destination::Body:
        if (state().chars.hidden)
            return;
        if (!m_runText.isEmpty() && !(m_runChars == state().chars))
            flushRun();
        m_runChars = state().chars;
        m_runText += text;
        break;
    case Destination::FieldInstruction:
        if (!m_fields.isEmpty())
            m_fields.last().instruction += text;
        break;
    case Destination::LevelText:
        m_levelText += text;
        break;
    case Destination::ListNumberText:
        appendOldListText(text);
        break;
    case Destination::FontTable:
        for (const QChar c : text)
            appendFontNameCharacter(c.unicode());
        break;
    default:
        break;
    }
}

void RtfParser::emitUnicode(int value)
{
    const char16_t c = value < 0 ? char16_t(value + 65536) : value <= 0xFFFF ? char16_t(value) : kReplacement;
    if (QChar::isHighSurrogate(c)) {
        resolvePendingSurrogate();
        m_pendingHighSurrogate = c;
    } else if (QChar::isLowSurrogate(c)) {
        if (m_pendingHighSurrogate != 0) {
            const QChar pair[2] = {QChar(m_pendingHighSurrogate), QChar(c)};
            m_pendingHighSurrogate = 0;
            emitText(QString(pair, 2), true);
        } else {
            emitText(QString(QChar(kReplacement)));
        }
    } else {
        emitText(QString(QChar(c)));
    }
    m_skipCount = state().unicodeSkip;
}

void RtfParser::resolvePendingSurrogate()
{
    if (m_pendingHighSurrogate == 0)
        return;
    m_pendingHighSurrogate = 0;
    emitText(QString(QChar(kReplacement)), true);
}

void RtfParser::flushRun()
{
    if (m_runText.isEmpty())
        return;
    makeInsertable(m_runText);
    m_collector.appendText(m_runText, charFormat(m_runChars));
    m_runText.clear();
}

void RtfParser::endParagraph()
{
    resolvePendingSurrogate();
    flushRun();
    const RtfListItem item = listItem(state().paragraph);
    QTextBlockFormat format = blockFormat(state().paragraph, item.key != 0 ? item.level : -1);
    if (m_pageBreakPending)
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    m_pageBreakPending = false;
    m_collector.endParagraph(format, charFormat(state().chars), item, effectiveTableLevel());
}

void RtfParser::endCell(int tableLevel)
{
    resolvePendingSurrogate();
    flushRun();
    const RtfListItem item = listItem(state().paragraph);
    m_collector.endCell(blockFormat(state().paragraph, item.key != 0 ? item.level : -1), charFormat(state().chars),
                        tableLevel, item);
}

void RtfParser::finishPicture(qsizetype openOffset, qsizetype endOffset)
{
    if (!m_picture)
        return;
    const RtfPicture picture = std::move(*m_picture);
    m_picture.reset();
    QByteArray group = m_input.sliced(openOffset, endOffset - openOffset).toByteArray();
    // A group cut off by the end of the file is closed, so the writer can put it back whole.
    group.append(QByteArray(m_syntheticCloses, '}'));
    const QString name = QStringLiteral("%1:%2").arg(QLatin1String(RichText::kPictureScheme)).arg(++m_pictureCount);
    const QTextImageFormat format = picture.addTo(m_document, name, group);
    const Destination outer = m_stack[m_stack.size() - 2].destination;
    if (outer == Destination::Body || outer == Destination::NoText) {
        resolvePendingSurrogate();
        flushRun();
        m_collector.appendPicture(format);
    }
}

void RtfParser::commitFont()
{
    const QString family =
        (m_fontNameText + DecodeCodePage(m_fontName, m_fontCodePage >= 0 ? m_fontCodePage : m_ansiCodePage)).trimmed();
    m_fonts.insert(m_fontIndex, FontEntry{family, m_fontCodePage});
    m_fontName.clear();
    m_fontNameText.clear();
    m_fontIndex = -1;
    m_cacheValid = false;
}

void RtfParser::commitColor()
{
    if (m_colors.size() < kMostColors)
        m_colors.append(m_colorSet ? QColor(m_red, m_green, m_blue) : QColor());
    m_red = m_green = m_blue = 0;
    m_colorSet = false;
    m_cacheValid = false;
}

void RtfParser::commitList()
{
    if (m_listPending && m_listId != 0)
        m_listFormats.insert(m_listId, m_listLevels);
    m_listPending = false;
}

void RtfParser::commitListOverride()
{
    if (m_overridePending && m_overrideNumber != 0)
        m_listOverrides.insert(m_overrideNumber, m_overrideListId);
    m_overridePending = false;
}

int RtfParser::currentCodePage() const
{
    const int font = m_stack.back().chars.font >= 0 ? m_stack.back().chars.font : m_defaultFont;
    const auto it = m_fonts.constFind(font);
    if (it != m_fonts.constEnd() && it->codePage >= 0)
        return it->codePage;
    return m_ansiCodePage;
}

int RtfParser::effectiveTableLevel() const
{
    const ParagraphState &p = m_stack.back().paragraph;
    return std::max(p.tableLevel, p.inTable ? 1 : 0);
}

// The marker text of a list level: a bullet character picks the bullet's shape (Word's
// Wingdings square is U+F0A7 or byte A7, its Courier New circle an "o"); around a
// number, the text before the first level placeholder (bytes 0 to 8) and after the last one.
void RtfParser::applyLevelText(const QString &text, RtfListItem *item)
{
    if (text.isEmpty())
        return;
    if (item->style == QTextListFormat::ListDisc) {
        const QChar bullet = text.at(0);
        if (bullet == QChar(0x25AA) || bullet == QChar(0x25A0) || bullet == QChar(0xA7) || bullet == QChar(0xF0A7))
            item->style = QTextListFormat::ListSquare;
        else if (bullet == QChar(0x25E6) || bullet == QLatin1Char('o'))
            item->style = QTextListFormat::ListCircle;
        return;
    }
    const auto isPlaceholder = [](QChar c) { return c.unicode() < 9; };
    qsizetype first = -1;
    qsizetype last = -1;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (isPlaceholder(text.at(i))) {
            if (first < 0)
                first = i;
            last = i;
        }
    }
    if (first < 0)
        return;
    item->prefix = text.left(first);
    item->suffix = text.mid(last + 1);
}

RtfListItem RtfParser::listItem(const ParagraphState &paragraph)
{
    RtfListItem item;
    // An \ls that no list table defines says nothing about the marker: old-style numbering
    // given with it wins.
    const bool listDefined = m_listOverrides.contains(paragraph.listOverride)
        || m_listFormats.contains(paragraph.listOverride);
    if (paragraph.listOverride > 0 && (listDefined || paragraph.oldListStyle == 0)) {
        m_lastParagraphInOldList = false;
        item.key = paragraph.listOverride;
        item.level = paragraph.listLevel;
        const QList<ListLevel> levels =
            m_listFormats.value(m_listOverrides.value(paragraph.listOverride, paragraph.listOverride));
        const ListLevel level = item.level < levels.size() ? levels[item.level] : ListLevel{23, QString()};
        item.style = styleForNumberFormat(level.numberFormat);
        item.start = level.start;
        if (item.style == QTextListFormat::ListStyleUndefined)
            item.key = 0;
        applyLevelText(level.text, &item);
        return item;
    }
    if (paragraph.oldListStyle != 0) {
        if (!m_lastParagraphInOldList)
            --m_oldListKey; // a new run of old-style list paragraphs is a new list
        m_lastParagraphInOldList = true;
        item.key = m_oldListKey;
        item.level = paragraph.oldListLevel;
        item.style = QTextListFormat::Style(paragraph.oldListStyle);
        if (item.style != QTextListFormat::ListDisc) {
            item.start = paragraph.oldListStart;
            item.prefix = paragraph.oldListPrefix;
            item.suffix = paragraph.oldListSuffix;
        }
        return item;
    }
    m_lastParagraphInOldList = false;
    return item;
}

QTextCharFormat RtfParser::charFormat(const CharState &chars)
{
    if (m_cacheValid && chars == m_cachedChars)
        return m_cachedFormat;
    QTextCharFormat format;
    auto font = m_fonts.constFind(chars.font >= 0 ? chars.font : m_defaultFont);
    if (font == m_fonts.constEnd())
        font = m_fonts.constFind(m_defaultFont);
    QStringList families;
    if (font != m_fonts.constEnd() && !font->family.isEmpty())
        families.append(font->family);
    // The East Asian font follows as the fallback for the characters the first one lacks.
    const auto asian = chars.asianFont >= 0 ? m_fonts.constFind(chars.asianFont) : m_fonts.constEnd();
    if (asian != m_fonts.constEnd() && !asian->family.isEmpty() && !families.contains(asian->family))
        families.append(asian->family);
    if (!families.isEmpty())
        format.setFontFamilies(families);
    format.setFontPointSize(chars.halfPoints / 2.0);
    if (chars.bold)
        format.setFontWeight(QFont::Bold);
    if (chars.italic)
        format.setFontItalic(true);
    if (chars.underline)
        format.setFontUnderline(true);
    if (chars.strike)
        format.setFontStrikeOut(true);
    if (chars.foreground >= 0 && chars.foreground < m_colors.size() && m_colors[chars.foreground].isValid())
        format.setForeground(m_colors[chars.foreground]);
    if (chars.background >= 0 && chars.background < m_colors.size() && m_colors[chars.background].isValid())
        format.setBackground(m_colors[chars.background]);
    if (chars.vertical != 0)
        format.setVerticalAlignment(chars.vertical == 1 ? QTextCharFormat::AlignSuperScript
                                                        : QTextCharFormat::AlignSubScript);
    if (chars.caps != 0)
        format.setFontCapitalization(chars.caps == 1 ? QFont::AllUppercase : QFont::SmallCaps);
    if (chars.link >= 0 && chars.link < m_links.size()) {
        format.setAnchor(true);
        format.setAnchorHref(m_links[chars.link]);
    }
    m_cachedChars = chars;
    m_cachedFormat = format;
    m_cacheValid = true;
    return format;
}

QTextBlockFormat RtfParser::blockFormat(const ParagraphState &paragraph, int listLevel) const
{
    QTextBlockFormat format;
    format.setAlignment(paragraph.alignment);
    // A list's own indent stands for the indent of its level and the hanging marker; only a
    // left indent beyond the level's is the paragraph's own.
    const int left = listLevel < 0
        ? paragraph.left
        : std::max(0, paragraph.left - RichText::ListLeftIndentTwips(listLevel, m_document->indentWidth()));
    if (left != 0)
        format.setLeftMargin(twipsToPixels(left));
    if (listLevel < 0 && paragraph.firstLine != 0)
        format.setTextIndent(twipsToPixels(paragraph.firstLine));
    if (paragraph.right != 0)
        format.setRightMargin(twipsToPixels(paragraph.right));
    if (paragraph.before != 0)
        format.setTopMargin(twipsToPixels(paragraph.before));
    if (paragraph.after != 0)
        format.setBottomMargin(twipsToPixels(paragraph.after));
    if (paragraph.pageBreakBefore)
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    if (paragraph.direction != 0)
        format.setLayoutDirection(paragraph.direction == 2 ? Qt::RightToLeft : Qt::LeftToRight);
    const int spacing = paragraph.lineSpacing;
    if (spacing != 0) {
        if (paragraph.lineMultiple)
            format.setLineHeight(std::abs(spacing) * 100.0 / 240.0, QTextBlockFormat::ProportionalHeight);
        else if (spacing > 0)
            format.setLineHeight(twipsToPixels(spacing), QTextBlockFormat::MinimumHeight);
        else
            format.setLineHeight(twipsToPixels(-spacing), QTextBlockFormat::FixedHeight);
    }
    return format;
}

void RtfParser::warnOnce(const QString &warning)
{
    if (!m_warnings.contains(warning))
        m_warnings.append(warning);
}
