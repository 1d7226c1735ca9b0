#include "calendar/ical_calendar.h"

#include "calendar/ical_module.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>

namespace {

// Answers kept for ranges of days; a month page asks for one range, so this is a year of turning.
constexpr int kCachedRanges = 48;

QString tr(const char *text)
{
    return QCoreApplication::translate("IcalCalendar", text);
}

// Empty when every BEGIN: has its END: in the right order, else names the first line that breaks
// the nesting. libical gives nothing back at all for such a file, so this tells why.
QString unclosedBlockIn(const QByteArray &bytes)
{
    QList<QByteArray> open;
    int lineNumber = 0;
    for (const QByteArray &raw : bytes.split('\n')) {
        ++lineNumber;
        const QByteArray line = raw.trimmed();
        const bool begins = line.startsWith("BEGIN:");
        if (!begins && !line.startsWith("END:"))
            continue;
        const QByteArray block = line.mid(begins ? 6 : 4).trimmed().toUpper();
        if (begins) {
            open.append(block);
        } else if (open.isEmpty() || open.last() != block) {
            return tr("Line %1 ends a %2 block that was not begun there (END:%2).")
                .arg(lineNumber)
                .arg(QString::fromLatin1(block));
        } else {
            open.removeLast();
        }
    }
    if (!open.isEmpty())
        return tr("The file ends inside a %1 block (END:%1 is missing): it may have been cut off.")
            .arg(QString::fromLatin1(open.last()));
    return {};
}

// Why the bytes cannot be an iCalendar file, as far as that can be told without libical; empty
// when they may be one.
QString notACalendar(const QByteArray &bytes)
{
    if (bytes.trimmed().isEmpty())
        return tr("The file is empty.");
    if (!bytes.contains("BEGIN:VCALENDAR"))
        return tr("It is not an iCalendar file: there is no BEGIN:VCALENDAR in it.");
    return unclosedBlockIn(bytes);
}

bool byDateAndTime(const IcalOccurrence &a, const IcalOccurrence &b)
{
    if (a.date != b.date)
        return a.date < b.date;
    if (a.isAllDay() != b.isAllDay())
        return a.isAllDay();
    if (a.time != b.time)
        return a.time < b.time;
    return a.summary < b.summary;
}

} // namespace

struct IcalCalendar::Data
{
    std::unique_ptr<const IcalReader> reader;
    QTimeZone zone = QTimeZone::systemTimeZone();
    mutable QHash<QPair<qint64, qint64>, QList<IcalOccurrence>> cache;
};

IcalCalendar::IcalCalendar() = default;

IcalCalendar IcalCalendar::fromBytes(const QByteArray &bytes, QString *error)
{
    // What can be told without libical is told before the module is loaded.
    const QString problem = notACalendar(bytes);
    if (!problem.isEmpty()) {
        if (error)
            *error = problem;
        return {};
    }
    QString missing;
    const IcalCodec *codec = LoadedIcalCodec(&missing);
    if (!codec) {
        if (error)
            *error = tr("iCalendar files cannot be read: %1.").arg(missing);
        return {};
    }
    std::unique_ptr<IcalReader> reader = codec->read(bytes, error);
    if (!reader)
        return {};
    IcalCalendar calendar;
    calendar.d = std::make_shared<Data>();
    calendar.d->reader = std::move(reader);
    return calendar;
}

QString IcalCalendar::name() const
{
    return d ? d->reader->name() : QString();
}

int IcalCalendar::eventCount() const
{
    return d ? d->reader->eventCount() : 0;
}

void IcalCalendar::setShownZone(const QTimeZone &zone)
{
    if (!d || d->zone == zone)
        return;
    d->zone = zone;
    d->cache.clear();
}

QTimeZone IcalCalendar::shownZone() const
{
    return d ? d->zone : QTimeZone::systemTimeZone();
}

QList<IcalOccurrence> IcalCalendar::occurrences(const QDate &first, const QDate &last) const
{
    if (!d || !first.isValid() || !last.isValid() || last < first)
        return {};
    const QPair<qint64, qint64> key(first.toJulianDay(), last.toJulianDay());
    const auto cached = d->cache.constFind(key);
    if (cached != d->cache.constEnd())
        return *cached;

    QList<IcalOccurrence> out = d->reader->occurrences(first, last, d->zone);
    std::stable_sort(out.begin(), out.end(), byDateAndTime);
    if (d->cache.size() >= kCachedRanges)
        d->cache.clear();
    d->cache.insert(key, out);
    return out;
}
