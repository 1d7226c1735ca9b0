#include "notes/rtf_writer.h"

#include "notes/rich_text_properties.h"
#include "notes/rtf_writer_output.h"
#include "notes/rtf_writer_tables.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPixmap>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <algorithm>

namespace {

// The width tables are laid out in: a page of the size and margins RTF assumes when a file
// names none (12240 twips less two margins of 1800). Not the editor's window width, so that
// saving gives the same file however wide the window is.
constexpr int kTextWidthTwips = 8640;
constexpr int kDefaultCellGapTwips = 108;
constexpr int kNarrowestColumn = 180;
constexpr double kFallbackPointSize = 12.0;
// The East Asian font of CJK text whose own font has no CJK characters; readers substitute a
// font of their own when it is missing, which is all the name is for.
constexpr char16_t kCjkFallbackFamily[] = u"Noto Sans CJK SC";

// A picture as it goes into the file: PNG or JPEG bytes and the image's size in pixels.
struct Picture
{
    QByteArray bytes;
    bool jpeg = false;
    QSize pixels;
};

bool isPng(const QByteArray &bytes)
{
    return bytes.startsWith("\x89PNG\r\n\x1a\n");
}

bool isJpeg(const QByteArray &bytes)
{
    return bytes.startsWith("\xff\xd8\xff");
}

QByteArray encodePng(const QImage &image)
{
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    return writer.write(image) ? png : QByteArray();
}

// PNG and JPEG bytes are kept as they are; anything else the document holds becomes a PNG.
Picture pictureOf(const QVariant &resource)
{
    Picture picture;
    if (resource.typeId() == QMetaType::QByteArray) {
        const QByteArray bytes = resource.toByteArray();
        if (isPng(bytes) || isJpeg(bytes)) {
            picture.bytes = bytes;
            picture.jpeg = isJpeg(bytes);
            QBuffer buffer(&picture.bytes);
            buffer.open(QIODevice::ReadOnly);
            // Only the header is read for the size: decoding every picture would be slow.
            picture.pixels = QImageReader(&buffer).size();
            if (!picture.pixels.isValid())
                picture.pixels = QImage::fromData(bytes).size();
            return picture;
        }
        return pictureOf(QImage::fromData(bytes));
    }
    QImage image;
    if (resource.typeId() == QMetaType::QImage)
        image = resource.value<QImage>();
    else if (resource.typeId() == QMetaType::QPixmap)
        image = resource.value<QPixmap>().toImage();
    if (!image.isNull()) {
        picture.bytes = encodePng(image);
        picture.pixels = image.size();
    }
    return picture;
}

// Chinese, Japanese and Korean characters: those that want an East Asian font.
bool isCjk(char16_t c)
{
    return (c >= 0x1100 && c <= 0x11ff) || (c >= 0x2e80 && c <= 0xa4cf) || (c >= 0xac00 && c <= 0xd7af)
        || (c >= 0xf900 && c <= 0xfaff) || (c >= 0xfe30 && c <= 0xfe4f) || (c >= 0xff00 && c <= 0xffef)
        || (c >= 0xd840 && c <= 0xd87f); // the high surrogates of the supplementary ideographs
}

bool hasCjk(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return isCjk(c.unicode()); });
}

// Whether a font family has CJK characters, from its name: the written file must not depend
// on the fonts installed where it is saved.
bool isCjkFamily(const QString &family)
{
    if (hasCjk(family))
        return true;
    static const char *const kWords[] = {"cjk", "song", "hei", "ming", "kai", "gothic", "mincho", "simsun",
                                         "yahei", "meiryo", "malgun", "gulim", "batang", "dotum", "wenquanyi",
                                         "wqy", "fallback", "hiragino", "pingfang", "source han", "noto sans sc",
                                         "noto sans tc", "noto sans jp", "noto sans kr", "noto serif sc",
                                         "noto serif tc", "noto serif jp", "noto serif kr", "fangsong"};
    const QString name = family.toLower();
    return std::any_of(std::begin(kWords), std::end(kWords),
                       [&name](const char *word) { return name.contains(QLatin1String(word)); });
}

