// Lists the unknown words of a text with the notes editor's word list and checks, once, as a
// whole process: spell_vs_hunspell.sh times it against hunspell -l on the same text. Built
// from the checker's two model files and Qt Core alone, as a command-line checker would be.
//
//   spell_list <dictionary.dct> <text file> [misspelt out]

#include "spell_listing.h"

#include <QElapsedTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc < 3) {
        std::printf("usage: spell_list <dictionary.dct> <text file> [misspelt out]\n");
        return 2;
    }
    QElapsedTimer clock;
    clock.start();
    const spell_listing::ListRun run = spell_listing::listOnce(QString::fromLocal8Bit(argv[1]),
                                                               QString::fromLocal8Bit(argv[2]), QString());
    const double ms = clock.nsecsElapsed() / 1e6;
    if (!run.ok) {
        std::printf("could not read %s or %s\n", argv[1], argv[2]);
        return 1;
    }
    if (argc > 3 && !spell_listing::writeWords(QString::fromLocal8Bit(argv[3]), run.misspelt)) {
        std::printf("could not write %s\n", argv[3]);
        return 1;
    }
    std::printf("list: %.1f ms, %d words, %lld misspelt\n", ms, run.words, static_cast<long long>(run.misspelt.size()));
    return 0;
}
