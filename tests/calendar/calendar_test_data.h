#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

// The hand-written .ics files in tests/calendar/data (VANTORA_CALENDAR_DATA is their folder).
inline QString calendarDataPath(const QString &name)
{
    return QStringLiteral(VANTORA_CALENDAR_DATA "/") + name;
}

inline QByteArray calendarDataFile(const QString &name)
{
    QFile file(calendarDataPath(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing test file %s", qPrintable(name));
    return file.readAll();
}