// What the writer says about a run of text; runs that differ only in what it does not write
// are written as one.
struct RunStyle
{
    int font = 0;
    int asianFont = -1; // the East Asian font of a run with CJK characters
    int halfPoints = 24;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    QFont::Capitalization capitalization = QFont::MixedCase;
    QTextCharFormat::VerticalAlignment vertical = QTextCharFormat::AlignNormal;
    int color = 0; // 0: automatic
    int highlight = 0;

    bool operator==(const RunStyle &) const = default;
};

// The group of the run being written, which the next run of the same style continues.
struct OpenRun
{
    bool open = false;
    RunStyle style;
};

// Converts a document into the body of an RTF file, registering fonts, colours and lists in
// the tables as it meets them.
class BodyWriter
{
public:
    BodyWriter(const QTextDocument &document, RtfWriterTables &tables, RtfWriterOutput &out)
        : m_document(document), m_tables(tables), m_out(out), m_defaultFont(document.defaultFont()),
          m_indentWidthTwips(RichText::PixelsToTwips(document.indentWidth())),
          m_cjkFallback(cjkFallbackFamily(document))
    {
    }

    void write() { writeContents(m_document.rootFrame()->begin(), 0, "par", kTextWidthTwips); }

private:
    // `widthTwips`: the width the contents are laid out in, the page's or a table cell's.
    void writeContents(QTextFrame::iterator it, int depth, const char *lastEnd, int widthTwips);
    void writeTable(const QTextTable *table, int depth, int widthTwips);
    void writeRowDefinition(const QTextTable *table, int row, const QList<int> &widths);
    static QList<int> columnWidths(const QTextTable *table, int widthTwips);
    static int cellGap(const QTextTable *table);
    void writeBlock(const QTextBlock &block, int depth, const char *end);
    void writeParagraphFormat(const QTextBlock &block, int depth);
    void writeListText(const QTextBlock &block, const QTextList *list);
    void writeRuns(const QTextBlock &block);
    void writeText(const QTextCharFormat &format, QString text, OpenRun &run);
    void closeRun(OpenRun &run);
    RunStyle styleOf(const QTextCharFormat &format, QStringView text = {});
    void writeStyle(const RunStyle &style);
    void writeCharFormat(const QTextCharFormat &format) { writeStyle(styleOf(format)); }
    void writePicture(const QTextImageFormat &format);
    void openLink(const QString &href);
    void closeLink();

    QString familyOf(const QTextCharFormat &format) const;
    static QString cjkFallbackFamily(const QTextDocument &document);
    double pointSizeOf(const QTextCharFormat &format) const;

    const QTextDocument &m_document;
    RtfWriterTables &m_tables;
    RtfWriterOutput &m_out;
    const QFont m_defaultFont;
    const int m_indentWidthTwips;
    const QString m_cjkFallback; // the East Asian font of CJK text in a Latin font
};

// Writes the blocks and tables of a frame or table cell. Every paragraph ends with \par but a
// cell's last, which ends with \cell: readers take \par as the end of a paragraph, not as the
// start of another, so the document's last paragraph has one too.
void BodyWriter::writeContents(QTextFrame::iterator it, int depth, const char *lastEnd, int widthTwips)
{
    for (; !it.atEnd(); ++it) {
        if (const QTextFrame *child = it.currentFrame()) {
            if (const auto *table = qobject_cast<const QTextTable *>(child))
                writeTable(table, depth + 1, widthTwips);
            else
                writeContents(child->begin(), depth, "par", widthTwips);
            continue;
        }
        auto next = it;
        ++next;
        writeBlock(it.currentBlock(), depth, next.atEnd() ? lastEnd : "par");
    }
}

