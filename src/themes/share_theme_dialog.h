#pragma once

#include "themes/themed_dialog.h"

#include <functional>

class QLabel;

// The "Share Theme..." window: exports the current theme to a preset file the user chooses, or
// imports one (copied into the "custom" group and applied at once).
class ShareThemeDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit ShareThemeDialog(QWidget *parent = nullptr);

    // Opens the window, or brings the open one to the front.
    static ShareThemeDialog *showDialog();

    // Tests replace the file dialogs: save is true for the export, false for the import; an
    // empty result means cancelled.
    using FileChooser = std::function<QString(bool save, const QString &suggestion)>;
    static void setFileChooserForTesting(FileChooser chooser);

    void exportTheme();
    void importTheme();
    QString statusText() const;

private:
    QString chooseFile(bool save, const QString &suggestion);
    void setStatus(const QString &text);

    QLabel *m_status;
};
