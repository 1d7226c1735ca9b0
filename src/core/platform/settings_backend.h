#pragma once

#include "core/settings_store.h"

#include <QString>

// The kinds of stored value the settings store tells apart. Only Text is ever handed to the
// program as a setting; every other kind reads as the caller's default, as in the registry.
enum class SettingsValueType
{
    Missing, // no such key or value, or the store could not be read
    Text,    // a string (REG_SZ or REG_EXPAND_SZ)
    Number,  // a 32-bit number (REG_DWORD)
    Other,   // anything else: binary, multi-string, or a line the store could not make sense of
};

struct SettingsValue
{
    SettingsValueType type = SettingsValueType::Missing;
    QString text;       // the string, for Text
    quint32 number = 0; // the number, for Number

    static SettingsValue fromText(const QString &text) { return {SettingsValueType::Text, text, 0}; }
    static SettingsValue fromNumber(quint32 number) { return {SettingsValueType::Number, QString(), number}; }
    bool isText() const { return type == SettingsValueType::Text; }
    bool operator==(const SettingsValue &other) const = default;
};

// A hierarchical key/value store in the registry's shape: a hive, a key path made of names
// joined by '\' (compared without regard to case), and named values under each key. Keys
// are created on demand by writes. Implementations never throw and never show anything.
class SettingsBackend
{
public:
    virtual ~SettingsBackend() = default;

    // The value `name` under hive\key, or a Missing value.
    virtual SettingsValue read(Hive hive, const QString &key, const QString &name) = 0;

    // Stores `value` (Text or Number) as `name` under hive\key, creating the key and its parents.
    // Returns false when the value could not be made lasting; an implementation may still keep
    // it in memory so that later reads in this process see it.
    virtual bool write(Hive hive, const QString &key, const QString &name, const SettingsValue &value) = 0;
};
