#include "calendar/month_notes.h"

#include <QDate>
#include <QLocale>

namespace {

// "YYYY-MM-DD": the date that starts every line of a note.
constexpr qsizetype kDateLength = 10;

QString escaped(const QString &note)
{
    QString out;
    out.reserve(note.size() + 8);
    for (const QChar c : note) {
        if (c == QLatin1Char('\\'))
            out += QLatin1String("\\\\");
        else if (c == QLatin1Char('\n'))
            out += QLatin1String("\\n");
        else
            out += c;
    }
    return out;
}

// The reverse of escaped(). A backslash before anything else, or at the very end, is kept as
// it stands: a hand-written "C:\temp" must not lose its backslash.
QString unescaped(const QString &text)
{
    QString out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const QChar next = i + 1 < text.size() ? text.at(i + 1) : QChar();
        if (c == QLatin1Char('\\') && (next == QLatin1Char('\\') || next == QLatin1Char('n'))) {
            out += next == QLatin1Char('n') ? QLatin1Char('\n') : QLatin1Char('\\');
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

// A line break typed or pasted in any convention, as the one '\n' the file can write.
QString withPlainLineBreaks(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
    text.replace(QChar::LineSeparator, QLatin1Char('\n'));
    return text;
}

// The number in `digits` when every byte is an ASCII digit; -1 otherwise.
int digitsValue(QByteArrayView digits)
{
    int value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

// The date at the start of a line written as exactly "YYYY-MM-DD"; invalid otherwise.
QDate leadingDate(QByteArrayView line)
{
    if (line.size() < kDateLength || line.at(4) != '-' || line.at(7) != '-')
        return {};
    const int year = digitsValue(line.sliced(0, 4));
    const int month = digitsValue(line.sliced(5, 2));
    const int day = digitsValue(line.sliced(8, 2));
    if (year < 0 || month < 0 || day < 0)
        return {};
    return QDate(year, month, day);
}

bool isBlank(QByteArrayView line)
{
    for (const char c : line)
        if (c != ' ' && c != '\t')
            return false;
    return true;
}

} // namespace

MonthNotes::MonthNotes(int year, int month) : m_year(year), m_month(month) {}

QString MonthNotes::note(int day) const
{
    return m_notes.value(day);
}

void MonthNotes::setNote(int day, const QString &text)
{
    const int days = QDate(m_year, m_month, 1).daysInMonth();
    if (day < 1 || day > days)
        return;
    QString kept = withPlainLineBreaks(text);
    while (!kept.isEmpty() && kept.back().isSpace())
        kept.chop(1);
    if (kept.isEmpty())
        m_notes.remove(day);
    else
        m_notes.insert(day, kept);
}

QByteArray MonthNotes::toText() const
{
    QString text = QStringLiteral("# Calendar notes for %1 %2: one day per line, \"\\n\" is a new line "
                                  "within a note.\n")
                       .arg(QLocale::c().monthName(m_month))
                       .arg(m_year);
    for (auto it = m_notes.cbegin(); it != m_notes.cend(); ++it) {
        text += QDate(m_year, m_month, it.key()).toString(Qt::ISODate) + QLatin1Char(' ') +
                escaped(it.value()) + QLatin1Char('\n');
    }
    return text.toUtf8();
}

bool MonthNotes::readLine(QByteArrayView line)
{
    const QDate date = leadingDate(line);
    if (!date.isValid() || date.year() != m_year || date.month() != m_month)
        return false;
    if (line.size() == kDateLength || line.at(kDateLength) != ' ' || m_notes.contains(date.day()))
        return false;
    const QByteArrayView rest = line.sliced(kDateLength + 1);
    if (!rest.isValidUtf8())
        return false;
    setNote(date.day(), unescaped(QString::fromUtf8(rest)));
    return true;
}

MonthNotes MonthNotes::fromText(int year, int month, const QByteArray &bytes, int *badLines)
{
    MonthNotes notes(year, month);
    int bad = 0;
    QByteArrayView rest(bytes);
    if (rest.startsWith("\xEF\xBB\xBF"))
        rest = rest.sliced(3);
    while (!rest.isEmpty()) {
        const qsizetype end = rest.indexOf('\n');
        QByteArrayView line = end < 0 ? rest : rest.first(end);
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
        if (line.endsWith('\r'))
            line.chop(1);
        if (isBlank(line) || line.startsWith('#'))
            continue;
        if (!notes.readLine(line))
            ++bad;
    }
    if (badLines)
        *badLines = bad;
    return notes;
}
