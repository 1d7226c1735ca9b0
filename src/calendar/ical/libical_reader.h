#pragma once

#include "calendar/ical_reader.h"

// Reads a calendar file with libical (see IcalCodec::read).
std::unique_ptr<IcalReader> ReadWithLibical(const QByteArray &bytes, QString *error);
