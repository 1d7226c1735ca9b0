#pragma once

#include "calendar/ical_reader.h"

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <QTimeZone>

#include <memory>

// An iCalendar file (.ics) read for showing: its events, whole-day and timed, with their
// recurrences (RRULE, RDATE, EXDATE and moved instances), in the time zones the file names
// (its own VTIMEZONE blocks, else the system's zone database).
//
// Reading is done by libical, in a module loaded with the first file (see calendar/ical_reader.h).
// A file is read whole or not at all: one that libical cannot make sense of, or with an event
// that has no start, is refused with a message that says what is wrong; so is every file when
// the module cannot be loaded.
//
// Recurrences are not expanded when the file is read but for the days asked for, and the answer
// for a range is kept, so that turning back to a month costs nothing. Copies share the events
// and that cache; the class is for the thread that made it.
class IcalCalendar
{
public:
    IcalCalendar();

    // Reads the bytes of an .ics file. A null calendar, with *error in words for the user, when
    // they cannot be read.
    static IcalCalendar fromBytes(const QByteArray &bytes, QString *error = nullptr);

    bool isNull() const { return !d; }
    // The calendar's own name (X-WR-CALNAME); empty when it has none.
    QString name() const;
    // The events in the file, each recurring event counted once, cancelled ones left out.
    int eventCount() const;

    // Times are shown as the clock reads in `zone`; the system's zone unless set.
    void setShownZone(const QTimeZone &zone);
    QTimeZone shownZone() const;

    // The events on the days from `first` to `last`, by date; on one day the whole-day events
    // first, then by time. An event of several whole days is listed on each of them.
    QList<IcalOccurrence> occurrences(const QDate &first, const QDate &last) const;

private:
    struct Data;
    std::shared_ptr<Data> d;
};