// Outer tables are written the classic way (\trowd ... \cell ... \row); tables in a cell with
// \itapN, \nestcell and the row definition in {\*\nesttableprops ... \nestrow}. A table in a
// cell is as wide as the cell's text, and its \cellx count from the cell's left edge.
void BodyWriter::writeTable(const QTextTable *table, int depth, int widthTwips)
{
    const QList<int> widths = columnWidths(table, widthTwips);
    const char *cellEnd = depth == 1 ? "cell" : "nestcell";
    for (int row = 0; row < table->rows(); ++row) {
        if (depth == 1)
            writeRowDefinition(table, row, widths);
        for (int column = 0; column < table->columns(); ++column) {
            const QTextTableCell cell = table->cellAt(row, column);
            if (cell.column() != column)
                continue; // covered by a cell spanning columns
            if (cell.row() != row) {
                // The lower part of a cell spanning rows: an empty cell merged with the one above.
                m_out.controlWord("pard");
                m_out.controlWord("plain");
                m_out.controlWord("intbl");
                if (depth > 1)
                    m_out.controlWord("itap", depth);
                m_out.controlWord(cellEnd);
                continue;
            }
            int cellWidth = 0;
            for (int spanned = 0; spanned < cell.columnSpan() && column + spanned < widths.size(); ++spanned)
                cellWidth += widths[column + spanned];
            writeContents(cell.begin(), depth, cellEnd, std::max(kNarrowestColumn, cellWidth - 2 * cellGap(table)));
        }
        if (depth == 1) {
            m_out.controlWord("row");
        } else {
            m_out.openIgnorableGroup("nesttableprops");
            writeRowDefinition(table, row, widths);
            m_out.controlWord("nestrow");
            m_out.closeGroup();
            // Readers without nested tables show the row as a paragraph of its own.
            m_out.openGroup();
            m_out.controlWord("nonesttables");
            m_out.controlWord("par");
            m_out.closeGroup();
        }
        m_out.newLine();
    }
}

void BodyWriter::writeRowDefinition(const QTextTable *table, int row, const QList<int> &widths)
{
    const QTextTableFormat format = table->format();
    m_out.controlWord("trowd");
    m_out.controlWord("trgaph", cellGap(table));
    m_out.controlWord("trleft", 0);
    const Qt::Alignment alignment = format.alignment() & Qt::AlignHorizontal_Mask;
    if (alignment & Qt::AlignHCenter)
        m_out.controlWord("trqc");
    else if (alignment & (Qt::AlignRight | Qt::AlignTrailing))
        m_out.controlWord("trqr");
    const bool borders = format.border() > 0 && format.borderStyle() != QTextFrameFormat::BorderStyle_None;
    const int borderTwips = std::max(1, RichText::PixelsToTwips(format.border()));
    int right = 0;
    for (int column = 0; column < table->columns(); ++column) {
        const QTextTableCell cell = table->cellAt(row, column);
        if (cell.column() != column)
            continue;
        if (cell.rowSpan() > 1)
            m_out.controlWord(cell.row() == row ? "clvmgf" : "clvmrg");
        if (borders) {
            for (const char *side : {"clbrdrt", "clbrdrl", "clbrdrb", "clbrdrr"}) {
                m_out.controlWord(side);
                m_out.controlWord("brdrs");
                m_out.controlWord("brdrw", borderTwips);
            }
        }
        const QBrush background = cell.format().background();
        if (background.style() != Qt::NoBrush)
            m_out.controlWord("clcbpat", m_tables.colorIndex(background.color()));
        for (int spanned = 0; spanned < cell.columnSpan() && column + spanned < widths.size(); ++spanned)
            right += widths[column + spanned];
        m_out.controlWord("cellx", right);
    }
    m_out.newLine();
}

int BodyWriter::cellGap(const QTextTable *table)
{
    const double padding = table->format().cellPadding();
    return padding > 0 ? RichText::PixelsToTwips(padding) : kDefaultCellGapTwips;
}

// Column widths in twips: fixed widths as they are, percentages of the width the table is in,
// and the rest of the width shared equally by the columns without a constraint.
QList<int> BodyWriter::columnWidths(const QTextTable *table, int widthTwips)
{
    const int columns = table->columns();
    const QList<QTextLength> constraints = table->format().columnWidthConstraints();
    const QTextLength tableWidth = table->format().width();
    int total = widthTwips;
    if (tableWidth.type() == QTextLength::FixedLength)
        total = RichText::PixelsToTwips(tableWidth.rawValue());
    else if (tableWidth.type() == QTextLength::PercentageLength)
        total = qRound(widthTwips * tableWidth.rawValue() / 100.0);

    QList<int> widths(columns, 0);
    int used = 0;
    int free = 0;
    for (int column = 0; column < columns; ++column) {
        const QTextLength length = column < constraints.size() ? constraints[column] : QTextLength();
        if (length.type() == QTextLength::FixedLength)
            widths[column] = RichText::PixelsToTwips(length.rawValue());
        else if (length.type() == QTextLength::PercentageLength)
            widths[column] = qRound(total * length.rawValue() / 100.0);
        else
            ++free;
        used += widths[column];
    }
    const int share = free > 0 ? std::max(kNarrowestColumn, (total - used) / free) : 0;
    for (int &width : widths)
        width = width > 0 ? width : share;
    return widths;
}

