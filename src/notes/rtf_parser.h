#pragma once

#include "notes/rtf_content_collector.h"
#include "notes/rtf_picture.h"
#include "notes/rtf_tokenizer.h"
#include "notes/rtf_words.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QStringList>

#include <optional>
#include <vector>

class QTextDocument;

// Reads the tokens of one RTF file into an RtfContentCollector, keeping the formatting state
// of every open group on a stack of its own (never the call stack, so any nesting depth is
// safe). Groups deeper than kDeepestTrackedGroup are counted but share the state of the
// deepest tracked one. Font, colour and list tables, fields, pictures and tables are
// understood; other destinations are skipped.
class RtfParser
{
public:
    RtfParser(QByteArrayView rtf, QTextDocument *document);

    // Parses everything and returns the collected content.
    std::vector<RtfBlock> parse();
    const QStringList &warnings() const { return m_warnings; }

    static constexpr int kDeepestTrackedGroup = 4096;

private:
    enum class Destination {
        Body,             // visible text
        NoText,           // text dropped, but pictures and table marks count (shapes, objects)
        Skip,             // everything dropped
        FontTable,
        ColorTable,
        ListTable,
        ListOverrides,
        FieldInstruction,
        Picture,
        ShapeName,
        ListNumbering,    // old-style {\*\pn ...} numbering of the enclosing paragraph
        ListNumberText,   // its {\pntxtb ...} or {\pntxta ...}: the text before or after the number
        LevelText,        // a list level's marker: its length, then text around level placeholders
    };

    struct CharState
    {
        int font = -1;
        int halfPoints = 24;
        int foreground = -1; // colour table index
        int background = -1;
        int link = -1;       // index into m_links
        int vertical = 0;    // 0 normal, 1 raised, 2 lowered
        int caps = 0;        // 0 none, 1 all capitals, 2 small capitals
        int asianFont = -1;  // \af given after \dbch: the font of East Asian characters
        bool doubleByte = false; // after \dbch, until \loch or \hich
        bool bold = false;
        bool italic = false;
        bool underline = false;
        bool strike = false;
        bool hidden = false;
        bool operator==(const CharState &) const = default;
    };

    struct ParagraphState
    {
        Qt::Alignment alignment = Qt::AlignLeft;
        int left = 0; // twips
        int right = 0;
        int firstLine = 0;
        int before = 0;
        int after = 0;
        int lineSpacing = 0;
        bool lineMultiple = false;
        bool inTable = false;
        int tableLevel = 0; // \itap
        int listOverride = 0; // \ls
        int listLevel = 0;    // \ilvl
        int oldListStyle = 0; // QTextListFormat::Style of a {\*\pn} list, 0 for none
        int oldListLevel = 0;
        int oldListStart = 1;
        QString oldListPrefix;
        QString oldListSuffix;
        bool pageBreakBefore = false;
        int direction = 0; // 0 not given, 1 left to right, 2 right to left
    };

    struct GroupState
    {
        CharState chars;
        ParagraphState paragraph;
        Destination destination = Destination::Body;
        int unicodeSkip = 1; // \uc
        qsizetype openOffset = 0;
        bool atStart = true;  // no control word or text read yet in this group
        bool starred = false; // \* seen at the start
        bool opensField = false;
        bool opensPicture = false;
    };

    struct Field
    {
        QString instruction;
        Destination outer = Destination::Body;
    };

    struct FontEntry
    {
        QString family;
        int codePage = -1;
    };

