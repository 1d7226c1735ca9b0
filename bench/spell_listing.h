#pragma once

// Listing the unknown words of a text the way the checking walk finds them: shared by
// spell_bench and spell_list.

#include "notes/spell_dictionary.h"
#include "notes/spell_words.h"

#include <QFile>
#include <QString>
#include <QStringList>

namespace spell_listing {

// The unknown words of a text, in order, each time it occurs: the walk's loop and its checks
// with the default skip options and no ignored words.
inline QStringList misspeltWords(const SpellDictionary &dictionary, QString raw, int *wordCount)
{
    QStringList found;
    const SpellSkipOptions skip;
    const QString text = SpellWalkText(std::move(raw));
    int words = 0;
    for (int position = 0; position < text.size();) {
        const CutWord word = CutWordAt(text, position);
        position = word.end;
        if (word.length == 0)
            continue;
        ++words;
        const QStringView cut = WordIn(text, word);
        if (IsSkippedWord(cut, skip) || IsAbbreviationWord(cut) || dictionary.contains(cut))
            continue;
        found.append(cut.toString());
    }
    if (wordCount)
        *wordCount = words;
    return found;
}

struct ListRun
{
    QStringList misspelt;
    int words = 0;
    qint64 textBytes = 0;
    bool ok = false;
};

// One run of the list mode: read the word list, read the text (or take `text` when no file is
// named), cut and check every word.
inline ListRun listOnce(const QString &dictionaryPath, const QString &textPath, const QString &text)
{
    ListRun run;
    SpellDictionary dictionary;
    if (!dictionary.load(dictionaryPath))
        return run;
    QString content = text;
    if (!textPath.isEmpty()) {
        QFile file(textPath);
        if (!file.open(QIODevice::ReadOnly))
            return run;
        const QByteArray bytes = file.readAll();
        run.textBytes = bytes.size();
        content = QString::fromUtf8(bytes);
    } else {
        run.textBytes = content.toUtf8().size();
    }
    run.misspelt = misspeltWords(dictionary, std::move(content), &run.words);
    run.ok = true;
    return run;
}

inline bool writeWords(const QString &path, const QStringList &words)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray bytes;
    for (const QString &word : words)
        bytes.append(word.toUtf8()).append('\n');
    return file.write(bytes) == bytes.size();
}

} // namespace spell_listing