void BodyWriter::writeBlock(const QTextBlock &block, int depth, const char *end)
{
    writeParagraphFormat(block, depth);
    if (const QTextList *list = block.textList())
        writeListText(block, list);
    writeRuns(block);
    // An empty paragraph's height comes from the formatting of its paragraph mark.
    if (block.length() <= 1)
        writeCharFormat(block.charFormat());
    m_out.controlWord(end);
    // A break after the paragraph is one before the next: \page at its start.
    if (depth == 0 && (block.blockFormat().pageBreakPolicy() & QTextFormat::PageBreak_AlwaysAfter)
        && block.next().isValid())
        m_out.controlWord("page");
    if (qstrcmp(end, "par") == 0)
        m_out.newLine();
}

void BodyWriter::writeParagraphFormat(const QTextBlock &block, int depth)
{
    m_out.controlWord("pard");
    m_out.controlWord("plain");
    if (depth > 0)
        m_out.controlWord("intbl");
    if (depth > 1)
        m_out.controlWord("itap", depth);
    const QTextList *list = block.textList();
    const int listLevel = list ? std::clamp(list->format().indent() - 1, 0, 8) : -1;
    if (list) {
        m_out.controlWord("ls", m_tables.listIndex(list, m_indentWidthTwips));
        m_out.controlWord("ilvl", listLevel);
    }
    const QTextBlockFormat format = block.blockFormat();
    if (format.hasProperty(QTextFormat::LayoutDirection))
        m_out.controlWord(format.layoutDirection() == Qt::RightToLeft ? "rtlpar" : "ltrpar");
    const Qt::Alignment alignment = format.alignment() & Qt::AlignHorizontal_Mask;
    if (alignment & Qt::AlignJustify)
        m_out.controlWord("qj");
    else if (alignment & Qt::AlignHCenter)
        m_out.controlWord("qc");
    else if (alignment & (Qt::AlignRight | Qt::AlignTrailing))
        m_out.controlWord("qr");

    auto twips = [](double pixels) { return RichText::PixelsToTwips(pixels); };
    int left = twips(format.leftMargin()) + format.indent() * m_indentWidthTwips;
    int firstLine = twips(format.textIndent());
    // A list item's text starts one indent further in per level, its marker hanging in front
    // of it, as the list table says too: readers that take indents from the paragraph alone
    // show the nesting as well.
    if (list) {
        left += RichText::ListLeftIndentTwips(listLevel, m_document.indentWidth());
        firstLine = RichText::kListHangingTwips;
    }
    const std::pair<const char *, int> lengths[] = {
        {"li", left},
        {"ri", twips(format.rightMargin())},
        {"fi", firstLine},
        {"sb", twips(format.topMargin())},
        {"sa", twips(format.bottomMargin())},
    };
    for (const auto &[word, value] : lengths) {
        if (value != 0)
            m_out.controlWord(word, value);
    }
    switch (format.lineHeightType()) {
    case QTextBlockFormat::ProportionalHeight:
        // \slmult1: the height in 240ths of single spacing.
        m_out.controlWord("sl", qRound(format.lineHeight() * 2.4));
        m_out.controlWord("slmult", 1);
        break;
    case QTextBlockFormat::MinimumHeight:
        m_out.controlWord("sl", twips(format.lineHeight()));
        m_out.controlWord("slmult", 0);
        break;
    case QTextBlockFormat::FixedHeight:
        // A negative \sl is an exact height.
        m_out.controlWord("sl", -twips(format.lineHeight()));
        m_out.controlWord("slmult", 0);
        break;
    default:
        break;
    }
    if (format.pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore)
        m_out.controlWord("pagebb");
}

// The item's marker as text, for readers that do not know list tables.
void BodyWriter::writeListText(const QTextBlock &block, const QTextList *list)
{
    QString marker = RtfWriterTables::bullet(list->format().style());
    if (marker.isEmpty())
        marker = list->itemText(block);
    m_out.openGroup();
    m_out.controlWord("listtext");
    writeCharFormat(block.begin().atEnd() ? block.charFormat() : block.begin().fragment().charFormat());
    m_out.text(marker);
    m_out.controlWord("tab");
    m_out.closeGroup();
}

