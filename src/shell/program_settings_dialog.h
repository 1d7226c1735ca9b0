#pragma once

#include "shell/program_settings_model.h"
#include "themes/themed_dialog.h"

class QCheckBox;
class QComboBox;
class QTabBar;

// The program settings dialog ("mdb_SET"). OK stores the boxes through ProgramSettingsModel;
// Cancel and the close button store nothing; the "Default Settings" tab resets the check boxes
// without storing them.
class ProgramSettingsDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit ProgramSettingsDialog(QWidget *parent = nullptr);

    ProgramSettingsModel::Values values() const;
    void setValues(const ProgramSettingsModel::Values &values);
    // What the "Default Settings" tab does.
    void resetToDefaults();

private:
    QCheckBox *addCheck(const char *name, const QString &caption, const QString &tip);
    void onTabChosen(int index);
    void save();

    QTabBar *m_tabs = nullptr;
    QCheckBox *m_launch = nullptr;
    QCheckBox *m_minimizeOnStart = nullptr;
    QCheckBox *m_windowMinimize = nullptr;
    QCheckBox *m_minimizeOnClose = nullptr;
    QCheckBox *m_onTop = nullptr;
    QComboBox *m_interval = nullptr;
    QCheckBox *m_playLast = nullptr;
};
