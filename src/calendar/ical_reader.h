#pragma once

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QTime>
#include <QTimeZone>

#include <memory>

// What reads and writes iCalendar text (.ics files).
//
// libical lives in a module of its own (calendar/ical/) that is loaded when the first calendar
// file is read or written: linked into the program it costs every start the time to load and
// relocate it, although most runs never touch such a file. The module includes only this header
// and makes the objects declared here; the program asks for them through calendar/ical_module.h.

// One event on one day, as a month page shows it.
struct IcalOccurrence
{
    QDate date;
    QTime time; // invalid for a whole-day event
    QString summary;

    bool isAllDay() const { return !time.isValid(); }
    bool operator==(const IcalOccurrence &other) const = default;
};

// The events of one file that was read whole. Recurrences are expanded for the days asked for;
// what has been worked out is kept, so a reader is for the thread that made it.
class IcalReader
{
public:
    virtual ~IcalReader() = default;
    // The calendar's own name (X-WR-CALNAME); empty when it has none.
    virtual QString name() const = 0;
    // The events in the file, each recurring event counted once, cancelled ones left out.
    virtual int eventCount() const = 0;
    // The events on the valid days `first` to `last` (first <= last), an event of several whole
    // days once on each of them, times as the clock reads in `zone`; in no particular order.
    virtual QList<IcalOccurrence> occurrences(const QDate &first, const QDate &last,
                                              const QTimeZone &zone) const = 0;
};

// A whole-day event to write.
struct IcalDayEvent
{
    QDate day;
    QString uid;
    QString summary;
    QString description;
};

// The module's object: reads files and writes events.
class IcalCodec
{
public:
    virtual ~IcalCodec() = default;
    // Reads the bytes of a file that has a VCALENDAR block and whose BEGIN: and END: lines pair
    // up. Null, with *error in words for the user, when it cannot be read.
    virtual std::unique_ptr<IcalReader> read(const QByteArray &bytes, QString *error) const = 0;
    // A calendar of whole-day events that do not take up the day's time, each stamped (DTSTAMP)
    // with `stamp`.
    virtual QByteArray write(const QList<IcalDayEvent> &events, const QDateTime &stamp) const = 0;
};

// The module's one entry point, looked up by this name: IcalCodec *vantora_create_ical_codec().
inline constexpr char kIcalModuleEntry[] = "vantora_create_ical_codec";