// Runs of text each in a group of their own; the runs of a link together in one HYPERLINK field.
void BodyWriter::writeRuns(const QTextBlock &block)
{
    QString link;
    OpenRun run;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        if (!fragment.isValid())
            continue;
        const QTextCharFormat format = fragment.charFormat();
        const QString href = format.isAnchor() ? format.anchorHref() : QString();
        if (href != link) {
            closeRun(run);
            if (!link.isEmpty())
                closeLink();
            if (!href.isEmpty())
                openLink(href);
            link = href;
        }
        if (!format.isImageFormat()) {
            writeText(format, fragment.text(), run);
            continue;
        }
        closeRun(run);
        const QString text = fragment.text();
        for (const QChar c : text) {
            if (c == QChar::ObjectReplacementCharacter)
                writePicture(format.toImageFormat());
        }
    }
    closeRun(run);
    if (!link.isEmpty())
        closeLink();
}

void BodyWriter::writeText(const QTextCharFormat &format, QString text, OpenRun &run)
{
    // Objects other than pictures have nothing to write.
    text.remove(QChar::ObjectReplacementCharacter);
    if (text.isEmpty())
        return;
    const RunStyle style = styleOf(format, text);
    if (!run.open || !(run.style == style)) {
        closeRun(run);
        m_out.openGroup();
        writeStyle(style);
        run = {true, style};
    }
    m_out.text(text);
}

void BodyWriter::closeRun(OpenRun &run)
{
    if (!run.open)
        return;
    m_out.closeGroup();
    run.open = false;
}

RunStyle BodyWriter::styleOf(const QTextCharFormat &format, QStringView text)
{
    RunStyle style;
    const QString family = familyOf(format);
    style.font = m_tables.fontIndex(family);
    if (hasCjk(text)) {
        // The first family that has CJK characters: a fallback the run names, or its own font.
        const QStringList families = format.property(QTextFormat::FontFamilies).toStringList();
        QString asian = families.size() > 1 ? families.at(1) : QString();
        if (asian.isEmpty())
            asian = isCjkFamily(family) ? family : m_cjkFallback;
        style.asianFont = m_tables.fontIndex(asian);
    }
    style.capitalization = format.fontCapitalization();
    style.halfPoints = qRound(pointSizeOf(format) * 2);
    style.bold = format.fontWeight() >= QFont::DemiBold;
    style.italic = format.fontItalic();
    style.underline = format.fontUnderline();
    style.strikeOut = format.fontStrikeOut();
    style.vertical = format.verticalAlignment();
    if (format.hasProperty(QTextFormat::ForegroundBrush) && format.foreground().style() != Qt::NoBrush)
        style.color = m_tables.colorIndex(format.foreground().color());
    if (format.hasProperty(QTextFormat::BackgroundBrush) && format.background().style() != Qt::NoBrush)
        style.highlight = m_tables.colorIndex(format.background().color());
    return style;
}

void BodyWriter::writeStyle(const RunStyle &style)
{
    // \af after \dbch names the font of East Asian characters; \loch turns back to the run's
    // own font for the rest.
    if (style.asianFont >= 0) {
        m_out.controlWord("dbch");
        m_out.controlWord("af", style.asianFont);
        m_out.controlWord("loch");
    }
    m_out.controlWord("f", style.font);
    m_out.controlWord("fs", style.halfPoints);
    const std::pair<bool, const char *> switches[] = {
        {style.bold, "b"},
        {style.italic, "i"},
        {style.underline, "ul"},
        {style.strikeOut, "strike"},
        {style.capitalization == QFont::AllUppercase, "caps"},
        {style.capitalization == QFont::SmallCaps, "scaps"},
        {style.vertical == QTextCharFormat::AlignSuperScript, "super"},
        {style.vertical == QTextCharFormat::AlignSubScript, "sub"},
    };
    for (const auto &[on, word] : switches) {
        if (on)
            m_out.controlWord(word);
    }
    if (style.color > 0)
        m_out.controlWord("cf", style.color);
    if (style.highlight > 0)
        m_out.controlWord("highlight", style.highlight);
}

