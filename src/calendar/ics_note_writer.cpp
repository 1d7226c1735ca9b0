#include "calendar/ics_note_writer.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include <libical/ical.h>

#include <memory>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("IcsNoteWriter", text);
}

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

icalcomponent *eventFor(const QDate &date, const QString &note, const icaltimetype &stamp)
{
    icalcomponent *event = icalcomponent_new(ICAL_VEVENT_COMPONENT);
    icalcomponent_add_property(event, icalproperty_new_uid(IcsNoteWriter::uidFor(date).toUtf8().constData()));
    icalcomponent_add_property(event, icalproperty_new_dtstamp(stamp));
    icalcomponent_add_property(event, icalproperty_new_dtstart(dayOf(date)));
    icalcomponent_add_property(event, icalproperty_new_dtend(dayOf(date.addDays(1))));
    const QString firstLine = note.section(QLatin1Char('\n'), 0, 0).trimmed();
    icalcomponent_add_property(event, icalproperty_new_summary(firstLine.toUtf8().constData()));
    icalcomponent_add_property(event, icalproperty_new_description(note.toUtf8().constData()));
    // A note is a mark on the day, not time taken up.
    icalcomponent_add_property(event, icalproperty_new_transp(ICAL_TRANSP_TRANSPARENT));
    return event;
}

} // namespace

QString IcsNoteWriter::uidFor(const QDate &date)
{
    return date.toString(QStringLiteral("'day-'yyyyMMdd'@vantora-calendar'"));
}

QByteArray IcsNoteWriter::toIcs(const QMap<QDate, QString> &notes, const QDateTime &stamp)
{
    std::unique_ptr<icalcomponent, void (*)(icalcomponent *)> calendar(
        icalcomponent_new(ICAL_VCALENDAR_COMPONENT), icalcomponent_free);
    icalcomponent_add_property(calendar.get(), icalproperty_new_version("2.0"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_prodid("-//Vantora//Calendar notes//EN"));
    icalcomponent_add_property(calendar.get(), icalproperty_new_calscale("GREGORIAN"));
    const icaltimetype stamped = utcOf(stamp);
    for (auto it = notes.constBegin(); it != notes.constEnd(); ++it)
        if (it.key().isValid() && !it.value().trimmed().isEmpty())
            icalcomponent_add_component(calendar.get(), eventFor(it.key(), it.value(), stamped));
    char *text = icalcomponent_as_ical_string_r(calendar.get());
    const QByteArray bytes(text);
    icalmemory_free_buffer(text);
    return bytes;
}

bool IcsNoteWriter::write(const QString &path, const QMap<QDate, QString> &notes, const QDateTime &stamp,
                          QString *error)
{
    QSaveFile file(path);
    const QByteArray bytes = toIcs(notes, stamp);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = tr("%1 could not be written (%2). A file there before, if any, is unchanged.")
                     .arg(QDir::toNativeSeparators(path), file.errorString());
    return false;
}
