#include "shell/widget_context_menu.h"

#include "core/widget_index.h"
#include "shell/shell_tools.h"
#include "shell/widget_registry.h"
#include "themes/widget_window.h"

namespace {

struct WidgetItem
{
    const char *name;
    const char *caption;
};

constexpr std::array<WidgetItem, WidgetCount> kWidgetItems{{
    {"mnuDCALARM", "&Alarm Clock"},
    {"mnuDCCALC", "Calc&ulator"},
    {"mnuDCCALENDAR", "Calen&dar"},
    {"mnuDCNOTES", "&Notes"},
    {"mnuDCSWATCH", "&Stopwatch"},
    {"mnuDCTIMER", "&Timer"},
    {"mnuDCWHITEBOARD", "Whiteb&oard"},
    {"mnuDCWEATHER", "&Weather"},
}};

} // namespace

WidgetContextMenu::WidgetContextMenu(QWidget *parent) : QMenu(QStringLiteral("&RC Menu"), parent)
{
    setObjectName(QStringLiteral("mnuDCTOP"));
    setToolTipsVisible(true);

    connect(addItem(this, "mnuDCMANAGER", QStringLiteral("Show &Dashboard")), &QAction::triggered, this,
            &WidgetContextMenu::showDashboardChosen);
    connect(addItem(this, "mnuDCMANAGERHIDE", QStringLiteral("&Hide Dashboard")), &QAction::triggered, this,
            &WidgetContextMenu::hideDashboardChosen);
    addSeparator(this, "mnuDCSEP0112");
    connect(addItem(this, "mnuDCGENSET", QStringLiteral("&Program Settings...")), &QAction::triggered, this,
            &WidgetContextMenu::programSettingsChosen);
    connect(addItem(this, "mnuRCWIZARD", QStringLiteral("Wi&zard Setup...")), &QAction::triggered, this,
            &WidgetContextMenu::wizardChosen);
    addSeparator(this, "mnuDCSEP011");
    connect(addItem(this, "mnuDCSETTINGS", QStringLiteral("Edit &Theme Settings...")), &QAction::triggered,
            this, &WidgetContextMenu::themeEditorChosen);
    addSeparator(this, "mnuDCSEP01");
    connect(addItem(this, "mnuDCWEBCAM", QStringLiteral("W&ebcam Wallpaper...")), &QAction::triggered, this,
            &WidgetContextMenu::webcamChosen);
    connect(addItem(this, "mnuDCSHARE", QStringLiteral("Sha&re Theme...")), &QAction::triggered, this,
            &WidgetContextMenu::shareThemeChosen);
    addSeparator(this, "mnuDCSEP00");

    m_widgets = addMenu(QStringLiteral("&Widgets"));
    m_widgets->setObjectName(QStringLiteral("mnuWIDGETSSUB"));
    m_widgets->menuAction()->setObjectName(QStringLiteral("mnuWIDGETSSUB"));
    for (int i = 0; i < WidgetCount; ++i) {
        QAction *toggle =
            addItem(m_widgets, kWidgetItems[i].name, QString::fromLatin1(kWidgetItems[i].caption));
        toggle->setCheckable(true);
        connect(toggle, &QAction::triggered, this, [this, i] { emit widgetToggleChosen(i); });
    }

    addSeparator(this, "mnuDCSEP02");
    connect(addItem(this, "mnuDCSHOWALL", QStringLiteral("&Show All Opened Widgets")), &QAction::triggered,
            this, &WidgetContextMenu::showAllChosen);
    connect(addItem(this, "mnuDCHIDEALL", QStringLiteral("&Hide All Opened Widgets")), &QAction::triggered,
            this, &WidgetContextMenu::hideAllChosen);
    addSeparator(this, "mnuDCSEP04");
    connect(addItem(this, "mnuWIDGRESET", QStringLiteral("Widget Reset S&ize")), &QAction::triggered, this,
            &WidgetContextMenu::resetActiveWidgetSize);
    connect(addItem(this, "mnuRCWIDGETSET", QStringLiteral("Widg&et Settings...")), &QAction::triggered, this,
            &WidgetContextMenu::openActiveWidgetSettings);
    connect(addItem(this, "mnuDCCLOSE", QStringLiteral("&Close Selected Widget")), &QAction::triggered, this,
            &WidgetContextMenu::closeActiveWidget);
    addSeparator(this, "mnuDCSEP03");
    connect(addItem(this, "mnuDCEXIT", QStringLiteral("E&xit program")), &QAction::triggered, this,
            &WidgetContextMenu::exitChosen);
}

QAction *WidgetContextMenu::addItem(QMenu *menu, const char *name, const QString &caption)
{
    QAction *action = menu->addAction(caption);
    action->setObjectName(QString::fromLatin1(name));
    return action;
}

