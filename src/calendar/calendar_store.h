#pragma once

#include "calendar/month_layout.h"
#include "calendar/month_notes.h"

#include <QDate>
#include <QImage>
#include <QMap>
#include <QString>

// The calendar folder: for each month a drawing, "2026-11.png" (a transparent PNG of the whole
// page, see MonthLayout::pageSize()), and its day notes, "2026-11.txt" (see MonthNotes). Both
// are ordinary files that other programs can open, so a month with nothing in it has no files.
//
// A file that cannot be read whole is never overwritten: it is moved aside under a new name
// before the month is shown, and the caller is told in words for the user. A *problem or
// *error is only written when something went wrong.
class CalendarStore
{
public:
    explicit CalendarStore(const QString &folder);

    // The calendar folder in the program's data folder.
    static QString defaultFolder();

    QString folder() const { return m_folder; }
    QString notesPath(int year, int month) const;
    QString drawingPath(int year, int month) const;

    // The month's notes; empty notes when the month has no file. A file with lines that cannot
    // be read, or that cannot be opened, is moved aside unchanged (setAside()) and *problem
    // says what happened and where the file went; the notes that could be read are returned.
    MonthNotes loadNotes(int year, int month, QString *problem = nullptr) const;
    // Writes the notes through WriteFileSafely(); notes without any day remove the file. False,
    // with *error for the user, on failure; the old file is then as it was.
    bool saveNotes(const MonthNotes &notes, QString *error = nullptr) const;

    // The month's drawing as an ARGB32_Premultiplied image of MonthLayout::pageSize(),
    // transparent when there is none. A file that does not read as a picture is moved aside,
    // with *problem set, and a blank page returned; a picture of another size (edited
    // elsewhere) is scaled onto the page.
    QImage loadDrawing(int year, int month, QString *problem = nullptr) const;
    // The same, laid out for `layout`'s first day of the week. The file says which first day it
    // was drawn with (a file that does not was drawn with the locale's); when that is another,
    // each day's ink is moved to where its day is now.
    QImage loadDrawing(const MonthLayout &layout, QString *problem = nullptr) const;
    // Writes the page as a PNG through WriteFileSafely(), creating the folder when missing; a
    // fully transparent page removes the file instead. False, with *error, on failure.
    bool saveDrawing(int year, int month, const QImage &page, QString *error = nullptr) const;
    // Writes the page drawn on `layout`, noting its first day of the week in the file.
    bool saveDrawing(const MonthLayout &layout, const QImage &page, QString *error = nullptr) const;

    // The notes of the days from `first` to `last`, read quietly from every month file there is
    // (lines that cannot be read are left out; nothing is moved aside): for exporting.
    QMap<QDate, QString> notesBetween(const QDate &first, const QDate &last) const;

    // One day's note, read quietly (nothing is moved aside): for a glance at today.
    QString noteFor(const QDate &date) const;

    // Moves a damaged file aside, beside itself, as "<stem> damaged <yyyyMMdd-hhmmss>.<suffix>"
    // (with a number added when that name is taken). The new path; empty on failure.
    static QString setAside(const QString &path);

private:
    QString pathOf(int year, int month, const QString &suffix) const;

    QString m_folder;
};
