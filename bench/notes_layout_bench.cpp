// Opening documents into an editor page: each file is read into a fresh NoteDocument the way
// the editor opens one (a page in a shown window, the spell checker with the shipped word list
// attached, the new-document font) and timed until its page is laid out to the end.
//
//   notes_layout_bench [runs] [case ...]      (default 3 runs; prints the median and the worst)
//
// Cases: nested (tables nested 16 deep, 3 KB), table (2000 rows of 10 columns), runs (one
// paragraph of 50,000 format runs with no space), line (one 1 MB paragraph of words), solid (one 1 MB
// paragraph without a space), large (the 5 MB note of notes_file_bench). NESTED_RTF=<file>
// opens that file for the nested case instead of the generated one.
//
// "load" is NoteDocument::load, which the window waits for; "laid out" runs from the start of
// the load until the page's layout reaches the end of the document (the event loop running
// meanwhile, as in the editor); "stall" is the longest the event loop did not run in that
// time, the load included. Goal: the nested tables laid out within 1 s.

#include "bench_support.h"
#include "core/safe_file_write.h"
#include "notes/document_file.h"
#include "notes/note_document.h"
#include "notes/page_box.h"
#include "notes/rtf_writer.h"
#include "notes/spell_checker.h"
#include "notes/spell_highlighter.h"
#include "notes_large_note.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QStackedWidget>
#include <QTextDocument>

#include <cstdio>

namespace {

constexpr int kNestedDepth = 16;
constexpr int kTableRows = 2000;
constexpr int kTableColumns = 10;
constexpr int kRuns = 50000;
constexpr int kLineBytes = 1024 * 1024;

// Tables nested `depth` deep, one cell each, written the way word processors write nested
// tables, with some paragraphs in the deepest cell.
QByteArray nestedTables(int depth)
{
    QByteArray rtf = "{\\rtf1\\ansi ";
    for (int level = 1; level <= depth; ++level)
        rtf += "\\pard\\intbl\\itap" + QByteArray::number(level) + " level " + QByteArray::number(level) +
               "\\par ";
    for (int i = 0; i < 20; ++i)
        rtf += "\\pard\\intbl\\itap" + QByteArray::number(depth) + " deep paragraph\\par ";
    for (int level = depth; level >= 2; --level)
        rtf += "\\pard\\intbl\\itap" + QByteArray::number(level) +
               " x\\nestcell{\\*\\nesttableprops\\trowd\\cellx1000\\cellx2000\\nestrow}{\\nonesttables\\par}";
    return rtf + "\\pard\\intbl\\itap1 y\\cell\\trowd\\cellx3000\\cellx6000\\row\\pard after\\par}";
}

QByteArray bigTable()
{
    QByteArray definition = "\\trowd\\trgaph108";
    for (int column = 1; column <= kTableColumns; ++column)
        definition += "\\cellx" + QByteArray::number(column * 900);
    QByteArray rtf = "{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0 Liberation Sans;}}\\fs20 ";
    for (int row = 0; row < kTableRows; ++row) {
        rtf += definition;
        for (int column = 0; column < kTableColumns; ++column)
            rtf += "\\pard\\intbl Row " + QByteArray::number(row) + " column " + QByteArray::number(column) +
                   "\\cell ";
        rtf += "\\row ";
    }
    return rtf + "\\pard after the table\\par}";
}

// One paragraph of short runs in four colours, bold and italic by turns, with no space between
// them: no two neighbouring runs share a format, and the paragraph is one unbreakable word.
QByteArray manyRuns()
{
    QByteArray rtf =
        "{\\rtf1\\ansi{\\colortbl;\\red200\\green0\\blue0;\\red0\\green120\\blue0;\\red0\\green0\\blue200;"
        "\\red120\\green120\\blue0;}\\pard ";
    for (int i = 0; i < kRuns; ++i) {
        rtf += "{\\cf" + QByteArray::number(1 + i % 4);
        rtf += (i % 2 != 0) ? "\\b" : "\\i";
        rtf += " w" + QByteArray::number(i % 97) + "}";
    }
    return rtf + "\\par}";
}

QByteArray longLine(bool spaces)
{
    QByteArray rtf = "{\\rtf1\\ansi\\pard ";
    const QByteArray word = spaces ? "lorem ipsum dolor sit amet " : "loremipsumdolorsitamet";
    while (rtf.size() < kLineBytes)
        rtf += word;
    return rtf + "\\par}";
}

QByteArray largeNote()
{
    QTextDocument source;
    large_note::buildDocument(source);
    return RtfWriter::write(source);
}

struct Case
{
    const char *key;
    const char *title;
    QByteArray (*make)();
};

const Case kCases[] = {
    {"nested", "tables nested 16 deep (3 KB)", [] { return nestedTables(kNestedDepth); }},
    {"table", "a table of 2000 rows x 10 columns", bigTable},
    {"runs", "one paragraph of 50,000 format runs, no space between", manyRuns},
    {"line", "one 1 MB paragraph of words", [] { return longLine(true); }},
    {"solid", "one 1 MB paragraph without a space", [] { return longLine(false); }},
    {"large", "the 5 MB note with pictures and tables", largeNote},
};

struct Opening
{
    double load = 0;
    double laidOut = 0;
    double stall = 0;
    bool ok = false;
};

// The editor's window: documents are pages of a stack, and a document is loaded before its
// page is brought to the front.
Opening openInPage(QStackedWidget &stack, SpellChecker &checker, const QString &path)
{
    auto *document = new NoteDocument(0, 1, QStringLiteral("RTF"), &stack);
    document->page()->setSpellChecker(&checker);
    document->setNewDocumentFormat(QFont(QStringLiteral("Liberation Serif"), 12), Qt::black);
    stack.addWidget(document);
    QCoreApplication::processEvents();

    Opening opening;
    QElapsedTimer clock;
    clock.start();
    opening.ok = document->load(path).ok;
    opening.load = clock.nsecsElapsed() / 1e6;
    opening.stall = opening.load;
    stack.setCurrentWidget(document);
    // The page lays itself out from the event loop, reporting its size as it goes; it is done
    // when the size stays put and the spell checker has looked at every paragraph. Whatever is
    // left then is laid out at once, and counts as a stall.
    QAbstractTextDocumentLayout *layout = document->page()->document()->documentLayout();
    QElapsedTimer quiet;
    quiet.start();
    QObject::connect(layout, &QAbstractTextDocumentLayout::documentSizeChanged, layout,
                     [&quiet] { quiet.restart(); });
    SpellHighlighter *spelling = document->page()->spellHighlighter();
    constexpr int kQuietMs = 200;
    while ((quiet.elapsed() < kQuietMs || !spelling->isIdle()) && clock.elapsed() < 600000) {
        const double before = clock.nsecsElapsed() / 1e6;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        opening.stall = std::max(opening.stall, clock.nsecsElapsed() / 1e6 - before);
    }
    const double waited = quiet.nsecsElapsed() / 1e6;
    const double finish = timeMs([layout] { layout->documentSize(); });
    opening.stall = std::max(opening.stall, finish);
    opening.laidOut = clock.nsecsElapsed() / 1e6 - waited;
    stack.removeWidget(document);
    delete document;
    QCoreApplication::processEvents();
    return opening;
}

} // namespace

