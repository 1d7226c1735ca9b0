#include "calendar/ical/libical_reader.h"

#include <QCoreApplication>
#include <QHash>
#include <QSet>
#include <QTimeZone>

#include <libical/ical.h>

#include <algorithm>
#include <vector>

namespace {

// A recurrence is followed at most this far in one answer, so that a rule that never reaches the
// days asked for (a secondly rule from 1900) cannot hold the window up.
constexpr int kMostSteps = 200000;

// The messages are the calendar's own, translated with it.
QString tr(const char *text)
{
    return QCoreApplication::translate("IcalCalendar", text);
}

void tell(QString *out, const QString &message)
{
    if (out)
        *out = message;
}

struct ComponentFree
{
    void operator()(icalcomponent *component) const { icalcomponent_free(component); }
};
using ComponentPtr = std::unique_ptr<icalcomponent, ComponentFree>;

QString fromUtf8(const char *text)
{
    return text ? QString::fromUtf8(text).trimmed() : QString();
}

QDate dateOf(const icaltimetype &time)
{
    return QDate(time.year, time.month, time.day);
}

icaltimezone *utc()
{
    return icaltimezone_get_utc_timezone();
}

// Seconds since 1970 of a time; a floating time (no zone) is counted as if it were UTC, which
// is enough to compare it with other floating times of the same event.
qint64 momentOf(const icaltimetype &time)
{
    return qint64(icaltime_as_timet_with_zone(time, time.zone ? time.zone : utc()));
}

struct Event
{
    QString uid;
    QString summary;
    icaltimetype start; // with its zone when the file names one; null zone: floating
    int days = 1;       // how many days a whole-day event covers
    std::vector<icalrecurrencetype> rules;
    std::vector<icaltimetype> extraStarts; // RDATE
    QSet<qint64> excludedMoments;          // EXDATE of a timed event, and moved instances
    QSet<QDate> excludedDays;              // EXDATE of whole days

    // A series with an end (every rule has COUNT or UNTIL) is worked out once, when first
    // asked for, and kept by date; one without an end is followed afresh for each range.
    mutable bool expanded = false;
    mutable std::vector<icaltimetype> instances;
    QDate lastDay; // no instance starts after it; invalid: not known without working it out

    bool isAllDay() const { return start.is_date; }
    bool recurs() const { return !rules.empty() || !extraStarts.empty(); }
    bool ends() const
    {
        return std::all_of(rules.begin(), rules.end(), [](const icalrecurrencetype &rule) {
            return rule.count > 0 || !icaltime_is_null_time(rule.until);
        });
    }
};

bool hasByParts(const icalrecurrencetype &rule)
{
    for (const short *part : {rule.by_second, rule.by_minute, rule.by_hour, rule.by_day, rule.by_month_day,
                              rule.by_year_day, rule.by_week_no, rule.by_month, rule.by_set_pos})
        if (part[0] != ICAL_RECURRENCE_ARRAY_MAX)
            return true;
    return false;
}

// The last day a rule can reach from `start`; invalid when that cannot be told without
// following it (BY parts, or a day of the month that some months lack, make periods without
// an instance, so COUNT says nothing of the end).
QDate lastDayOf(const icalrecurrencetype &rule, const icaltimetype &start)
{
    if (!icaltime_is_null_time(rule.until))
        return dateOf(rule.until).addDays(1);
    if (rule.count <= 0 || hasByParts(rule) || start.day > 28)
        return {};
    const int periods = rule.count * qMax<int>(1, rule.interval);
    const QDate first = dateOf(start);
    switch (rule.freq) {
    case ICAL_DAILY_RECURRENCE:
        return first.addDays(periods);
    case ICAL_WEEKLY_RECURRENCE:
        return first.addDays(qint64(periods) * 7);
    case ICAL_MONTHLY_RECURRENCE:
        return first.addMonths(periods);
    case ICAL_YEARLY_RECURRENCE:
        return first.addYears(periods);
    default: // hourly and shorter
        return first.addDays(periods / 24 + 2);
    }
}

// Every year on the day it started, for ever.
bool isPlainYearly(const icalrecurrencetype &rule)
{
    return rule.freq == ICAL_YEARLY_RECURRENCE && rule.interval <= 1 && rule.count == 0 &&
           icaltime_is_null_time(rule.until) && !hasByParts(rule);
}

// Whether two times read the same on the clock, without working out their zones.
bool sameClockTime(const icaltimetype &a, const icaltimetype &b)
{
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour &&
           a.minute == b.minute && a.second == b.second;
}

bool earlierDate(const icaltimetype &time, const QDate &day)
{
    return dateOf(time) < day;
}

// The instances of a rule from DTSTART on, each passed to `take` until it returns false.
template <typename Take>
void followRule(const icalrecurrencetype &rule, const icaltimetype &start, const QDate &skipTo, Take take)
{
    icalrecur_iterator *it = icalrecur_iterator_new(rule, start);
    if (!it)
        return;
    if (rule.count == 0 && skipTo.isValid() && dateOf(start) < skipTo) {
        // Skips the years before the range instead of stepping through them.
        icaltimetype skip = start;
        skip.year = skipTo.year();
        skip.month = skipTo.month();
        skip.day = skipTo.day();
        icalrecur_iterator_set_start(it, skip);
    }
    int steps = 0;
    for (icaltimetype t = icalrecur_iterator_next(it); !icaltime_is_null_time(t) && steps < kMostSteps;
         t = icalrecur_iterator_next(it), ++steps) {
        if (!take(t))
            break;
    }
    icalrecur_iterator_free(it);
}

// Reads the events of one VCALENDAR block into events; false, with *error, when one of them
// cannot be read.
class EventReader
{
public:
    explicit EventReader(icalcomponent *calendar) : m_calendar(calendar) {}

