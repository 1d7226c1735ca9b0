// The notes editor's spell checker: reading the word list, listing the unknown words of a text,
// and typing into a 100-page document with the red underlines on.
//
//   spell_bench <dictionary.dct> [text file] [misspelt out]
//
// Prints every figure below. spell_list does the list part alone, as a whole process.
//
//   load    SpellDictionary::load of the .dct, median and worst of 9.        goal 60 ms
//   list    one load, reading the text, cutting it into words as the checking walk does and
//           collecting the words that fail the skip checks and the word list, median of 5.
//           Without a text file the generated document's text is listed. With [misspelt out]
//           the unknown words are written there one per line, each time they occur.
//   typing  a PageBox (offscreen, 900x700) holding about 50,000 words in 1,500 paragraphs,
//           300 characters typed in its middle one key at a time, events processed after each:
//           median, 95th percentile and worst milliseconds per key, with and without the spell
//           checker. Goal: under 16 ms per key.
//   ignore  Ignore All of a word that occurs throughout the document: time until every
//           paragraph is underlined again, and the longest single pass of the event loop in
//           that time. Goal: no pass over 30 ms.
//
// Run with QT_QPA_PLATFORM=offscreen (set here when there is no display).

#include "bench_support.h"
#include "notes/page_box.h"
#include "notes/spell_checker.h"
#include "notes/spell_dictionary.h"
#include "notes/spell_highlighter.h"
#include "notes/spell_settings.h"
#include "notes/spell_words.h"
#include "spell_listing.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace spell_listing;

namespace {

constexpr int kLoadRuns = 9;
constexpr int kListRuns = 5;
constexpr int kParagraphs = 1500;
constexpr int kTypedCharacters = 300;

// ---- the generated document -------------------------------------------------------------

// Ordinary English words, all in the shipped US list.
const char *const kVocabulary[] = {
    "the", "of", "and", "to", "in", "is", "was", "that", "for", "it", "with", "as", "on", "be",
    "at", "by", "this", "had", "not", "are", "but", "from", "or", "have", "an", "they", "which",
    "one", "you", "were", "her", "all", "she", "there", "would", "their", "we", "him", "been",
    "has", "when", "who", "will", "more", "no", "if", "out", "so", "said", "what", "up", "its",
    "about", "into", "than", "them", "can", "only", "other", "new", "some", "could", "time",
    "these", "two", "may", "then", "first", "any", "my", "now", "such", "like", "our", "over",
    "man", "even", "most", "made", "after", "also", "did", "many", "before", "must", "through",
    "years", "where", "much", "your", "way", "well", "down", "should", "because", "each", "just",
    "those", "people", "how", "too", "little", "state", "good", "very", "make", "world", "still",
    "own", "see", "men", "work", "long", "get", "here", "between", "both", "life", "being",
    "under", "never", "day", "same", "another", "know", "while", "last", "might", "great", "old",
    "year", "off", "come", "since", "against", "go", "came", "right", "used", "take", "three",
    "house", "garden", "letter", "morning", "window", "river", "question", "number", "answer",
    "country", "evening", "friend", "paper", "together", "important", "children", "without",
    "something", "nothing", "always", "usually", "machine", "picture", "example", "system",
};

// Common misspellings, one every 29 words or so: none is in the word list.
const char *const kMisspellings[] = {
    "recieve", "seperate", "definately", "occured", "wich", "becuase", "tommorow", "acheive",
    "untill", "beleive", "goverment", "enviroment", "neccessary", "truely", "writting", "begining",
};

// The word that Ignore All is timed with: one of the misspellings above.
const char *const kIgnoredWord = "seperate";

QString paragraphText(quint32 &seed, int *words)
{
    auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 8;
    };
    constexpr int kVocabularySize = int(sizeof(kVocabulary) / sizeof(kVocabulary[0]));
    constexpr int kMisspellingCount = int(sizeof(kMisspellings) / sizeof(kMisspellings[0]));
    const int count = 20 + int(next() % 27); // 20 to 46 words, 33 on average
    QString text;
    bool sentenceStart = true;
    for (int i = 0; i < count; ++i) {
        QString word = next() % 29 == 0 ? QLatin1String(kMisspellings[next() % kMisspellingCount])
                                        : QLatin1String(kVocabulary[next() % kVocabularySize]);
        if (sentenceStart)
            word[0] = word[0].toUpper();
        sentenceStart = false;
        text += word;
        if (i == count - 1 || next() % 11 == 0) {
            text += QLatin1Char('.');
            sentenceStart = true;
        } else if (next() % 9 == 0) {
            text += QLatin1Char(',');
        }
        if (i != count - 1)
            text += QLatin1Char(' ');
    }
    *words += count;
    return text;
}

