#pragma once

#include <QString>

class IcalCodec;

// The iCalendar codec of this run, from the module loaded on the first call (see
// calendar/ical_reader.h). Null when the module cannot be loaded; *problem then says why, in
// words that can follow "iCalendar files cannot be read: ".
const IcalCodec *LoadedIcalCodec(QString *problem = nullptr);

// Loads the module under another name from the next call on; empty: its own name. Tests give a
// name that no module has to see what the user sees when the module is missing.
void SetIcalModuleName(const QString &name);
