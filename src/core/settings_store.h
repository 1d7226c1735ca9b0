#pragma once

#include <QString>

// The program's settings: text values under registry-style keys, one "\Details" key per
// window ("SOFTWARE\Vantora\falc_SET\Details"). Every read has a default and never fails;
// every write is fire-and-forget. On Windows the registry holds them; elsewhere a
// regedit-format file (see RegFileBackend).

enum class Hive {
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

// Shorthands for the common case: the current user's "<window>\Details" key.
QString ReadDetail(const QString &window, const QString &valueName, const QString &defaultValue);
void WriteDetail(const QString &window, const QString &valueName, const QString &data);

// Text-to-number and text-to-boolean conversions with the program's forgiving rules:
// ReadBool accepts "True"/"False" in any case and numeric text (non-zero is true).
// A value that does not convert gives the default.
int ReadIntDetail(const QString &window, const QString &valueName, int defaultValue);
bool ReadBoolDetail(const QString &window, const QString &valueName, bool defaultValue);
