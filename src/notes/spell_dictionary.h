#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <vector>

// The six-digit sound key a word is filed and found under: the consonants of its first six
// characters as digits (b f p v 1, c g j q s x z 2, d t 3, l 4, m n 5, r 6), everything else
// (vowels, h w y, k, digits, punctuation, accented letters) skipped, padded with "0".
// "apple" gives "114000", "kitten" "335000". Neighbouring equal digits are both kept.
QString PhoneticKey(QStringView word);

// The spell checker's word list, grouped by sound key. Within a group the words keep the order
// they were read or added in, which decides the order of suggestions.
//
// All words live in one text with an offset per word, and look-ups and groups are chains
// through the words, so a 166,000-word list loads with a handful of allocations.
class SpellDictionary
{
public:
    SpellDictionary();

    // Reads a list of one word per line (CR LF) in pieces of 65,536 bytes, joining lines that
    // cross a piece's end; a last line without CR LF counts too. Lines are UTF-8 where their
    // bytes are, else Latin-1 (older lists are 8-bit). False, with the reason, when the file
    // cannot be read; the words read before a read error stay.
    bool load(const QString &path, QString *error = nullptr);

    // Files `word` under its key, after the words already there (duplicates allowed: loading).
    void insert(QStringView word);
    // Adds a word the user taught: nothing when the group holds it already (exact compare).
    bool add(const QString &word);

    // Whether the list holds `word`. An entry written with a capital ("London") matches only a
    // word with the same capital, in any case after it; any other entry ("apple") matches its
    // own spelling and the word with its first letter capitalised or all capitals.
    bool contains(QStringView word) const;
    // The words filed under the key of `word`, in order.
    QStringList group(QStringView word) const;

    // Near spellings from the group of `word`: entries sharing its first 6, 5, 4, 3 or 2
    // characters (exact compare), an entry taken only while no earlier entry was closer, so the
    // list follows the word list's order. Shown with a capital first letter when `word` begins
    // with one. Empty when there is no group or no entry close enough.
    QStringList suggestions(QStringView word) const;

    int wordCount() const { return int(m_starts.size()) - 1; }

private:
    QStringView wordAt(int index) const;
    void insertLatin1(QLatin1StringView word);
    // Files the word just appended to m_text under its key.
    void fileLastWord();

    // A chain of words in the order they were filed, linked through a `next` array.
    struct Chain
    {
        int first = -1;
        int last = -1;
        void append(int index, std::vector<int> &next)
        {
            if (first < 0)
                first = index;
            else
                next[size_t(last)] = index;
            last = index;
        }
    };

    QString m_text;                // every word, one after the other
    std::vector<int> m_starts;     // word i is m_text[m_starts[i], m_starts[i + 1])
    // The sound groups, linked on first use: only suggestions need them, so reading the list
    // spends neither the time nor the memory.
    const std::vector<Chain> &groups() const;

    mutable std::vector<int> m_next;     // the next word of the same sound group, -1 at its end
    mutable std::vector<Chain> m_groups; // per key code: its sound group
    std::vector<Chain> m_lookup;   // per hash of the case-folded word: the words a look-up compares
    std::vector<int> m_lookupNext; // the next word of the same look-up chain
};
