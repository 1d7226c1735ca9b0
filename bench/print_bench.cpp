// Printing a long note: a generated document of about 200 A4 pages (formatted paragraphs, a
// long table, pictures) laid out and written as a PDF with its head and foot.
//
//   print_bench [runs]     (default 5 runs; prints the median and the worst)
//
// "layout" is PrintLayout::layOut (copying the document, laying it out, breaking it into
// pages); "pdf" is writing every page to a PDF in memory; "print" is both, what the user waits
// for between Save as PDF and the file. Goal: print under 3 s. Prints the peak resident
// memory of the whole run at the end.

#include "notes/print_layout.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <QUrl>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kParagraphs = 3200;
constexpr int kTableRows = 400;
constexpr int kPictures = 8;

const char kSentence[] = "The quick brown fox jumps over the lazy dog while the committee reviews the "
                         "minutes of the last meeting and plans the next one. ";

void buildDocument(QTextDocument &document)
{
    QTextCursor cursor(&document);
    QImage picture(600, 400, QImage::Format_RGB32);
    picture.fill(QColor(70, 130, 180));
    document.addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("bench.png")), picture);
    for (int i = 0; i < kParagraphs; ++i) {
        QTextCharFormat format;
        format.setFontPointSize(i % 10 == 0 ? 16 : 11);
        format.setFontWeight(i % 10 == 0 ? QFont::Bold : QFont::Normal);
        format.setFontItalic(i % 7 == 3);
        cursor.insertText(QString::fromLatin1(kSentence).repeated(1 + i % 3), format);
        cursor.insertBlock();
        if (i % (kParagraphs / kPictures) == kParagraphs / kPictures / 2) {
            QTextImageFormat image;
            image.setName(QStringLiteral("bench.png"));
            cursor.insertImage(image);
            cursor.insertBlock();
        }
        if (i == kParagraphs / 2) {
            QTextTable *table = cursor.insertTable(kTableRows, 3);
            for (int row = 0; row < kTableRows; ++row) {
                for (int column = 0; column < 3; ++column)
                    table->cellAt(row, column).firstCursorPosition().insertText(
                        QStringLiteral("Row %1, column %2").arg(row + 1).arg(column + 1));
            }
            cursor.movePosition(QTextCursor::End);
        }
    }
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, atoi(argv[1])) : 5;

    QTextDocument document;
    buildDocument(document);
    PrintSettings settings;
    settings.time = true;
    settings.footName = true;
    settings.printField1 = QStringLiteral("Benchmark");
    const PrintLayout::Context context{QStringLiteral("bench.rtf"), QDateTime::currentDateTime(),
                                       QMarginsF(6.35, 6.35, 6.35, 6.35)};

    std::vector<double> layoutMs, pdfMs, totalMs;
    int pages = 0;
    qint64 pdfBytes = 0;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer timer;
        timer.start();
        PrintLayout layout;
        layout.layOut(document, settings, context);
        const double laidOut = timer.nsecsElapsed() / 1e6;
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        layout.writePdf(buffer, QStringLiteral("bench"));
        const double total = timer.nsecsElapsed() / 1e6;
        layoutMs.push_back(laidOut);
        pdfMs.push_back(total - laidOut);
        totalMs.push_back(total);
        pages = layout.pageCount();
        pdfBytes = buffer.size();
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("document: %d characters, %d pages, PDF %.1f MB\n", document.characterCount(), pages,
                pdfBytes / 1048576.0);
    std::printf("layout  median %7.1f ms  worst %7.1f ms\n", median(layoutMs),
                *std::max_element(layoutMs.begin(), layoutMs.end()));
    std::printf("pdf     median %7.1f ms  worst %7.1f ms\n", median(pdfMs), *std::max_element(pdfMs.begin(), pdfMs.end()));
    std::printf("print   median %7.1f ms  worst %7.1f ms  (goal 3000 ms)\n", median(totalMs),
                *std::max_element(totalMs.begin(), totalMs.end()));
    std::printf("peak resident memory: %.1f MB\n", usage.ru_maxrss / 1024.0);
    return 0;
}
