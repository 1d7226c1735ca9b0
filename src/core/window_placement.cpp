// Placeholder until the full placement rules land: position and size in pixels only.
#include "core/window_placement.h"

#include "core/settings_store.h"

#include <QWidget>

namespace {
QString placementKey(QWidget *w)
{
    return SettingsRoot() + w->objectName() + QStringLiteral("\\Window");
}
} // namespace

void SaveWindowPlacement(QWidget *window, bool withSize)
{
    const QString key = placementKey(window);
    WriteSetting(Hive::CurrentUser, key, QStringLiteral("Left"), QString::number(window->x() * 15));
    WriteSetting(Hive::CurrentUser, key, QStringLiteral("Top"), QString::number(window->y() * 15));
    if (withSize) {
        WriteSetting(Hive::CurrentUser, key, QStringLiteral("Width"), QString::number(window->width() * 15));
        WriteSetting(Hive::CurrentUser, key, QStringLiteral("Height"), QString::number(window->height() * 15));
    }
}

void RestoreWindowPlacement(QWidget *window, bool withSize)
{
    const QString key = placementKey(window);
    auto read = [&](const char *name, int current) {
        return ReadSetting(Hive::CurrentUser, key, QLatin1String(name), QString::number(current * 15)).toInt() / 15;
    };
    if (withSize)
        window->resize(read("Width", window->width()), read("Height", window->height()));
    window->move(read("Left", window->x()), read("Top", window->y()));
}
