#pragma once

#include "themes/theme.h"
#include "themes/themed_dialog.h"

#include <functional>

class QFontComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSlider;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;
class ThemePreview;

// mdb_THM, the theme editor: every value of the theme with its range, shown live on every open
// window; the preset groups and their files (swatches and sizes) to apply with a click, save
// under a name, delete one or all. The theme reaches the settings when the editor closes.
class ThemeEditor : public ThemedDialog
{
    Q_OBJECT
public:
    explicit ThemeEditor(QWidget *parent = nullptr);
    ~ThemeEditor() override;

    // Opens the editor, or brings the open one to the front.
    static ThemeEditor *showEditor();
    // The open editor, if any.
    static ThemeEditor *instance();

    // Tests replace the colour dialog (questions go through the message box's test hook).
    using ColorChooser = std::function<QColor(const QColor &initial, const QString &title)>;
    static void setColorChooserForTesting(ColorChooser chooser);

    const Theme &editedTheme() const { return m_theme; }
    QString selectedGroup() const;
    void selectGroup(const QString &group);

    // What the buttons and the preset list do.
    void applyPreset(const QString &fileName);
    void savePreset();
    void deleteSelectedPreset();
    void deleteAllPresets();
    void refreshPresets();
    // The program's own theme in place of the values shown, after a question.
    void useDefaultTheme();

protected:
    void done(int result) override;

private:
    QWidget *buildPresetColumn();
    QWidget *buildValueColumn();
    QPushButton *makeColorButton(const QString &name, const QString &title, OleColor Theme::*field);
    QSlider *makeSliderRow(QWidget *parent, const QString &name, int min, int max, int Theme::*field,
                           QSpinBox **spinOut);
    QFontComboBox *makeFontBox(const QString &name, QString Theme::*field);

    void showTheme(const Theme &theme);
    void themeEdited();
    // The preview, the contrast warning and the notes on fonts that are not installed.
    void showThemeQuality();
    void chooseColor(QPushButton *button, const QString &title, OleColor Theme::*field);
    void updateColorButton(QPushButton *button, OleColor color);
    void onThemeChanged();
    void setStatus(const QString &text);
    QString currentFileName() const;

    Theme m_theme;
    bool m_loading = false;
    QListWidget *m_groups = nullptr;
    QTreeWidget *m_presets = nullptr;
    QLineEdit *m_name = nullptr;
    QLabel *m_status = nullptr;
    QPushButton *m_delete = nullptr;
    QPushButton *m_deleteAll = nullptr;
    QPushButton *m_mainColor = nullptr;
    QPushButton *m_panelColor = nullptr;
    QPushButton *m_barColor = nullptr;
    QSlider *m_opacity = nullptr;
    QSlider *m_contrast = nullptr;
    QSlider *m_panelAngle = nullptr;
    QSlider *m_barAngle = nullptr;
    QFontComboBox *m_panelFont = nullptr;
    QFontComboBox *m_barFont = nullptr;
    ThemePreview *m_preview = nullptr;
    QLabel *m_contrastWarning = nullptr;
    QList<std::pair<QFontComboBox *, QLabel *>> m_fontNotes;
    QString m_lastApplied;
    Theme m_appliedTheme; // as the last applied preset left it
};
