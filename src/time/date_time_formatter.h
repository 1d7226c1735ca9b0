#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>

// Formats a date and time with the program's own format letters (the ones the clock settings
// and the alarm presets store), which are not Qt's:
//
//   d dd ddd dddd   day, day with two digits, short weekday name, full weekday name
//   m mm mmm mmmm   month, two-digit month, short month name, full month name
//   yy yyyy         year with two or four digits
//   h hh H HH       hour without / with a leading zero (letter case does not matter)
//   n nn            minutes without / with a leading zero
//   s ss            seconds without / with a leading zero
//   ampm            the locale's morning or afternoon marker
//
// Letters are matched without regard to case ("DDDD" is "dddd"); "ampm" likewise.
// When a format contains "ampm" its hours run on the 12-hour clock (12, 1 ... 11).
// "m" and "mm" mean minutes, not the month, when the nearest format letter before them is an
// hour ("hh:mm") or the nearest one after them is a seconds field ("mm:ss"); everywhere else
// they are the month. "mmm" and "mmmm" are always month names.
// Everything else is kept as literal text. Letters that would otherwise be read as a field can
// be kept literal by putting them in double quotes ("\"Today is\" dddd") or after a backslash.
class DateTimeFormatter
{
public:
    static QString format(const QDateTime &moment, const QString &pattern, const QLocale &locale = QLocale());
};