    bool read(std::vector<Event> &events, QString *error);

private:
    bool readEvent(icalcomponent *component, int number, Event &event, QString *error);
    icaltimetype timeOf(icalproperty *property, icaltimetype value) const;
    icaltimezone *zoneOf(icalproperty *property) const;

    icalcomponent *m_calendar;
};

// The first parse error libical noted in a component, if any.
QString parseErrorIn(icalcomponent *component)
{
    for (icalproperty *p = icalcomponent_get_first_property(component, ICAL_XLICERROR_PROPERTY); p;
         p = icalcomponent_get_next_property(component, ICAL_XLICERROR_PROPERTY)) {
        icalparameter *kind = icalproperty_get_first_parameter(p, ICAL_XLICERRORTYPE_PARAMETER);
        const icalparameter_xlicerrortype type =
            kind ? icalparameter_get_xlicerrortype(kind) : ICAL_XLICERRORTYPE_NONE;
        // Unknown parameters and values of properties that the page never shows are no reason
        // to refuse a calendar that other programs read.
        if (type == ICAL_XLICERRORTYPE_COMPONENTPARSEERROR || type == ICAL_XLICERRORTYPE_PROPERTYPARSEERROR ||
            type == ICAL_XLICERRORTYPE_VALUEPARSEERROR)
            return fromUtf8(icalproperty_get_xlicerror(p));
    }
    return {};
}

icaltimezone *EventReader::zoneOf(icalproperty *property) const
{
    icalparameter *tzid = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    if (!tzid)
        return nullptr;
    const char *name = icalparameter_get_tzid(tzid);
    if (!name)
        return nullptr;
    if (icaltimezone *own = icalcomponent_get_timezone(m_calendar, name))
        return own;
    return icaltimezone_get_builtin_timezone(name); // the system's zone database
}

icaltimetype EventReader::timeOf(icalproperty *property, icaltimetype value) const
{
    if (!value.is_date && !icaltime_is_utc(value)) {
        icaltimezone *zone = zoneOf(property);
        if (zone)
            value.zone = zone;
    }
    return value;
}

bool EventReader::read(std::vector<Event> &events, QString *error)
{
    QHash<QString, std::vector<qint64>> moved; // UID -> the instances given a day of their own
    QHash<QString, std::vector<QDate>> movedDays;
    int number = 0;
    for (icalcomponent *c = icalcomponent_get_first_component(m_calendar, ICAL_VEVENT_COMPONENT); c;
         c = icalcomponent_get_next_component(m_calendar, ICAL_VEVENT_COMPONENT)) {
        ++number;
        Event event;
        if (!readEvent(c, number, event, error))
            return false;
        if (icalcomponent_get_status(c) == ICAL_STATUS_CANCELLED)
            continue;
        if (icalproperty *rid = icalcomponent_get_first_property(c, ICAL_RECURRENCEID_PROPERTY)) {
            const icaltimetype original = timeOf(rid, icalproperty_get_recurrenceid(rid));
            if (original.is_date)
                movedDays[event.uid].push_back(dateOf(original));
            else
                moved[event.uid].push_back(momentOf(original));
        }
        events.push_back(std::move(event));
    }
    // An instance moved to another time is shown there only.
    for (Event &event : events) {
        if (!event.recurs())
            continue;
        for (qint64 moment : moved.value(event.uid))
            event.excludedMoments.insert(moment);
        for (const QDate &day : movedDays.value(event.uid))
            event.excludedDays.insert(day);
    }
    return true;
}

bool EventReader::readEvent(icalcomponent *c, int number, Event &event, QString *error)
{
    event.uid = fromUtf8(icalcomponent_get_uid(c));
    event.summary = fromUtf8(icalcomponent_get_summary(c));
    const QString named = event.summary.isEmpty() ? tr("event %1").arg(number)
                                                  : tr("event %1 (\"%2\")").arg(number).arg(event.summary);
    const QString problem = parseErrorIn(c);
    if (!problem.isEmpty()) {
        tell(error, tr("The %1 cannot be read: %2.").arg(named, problem));
        return false;
    }
    icalproperty *dtstart = icalcomponent_get_first_property(c, ICAL_DTSTART_PROPERTY);
    const icaltimetype start = dtstart ? icalproperty_get_dtstart(dtstart) : icaltime_null_time();
    if (icaltime_is_null_time(start) || !icaltime_is_valid_time(start) || !dateOf(start).isValid()) {
        tell(error, tr("The %1 has no start date (DTSTART).").arg(named));
        return false;
    }
    event.start = timeOf(dtstart, start);
    if (event.isAllDay()) {
        // DTEND is the day after the last one; a DURATION counts whole days.
        int days = 1;
        if (icalproperty *dtend = icalcomponent_get_first_property(c, ICAL_DTEND_PROPERTY))
            days = int(dateOf(start).daysTo(dateOf(icalproperty_get_dtend(dtend))));
        else if (icalproperty *duration = icalcomponent_get_first_property(c, ICAL_DURATION_PROPERTY))
            days = icaldurationtype_as_int(icalproperty_get_duration(duration)) / 86400;
        event.days = qBound(1, days, 366);
    }
    for (icalproperty *p = icalcomponent_get_first_property(c, ICAL_RRULE_PROPERTY); p;
         p = icalcomponent_get_next_property(c, ICAL_RRULE_PROPERTY))
        event.rules.push_back(icalproperty_get_rrule(p));
    if (!event.rules.empty() && event.ends()) {
        event.lastDay = dateOf(event.start);
        for (const icalrecurrencetype &rule : event.rules) {
            const QDate last = lastDayOf(rule, event.start);
            event.lastDay = last.isValid() ? qMax(event.lastDay, last) : QDate();
            if (!last.isValid())
                break;
        }
    }
    for (icalproperty *p = icalcomponent_get_first_property(c, ICAL_RDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(c, ICAL_RDATE_PROPERTY)) {
        const icaldatetimeperiodtype rdate = icalproperty_get_rdate(p);
        if (!icaltime_is_null_time(rdate.time))
            event.extraStarts.push_back(timeOf(p, rdate.time));
    }
    for (icalproperty *p = icalcomponent_get_first_property(c, ICAL_EXDATE_PROPERTY); p;
         p = icalcomponent_get_next_property(c, ICAL_EXDATE_PROPERTY)) {
        const icaltimetype excluded = timeOf(p, icalproperty_get_exdate(p));
        if (excluded.is_date)
            event.excludedDays.insert(dateOf(excluded));
        else
            event.excludedMoments.insert(momentOf(excluded));
    }
    return true;
}

// The days one answer is for, and the zone its times are shown in.
struct Asked
{
    QDate first;
    QDate last;
    QTimeZone zone;
};

class LibicalReader : public IcalReader
{
public:
    static std::unique_ptr<IcalReader> read(ComponentPtr root, const std::vector<icalcomponent *> &calendars,
                                            QString *error);

    QString name() const override { return m_name; }
    int eventCount() const override { return m_eventCount; }
    QList<IcalOccurrence> occurrences(const QDate &first, const QDate &last,
                                      const QTimeZone &zone) const override;

private:
    void take(std::vector<Event> &events);
    void add(const Event &event, const icaltimetype &instance, const Asked &asked,
             QList<IcalOccurrence> &out) const;
    void expand(const Event &event, const Asked &asked, QList<IcalOccurrence> &out) const;

    ComponentPtr m_root; // owns the time zones the events' times point to
    QString m_name;
    std::vector<Event> m_recurring;
    std::vector<Event> m_single; // by the date they start on, as the file gives it
    int m_longestSpan = 1;
    int m_eventCount = 0;
};

std::unique_ptr<IcalReader> LibicalReader::read(ComponentPtr root,
                                                const std::vector<icalcomponent *> &calendars, QString *error)
{
    auto reader = std::make_unique<LibicalReader>();
    std::vector<Event> events;
    for (icalcomponent *calendar : calendars) {
        const QString problem = parseErrorIn(calendar);
        if (!problem.isEmpty()) {
            tell(error, tr("The calendar cannot be read: %1.").arg(problem));
            return {};
        }
        if (!EventReader(calendar).read(events, error))
            return {};
        if (reader->m_name.isEmpty()) {
            icalproperty *name = icalcomponent_get_first_property(calendar, ICAL_X_PROPERTY);
            for (; name; name = icalcomponent_get_next_property(calendar, ICAL_X_PROPERTY))
                if (qstrcmp(icalproperty_get_x_name(name), "X-WR-CALNAME") == 0)
                    reader->m_name = fromUtf8(icalproperty_get_x(name));
        }
    }
    reader->take(events);
    reader->m_root = std::move(root);
    return reader;
}

void LibicalReader::take(std::vector<Event> &events)
{
    for (Event &event : events) {
        if (event.recurs())
            m_recurring.push_back(std::move(event));
        else
            m_single.push_back(std::move(event));
    }
    // Moved instances share their UID with the series: the file's events are counted by UID.
    QSet<QString> uids;
    for (const auto *list : {&m_recurring, &m_single}) {
        for (const Event &event : *list) {
            if (event.uid.isEmpty() || !uids.contains(event.uid))
                ++m_eventCount;
            uids.insert(event.uid);
        }
    }
    std::sort(m_single.begin(), m_single.end(),
              [](const Event &a, const Event &b) { return dateOf(a.start) < dateOf(b.start); });
    for (const Event &event : m_single)
        m_longestSpan = qMax(m_longestSpan, event.days);
}

QList<IcalOccurrence> LibicalReader::occurrences(const QDate &first, const QDate &last,
                                                 const QTimeZone &zone) const
{
    const Asked asked{first, last, zone};
    QList<IcalOccurrence> out;
    for (const Event &event : m_recurring)
        expand(event, asked, out);
    // Single events are sorted by the day they start on: only those near the range are looked at.
    const QDate from = first.addDays(-m_longestSpan - 1);
    const QDate to = last.addDays(1);
    auto it =
        std::lower_bound(m_single.begin(), m_single.end(), from,
                         [](const Event &event, const QDate &day) { return dateOf(event.start) < day; });
    for (; it != m_single.end() && dateOf(it->start) <= to; ++it)
        add(*it, it->start, asked, out);
    return out;
}

void LibicalReader::add(const Event &event, const icaltimetype &instance, const Asked &asked,
                        QList<IcalOccurrence> &out) const
{
    const QDate day = dateOf(instance);
    if (event.excludedDays.contains(day))
        return;
    if (instance.is_date) {
        for (int i = 0; i < event.days; ++i) {
            const QDate shown = day.addDays(i);
            if (shown >= asked.first && shown <= asked.last)
                out.append({shown, QTime(), event.summary});
        }
        return;
    }
    if (!event.excludedMoments.isEmpty() && event.excludedMoments.contains(momentOf(instance)))
        return;
    // A floating time reads the same on every clock; any other is moved to the shown zone.
    const QDateTime moment =
        instance.zone ? QDateTime::fromSecsSinceEpoch(momentOf(instance), asked.zone)
                      : QDateTime(day, QTime(instance.hour, instance.minute, instance.second), asked.zone);
    if (moment.date() >= asked.first && moment.date() <= asked.last)
        out.append({moment.date(), moment.time(), event.summary});
}

void LibicalReader::expand(const Event &event, const Asked &asked, QList<IcalOccurrence> &out) const
{
    // The event's own dates may lie a day either side of the shown ones (another zone), and a
    // whole-day event that started before the range may still cover part of it.
    const QDate from = asked.first.addDays(-event.days - 1);
    const QDate to = asked.last.addDays(1);
    const auto inReach = [&](const icaltimetype &t) { return dateOf(t) >= from && dateOf(t) <= to; };

    if (event.ends()) {
        const bool outOfReach =
            event.extraStarts.empty() &&
            (dateOf(event.start) > to || (event.lastDay.isValid() && event.lastDay < from));
        if (outOfReach)
            return;
        if (!event.expanded) {
            event.instances.push_back(event.start); // the first instance, whatever the rule says
            event.instances.insert(event.instances.end(), event.extraStarts.begin(), event.extraStarts.end());
            for (const icalrecurrencetype &rule : event.rules)
                followRule(rule, event.start, QDate(), [&event](const icaltimetype &t) {
                    if (!sameClockTime(t, event.start))
                        event.instances.push_back(t);
                    return true;
                });
            std::stable_sort(
                event.instances.begin(), event.instances.end(),
                [](const icaltimetype &a, const icaltimetype &b) { return dateOf(a) < dateOf(b); });
            event.expanded = true;
        }
        auto it = std::lower_bound(event.instances.begin(), event.instances.end(), from, earlierDate);
        for (; it != event.instances.end() && dateOf(*it) <= to; ++it)
            add(event, *it, asked, out);
        return;
    }

    if (inReach(event.start))
        add(event, event.start, asked, out);
    for (const icaltimetype &extra : event.extraStarts)
        if (inReach(extra))
            add(event, extra, asked, out);
    for (const icalrecurrencetype &rule : event.rules) {
        if (isPlainYearly(rule)) {
            // Birthdays and holidays: the same day each year, found without libical's iterator
            // (29 February only in leap years, as the iterator has it).
            for (int year = qMax(from.year(), event.start.year + 1); year <= to.year(); ++year) {
                icaltimetype t = event.start;
                t.year = year;
                if (QDate(year, t.month, t.day).isValid() && inReach(t))
                    add(event, t, asked, out);
            }
            continue;
        }
        followRule(rule, event.start, from, [&](const icaltimetype &t) {
            if (dateOf(t) > to)
                return false;
            if (dateOf(t) >= from && !sameClockTime(t, event.start))
                add(event, t, asked, out);
            return true;
        });
    }
}

} // namespace

std::unique_ptr<IcalReader> ReadWithLibical(const QByteArray &bytes, QString *error)
{
    ComponentPtr root(icalparser_parse_string(bytes.constData()));
    if (!root) {
        tell(error, tr("It is not an iCalendar file that can be read."));
        return {};
    }
    std::vector<icalcomponent *> calendars;
    if (icalcomponent_isa(root.get()) == ICAL_VCALENDAR_COMPONENT) {
        calendars.push_back(root.get());
    } else {
        for (icalcomponent *c = icalcomponent_get_first_component(root.get(), ICAL_VCALENDAR_COMPONENT); c;
             c = icalcomponent_get_next_component(root.get(), ICAL_VCALENDAR_COMPONENT))
            calendars.push_back(c);
    }
    if (calendars.empty()) {
        tell(error, tr("It is not an iCalendar file: there is no calendar (VCALENDAR) in it."));
        return {};
    }
    return LibicalReader::read(std::move(root), calendars, error);
}
