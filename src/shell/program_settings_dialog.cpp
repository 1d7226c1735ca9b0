#include "shell/program_settings_dialog.h"

#include "core/platform/autostart.h"
#include "core/platform/session_platform.h"
#include "core/widget_frame.h"
#include "shell/tray_icon.h"
#include "shell/widget_registry.h"
#include "themes/widget_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <QVBoxLayout>

namespace {
constexpr int kDefaultsTab = 1;
}

ProgramSettingsDialog::ProgramSettingsDialog(QWidget *parent)
    : ThemedDialog(QStringLiteral("mdb_SET"), QStringLiteral("Vantora Program Settings"), parent)
{
    auto *layout = new QVBoxLayout;
    layout->setSpacing(10);

    m_tabs = new QTabBar;
    m_tabs->setObjectName(QStringLiteral("pagSETTINGS"));
    m_tabs->setDrawBase(false);
    m_tabs->addTab(QStringLiteral("Settings"));
    m_tabs->addTab(QStringLiteral("Default Settings"));
    m_tabs->setTabToolTip(kDefaultsTab,
                          QStringLiteral("Put the check boxes back to their defaults; nothing is "
                                         "stored until you press OK"));
    connect(m_tabs, &QTabBar::currentChanged, this, &ProgramSettingsDialog::onTabChosen);
    layout->addWidget(m_tabs);

    auto *startGroup = new QGroupBox(QStringLiteral("Starting"));
    auto *startLayout = new QVBoxLayout(startGroup);
    m_launch = addCheck("chkLAUNCH", QStringLiteral("Start Vantora when I &log in"),
                        QStringLiteral("Vantora starts by itself with your desktop session"));
    m_minimizeOnStart = addCheck("chkMINSTART", QStringLiteral("Start the dashboard &minimised"),
                                 QStringLiteral("When all widgets are used, the dashboard starts minimised"));
    startLayout->addWidget(m_launch);
    startLayout->addWidget(m_minimizeOnStart);
    layout->addWidget(startGroup);

    auto *dashGroup = new QGroupBox(QStringLiteral("Dashboard and widgets"));
    auto *dashLayout = new QVBoxLayout(dashGroup);
    m_minimizeOnClose = addCheck("chkMINCLOSE", QStringLiteral("The close button &hides the dashboard"),
                                 QStringLiteral("Closing the dashboard keeps Vantora running in the "
                                                "notification area; use Exit to end it"));
    m_windowMinimize = addCheck("chkWINMIN", QStringLiteral("Minimising hides the dashboard in the &tray"),
                                QStringLiteral("A minimised dashboard leaves the taskbar and waits in the "
                                               "notification area"));
    m_onTop = addCheck("chkONTOP", QStringLiteral("Keep widgets &on top of other windows"),
                       QStringLiteral("Widgets stay above the windows of other programs"));
    dashLayout->addWidget(m_minimizeOnClose);
    dashLayout->addWidget(m_windowMinimize);
    dashLayout->addWidget(m_onTop);
    // The notes are broken into lines by hand: a word-wrapped label makes the dialog take its
    // height from a width the label does not get, and its last line is cut off.
    if (!TrayIcon::isAvailable()) {
        auto *note = new QLabel(QStringLiteral("Your desktop has no notification area, so the\n"
                                               "dashboard is never hidden: there would be no\n"
                                               "way back to it."));
        note->setObjectName(QStringLiteral("lblNOTRAY"));
        dashLayout->addWidget(note);
    }
    if (SessionPlatform::compositorPlacesWindows(QGuiApplication::platformName())) {
        auto *note = new QLabel(QStringLiteral("This Wayland session places windows itself:\n"
                                               "widgets open where the desktop puts them,\n"
                                               "and Keep on top may be ignored."));
        note->setObjectName(QStringLiteral("lblWAYLAND"));
        dashLayout->addWidget(note);
    }
    layout->addWidget(dashGroup);

    auto *webcamGroup = new QGroupBox(QStringLiteral("Webcam"));
    auto *webcamLayout = new QFormLayout(webcamGroup);
    m_interval = new QComboBox;
    m_interval->setObjectName(QStringLiteral("cboINTERVAL"));
    m_interval->addItems(ProgramSettingsModel::intervalCaptions());
    m_interval->setToolTip(QStringLiteral("How often the webcam picture is fetched again"));
    webcamLayout->addRow(QStringLiteral("&Refresh every:"), m_interval);
    m_playLast = addCheck("chkPLAYLAST", QStringLiteral("Show the &last camera when the viewer opens"),
                          QStringLiteral("The webcam viewer starts with the camera you watched last"));
    webcamLayout->addRow(m_playLast);
    layout->addWidget(webcamGroup);

    auto *ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName(QStringLiteral("btnOK"));
    // Enter from any box stores what the dialog shows, as OK does; Cancel takes Enter only
    // while it has the focus.
    setDefaultButton(ok);
    auto *cancel = new QPushButton(QStringLiteral("Cancel"));
    cancel->setObjectName(QStringLiteral("btnCANCEL"));
    connect(ok, &QPushButton::clicked, this, &ProgramSettingsDialog::save);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    setValues(ProgramSettingsModel::load());
    // The box shows whether the entry is really there (someone may have removed it, or it
    // was never written), so that OK writes what the user sees.
    m_launch->setChecked(Autostart::isOn());
}

QCheckBox *ProgramSettingsDialog::addCheck(const char *name, const QString &caption, const QString &tip)
{
    auto *check = new QCheckBox(caption);
    check->setObjectName(QString::fromLatin1(name));
    check->setToolTip(tip);
    return check;
}

ProgramSettingsModel::Values ProgramSettingsDialog::values() const
{
    ProgramSettingsModel::Values v;
    v.launchWithSystem = m_launch->isChecked();
    v.minimizeOnStart = m_minimizeOnStart->isChecked();
    v.windowMinimize = m_windowMinimize->isChecked();
    v.minimizeOnClose = m_minimizeOnClose->isChecked();
    v.onTop = m_onTop->isChecked();
    v.timerInterval = m_interval->currentText();
    v.playLast = m_playLast->isChecked();
    return v;
}

void ProgramSettingsDialog::setValues(const ProgramSettingsModel::Values &v)
{
    m_launch->setChecked(v.launchWithSystem);
    m_minimizeOnStart->setChecked(v.minimizeOnStart);
    m_windowMinimize->setChecked(v.windowMinimize);
    m_minimizeOnClose->setChecked(v.minimizeOnClose);
    m_onTop->setChecked(v.onTop);
    m_interval->setCurrentText(v.timerInterval);
    m_playLast->setChecked(v.playLast);
}

void ProgramSettingsDialog::resetToDefaults()
{
    setValues(ProgramSettingsModel::withDefaultChecks(values()));
}

void ProgramSettingsDialog::onTabChosen(int index)
{
    if (index != kDefaultsTab)
        return;
    resetToDefaults();
    // The tab acts as a command: go back to the settings page so it can be chosen again.
    QTimer::singleShot(0, m_tabs, [tabs = m_tabs] { tabs->setCurrentIndex(0); });
}

void ProgramSettingsDialog::save()
{
    const ProgramSettingsModel::Values v = values();
    ProgramSettingsModel::save(v);
    // Open widgets follow the keep-on-top box now, not only when they next open.
    WidgetRegistry &registry = WidgetRegistry::instance();
    for (int index : registry.openWidgets()) {
        if (WidgetWindow *widget = registry.window(index))
            SetKeepOnTop(widget, v.onTop);
    }
    accept();
}
