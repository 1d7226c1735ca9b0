#include "calendar/ical/libical_writer.h"

#include <libical/ical.h>

namespace {

icaltimetype dayOf(const QDate &date)
{
    icaltimetype day = icaltime_null_date();
    day.year = date.year();
    day.month = date.month();
    day.day = date.day();
    return day;
}

icaltimetype utcOf(const QDateTime &moment)
{
    return icaltime_from_timet_with_zone(time_t(moment.toSecsSinceEpoch()), 0,
                                         icaltimezone_get_utc_timezone());
}

icalcomponent *eventFor(const IcalDayEvent &day, const icaltimetype &stamp)
{
    icalcomponent *event = icalcomponent_new(ICAL_VEVENT_COMPONENT);
    icalcomponent_add_property(event, icalproperty_new_uid(day.uid.toUtf8().constData()));
    icalcomponent_add_property(event, icalproperty_new_dtstamp(stamp));
    icalcomponent_add_property(event, icalproperty_new_dtstart(dayOf(day.day)));
    icalcomponent_add_property(event, icalproperty_new_dtend(dayOf(day.day.addDays(1))));
    icalcomponent_add_property(event, icalproperty_new_summary(day.summary.toUtf8().constData()));
    icalcomponent_add_property(event, icalproperty_new_description(day.description.toUtf8().constData()));
    // A note is a mark on the day, not time taken up.
    icalcomponent_add_property(event, icalproperty_new_transp(ICAL_TRANSP_TRANSPARENT));
    return event;
}

} // namespace

QByteArray WriteWithLibical(const QList<IcalDayEvent> &events, const QDateTime &stamp)
{
    std::unique_ptr<icalcomponent, void (*)(icalcomponent *)> calendar(
        icalcomponent_new(ICAL_VCALENDAR_COMPONENT), icalcomponent_free);
    icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_prodid("-//Vantora//Calendar notes//EN"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_calscale("GREGORIAN"));
    const icaltimetype stamped = utcOf(stamp);
    for (const IcalDayEvent &event : events)
        icalcomponent_add_component(calendar.get(), eventFor(event, stamped));
    char *text = icalcomponent_as_ical_string_r(calendar.get());
    const QByteArray bytes(text);
    icalmemory_free_buffer(text);
    return bytes;
}
