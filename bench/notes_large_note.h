#pragma once

// The large rich-text note the notes benchmarks open and save: about 5 MB of RTF once written,
// with pictures (PNG and JPEG of random noise, so they do not compress), long tables and
// formatted paragraphs.

#include <QBuffer>
#include <QImage>
#include <QRandomGenerator>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

namespace large_note {

constexpr int kPictures = 6;
constexpr int kTables = 3;
constexpr int kTableRows = 200;
constexpr int kParagraphs = 3600;

inline QByteArray noisePicture(QRandomGenerator &random, int side, const char *format)
{
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        auto *line = reinterpret_cast<quint32 *>(image.scanLine(y));
        for (int x = 0; x < side; ++x)
            line[x] = 0xff000000u | (random.generate() & 0xffffffu);
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format, 95);
    return bytes;
}

inline void addParagraphs(QTextCursor &cursor, int count)
{
    static const char *const kFamilies[] = {"Liberation Serif", "Liberation Sans", "Liberation Mono"};
    for (int i = 0; i < count; ++i) {
        QTextBlockFormat block;
        block.setAlignment(i % 4 == 1 ? Qt::AlignHCenter : i % 4 == 2 ? Qt::AlignJustify : Qt::AlignLeft);
        block.setBottomMargin(4);
        cursor.insertBlock(block);
        QTextCharFormat plain;
        plain.setFontFamilies({QString::fromLatin1(kFamilies[i % 3])});
        plain.setFontPointSize(10 + i % 5);
        QTextCharFormat bold = plain;
        bold.setFontWeight(QFont::Bold);
        QTextCharFormat coloured = plain;
        coloured.setForeground(QColor::fromHsv(i % 360, 200, 160));
        coloured.setFontItalic(true);
        QTextCharFormat link = plain;
        link.setAnchor(true);
        link.setAnchorHref(QStringLiteral("https://example.org/page/%1").arg(i));
        link.setFontUnderline(true);
        cursor.insertText(QStringLiteral("Paragraph %1 holds some ordinary words, ").arg(i), plain);
        cursor.insertText(QStringLiteral("a few bold ones, "), bold);
        cursor.insertText(QStringLiteral(u"some coloured ones with accents (déjà vu, naïve), "), coloured);
        cursor.insertText(QStringLiteral("a link"), link);
        cursor.insertText(QStringLiteral(" and a tab\there, to end with."), plain);
    }
}

inline void addTable(QTextCursor &cursor, int rows)
{
    QTextTable *table = cursor.insertTable(rows, 4);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < 4; ++column) {
            QTextCursor cell = table->cellAt(row, column).firstCursorPosition();
            cell.insertText(QStringLiteral("Row %1, column %2").arg(row).arg(column),
                            row == 0 ? bold : QTextCharFormat());
        }
    }
    cursor = table->lastCursorPosition();
    cursor.movePosition(QTextCursor::NextBlock);
}

// The document the file is made from: paragraphs, then tables, pictures and a list in turn.
inline void buildDocument(QTextDocument &document)
{
    QRandomGenerator random(20240611);
    QTextCursor cursor(&document);
    for (int part = 0; part < kPictures; ++part) {
        addParagraphs(cursor, kParagraphs / kPictures);
        if (part < kTables)
            addTable(cursor, kTableRows);
        const bool jpeg = part % 2 == 1;
        const QString name = QStringLiteral("rtfpicture:%1").arg(part + 1);
        document.addResource(QTextDocument::ImageResource, QUrl(name),
                             noisePicture(random, jpeg ? 460 : 330, jpeg ? "JPEG" : "PNG"));
        QTextImageFormat picture;
        picture.setName(name);
        picture.setWidth(300);
        cursor.insertBlock();
        cursor.insertImage(picture);
        cursor.insertList(QTextListFormat::ListDecimal);
        cursor.insertText(QStringLiteral("A numbered item under picture %1").arg(part + 1));
    }
}

} // namespace large_note
