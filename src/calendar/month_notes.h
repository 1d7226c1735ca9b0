#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

// The day notes of one month, and their text file.
//
// The file is made to be read and searched with any text tool: UTF-8, one line per day,
// "YYYY-MM-DD" then one space then the note, so that a search for a word shows the day beside
// it. A note's line breaks are written as "\n" and a backslash as "\\"; any other backslash is
// taken as it stands. Lines starting with '#' and blank lines are comments.
class MonthNotes
{
public:
    MonthNotes() = default;
    MonthNotes(int year, int month);

    int year() const { return m_year; }
    int month() const { return m_month; }

    // The note of a day of the month; empty when there is none.
    QString note(int day) const;
    // Sets a day's note. Trailing whitespace is dropped and line breaks of any kind become
    // '\n'; an empty or blank note removes the day's note. Days outside the month are ignored.
    void setNote(int day, const QString &text);
    bool isEmpty() const { return m_notes.isEmpty(); }
    // The days with a note, ascending.
    QList<int> days() const { return m_notes.keys(); }

    // The file's bytes.
    QByteArray toText() const;
    // Reads a file's bytes. Lines that cannot be read (not a date of this month followed by a
    // space and the note, a second line for the same day, or not valid UTF-8) are skipped and
    // counted in *badLines. CRLF line ends and a UTF-8 byte-order mark are accepted.
    static MonthNotes fromText(int year, int month, const QByteArray &bytes, int *badLines = nullptr);

    bool operator==(const MonthNotes &other) const = default;

private:
    // Reads one line of a file into the notes; false when it cannot be read.
    bool readLine(QByteArrayView line);

    int m_year = 0;
    int m_month = 0;
    QMap<int, QString> m_notes;
};
