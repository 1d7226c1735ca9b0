#include "calendar/ics_note_writer.h"

#include "calendar/ical_module.h"
#include "calendar/ical_reader.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("IcsNoteWriter", text);
}

} // namespace

QString IcsNoteWriter::uidFor(const QDate &date)
{
    return date.toString(QStringLiteral("'day-'yyyyMMdd'@vantora-calendar'"));
}

QByteArray IcsNoteWriter::toIcs(const QMap<QDate, QString> &notes, const QDateTime &stamp, QString *error)
{
    QString problem;
    const IcalCodec *codec = LoadedIcalCodec(&problem);
    if (!codec) {
        if (error)
            *error = tr("iCalendar files cannot be written: %1.").arg(problem);
        return {};
    }
    QList<IcalDayEvent> events;
    for (auto it = notes.constBegin(); it != notes.constEnd(); ++it) {
        if (!it.key().isValid() || it.value().trimmed().isEmpty())
            continue;
        const QString firstLine = it.value().section(QLatin1Char('\n'), 0, 0).trimmed();
        events.append({it.key(), uidFor(it.key()), firstLine, it.value()});
    }
    return codec->write(events, stamp);
}

bool IcsNoteWriter::write(const QString &path, const QMap<QDate, QString> &notes, const QDateTime &stamp,
                          QString *error)
{
    const QByteArray bytes = toIcs(notes, stamp, error);
    if (bytes.isEmpty())
        return false; // nothing is written without the module
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = tr("%1 could not be written (%2). A file there before, if any, is unchanged.")
                     .arg(QDir::toNativeSeparators(path), file.errorString());
    return false;
}