// About 50,000 words in 1,500 paragraphs, the same every run.
int fillDocument(QTextDocument *document)
{
    document->setUndoRedoEnabled(false);
    QTextCursor cursor(document);
    quint32 seed = 20240611u;
    int words = 0;
    cursor.beginEditBlock();
    for (int i = 0; i < kParagraphs; ++i) {
        if (i > 0)
            cursor.insertBlock();
        cursor.insertText(paragraphText(seed, &words));
    }
    cursor.endEditBlock();
    document->setUndoRedoEnabled(true);
    document->setModified(false);
    return words;
}

// What is typed: words and spaces, some misspelt.
QString typedText()
{
    const QString phrase = QStringLiteral("the quick brwon fox jumps over the lazzy dog while "
                                          "evrey garden gate stays open and ");
    QString text;
    while (text.size() < kTypedCharacters)
        text += phrase;
    text.truncate(kTypedCharacters);
    return text;
}

// Runs the event loop until the page has laid its text out: the scroll range has held still
// for a while.
void settle(PageBox &page)
{
    QElapsedTimer clock;
    clock.start();
    int lastMaximum = -1;
    QElapsedTimer still;
    still.start();
    while (clock.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        const int maximum = page.verticalScrollBar()->maximum();
        if (maximum != lastMaximum) {
            lastMaximum = maximum;
            still.restart();
        } else if (still.elapsed() > 300) {
            return;
        }
    }
}

// Puts the caret at the end of a word in the middle paragraph, on screen.
void caretToMiddle(PageBox &page)
{
    const QTextBlock block = page.document()->findBlockByNumber(kParagraphs / 2);
    const QString text = block.text();
    int at = text.indexOf(QLatin1Char(' '), text.size() / 2);
    if (at < 0)
        at = 0;
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + at);
    page.setTextCursor(cursor);
    page.ensureCursorVisible();
    QCoreApplication::processEvents();
}

Qt::Key keyOf(QChar c)
{
    if (c == QLatin1Char(' '))
        return Qt::Key_Space;
    const char16_t lower = c.toLower().unicode();
    if (lower >= u'a' && lower <= u'z')
        return Qt::Key(Qt::Key_A + (lower - u'a'));
    return Qt::Key_unknown;
}

// Milliseconds per key: press and release sent to the page, then the event loop run, so the
// time covers the edit, the underlines, the layout and the repaint.
std::vector<double> typeInto(PageBox &page, const QString &text)
{
    const int before = page.document()->characterCount();
    std::vector<double> samples;
    samples.reserve(size_t(text.size()));
    for (QChar c : text) {
        samples.push_back(timeMs([&] {
            QKeyEvent press(QEvent::KeyPress, keyOf(c), Qt::NoModifier, QString(c));
            QCoreApplication::sendEvent(&page, &press);
            QKeyEvent release(QEvent::KeyRelease, keyOf(c), Qt::NoModifier, QString(c));
            QCoreApplication::sendEvent(&page, &release);
            QCoreApplication::processEvents();
        }));
    }
    if (page.document()->characterCount() != before + text.size())
        std::printf("warning: %lld keys typed but the document grew by %d characters\n",
                    static_cast<long long>(text.size()), page.document()->characterCount() - before);
    return samples;
}

struct Pumped
{
    double totalMs = 0;
    double longestMs = 0;
    int passes = 0;
    bool done = false;
};

// Runs the event loop one pass at a time until `done` holds (or 30 s), timing each pass.
Pumped pumpUntil(const std::function<bool()> &done, int atLeastPasses = 0)
{
    Pumped result;
    QElapsedTimer total;
    total.start();
    while (total.elapsed() < 30000) {
        if (result.passes >= atLeastPasses && done()) {
            result.done = true;
            break;
        }
        const double ms = timeMs([] { QCoreApplication::processEvents(); });
        result.longestMs = std::max(result.longestMs, ms);
        ++result.passes;
    }
    result.totalMs = total.nsecsElapsed() / 1e6;
    return result;
}

void printKeys(const char *label, const Figures &f)
{
    std::printf("%s median %.2f ms   95%% %.2f ms   worst %.2f ms\n", label, f.median, f.p95, f.worst);
}