void WidgetContextMenu::addSeparator(QMenu *menu, const char *name)
{
    menu->addSeparator()->setObjectName(QString::fromLatin1(name));
}

QAction *WidgetContextMenu::item(const QString &name) const
{
    return findChild<QAction *>(name);
}

WidgetContextMenu::Variant WidgetContextMenu::variantFromName(const QString &name)
{
    const QString n = name.toLower();
    if (n == QLatin1String("clock") || n == QLatin1String("falc_idx"))
        return Variant::Clock;
    if (n == QLatin1String("notes") || n == QLatin1String("fnte_idx"))
        return Variant::Notes;
    if (n == QLatin1String("whiteboard") || n == QLatin1String("fwbd_idx"))
        return Variant::Whiteboard;
    if (n == QLatin1String("weather") || n == QLatin1String("fwth_idx"))
        return Variant::Weather;
    return Variant::Common;
}

WidgetContextMenu::Variant WidgetContextMenu::variantFor(const QWidget *window)
{
    if (!window)
        return Variant::Tray;
    if (const auto *widget = qobject_cast<const WidgetWindow *>(window))
        return variantFromName(widget->contextMenuVariant());
    return variantFromName(window->objectName());
}

void WidgetContextMenu::prepare(const State &state)
{
    m_variant = state.variant;
    const bool fromWidget = state.variant != Variant::Tray;
    // Only the clock, notes, whiteboard and weather widgets have a settings dialog of their own.
    const bool settingsVariant = fromWidget && state.variant != Variant::Common;

    item(QStringLiteral("mnuDCMANAGERHIDE"))->setEnabled(state.dashboardVisible);
    item(QStringLiteral("mnuDCSETTINGS"))->setEnabled(state.themeEditorAvailable);
    item(QStringLiteral("mnuDCWEBCAM"))->setEnabled(state.webcamAvailable);
    item(QStringLiteral("mnuDCSHARE"))->setEnabled(state.shareAvailable);

    bool anyOpen = false;
    for (int i = 0; i < WidgetCount; ++i) {
        QAction *toggle = item(QString::fromLatin1(kWidgetItems[i].name));
        toggle->setEnabled(state.widgetAvailable[i]);
        toggle->setChecked(state.widgetOpen[i]);
        anyOpen = anyOpen || state.widgetOpen[i];
    }
    item(QStringLiteral("mnuDCSHOWALL"))->setEnabled(anyOpen);
    item(QStringLiteral("mnuDCHIDEALL"))->setEnabled(anyOpen);

    // From the tray there is no widget to act on, so the widget items go.
    item(QStringLiteral("mnuDCSEP04"))->setVisible(fromWidget);
    item(QStringLiteral("mnuWIDGRESET"))->setVisible(fromWidget);
    item(QStringLiteral("mnuDCCLOSE"))->setVisible(fromWidget);
    QAction *settings = item(QStringLiteral("mnuRCWIDGETSET"));
    settings->setVisible(settingsVariant);
    settings->setEnabled(state.activeHasSettings);
}

WidgetContextMenu::State WidgetContextMenu::currentState(QWidget *window, bool dashboardVisible) const
{
    State state;
    state.variant = variantFor(window);
    state.dashboardVisible = dashboardVisible;
    const WidgetRegistry &registry = WidgetRegistry::instance();
    for (int i = 0; i < WidgetCount; ++i) {
        state.widgetAvailable[i] = registry.isAvailable(i);
        state.widgetOpen[i] = registry.isOpen(i);
    }
    state.themeEditorAvailable = ShellTools::isAvailable(ShellTools::ThemeEditor);
    state.webcamAvailable = ShellTools::isAvailable(ShellTools::WebcamViewer);
    state.shareAvailable = ShellTools::isAvailable(ShellTools::ShareTheme);
    const auto *widget = qobject_cast<const WidgetWindow *>(window);
    state.activeHasSettings = widget && widget->hasSettingsDialog();
    return state;
}

void WidgetContextMenu::popUpFor(QWidget *window, bool dashboardVisible, const QPoint &globalPos)
{
    m_active = window;
    prepare(currentState(window, dashboardVisible));
    popup(globalPos);
}

void WidgetContextMenu::resetActiveWidgetSize()
{
    if (auto *widget = qobject_cast<WidgetWindow *>(m_active.data()))
        widget->resetSize();
}

void WidgetContextMenu::openActiveWidgetSettings()
{
    if (auto *widget = qobject_cast<WidgetWindow *>(m_active.data()); widget && widget->hasSettingsDialog())
        widget->openSettingsDialog();
}

void WidgetContextMenu::closeActiveWidget()
{
    if (!m_active)
        return;
    // The widget is found by its window name and closed through its widgets-menu toggle, so
    // the dashboard and the registry stay in step.
    const int index = WidgetIndexOfWindowName(m_active->objectName());
    if (index != WidgetNone)
        emit widgetToggleChosen(index);
}
