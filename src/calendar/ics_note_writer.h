#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QMap>
#include <QString>

// Writes day notes as an iCalendar file that other calendars import: one whole-day event per
// day with a note, its first line as the SUMMARY and the whole note as the DESCRIPTION.
//
// Each day's event has a UID made from its date alone, so that importing a later export of the
// same days updates those events instead of adding them a second time.
class IcsNoteWriter
{
public:
    // The file's bytes; `stamp` is the DTSTAMP of every event (the time of the export). Empty,
    // with *error for the user, when the iCalendar module cannot be loaded.
    static QByteArray toIcs(const QMap<QDate, QString> &notes, const QDateTime &stamp,
                            QString *error = nullptr);
    // The UID of a day's event.
    static QString uidFor(const QDate &date);
    // Writes the file whole or not at all (QSaveFile). False, with *error for the user, on failure;
    // a file already there is then unchanged.
    static bool write(const QString &path, const QMap<QDate, QString> &notes, const QDateTime &stamp,
                      QString *error = nullptr);
};
