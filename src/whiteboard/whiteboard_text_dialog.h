#pragma once

#include "themes/themed_dialog.h"

#include <QColor>
#include <QFont>

class QComboBox;
class QFontComboBox;
class QKeySequence;
class QPlainTextEdit;
class QPushButton;
class QToolButton;
class QLabel;

// fwbd_TXT: the text the whiteboard's text tool puts on the board, with its font and colour.
// "Place" (the default button; Ctrl+Enter from the text) accepts it when there is text.
// The font is remembered for the next text under "fwbd_TXT\Details".
class WhiteboardTextDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit WhiteboardTextDialog(QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);
    // Family, size in points, bold, italic, underline.
    QFont textFont() const;
    // The font the last placed text had (what the dialog opens with), for texts that come
    // without the dialog, such as pasted ones.
    static QFont rememberedFont();
    QColor textColor() const;
    // The colour the text starts with (the whiteboard passes its pen's colour).
    void setTextColor(const QColor &color);

private:
    QToolButton *styleButton(const QString &name, const QString &caption, const QString &tip,
                             const QKeySequence &shortcut);
    QLayout *buildLayout();
    // Fills the controls with the font remembered from the last text placed.
    void loadFont();
    void saveFont() const;
    // The family typed or chosen; the application's when the field is left empty.
    QString chosenFamily() const;
    // The size typed or chosen; the size the dialog opened with when it is not one it takes.
    int chosenSize() const;
    void chooseColor();
    void updateSample();
    void updatePlaceButton();
    void place();

    QPlainTextEdit *m_text;
    QFontComboBox *m_font;
    QComboBox *m_size;
    QToolButton *m_bold;
    QToolButton *m_italic;
    QToolButton *m_underline;
    QPushButton *m_colorButton;
    QLabel *m_sample;
    QPushButton *m_place;
    QPushButton *m_cancel;
    QColor m_color = Qt::black;
    int m_openingSize = 0;
};
