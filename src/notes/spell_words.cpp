#include "notes/spell_words.h"

namespace {

bool IsSeparator(QChar c)
{
    return c.unicode() < 33;
}

// The signs that make the characters check pass a word. Digits count too (they lie in the
// range 33 to 64), so with that check on "x0" passes without a lookup even though the number
// check leaves the digit 0 alone. The apostrophe, comma and full stop are part of ordinary
// words and do not count; neither do [ \ ] ^ _ and the backquote.
bool IsSpecial(QChar c)
{
    const char16_t code = c.unicode();
    if (code >= 33 && code <= 64)
        return code != u'\'' && code != u',' && code != u'.';
    return code > 122;
}

} // namespace

bool IsSkippedWord(QStringView word, const SpellSkipOptions &options)
{
    if (word.isEmpty())
        return true;
    if (options.numbers) {
        for (QChar c : word) {
            if (c >= u'1' && c <= u'9')
                return true;
        }
    }
    if (options.capitals) {
        bool allCapitals = true;
        for (QChar c : word)
            allCapitals = allCapitals && c >= u'A' && c <= u'Z';
        if (allCapitals)
            return true;
    }
    if (options.characters) {
        for (QChar c : word) {
            if (IsSpecial(c))
                return true;
        }
    }
    return false;
}

bool IsAbbreviationWord(QStringView word)
{
    return word == QStringView(u"e.g") || word == QStringView(u"i.e");
}

CutWord CutWordAt(QStringView text, int from)
{
    int end = from;
    while (end < text.size() && !IsSeparator(text[end]))
        ++end;
    CutWord word;
    word.end = qMin<int>(end + 1, int(text.size()));
    int first = from;
    int last = end; // one past the word
    for (char16_t mark : u"_.',?()[]\"") {
        if (mark == 0)
            break;
        if (last > first && text[last - 1] == mark)
            --last;
        if (last > first && text[first] == mark)
            ++first;
    }
    word.start = first;
    word.length = last - first;
    return word;
}

QString SpellWalkText(QString raw)
{
    for (QChar &c : raw) {
        switch (c.unicode()) {
        case QChar::ParagraphSeparator:
        case QChar::LineSeparator:
        case QChar::ObjectReplacementCharacter:
        case 0xfdd0: // start of a table or frame
        case 0xfdd1: // end of a table or frame
        case u'\t':
        case u'\r':
        case u'\n':
            c = QLatin1Char(' ');
            break;
        default:
            break;
        }
    }
    return raw;
}
