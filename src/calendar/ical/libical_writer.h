#pragma once

#include "calendar/ical_reader.h"

// A VCALENDAR block holding `events` as whole-day events that leave the day free (TRANSP), each
// with `stamp` as its DTSTAMP; libical folds the long lines and escapes the texts.
QByteArray WriteWithLibical(const QList<IcalDayEvent> &events, const QDateTime &stamp);
