#include "notes/text_statistics.h"

#include <algorithm>

namespace {

// Spaces only: tabs and line breaks stay, as the counting expects.
QString TrimSpaces(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text[start] == u' ')
        ++start;
    while (end > start && text[end - 1] == u' ')
        --end;
    return text.mid(start, end - start);
}

// The start and end of a frame (a table, for one) in a document's raw text.
constexpr char16_t kFrameStart = 0xfdd0;
constexpr char16_t kFrameEnd = 0xfdd1;

bool IsLineBreak(QChar c)
{
    return c == u'\n' || c == QChar::ParagraphSeparator || c == QChar::LineSeparator || c == kFrameStart
        || c == kFrameEnd;
}

QString Plural(qsizetype count, const char *one, const char *many)
{
    return QLatin1String(count == 1 ? one : many);
}

} // namespace

QString StatisticsText(const QString &documentText)
{
    QString text;
    text.reserve(documentText.size() + documentText.size() / 16);
    for (const QChar c : documentText) {
        if (IsLineBreak(c))
            text.append(QLatin1String("\r\n"));
        else
            text.append(c);
    }
    return text;
}

int WordCount(const QString &text)
{
    QString words = TrimSpaces(QString(text).replace(u'-', u' '));
    words = TrimSpaces(words.replace(QLatin1String("\r\n"), QLatin1String(" ")));
    if (words.isEmpty())
        return 0;
    return int(words.count(u' ')) + 1;
}

QString CharacterStatistics(const QString &text, const QString &selectedText)
{
    const qsizetype length = text.size();
    const int words = WordCount(text);
    QString label = QString::number(words);
    if (length == 1)
        label += QLatin1String(" word (1 char). ");
    else
        label += Plural(words, " word (", " words (") + QString::number(length) + QLatin1String(" chars). ");
    if (selectedText.isEmpty())
        return label;
    const qsizetype selectedLength = selectedText.size();
    const int selectedWords = WordCount(selectedText);
    label += QString::number(selectedWords) + Plural(selectedWords, " sel word (", " sel words (");
    label += QString::number(selectedLength);
    label += (selectedWords == 1 && selectedLength == 1) ? QLatin1String(" sel char). ")
                                                         : QLatin1String(" sel chars). ");
    return label;
}

QString LineStatistics(const QString &text, int caretPosition)
{
    const qsizetype caret = std::clamp<qsizetype>(caretPosition, 0, text.size());
    const auto breaks = [&text](qsizetype end) {
        return std::count_if(text.cbegin(), text.cbegin() + end, IsLineBreak);
    };
    const qsizetype current = breaks(caret) + 1;
    const qsizetype total = breaks(text.size()) + 1;
    return QString::number(current) + QLatin1String(" of ") + QString::number(total)
        + Plural(total, " line. ", " lines. ");
}
