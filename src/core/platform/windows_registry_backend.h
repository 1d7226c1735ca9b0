#pragma once

#include "core/platform/settings_backend.h"

// The Windows registry itself (Windows only). Strings are stored as REG_SZ with their
// terminator; REG_SZ and REG_EXPAND_SZ read back as text (without expanding variables),
// REG_DWORD as a number, anything else as Other.
class WindowsRegistryBackend : public SettingsBackend
{
public:
    SettingsValue read(Hive hive, const QString &key, const QString &name) override;
    bool write(Hive hive, const QString &key, const QString &name, const SettingsValue &value) override;
};