int usage()
{
    std::printf("usage: spell_bench <dictionary.dct> [text file] [misspelt out]\n");
    return 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    if (args.isEmpty())
        return usage();
    const QString dictionaryPath = QFileInfo(args[0]).absoluteFilePath();
    const QString textPath = args.size() > 1 ? args[1] : QString();
    const QString misspeltOut = args.size() > 2 ? args[2] : QString();

    // A fresh data folder and settings file: the checker reads its list from there.
    BenchHome home;
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    // -- load
    std::vector<double> loads;
    int dictionaryWords = 0;
    for (int i = 0; i < kLoadRuns; ++i) {
        SpellDictionary dictionary;
        bool ok = false;
        loads.push_back(timeMs([&] { ok = dictionary.load(dictionaryPath); }));
        if (!ok) {
            std::printf("could not read %s\n", qPrintable(dictionaryPath));
            return 1;
        }
        dictionaryWords = dictionary.wordCount();
    }
    const Figures load = summarise(loads);
    std::printf("load  %s: %d words, %.1f MB\n", qPrintable(QFileInfo(dictionaryPath).fileName()),
                dictionaryWords, QFileInfo(dictionaryPath).size() / 1048576.0);
    std::printf("      median %.1f ms   worst %.1f ms   (%d loads)   goal 60 ms\n", load.median, load.worst,
                kLoadRuns);

    // -- list
    QString generatedText;
    if (textPath.isEmpty()) {
        QTextDocument document;
        fillDocument(&document);
        generatedText = document.toPlainText();
    }
    std::vector<double> lists;
    ListRun run;
    for (int i = 0; i < kListRuns; ++i) {
        lists.push_back(timeMs([&] { run = listOnce(dictionaryPath, textPath, generatedText); }));
        if (!run.ok) {
            std::printf("could not read %s\n", qPrintable(textPath));
            return 1;
        }
    }
    const Figures list = summarise(lists);
    std::printf("list  %s: %.2f MB, %d words, %lld misspelt\n",
                textPath.isEmpty() ? "generated document" : qPrintable(QFileInfo(textPath).fileName()),
                run.textBytes / 1048576.0, run.words, static_cast<long long>(run.misspelt.size()));
    std::printf("      median %.1f ms   worst %.1f ms   (load + read + check, %d runs)\n", list.median, list.worst,
                kListRuns);
    if (!misspeltOut.isEmpty() && !writeWords(misspeltOut, run.misspelt)) {
        std::printf("could not write %s\n", qPrintable(misspeltOut));
        return 1;
    }

    // -- typing
    SpellChecker checker;
    const QString installed = checker.settings().dictionaryPath();
    QDir().mkpath(QFileInfo(installed).absolutePath());
    if (!QFile::copy(dictionaryPath, installed)) {
        std::printf("could not copy the word list to %s\n", qPrintable(installed));
        return 1;
    }
    const double checkerLoad = timeMs([&] { checker.DatabaseLoadCheck(); });
    if (!checker.isReady()) {
        std::printf("the checker did not find its word list at %s\n", qPrintable(installed));
        return 1;
    }

    PageBox plain;
    const int documentWords = fillDocument(plain.document());
    plain.resize(900, 700);
    plain.show();
    plain.setFocus();
    settle(plain);
    caretToMiddle(plain);
    const Figures plainKeys = summarise(typeInto(plain, typedText()));
    plain.hide();

    PageBox page;
    fillDocument(page.document());
    page.resize(900, 700);
    page.show();
    page.setFocus();
    settle(page);
    // The highlighter underlines the whole document once when it is attached.
    page.setSpellChecker(&checker);
    SpellHighlighter *highlighter = page.spellHighlighter();
    const Pumped attach = pumpUntil([&] { return highlighter->isIdle(); }, 3);
    settle(page);
    caretToMiddle(page);
    const Figures spellKeys = summarise(typeInto(page, typedText()));
    settle(page);

    checker.ignoreAll(QLatin1String(kIgnoredWord));
    const Pumped ignore = pumpUntil([&] { return highlighter->isIdle(); });

    std::printf("typing  %d paragraphs, %d words, PageBox 900x700; word list read by the checker in %.1f ms\n",
                plain.document()->blockCount(), documentWords, checkerLoad);
    std::printf("        %d keys typed in the middle paragraph, events processed after each\n", kTypedCharacters);
    printKeys("        no spell checker:  ", plainKeys);
    printKeys("        with underlines:   ", spellKeys);
    std::printf("        overhead:           median %+.2f ms   worst %+.2f ms   goal under 16 ms per key\n",
                spellKeys.median - plainKeys.median, spellKeys.worst - plainKeys.worst);
    std::printf("attach  first underlining on setSpellChecker: %.1f ms in %d passes, longest pass %.1f ms\n",
                attach.totalMs, attach.passes, attach.longestMs);
    std::printf("ignore  Ignore All \"%s\" until every paragraph is checked again: %.1f ms in %d passes%s\n",
                kIgnoredWord, ignore.totalMs, ignore.passes, ignore.done ? "" : " (not finished after 30 s)");
    std::printf("        longest pass of the event loop %.1f ms   goal 30 ms\n", ignore.longestMs);
    std::printf("peak resident memory: %.1f MB\n", peakResidentMegabytes());
    return 0;
}
