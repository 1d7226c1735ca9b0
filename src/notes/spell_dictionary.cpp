#include "notes/spell_dictionary.h"

#include <QFile>
#include <QStringDecoder>

#include <array>
#include <cstring>
#include <functional>

namespace {

constexpr int kKeyLength = 6;
constexpr int kKeyCodes = 7 * 7 * 7 * 7 * 7 * 7; // six places of the digits 0 to 6
constexpr qsizetype kPieceSize = 65536;
// Look-ups go through a second set of chains, by key and length, so a word is compared with a
// handful of entries instead of its whole sound group (some hold over a thousand words).
constexpr int kLookupBits = 17;

// Look-ups compare whole words, in any case (see SameWord), so a word is filed for them under a
// hash of its case-folded letters: the chains stay short however many words share a sound key
// and a length ("w00001" to "w99999" all have the key 000000).
int LookupBucket(QStringView word)
{
    quint32 hash = 2166136261u;
    for (qsizetype i = 0; i < word.size(); ++i) {
        char32_t unit = word[i].unicode();
        if (unit < 128) {
            if (unit >= u'A' && unit <= u'Z')
                unit += 32;
        } else if (QChar::isHighSurrogate(unit) && i + 1 < word.size() && word[i + 1].isLowSurrogate()) {
            unit = QChar::toCaseFolded(QChar::surrogateToUcs4(word[i].unicode(), word[i + 1].unicode()));
            ++i;
        } else {
            unit = QChar::toCaseFolded(unit);
        }
        hash = (hash ^ quint32(unit)) * 16777619u;
    }
    return int((hash * 2654435761u) >> (32 - kLookupBits));
}

// The digit of each ASCII character, 0 for those without one: vowels, h, w, y, digits, signs
// and the letter k, which the key ignores like a vowel, so "cat" and "kat" file apart.
// Capitals count as their small letters.
constexpr std::array<char, 128> kAsciiDigits = [] {
    std::array<char, 128> digits{};
    constexpr std::array<char, 26> letters = {
        0, 1, 2, 3, 0, 1, 2, 0, 0, 2, 0, 4, 5, // a to m
        5, 0, 1, 2, 6, 2, 3, 0, 1, 0, 2, 0, 2, // n to z
    };
    for (int i = 0; i < 26; ++i) {
        digits[size_t('a' + i)] = letters[size_t(i)];
        digits[size_t('A' + i)] = letters[size_t(i)];
    }
    return digits;
}();

std::array<int, kKeyLength> KeyDigits(QStringView word)
{
    std::array<int, kKeyLength> digits{};
    int place = 0;
    for (qsizetype i = 0; i < qMin<qsizetype>(word.size(), kKeyLength); ++i) {
        char16_t c = word[i].unicode();
        // Beyond ASCII only a letter whose small form is a to z has a digit.
        if (c >= 128)
            c = word[i].toLower().unicode();
        if (c >= 128)
            continue;
        if (const int digit = kAsciiDigits[c])
            digits[size_t(place++)] = digit;
    }
    return digits;
}

int KeyCode(QStringView word)
{
    int code = 0;
    for (int digit : KeyDigits(word))
        code = code * 7 + digit;
    return code;
}

bool SameWord(QStringView entry, QStringView word)
{
    if (entry.size() != word.size() || entry.isEmpty())
        return false;
    // An entry starting in lower case takes the word in any case when the word starts with its
    // capital; a capitalised entry (a name) needs that capital.
    const char16_t first = entry.front().unicode();
    const char16_t capital = first >= u'a' && first <= u'z' ? char16_t(first - 32)
                             : first < 128                  ? first
                                                            : entry.front().toUpper().unicode();
    if (capital == word.front().unicode())
        return entry.compare(word, Qt::CaseInsensitive) == 0;
    return first == word.front().unicode() && entry == word;
}

// How many leading characters of `entry` and `word` agree, as the suggestion levels count
// them: 6 when their first six characters (or all of a shorter word) are equal, down to 2;
// 0 when not even the first two agree.
int LevelOf(QStringView entry, QStringView word)
{
    for (int level = kKeyLength; level >= 2; --level) {
        if (entry.left(level) == word.left(level))
            return level;
    }
    return 0;
}

QString WithCapital(QStringView entry)
{
    QString shown = entry.toString();
    if (!shown.isEmpty())
        shown[0] = shown[0].toUpper();
    return shown;
}

// Splits pieces of a file into its CR LF lines; a line may begin in one piece and end in a
// later one, and a CR LF may itself be split between two pieces.
class LineJoiner
{
public:
    explicit LineJoiner(std::function<void(QByteArrayView)> emitLine) : m_emit(std::move(emitLine)) {}

    void feed(QByteArrayView piece)
    {
        qsizetype pos = 0;
        if (m_carry.endsWith('\r') && piece.startsWith('\n')) {
            m_carry.chop(1);
            flushCarry();
            pos = 1;
        }
        const char *data = piece.data();
        const qsizetype size = piece.size();
        while (pos < size) {
            const void *found = std::memchr(data + pos, '\r', size_t(size - pos));
            if (!found)
                break;
            const qsizetype cr = static_cast<const char *>(found) - data;
            if (cr + 1 >= size)
                break; // the LF, if any, is in the next piece
            if (data[cr + 1] != '\n') {
                // A lone CR is part of the line; look for the next one.
                m_carry.append(data + pos, cr + 1 - pos);
                pos = cr + 1;
                continue;
            }
            if (m_carry.isEmpty()) {
                m_emit(QByteArrayView(data + pos, cr - pos));
            } else {
                m_carry.append(data + pos, cr - pos);
                flushCarry();
            }
            pos = cr + 2;
        }
        m_carry.append(data + pos, size - pos);
    }