    void handleToken(const RtfTokenizer::Token &token);
    void openGroup(qsizetype offset);
    void closeGroup(qsizetype endOffset);
    void handleText(QByteArrayView text);
    void handleHexByte(char byte);
    void handleSymbol(char symbol);
    void handleWord(const RtfTokenizer::Token &token);
    bool startDestination(RtfWord word);
    bool handleTableWord(RtfWord word, int value);
    bool handleCharacterWord(RtfWord word, int value, bool hasValue);
    bool handleParagraphWord(RtfWord word, int value, bool hasValue);
    bool handleSpecialCharacter(RtfWord word);
    bool handleDocumentWord(RtfWord word, int value);
    void handleTableDefinitionWord(RtfWord word, int value);
    void handleOldListWord(RtfWord word, int value);
    void appendOldListText(const QString &text);
    void appendFontName(QByteArrayView bytes);
    void appendFontNameCharacter(char16_t c);
    void handleBinary(qint64 length);

    void addBytes(QByteArrayView bytes);
    void emitText(const QString &text, bool keepSurrogate = false);
    void emitUnicode(int value);
    void flushBytes();
    void flushRun();
    void resolvePendingSurrogate();
    void endParagraph();
    void endCell(int tableLevel);
    void finishPicture(qsizetype openOffset, qsizetype endOffset);
    void commitFont();
    void commitColor();
    void commitList();
    void commitListOverride();
    void startFieldResult();

    int currentCodePage() const;
    int effectiveTableLevel() const;
    QTextCharFormat charFormat(const CharState &chars);
    // `listLevel`: the paragraph's level in a list, -1 outside lists.
    QTextBlockFormat blockFormat(const ParagraphState &paragraph, int listLevel) const;
    RtfListItem listItem(const ParagraphState &paragraph);
    static void applyLevelText(const QString &text, RtfListItem *item);
    void warnOnce(const QString &warning);

    GroupState &state() { return m_stack.back(); }

    QByteArrayView m_input;
    RtfTokenizer m_tokenizer;
    QTextDocument *m_document;
    RtfContentCollector m_collector;
    std::vector<GroupState> m_stack;
    int m_untrackedDepth = 0;
    int m_syntheticCloses = 0; // groups closed because the file ended
    bool m_rootClosed = false;
    QStringList m_warnings;

    // Text decoding
    QByteArray m_pendingBytes;
    int m_pendingCodePage = 1252;
    int m_skipCount = 0;           // \uN fallback characters still to skip
    char16_t m_pendingHighSurrogate = 0;
    QString m_runText;
    CharState m_runChars;
    int m_ansiCodePage = 1252;
    bool m_pageBreakPending = false; // \page: the next paragraph starts a page

    // Formats are made once per distinct character state in a row.
    CharState m_cachedChars;
    QTextCharFormat m_cachedFormat;
    bool m_cacheValid = false;

    // Tables of the file
    QHash<int, FontEntry> m_fonts;
    int m_defaultFont = -1;
    int m_fontIndex = -1;
    int m_fontCodePage = -1;
    QByteArray m_fontName;     // bytes of the name not decoded yet
    QString m_fontNameText;    // the name's characters before them
    QList<QColor> m_colors;
    int m_red = 0, m_green = 0, m_blue = 0;
    bool m_colorSet = false;

    // Lists: \listid -> number format per level, and \ls -> \listid
    struct ListLevel
    {
        int numberFormat = 0; // \levelnfc
        QString text;         // \leveltext without its length
        int start = 1;        // \levelstartat
    };
    QHash<int, QList<ListLevel>> m_listFormats;
    QHash<int, int> m_listOverrides;
    QList<ListLevel> m_listLevels;
    QString m_levelText;
    int m_listId = 0;
    bool m_listPending = false;
    int m_overrideListId = 0;
    int m_overrideNumber = 0;
    bool m_overridePending = false;
    int m_oldListKey = 0;
    bool m_lastParagraphInOldList = false;
    size_t m_oldListOwner = 0;
    bool m_oldListTextBefore = false;

    // Fields, pictures, shapes
    QList<Field> m_fields;
    QStringList m_links;
    std::optional<RtfPicture> m_picture;
    int m_pictureCount = 0;
    QString m_shapeName;
    QHash<int, RtfRowDefinition> m_rowDefinitions; // the current row definition per table level
};
