#include "shell/startup_decisions.h"

#include "core/settings_store.h"
#include "core/widget_index.h"

namespace {
const QString kWizard = QStringLiteral("msg_WIZ");
const QString kSettings = QStringLiteral("mdb_SET");
} // namespace

int StartupDecisions::readProgramChoice()
{
    return ReadIntDetail(kWizard, QStringLiteral("Program-Choice"), WidgetNone);
}

void StartupDecisions::writeProgramChoice(int choice)
{
    WriteDetail(kWizard, QStringLiteral("Program-Choice"), QString::number(choice));
}

StartupDecisions::HandOver StartupDecisions::handOverFor(int choice)
{
    // A negative choice names no widget; showing the dashboard is the only way not to leave
    // the user with nothing on the screen.
    if (choice >= 0 && choice < WidgetCount)
        return HandOver::SingleWidget;
    return HandOver::Dashboard;
}

StartupDecisions::DashboardLoadPlan StartupDecisions::dashboardLoadPlan(int choice)
{
    DashboardLoadPlan plan;
    plan.openWebcam = ReadBoolDetail(kSettings, QStringLiteral("Start-Webcam"), false);
    if (isAllWidgetsMode(choice)) {
        plan.startMinimised = ReadIntDetail(kSettings, QStringLiteral("Program Minimize on Start"), 0) == 1;
        for (int i = 0; i < WidgetCount; ++i) {
            if (ReadBoolDetail(kSettings, WidgetStartLoadValue(i), false))
                plan.widgetsToOpen.append(i);
        }
    }
    const QString showOrHide =
        ReadDetail(kSettings, QStringLiteral("Start-Show or Hide"), QStringLiteral("Show"));
    plan.startHidden = showOrHide.compare(QLatin1String("Hidden"), Qt::CaseInsensitive) == 0;
    return plan;
}

bool StartupDecisions::closeBoxHides(bool userClose, bool trayAvailable)
{
    if (!userClose || !trayAvailable)
        return false;
    return ReadIntDetail(kSettings, QStringLiteral("Program Minimize on Close"), 1) == 1;
}

bool StartupDecisions::minimiseHides(bool trayAvailable)
{
    return trayAvailable && ReadIntDetail(kSettings, QStringLiteral("Window Minimize"), 0) == 1;
}
