// Opening and saving a large rich-text note: a generated RTF file of about 5 MB with pictures
// (PNG and JPEG of random noise, so they do not compress), long tables and formatted paragraphs.
//
//   notes_file_bench [runs]     (default 7 runs; prints the median and the worst)
//
// "open" is reading the file from disk and RtfReader::read into a fresh document; "save" is
// RtfWriter::write of that document and WriteFileSafely. Goals: open 400 ms, save 200 ms.
// Prints the peak resident memory of the whole run at the end.

#include "bench_support.h"
#include "core/safe_file_write.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr int kPictures = 6;
constexpr int kTables = 3;
constexpr int kTableRows = 200;
constexpr int kParagraphs = 3600;

QByteArray noisePicture(QRandomGenerator &random, int side, const char *format)
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

void addParagraphs(QTextCursor &cursor, int count)
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

void addTable(QTextCursor &cursor, int rows)
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
void buildDocument(QTextDocument &document)
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

struct Timing
{
    qint64 median = 0;
    qint64 worst = 0;
};

Timing timeRuns(int runs, const std::function<void()> &step)
{
    QList<qint64> samples;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer clock;
        clock.start();
        step();
        samples.append(clock.elapsed());
    }
    std::sort(samples.begin(), samples.end());
    return {samples[samples.size() / 2], samples.last()};
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 7;

    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("large note.rtf"));
    {
        QTextDocument source;
        buildDocument(source);
        if (!WriteFileSafely(path, RtfWriter::write(source))) {
            std::printf("could not write %s\n", qPrintable(path));
            return 1;
        }
    }
    const qint64 fileBytes = QFileInfo(path).size();

    QTextDocument document;
    RtfReadResult result;
    const Timing open = timeRuns(runs, [&] {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        result = RtfReader::read(file.readAll(), &document);
    });
    if (!result.ok) {
        std::printf("the reader refused the file: %s\n", qPrintable(result.error));
        return 1;
    }
    QByteArray written;
    const Timing write = timeRuns(runs, [&] { written = RtfWriter::write(document); });
    const QString savePath = folder.filePath(QStringLiteral("saved.rtf"));
    const Timing save = timeRuns(runs, [&] { WriteFileSafely(savePath, RtfWriter::write(document)); });

    std::printf("Large note: %.1f MB of RTF, %d pictures, %d tables of %d rows, %d paragraphs; "
                "read back as %d blocks\n",
                fileBytes / 1048576.0, kPictures, kTables, kTableRows, kParagraphs, document.blockCount());
    std::printf("open  (file + RtfReader::read):      median %lld ms (worst %lld)   goal 400 ms\n",
                static_cast<long long>(open.median), static_cast<long long>(open.worst));
    std::printf("save  (RtfWriter::write + file):     median %lld ms (worst %lld)   goal 200 ms\n",
                static_cast<long long>(save.median), static_cast<long long>(save.worst));
    std::printf("      of which RtfWriter::write:     median %lld ms (worst %lld)\n",
                static_cast<long long>(write.median), static_cast<long long>(write.worst));
    std::printf("peak resident memory: %.1f MB   (%d runs)\n", peakResidentMegabytes(), runs);
    return 0;
}