int main(int argc, char *argv[])
{
    BenchHome home;
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int runs = 3;
    QStringList chosen;
    for (int i = 1; i < argc; ++i) {
        bool number = false;
        const int value = QByteArray(argv[i]).toInt(&number);
        if (number)
            runs = std::max(1, value);
        else
            chosen.append(QString::fromLocal8Bit(argv[i]));
    }

    SpellChecker checker;
    const QString words = QStringLiteral(VANTORA_SOURCE_DIR "/data/dictionaries/wordsus.dct");
    QDir().mkpath(QFileInfo(checker.settings().dictionaryPath()).absolutePath());
    QFile::copy(words, checker.settings().dictionaryPath());
    checker.DatabaseLoadCheck();
    std::printf("spell checker: %s\n",
                checker.isReady() ? "word list read" : "no word list (underlines off)");

    QStackedWidget stack;
    stack.addWidget(new QWidget);
    stack.resize(1000, 800);
    stack.show();
    QCoreApplication::processEvents();

    QTemporaryDir folder;
    for (const Case &test : kCases) {
        if (!chosen.isEmpty() && !chosen.contains(QLatin1String(test.key)))
            continue;
        QByteArray bytes = test.make();
        const QString external = qEnvironmentVariable("NESTED_RTF");
        if (QLatin1String(test.key) == QLatin1String("nested") && !external.isEmpty()) {
            QFile file(external);
            if (file.open(QIODevice::ReadOnly))
                bytes = file.readAll();
        }
        const QString path = folder.filePath(QLatin1String(test.key) + QLatin1String(".rtf"));
        WriteFileSafely(path, bytes);
        std::vector<double> loads;
        std::vector<double> laidOut;
        std::vector<double> stalls;
        for (int run = 0; run < runs; ++run) {
            const Opening opening = openInPage(stack, checker, path);
            if (!opening.ok) {
                std::printf("%s: the file could not be opened\n", test.key);
                return 1;
            }
            loads.push_back(opening.load);
            laidOut.push_back(opening.laidOut);
            stalls.push_back(opening.stall);
        }
        const Figures load = summarise(loads);
        const Figures all = summarise(laidOut);
        const Figures stall = summarise(stalls);
        std::printf("%-7s %s, %.1f KB\n", test.key, test.title, bytes.size() / 1024.0);
        std::printf("        load %8.0f ms   laid out %8.0f ms (worst %.0f)   stall %8.0f ms%s\n",
                    load.median, all.median, all.worst, stall.median,
                    QLatin1String(test.key) == QLatin1String("nested") ? "   goal: laid out < 1000 ms" : "");
        std::fflush(stdout);
    }
    std::printf("peak resident memory: %.1f MB   (%d runs)\n", peakResidentMegabytes(), runs);
    return 0;
}
