#include "themes/preset_file.h"

#include "themes/ini_file.h"

namespace {

QString g_presetFile;
bool g_lastWriteOk = true;

QString prefixed(const QString &key)
{
    return QString::fromLatin1(kPresetKeyPrefix) + key;
}

} // namespace

QString PresetFile()
{
    return g_presetFile;
}

void SetPresetFile(const QString &path)
{
    g_presetFile = path;
}

QString PresetRead(const QString &section, const QString &key, const QString &defaultValue)
{
    IniFile file(g_presetFile.trimmed());
    file.load();
    const QString value = file.value(section, prefixed(key)).trimmed();
    if (!value.isEmpty())
        return value;
    const QString fallback = defaultValue.trimmed();
    PresetWrite(section, key, fallback);
    return fallback;
}

bool PresetWrite(const QString &section, const QString &key, const QString &value)
{
    IniFile file(g_presetFile.trimmed());
    g_lastWriteOk = file.load();
    if (g_lastWriteOk) {
        file.setValue(section, prefixed(key), value);
        g_lastWriteOk = file.save();
    }
    return true;
}

bool LastPresetWriteSucceeded()
{
    return g_lastWriteOk;
}
