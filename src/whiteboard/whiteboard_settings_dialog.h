#pragma once

#include "themes/themed_dialog.h"

class FolderBrowser;
class QLineEdit;
class QListWidget;

// fwbd_SET: where boards are saved and the colour of the board. OK writes both (the folder only
// when its text was changed) and tells the open whiteboard through settingsSaved(); Cancel
// writes nothing.
class WhiteboardSettingsDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit WhiteboardSettingsDialog(QWidget *parent = nullptr);

signals:
    // After OK has written the settings and refreshed CurrentWhiteboardSettings().
    void settingsSaved();

private:
    void fillColors(const QString &selectedName);
    QString chosenColorName() const;
    // False, after telling the user why, for folder text that cannot be kept as a setting.
    bool acceptableFolder(const QString &text);
    void save();

    QLineEdit *m_location;
    FolderBrowser *m_browser;
    QListWidget *m_colors;
    QString m_loadedFolder;
};
