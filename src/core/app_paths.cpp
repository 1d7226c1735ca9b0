#include "core/app_paths.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {

QString homeOverride()
{
    return QString::fromLocal8Bit(qgetenv("VANTORA_HOME"));
}

} // namespace

QString AppPaths::dataFolder()
{
    const QString home = homeOverride();
    if (!home.isEmpty())
        return QDir::cleanPath(home);
#ifdef Q_OS_WIN
    const QString local = QString::fromLocal8Bit(qgetenv("LOCALAPPDATA"));
    return QDir::cleanPath(local + QStringLiteral("/Vantora"));
#else
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                           QStringLiteral("/Vantora"));
#endif
}

QString AppPaths::settingsFile()
{
    const QString home = homeOverride();
    if (!home.isEmpty())
        return QDir::cleanPath(home + QStringLiteral("/settings.reg"));
    return QDir::cleanPath(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/Vantora/settings.reg"));
}

QString AppPaths::dataPath(const QString &relative)
{
    QString rel = relative;
    rel.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return QDir::cleanPath(dataFolder() + QLatin1Char('/') + rel);
}
