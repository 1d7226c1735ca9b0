#include "calendar/imported_calendars.h"

#include "core/file_helpers.h"
#include "core/safe_file_write.h"
#include "core/settings_store.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

const QString kWindow = QStringLiteral("fcln_IDX");
const QString kCount = QStringLiteral("Imported Calendars");
// A file larger than this is not a calendar anyone keeps by hand: it is refused unread.
constexpr qint64 kLargestFile = 32 * 1024 * 1024;

QString tr(const char *text)
{
    return QCoreApplication::translate("ImportedCalendars", text);
}

void tell(QString *out, const QString &message)
{
    if (out)
        *out = message;
}

// Each calendar is one value, its fields split by tabs and the name last (it may hold anything
// but a tab or a line break): one write of the settings file per change.
QString valueName(int index)
{
    return QStringLiteral("Imported Calendar %1").arg(index + 1);
}

QString withoutTabs(QString text)
{
    return text.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
}

QString shown(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

ImportedCalendars::ImportedCalendars(const QString &calendarFolder)
    : m_folder(QDir(calendarFolder).filePath(QStringLiteral("imported")))
{
}

QList<QColor> ImportedCalendars::palette()
{
    return {QColor(0x2e, 0x7d, 0x32), QColor(0xc6, 0x28, 0x28), QColor(0x15, 0x65, 0xc0),
            QColor(0xef, 0x6c, 0x00), QColor(0x6a, 0x1b, 0x9a), QColor(0x00, 0x83, 0x8f),
            QColor(0xad, 0x14, 0x57), QColor(0x5d, 0x40, 0x37)};
}

QColor ImportedCalendars::nextColor() const
{
    const QList<QColor> colors = palette();
    for (const QColor &color : colors) {
        const bool used = std::any_of(m_sources.begin(), m_sources.end(),
                                      [&color](const Source &source) { return source.color == color; });
        if (!used)
            return color;
    }
    return colors.at(m_sources.size() % colors.size());
}

QString ImportedCalendars::pathOf(const Source &source) const
{
    return QDir(m_folder).filePath(source.file);
}

QString ImportedCalendars::freeFileName() const
{
    QSet<QString> taken;
    for (const Source &source : m_sources)
        taken.insert(source.file);
    for (int n = 1;; ++n) {
        const QString name = QStringLiteral("calendar-%1.ics").arg(n);
        if (!taken.contains(name) && !QFileInfo::exists(QDir(m_folder).filePath(name)))
            return name;
    }
}

void ImportedCalendars::load(QStringList *problems)
{
    m_sources.clear();
    const int count = qBound(0, ReadIntDetail(kWindow, kCount, 0), 1000);
    for (int i = 0; i < count; ++i) {
        const QStringList fields = ReadDetail(kWindow, valueName(i), QString()).split(QLatin1Char('\t'));
        Source source;
        source.file = QFileInfo(fields.value(0)).fileName(); // never a path out of the folder
        if (source.file.isEmpty())
            continue;
        source.color = QColor(fields.value(1));
        if (!source.color.isValid())
            source.color = nextColor();
        source.fetched = QDateTime::fromString(fields.value(2), Qt::ISODate);
        source.address = fields.value(3);
        source.name = fields.mid(4).join(QLatin1Char(' '));
        if (source.name.isEmpty())
            source.name = source.file;
        QFile file(pathOf(source));
        QString error;
        if (file.open(QIODevice::ReadOnly))
            source.calendar = IcalCalendar::fromBytes(file.readAll(), &error);
        else
            error = file.errorString();
        if (source.calendar.isNull()) {
            source.lastProblem = error;
            if (problems)
                problems->append(tr("The calendar \"%1\" (%2) could not be read: %3")
                                     .arg(source.name, shown(pathOf(source)), error));
        }
        source.calendar.setShownZone(m_zone);
        m_sources.append(source);
    }
}

void ImportedCalendars::saveOne(int index) const
{
    const Source &source = m_sources.at(index);
    WriteDetail(kWindow, valueName(index),
                QStringList{source.file, source.color.name(), source.fetched.toUTC().toString(Qt::ISODate),
                            withoutTabs(source.address), withoutTabs(source.name)}
                    .join(QLatin1Char('\t')));
}

void ImportedCalendars::save() const
{
    for (int i = 0; i < m_sources.size(); ++i)
        saveOne(i);
    WriteDetail(kWindow, kCount, QString::number(m_sources.size()));
}

int ImportedCalendars::add(const QByteArray &bytes, const QString &name, const QString &address,
                           QString *error)
{
    QString problem;
    IcalCalendar calendar = IcalCalendar::fromBytes(bytes, &problem);
    if (calendar.isNull()) {
        tell(error, problem);
        return -1;
    }
    Source source;
    source.file = freeFileName();
    source.name = calendar.name().isEmpty() ? name : calendar.name();
    source.color = nextColor();
    source.address = address;
    if (!address.isEmpty())
        source.fetched = QDateTime::currentDateTimeUtc();
    if (!CreateFolderIfMissing(m_folder)) {
        tell(error, tr("The folder %1 could not be created.").arg(shown(m_folder)));
        return -1;
    }
    if (!WriteFileSafely(pathOf(source), bytes, &problem)) {
        tell(error, tr("A copy could not be kept in %1: %2.").arg(shown(m_folder), problem));
        return -1;
    }
    calendar.setShownZone(m_zone);
    source.calendar = calendar;
    m_sources.append(source);
    saveOne(int(m_sources.size()) - 1);
    WriteDetail(kWindow, kCount, QString::number(m_sources.size()));
    return int(m_sources.size()) - 1;
}

int ImportedCalendars::addFile(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        tell(error, tr("%1 could not be opened (%2).").arg(shown(path), file.errorString()));
        return -1;
    }
    if (file.size() > kLargestFile) {
        tell(error, tr("%1 is too large for a calendar (more than 32 MB).").arg(shown(path)));
        return -1;
    }
    return add(file.readAll(), QFileInfo(path).completeBaseName(), QString(), error);
}

