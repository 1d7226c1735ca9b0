#include "shell/shell_tools.h"

#include <QApplication>
#include <QWidget>

#include <array>

namespace {
std::array<ShellTools::Launcher, 3> &launchers()
{
    static std::array<ShellTools::Launcher, 3> all;
    return all;
}
} // namespace

void ShellTools::setLauncher(Tool tool, Launcher launcher)
{
    launchers()[tool] = std::move(launcher);
}

bool ShellTools::isAvailable(Tool tool)
{
    return bool(launchers()[tool]);
}

void ShellTools::launch(Tool tool, QWidget *owner)
{
    if (const Launcher &launcher = launchers()[tool])
        launcher(owner);
}

bool ShellTools::isWebcamViewerOpen()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == QLatin1String("mdb_WCM") && w->isVisible())
            return true;
    }
    return false;
}
