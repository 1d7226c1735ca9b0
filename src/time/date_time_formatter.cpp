#include "time/date_time_formatter.h"

#include <QList>

namespace {

enum class Field
{
    Literal,
    Day,
    Month,
    Year,
    Hour,
    Minute,
    Second,
    AmPm
};

struct Token
{
    Field field = Field::Literal;
    int width = 0;   // number of letters (1 to 4)
    QString literal; // for Field::Literal
};

// The longest run of one letter (any case) that a field accepts.
int maxWidth(QChar letter)
{
    switch (letter.toLower().unicode()) {
    case 'd':
    case 'm':
    case 'y':
        return 4;
    case 'h':
    case 'n':
    case 's':
        return 2;
    default:
        return 0;
    }
}

Field fieldOf(QChar letter)
{
    switch (letter.toLower().unicode()) {
    case 'd':
        return Field::Day;
    case 'm':
        return Field::Month;
    case 'y':
        return Field::Year;
    case 'h':
        return Field::Hour;
    case 'n':
        return Field::Minute;
    default:
        return Field::Second;
    }
}

void appendLiteral(QList<Token> &tokens, const QString &text)
{
    if (!tokens.isEmpty() && tokens.last().field == Field::Literal)
        tokens.last().literal += text;
    else
        tokens.append(Token{Field::Literal, 0, text});
}

QList<Token> tokenize(const QString &pattern)
{
    QList<Token> tokens;
    int i = 0;
    while (i < pattern.size()) {
        const QChar c = pattern.at(i);
        if (c == QLatin1Char('"')) {
            const int end = pattern.indexOf(QLatin1Char('"'), i + 1);
            const int stop = end < 0 ? pattern.size() : end;
            appendLiteral(tokens, pattern.mid(i + 1, stop - i - 1));
            i = stop + 1;
        } else if (c == QLatin1Char('\\')) {
            if (i + 1 < pattern.size())
                appendLiteral(tokens, pattern.mid(i + 1, 1));
            i += 2;
        } else if (pattern.mid(i, 4).compare(QLatin1String("ampm"), Qt::CaseInsensitive) == 0) {
            tokens.append(Token{Field::AmPm, 4, {}});
            i += 4;
        } else if (const int limit = maxWidth(c); limit > 0) {
            int run = 1;
            while (run < limit && i + run < pattern.size() && pattern.at(i + run).toLower() == c.toLower())
                ++run;
            // A lone "y" or a "yyy" tail is no field of ours: keep the odd letter as text.
            if (fieldOf(c) == Field::Year && run != 2 && run != 4) {
                if (run == 3)
                    tokens.append(Token{Field::Year, 2, {}});
                appendLiteral(tokens, pattern.mid(i + run - 1, 1));
            } else {
                tokens.append(Token{fieldOf(c), run, {}});
            }
            i += run;
        } else {
            appendLiteral(tokens, QString(c));
            ++i;
        }
    }
    return tokens;
}

// The nearest non-literal token before (step -1) or after (step +1) index, or Literal.
Field neighbour(const QList<Token> &tokens, int index, int step)
{
    for (int j = index + step; j >= 0 && j < tokens.size(); j += step) {
        if (tokens.at(j).field != Field::Literal)
            return tokens.at(j).field;
    }
    return Field::Literal;
}

// "m"/"mm" next to an hour or seconds field is read as minutes.
void resolveMinutes(QList<Token> &tokens)
{
    for (int i = 0; i < tokens.size(); ++i) {
        Token &t = tokens[i];
        if (t.field != Field::Month || t.width > 2)
            continue;
        if (neighbour(tokens, i, -1) == Field::Hour || neighbour(tokens, i, +1) == Field::Second)
            t.field = Field::Minute;
    }
}

QString number(int value, int width)
{
    return width >= 2 ? QString::number(value).rightJustified(2, QLatin1Char('0')) : QString::number(value);
}

QString render(const Token &t, const QDateTime &moment, const QLocale &locale, bool twelveHour)
{
    const QDate date = moment.date();
    const QTime time = moment.time();
    switch (t.field) {
    case Field::Literal:
        return t.literal;
    case Field::Day:
        if (t.width <= 2)
            return number(date.day(), t.width);
        return locale.dayName(date.dayOfWeek(), t.width == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
    case Field::Month:
        if (t.width <= 2)
            return number(date.month(), t.width);
        return locale.monthName(date.month(), t.width == 3 ? QLocale::ShortFormat : QLocale::LongFormat);
    case Field::Year:
        return t.width == 2 ? number(date.year() % 100, 2)
                            : QString::number(date.year()).rightJustified(4, QLatin1Char('0'));
    case Field::Hour: {
        int hour = time.hour();
        if (twelveHour) {
            hour %= 12;
            if (hour == 0)
                hour = 12;
        }
        return number(hour, t.width);
    }
    case Field::Minute:
        return number(time.minute(), t.width);
    case Field::Second:
        return number(time.second(), t.width);
    case Field::AmPm:
        return time.hour() < 12 ? locale.amText() : locale.pmText();
    }
    return {};
}

} // namespace

QString DateTimeFormatter::format(const QDateTime &moment, const QString &pattern, const QLocale &locale)
{
    QList<Token> tokens = tokenize(pattern);
    resolveMinutes(tokens);
    bool twelveHour = false;
    for (const Token &t : tokens)
        twelveHour = twelveHour || t.field == Field::AmPm;

    QString out;
    for (const Token &t : tokens)
        out += render(t, moment, locale, twelveHour);
    return out;
}
