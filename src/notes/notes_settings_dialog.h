#pragma once

#include "themes/theme.h"
#include "themes/themed_dialog.h"

class QCheckBox;
class QComboBox;
class QFontComboBox;
class QLabel;
class QPushButton;

// fnte_SET: what a new document starts with (type, font, size, colour), kept under
// "fnte_SET\Details", and how the spelling is checked (language, the words passed without a
// look-up, when the dictionary is read), kept with the editor's settings. OK saves both;
// Cancel leaves them as they were.
class NotesSettingsDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit NotesSettingsDialog(QWidget *parent = nullptr);

    OleColor fontColor() const { return m_color; }
    // Shows `color` on the colour button and in the sample; saved with OK.
    void setFontColor(OleColor color);

public slots:
    void save();

private:
    void chooseColor();
    // The size typed or chosen, `fallback` when it is not a size a document can take.
    int chosenSize(int fallback) const;
    void updateSample();

    QComboBox *m_type;
    QFontComboBox *m_font;
    QComboBox *m_size;
    QPushButton *m_colorButton;
    QLabel *m_sample;
    QComboBox *m_language;
    QCheckBox *m_numbers;
    QCheckBox *m_capitals;
    QCheckBox *m_characters;
    QCheckBox *m_loadOnFirst;
    OleColor m_color = 0;
};
