// Opening and saving a large rich-text note: a generated RTF file of about 5 MB with pictures
// (PNG and JPEG of random noise, so they do not compress), long tables and formatted paragraphs.
//
//   notes_file_bench [runs]     (default 7 runs; prints the median and the worst)
//
// "open" is reading the file from disk and RtfReader::read into a fresh document; "save" is
// RtfWriter::write of that document and WriteFileSafely. Goals: open 400 ms, save 200 ms.
// Prints the peak resident memory of the whole run at the end.

#include "bench_support.h"
#include "notes_large_note.h"
#include "core/safe_file_write.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextDocument>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

using namespace large_note;

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
