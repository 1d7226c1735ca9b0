#include "core/platform/windows_registry_backend.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <QStringList>

#include <cstring>
#include <string>
#include <vector>

namespace {

HKEY rootOf(Hive hive)
{
    return hive == Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

// The registry refuses empty path components, which joined names ("root\" + "\x") can make.
std::wstring keyPath(const QString &key)
{
    const QStringList parts = key.split(QLatin1Char('\\'), Qt::SkipEmptyParts);
    return parts.join(QLatin1Char('\\')).toStdWString();
}

SettingsValue decode(DWORD type, const std::vector<BYTE> &data, DWORD size)
{
    if (type == REG_SZ || type == REG_EXPAND_SZ) {
        QString text = QString::fromWCharArray(reinterpret_cast<const wchar_t *>(data.data()),
                                               qsizetype(size / sizeof(wchar_t)));
        const qsizetype end = text.indexOf(QChar(0)); // the terminator, when the writer stored one
        if (end >= 0)
            text.truncate(end);
        return SettingsValue::fromText(text);
    }
    if (type == REG_DWORD && size == sizeof(DWORD)) {
        DWORD number = 0;
        std::memcpy(&number, data.data(), sizeof number);
        return SettingsValue::fromNumber(number);
    }
    return {SettingsValueType::Other, QString(), 0};
}

} // namespace

SettingsValue WindowsRegistryBackend::read(Hive hive, const QString &key, const QString &name)
{
    HKEY handle = nullptr;
    if (RegOpenKeyExW(rootOf(hive), keyPath(key).c_str(), 0, KEY_QUERY_VALUE, &handle) != ERROR_SUCCESS)
        return {};
    const std::wstring valueName = name.toStdWString();
    SettingsValue result;
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(handle, valueName.c_str(), nullptr, &type, nullptr, &size) == ERROR_SUCCESS) {
        std::vector<BYTE> data(size_t(size) + sizeof(wchar_t), 0);
        DWORD got = size;
        if (RegQueryValueExW(handle, valueName.c_str(), nullptr, &type, data.data(), &got) == ERROR_SUCCESS)
            result = decode(type, data, got);
    }
    RegCloseKey(handle);
    return result;
}

bool WindowsRegistryBackend::write(Hive hive, const QString &key, const QString &name,
                                   const SettingsValue &value)
{
    if (value.type != SettingsValueType::Text && value.type != SettingsValueType::Number)
        return false;
    HKEY handle = nullptr;
    if (RegCreateKeyExW(rootOf(hive), keyPath(key).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                        nullptr, &handle, nullptr) != ERROR_SUCCESS)
        return false;
    const std::wstring valueName = name.toStdWString();
    LONG rc = ERROR_SUCCESS;
    if (value.type == SettingsValueType::Text) {
        const std::wstring text = value.text.toStdWString();
        rc =
            RegSetValueExW(handle, valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                           DWORD((text.size() + 1) * sizeof(wchar_t)));
    } else {
        const DWORD number = value.number;
        rc = RegSetValueExW(handle, valueName.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE *>(&number),
                            sizeof number);
    }
    RegCloseKey(handle);
    return rc == ERROR_SUCCESS;
}