    // The last line, when the file does not end in CR LF.
    void finish()
    {
        if (!m_carry.isEmpty())
            flushCarry();
    }

private:
    void flushCarry()
    {
        m_emit(m_carry);
        m_carry.clear();
    }

    std::function<void(QByteArrayView)> m_emit;
    QByteArray m_carry;
};

} // namespace

QString PhoneticKey(QStringView word)
{
    QString key(kKeyLength, QLatin1Char('0'));
    const auto digits = KeyDigits(word);
    for (int i = 0; i < kKeyLength; ++i)
        key[i] = QLatin1Char(char('0' + digits[size_t(i)]));
    return key;
}

SpellDictionary::SpellDictionary()
    : m_starts{0}
    , m_lookup(size_t(1) << kLookupBits)
{
}

inline QStringView SpellDictionary::wordAt(int index) const
{
    return QStringView(m_text).mid(m_starts[size_t(index)], m_starts[size_t(index) + 1] - m_starts[size_t(index)]);
}

void SpellDictionary::insert(QStringView word)
{
    m_text.append(word);
    fileLastWord();
}

void SpellDictionary::insertLatin1(QLatin1StringView word)
{
    m_text.append(word);
    fileLastWord();
}

void SpellDictionary::fileLastWord()
{
    const int index = wordCount();
    m_starts.push_back(int(m_text.size()));
    const QStringView word = wordAt(index);
    const int code = KeyCode(word);
    if (!m_groups.empty()) {
        m_next.push_back(-1);
        m_groups[size_t(code)].append(index, m_next);
    }
    // In file order too, so the common words a list starts with are found first.
    m_lookupNext.push_back(-1);
    m_lookup[size_t(LookupBucket(word))].append(index, m_lookupNext);
}

const std::vector<SpellDictionary::Chain> &SpellDictionary::groups() const
{
    if (m_groups.empty()) {
        m_groups.resize(kKeyCodes);
        m_next.assign(size_t(wordCount()), -1);
        for (int i = 0; i < wordCount(); ++i)
            m_groups[size_t(KeyCode(wordAt(i)))].append(i, m_next);
    }
    return m_groups;
}

bool SpellDictionary::add(const QString &word)
{
    // An equal word has the same hash, so it is on the look-up chain.
    for (int i = m_lookup[size_t(LookupBucket(word))].first; i >= 0; i = m_lookupNext[size_t(i)]) {
        if (wordAt(i) == word)
            return false;
    }
    insert(word);
    return true;
}

bool SpellDictionary::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return false;
    }
    m_text.reserve(m_text.size() + file.size());
    m_starts.reserve(m_starts.size() + size_t(file.size() / 8));
    m_lookupNext.reserve(m_lookupNext.size() + size_t(file.size() / 8));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString decoded;
    LineJoiner lines([&](QByteArrayView line) {
        bool ascii = true;
        for (char c : line)
            ascii = ascii && uchar(c) < 0x80;
        if (ascii) {
            insertLatin1(QLatin1StringView(line.data(), line.size()));
            return;
        }
        decoded = utf8.decode(line);
        if (utf8.hasError()) {
            utf8.resetState();
            decoded = QString::fromLatin1(line.data(), line.size());
        }
        insert(decoded);
    });
    QByteArray piece(kPieceSize, Qt::Uninitialized);
    for (;;) {
        const qint64 got = file.read(piece.data(), kPieceSize);
        if (got < 0) {
            if (error)
                *error = file.errorString();
            return false;
        }
        if (got == 0)
            break;
        lines.feed(QByteArrayView(piece.constData(), got));
    }
    lines.finish();
    return true;
}

bool SpellDictionary::contains(QStringView word) const
{
    const int bucket = LookupBucket(word);
    for (int i = m_lookup[size_t(bucket)].first; i >= 0; i = m_lookupNext[size_t(i)]) {
        if (SameWord(wordAt(i), word))
            return true;
    }
    return false;
}

QStringList SpellDictionary::group(QStringView word) const
{
    QStringList words;
    for (int i = groups()[size_t(KeyCode(word))].first; i >= 0; i = m_next[size_t(i)])
        words.append(wordAt(i).toString());
    return words;
}

QStringList SpellDictionary::suggestions(QStringView word) const
{
    const bool capital = !word.isEmpty() && word.front().unicode() < 91;
    QStringList list;
    int best = 0;
    for (int i = groups()[size_t(KeyCode(word))].first; i >= 0; i = m_next[size_t(i)]) {
        const QStringView entry = wordAt(i);
        const int level = LevelOf(entry, word);
        // Taken only while nothing closer came before it; once taken, the bar rises to it.
        if (level == 0 || best > level)
            continue;
        best = level;
        list.append(capital ? WithCapital(entry) : entry.toString());
    }
    return list;
}
