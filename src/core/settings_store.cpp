#include "core/settings_store.h"

#include "core/app_paths.h"
#include "core/platform/reg_file_backend.h"
#ifdef Q_OS_WIN
#include "core/platform/windows_registry_backend.h"
#endif

#include <cmath>
#include <limits>
#include <memory>
#include <utility>

namespace {

// The one backend of the process, and the settings file it was made for (empty for the
// registry). The file path is asked for on every call because tests move VANTORA_HOME.
struct ActiveStore
{
    std::unique_ptr<SettingsBackend> backend;
    QString filePath;
    bool isRegistry = false;
};

quint64 g_writeCount = 0;

ActiveStore &activeStore()
{
    static ActiveStore store;
    return store;
}

struct ProblemRoute
{
    SettingsProblemHandler handler;
    QStringList waiting; // reported before anyone listened
};

ProblemRoute &problemRoute()
{
    static ProblemRoute route;
    return route;
}

void reportProblem(const QString &message)
{
    ProblemRoute &route = problemRoute();
    if (route.handler)
        route.handler(message);
    else
        route.waiting.append(message);
}

#ifdef Q_OS_WIN
// Tests and benchmarks set VANTORA_HOME and must never touch the user's registry.
bool useRegistry()
{
    return qEnvironmentVariableIsEmpty("VANTORA_HOME");
}
#endif

} // namespace

SettingsBackend &ActiveSettingsBackend()
{
    ActiveStore &store = activeStore();
#ifdef Q_OS_WIN
    if (useRegistry()) {
        if (!store.isRegistry) {
            store.backend = std::make_unique<WindowsRegistryBackend>();
            store.isRegistry = true;
            store.filePath.clear();
        }
        return *store.backend;
    }
#endif
    const QString path = AppPaths::settingsFile();
    if (!store.backend || store.isRegistry || path != store.filePath) {
        store.backend = std::make_unique<RegFileBackend>(path, &reportProblem);
        ++g_writeCount; // other values from here on
        store.filePath = path;
        store.isRegistry = false;
    }
    return *store.backend;
}

void SetSettingsProblemHandler(SettingsProblemHandler handler)
{
    ProblemRoute &route = problemRoute();
    route.handler = std::move(handler);
    if (!route.handler)
        return;
    const QStringList waiting = std::exchange(route.waiting, {});
    for (const QString &message : waiting)
        route.handler(message);
}

QString SettingsRoot()
{
    return QStringLiteral("SOFTWARE\\Vantora\\");
}

QString DetailsKey(const QString &window)
{
    return SettingsRoot() + window + QStringLiteral("\\Details");
}

QString TrimBlanks(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text.at(begin) == QLatin1Char(' '))
        ++begin;
    while (end > begin && text.at(end - 1) == QLatin1Char(' '))
        --end;
    return (begin == 0 && end == text.size()) ? text : text.mid(begin, end - begin);
}

QString ReadSetting(Hive hive, const QString &key, const QString &valueName, const QString &defaultValue)
{
    const SettingsValue value = ActiveSettingsBackend().read(hive, key, valueName);
    if (value.isText() && value.text.size() <= kLongestSetting)
        return TrimBlanks(value.text);
    return TrimBlanks(defaultValue);
}

void WriteSetting(Hive hive, const QString &key, const QString &valueName, const QString &data)
{
    ActiveSettingsBackend().write(hive, key, valueName, SettingsValue::fromText(data));
    ++g_writeCount;
}

quint64 SettingsWriteCount()
{
    return g_writeCount;
}

QString ReadDetail(const QString &window, const QString &valueName, const QString &defaultValue)
{
    return ReadSetting(Hive::CurrentUser, DetailsKey(window), valueName, defaultValue);
}

void WriteDetail(const QString &window, const QString &valueName, const QString &data)
{
    WriteSetting(Hive::CurrentUser, DetailsKey(window), valueName, data);
}

int SettingToInt(const QString &text, bool *ok)
{
    bool converted = false;
    const QString t = text.trimmed();
    int result = t.toInt(&converted);
    if (!converted) {
        const double d = t.toDouble(&converted);
        // nearbyint rounds halves to even in the default rounding mode
        const double rounded = converted ? std::nearbyint(d) : 0.0;
        converted = converted && std::isfinite(d) && rounded >= std::numeric_limits<int>::min() &&
                    rounded <= std::numeric_limits<int>::max();
        result = converted ? int(rounded) : 0;
    }
    if (ok)
        *ok = converted;
    return result;
}

QString SettingFromBool(bool on)
{
    return on ? QStringLiteral("1") : QStringLiteral("0");
}

bool SettingToBool(const QString &text, bool *ok)
{
    const QString t = text.trimmed();
    bool converted = true;
    bool result = false;
    if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0) {
        result = true;
    } else if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0) {
        const double d = t.toDouble(&converted);
        result = converted && d != 0.0;
    }
    if (ok)
        *ok = converted;
    return result;
}

int ReadIntDetail(const QString &window, const QString &valueName, int defaultValue)
{
    bool ok = false;
    const int v = SettingToInt(ReadDetail(window, valueName, QString::number(defaultValue)), &ok);
    return ok ? v : defaultValue;
}

bool ReadBoolDetail(const QString &window, const QString &valueName, bool defaultValue)
{
    bool ok = false;
    const bool v = SettingToBool(ReadDetail(window, valueName, QString()), &ok);
    return ok ? v : defaultValue;
}
