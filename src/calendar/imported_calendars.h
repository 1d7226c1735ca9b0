#pragma once

#include "calendar/ical_calendar.h"

#include <QColor>
#include <QDate>
#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

// An event of an imported calendar as a day of the month page shows it.
struct CalendarEventMark
{
    QTime time; // invalid for a whole-day event
    QString summary;
    QColor color;
};

// The calendars the user has imported (.ics files) or subscribed to (.ics addresses), shown
// on the month page under the user's own notes.
//
// Each is a copy of its file in the "imported" folder of the calendar folder, so it is shown
// offline and after the original is gone; for a subscription that copy is the last good
// download. The list, with each calendar's name, colour and address, is kept in the calendar's
// settings. A file is checked whole before anything changes: one that cannot be read is
// refused with the reason, and the list and the copies stay as they were.
class ImportedCalendars
{
public:
    struct Source
    {
        QString file; // the copy's name in folder()
        QString name;
        QColor color;
        QString address;     // empty for a file imported once
        QDateTime fetched;   // when the copy was last brought up to date (UTC)
        QString lastProblem; // why the last refresh failed; empty when it did not
        IcalCalendar calendar;
    };

    explicit ImportedCalendars(const QString &calendarFolder);

    QString folder() const { return m_folder; }
    int count() const { return int(m_sources.size()); }
    const Source &source(int index) const { return m_sources.at(index); }

    // Reads the list from the settings and each calendar from its copy. A copy that is missing or
    // cannot be read leaves its calendar empty; *problems gets a sentence for each.
    void load(QStringList *problems = nullptr);

    // Adds a calendar from the bytes of an .ics file; `name` is used when the file names none.
    // The index of the new calendar, or -1 with *error when the bytes cannot be read or kept.
    int add(const QByteArray &bytes, const QString &name, const QString &address, QString *error = nullptr);
    int addFile(const QString &path, QString *error = nullptr);
    // Puts newer bytes in place of a calendar's copy (a subscription's download); the old copy
    // stays when they cannot be read. Either way the attempt is recorded.
    bool replace(int index, const QByteArray &bytes, const QDateTime &when, QString *error = nullptr);
    void noteFailedRefresh(int index, const QString &problem);
    bool remove(int index, QString *error = nullptr);
    void setColor(int index, const QColor &color);

    // The subscriptions whose copy is older than `maxAge` seconds at `now`, or never fetched.
    QList<int> dueForRefresh(const QDateTime &now, qint64 maxAge) const;

    // The events of every calendar on the days from `first` to `last`, calendar by calendar in
    // list order, whole-day events first on each day. Times are shown in `zone`.
    QHash<QDate, QList<CalendarEventMark>> marksBetween(const QDate &first, const QDate &last) const;
    void setShownZone(const QTimeZone &zone);

    // The colours given to calendars in turn.
    static QList<QColor> palette();

private:
    void save() const;
    void saveOne(int index) const;
    QString pathOf(const Source &source) const;
    QString freeFileName() const;
    QColor nextColor() const;

    QString m_folder;
    QList<Source> m_sources;
    QTimeZone m_zone = QTimeZone::systemTimeZone();
};
