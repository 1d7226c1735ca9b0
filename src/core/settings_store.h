#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// The program's settings: text values under registry-style keys, one "\Details" key per
// window ("SOFTWARE\Vantora\falc_SET\Details"). Every read has a default and never fails;
// every write is fire-and-forget. On Windows the registry holds them; elsewhere a
// regedit-format file (see RegFileBackend).

enum class Hive
{
    CurrentUser,  // HKEY_CURRENT_USER: all of the program's own values
    LocalMachine, // HKEY_LOCAL_MACHINE: only the start-with-the-system entry
};

// "SOFTWARE\Vantora\" (with the trailing backslash).
QString SettingsRoot();

// SettingsRoot() + window + "\Details", the key of a window's values.
QString DetailsKey(const QString &window);

// Reads a text value. Any failure (no key, no value, a value of another type, a value of
// more than 254 characters) gives the default. The result is trimmed, a returned default too.
QString ReadSetting(Hive hive, const QString &key, const QString &valueName, const QString &defaultValue);

// Writes a text value, creating the key when needed. Failures are silent.
void WriteSetting(Hive hive, const QString &key, const QString &valueName, const QString &data);

// Counts the writes of this run (and switches to another settings file). A model that keeps
// values it read compares it on each tick and reads again only when it moved, so that a timer
// can run often without reading the store every time.
quint64 SettingsWriteCount();

// Shorthands for the common case: the current user's "<window>\Details" key.
QString ReadDetail(const QString &window, const QString &valueName, const QString &defaultValue);
void WriteDetail(const QString &window, const QString &valueName, const QString &data);

// Text-to-number and text-to-boolean conversions with the program's forgiving rules:
// ReadBool accepts "True"/"False" in any case and numeric text (non-zero is true).
// A value that does not convert gives the default.
// ReadIntDetail takes whole-number text ("-1", " 8 ") and decimal text rounded to the nearest
// integer, halves to even ("2.5" -> 2, "3.5" -> 4, as a coordinate written as "1234.5" is
// read); text with anything after the number ("12abc"), or outside the int range, converts
// to nothing and so gives the default.
int ReadIntDetail(const QString &window, const QString &valueName, int defaultValue);
bool ReadBoolDetail(const QString &window, const QString &valueName, bool defaultValue);

// The same conversions on any text, for values read with ReadSetting. On failure they return
// nothing; `ok` says whether they converted.
int SettingToInt(const QString &text, bool *ok);
bool SettingToBool(const QString &text, bool *ok);
// How a switch is stored: "1" or "0".
QString SettingFromBool(bool on);

// Removes leading and trailing blanks (spaces) as every read does; tabs and line breaks stay.
QString TrimBlanks(const QString &text);

// The longest text a read gives back; a longer stored value reads as the default.
constexpr int kLongestSetting = 254;

// Problems with the settings file that the user should hear about (part of it unreadable and
// kept aside, a save that failed), one sentence each. Problems found before a handler is set
// wait for it; an empty handler collects them again.
using SettingsProblemHandler = std::function<void(const QString &message)>;
void SetSettingsProblemHandler(SettingsProblemHandler handler);

class SettingsBackend;
// The store behind the routines above. On Windows it is the registry, unless VANTORA_HOME is
// set (tests, benchmarks), which selects the file store there as everywhere else: the file
// at AppPaths::settingsFile(), loaded again whenever that path changes. Tests may use it to
// store values of other types (a REG_DWORD) that the routines above never write.
SettingsBackend &ActiveSettingsBackend();
