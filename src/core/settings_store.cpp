// Temporary in-memory store so that the tree links while the real backends are written.
#include "core/settings_store.h"

#include <QHash>

namespace {
QHash<QString, QString> &memory()
{
    static QHash<QString, QString> values;
    return values;
}
QString fullName(Hive hive, const QString &key, const QString &name)
{
    return QString::number(int(hive)) + key.toLower() + QLatin1Char('|') + name.toLower();
}
} // namespace

QString SettingsRoot()
{
    return QStringLiteral("SOFTWARE\\Vantora\\");
}

QString DetailsKey(const QString &window)
{
    return SettingsRoot() + window + QStringLiteral("\\Details");
}

QString ReadSetting(Hive hive, const QString &key, const QString &valueName, const QString &defaultValue)
{
    const QString v = memory().value(fullName(hive, key, valueName), defaultValue);
    return (v.size() > 254 ? defaultValue : v).trimmed();
}

void WriteSetting(Hive hive, const QString &key, const QString &valueName, const QString &data)
{
    memory().insert(fullName(hive, key, valueName), data);
}

QString ReadDetail(const QString &window, const QString &valueName, const QString &defaultValue)
{
    return ReadSetting(Hive::CurrentUser, DetailsKey(window), valueName, defaultValue);
}

void WriteDetail(const QString &window, const QString &valueName, const QString &data)
{
    WriteSetting(Hive::CurrentUser, DetailsKey(window), valueName, data);
}

int ReadIntDetail(const QString &window, const QString &valueName, int defaultValue)
{
    bool ok = false;
    const int v = ReadDetail(window, valueName, QString::number(defaultValue)).toInt(&ok);
    return ok ? v : defaultValue;
}

bool ReadBoolDetail(const QString &window, const QString &valueName, bool defaultValue)
{
    const QString t = ReadDetail(window, valueName, defaultValue ? QStringLiteral("True") : QStringLiteral("False"));
    if (t.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    if (t.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return false;
    bool ok = false;
    const double d = t.toDouble(&ok);
    return ok ? d != 0.0 : defaultValue;
}