void BodyWriter::writePicture(const QTextImageFormat &format)
{
    const QByteArray raw = format.property(RichText::RawPictureProperty).toByteArray();
    if (!raw.isEmpty()) {
        m_out.verbatim(raw);
        return;
    }
    const Picture picture = pictureOf(m_document.resource(QTextDocument::ImageResource, QUrl(format.name())));
    if (picture.bytes.isEmpty() || picture.pixels.isEmpty())
        return;
    // Shown at the size the format asks for; one side given keeps the picture's proportions.
    const QSizeF pixels = picture.pixels;
    double width = format.width() > 0 ? format.width() : 0;
    double height = format.height() > 0 ? format.height() : 0;
    if (width <= 0)
        width = height > 0 ? pixels.width() * height / pixels.height() : pixels.width();
    if (height <= 0)
        height = pixels.height() * width / pixels.width();

    m_out.openGroup();
    m_out.controlWord("pict");
    m_out.controlWord(picture.jpeg ? "jpegblip" : "pngblip");
    m_out.controlWord("picw", picture.pixels.width());
    m_out.controlWord("pich", picture.pixels.height());
    m_out.controlWord("picwgoal", RichText::PixelsToTwips(width));
    m_out.controlWord("pichgoal", RichText::PixelsToTwips(height));
    m_out.hex(picture.bytes);
    m_out.closeGroup();
}

void BodyWriter::openLink(const QString &href)
{
    m_out.openGroup();
    m_out.controlWord("field");
    m_out.openIgnorableGroup("fldinst");
    m_out.openGroup();
    // The address is quoted in the field's instruction, so it may hold no quote of its own.
    m_out.text(QStringLiteral("HYPERLINK \"%1\"").arg(QString(href).replace(u'"', QLatin1String("%22"))));
    m_out.closeGroup();
    m_out.closeGroup();
    m_out.openGroup();
    m_out.controlWord("fldrslt");
}

void BodyWriter::closeLink()
{
    m_out.closeGroup();
    m_out.closeGroup();
}

QString BodyWriter::familyOf(const QTextCharFormat &format) const
{
    const QStringList families = format.property(QTextFormat::FontFamilies).toStringList();
    if (!families.isEmpty() && !families.first().isEmpty())
        return families.first();
    const QString family = format.stringProperty(QTextFormat::FontFamily);
    return family.isEmpty() ? m_defaultFont.family() : family;
}

// A CJK font the document uses somewhere, or else a common one.
QString BodyWriter::cjkFallbackFamily(const QTextDocument &document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            for (const QString &family : it.fragment().charFormat().fontFamilies().toStringList()) {
                if (isCjkFamily(family))
                    return family;
            }
        }
    }
    return QString::fromUtf16(kCjkFallbackFamily);
}

double BodyWriter::pointSizeOf(const QTextCharFormat &format) const
{
    if (format.hasProperty(QTextFormat::FontPointSize) && format.fontPointSize() > 0)
        return format.fontPointSize();
    return m_defaultFont.pointSizeF() > 0 ? m_defaultFont.pointSizeF() : kFallbackPointSize;
}

} // namespace

QByteArray RtfWriter::write(const QTextDocument &document)
{
    RtfWriterTables tables;
    RtfWriterOutput body(document.characterCount() * 3 + 4096);
    BodyWriter(document, tables, body).write();
    body.closeGroup();
    body.newLine();
    const QByteArray bodyBytes = body.take();

    RtfWriterOutput head;
    head.openGroup();
    head.controlWord("rtf", 1);
    head.controlWord("ansi");
    head.controlWord("ansicpg", 1252);
    head.controlWord("deff", 0);
    head.controlWord("deftab", RichText::PixelsToTwips(document.defaultTextOption().tabStopDistance()));
    head.newLine();
    tables.write(head);
    head.openIgnorableGroup("generator");
    head.text(u"Vantora");
    head.punctuation(';');
    head.closeGroup();
    head.newLine();
    head.controlWord("viewkind", 4);
    head.controlWord("uc", 1);
    head.newLine();

    QByteArray bytes = head.take();
    bytes.reserve(bytes.size() + bodyBytes.size());
    bytes.append(bodyBytes);
    return bytes;
}
