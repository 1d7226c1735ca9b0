#pragma once

#include <QString>

// The theme preset file that PresetRead() and PresetWrite() act on. Set it before a series of
// reads or writes; it is trimmed of blanks when used.
QString PresetFile();
void SetPresetFile(const QString &path);

// Every key of a preset is written and looked up with this prefix: "> Main-Color=13855252".
inline constexpr const char *kPresetKeyPrefix = "> ";

// Reads "> " + key in section of PresetFile(), trimmed. When that gives nothing, the trimmed
// default is written to the file under the same section and key (creating the file if needed)
// and returned, so reading a preset completes it.
QString PresetRead(const QString &section, const QString &key, const QString &defaultValue);

// Writes "> " + key = value in section of PresetFile(). Returns true, as callers expect; a
// failed write leaves the file as it was.
bool PresetWrite(const QString &section, const QString &key, const QString &value);

// Whether the last PresetWrite() (or completing PresetRead()) reached the disk.
bool LastPresetWriteSucceeded();