bool ImportedCalendars::replace(int index, const QByteArray &bytes, const QDateTime &when, QString *error)
{
    if (index < 0 || index >= m_sources.size())
        return false;
    Source &source = m_sources[index];
    QString problem;
    IcalCalendar calendar = IcalCalendar::fromBytes(bytes, &problem);
    if (!calendar.isNull() &&
        !(CreateFolderIfMissing(m_folder) && WriteFileSafely(pathOf(source), bytes, &problem)))
        calendar = IcalCalendar();
    if (calendar.isNull()) {
        noteFailedRefresh(index, problem);
        tell(error, problem);
        return false;
    }
    calendar.setShownZone(m_zone);
    source.calendar = calendar;
    source.fetched = when.toUTC();
    source.lastProblem.clear();
    saveOne(index);
    return true;
}

void ImportedCalendars::noteFailedRefresh(int index, const QString &problem)
{
    if (index >= 0 && index < m_sources.size())
        m_sources[index].lastProblem = problem;
}

bool ImportedCalendars::remove(int index, QString *error)
{
    if (index < 0 || index >= m_sources.size())
        return false;
    QFile copy(pathOf(m_sources.at(index)));
    if (copy.exists() && !copy.remove()) {
        tell(error, tr("%1 could not be removed (%2).").arg(shown(copy.fileName()), copy.errorString()));
        return false;
    }
    m_sources.removeAt(index);
    save();
    return true;
}

void ImportedCalendars::setColor(int index, const QColor &color)
{
    if (index < 0 || index >= m_sources.size() || !color.isValid())
        return;
    m_sources[index].color = color;
    saveOne(index);
}

QList<int> ImportedCalendars::dueForRefresh(const QDateTime &now, qint64 maxAge) const
{
    QList<int> due;
    for (int i = 0; i < m_sources.size(); ++i) {
        const Source &source = m_sources.at(i);
        if (!source.address.isEmpty() && (!source.fetched.isValid() || source.fetched.secsTo(now) >= maxAge))
            due.append(i);
    }
    return due;
}

QHash<QDate, QList<CalendarEventMark>> ImportedCalendars::marksBetween(const QDate &first,
                                                                       const QDate &last) const
{
    QHash<QDate, QList<CalendarEventMark>> marks;
    for (const Source &source : m_sources)
        for (const IcalOccurrence &o : source.calendar.occurrences(first, last))
            marks[o.date].append({o.time, o.summary, source.color});
    // Whole-day events first on each day, then by time; stable, so calendars keep their order.
    for (QList<CalendarEventMark> &day : marks)
        std::stable_sort(day.begin(), day.end(), [](const CalendarEventMark &a, const CalendarEventMark &b) {
            if (a.time.isValid() != b.time.isValid())
                return !a.time.isValid();
            return a.time < b.time;
        });
    return marks;
}

void ImportedCalendars::setShownZone(const QTimeZone &zone)
{
    m_zone = zone;
    for (Source &source : m_sources)
        source.calendar.setShownZone(zone);
}
