#pragma once

#include <QHash>
#include <QPointer>
#include <QWidget>

class NoteDocument;
class QAbstractButton;
class QButtonGroup;
class QComboBox;
class FontFamilyBox;
class QToolButton;

// The notes editor's format bar: character formatting (font, size, bold, italic, underline,
// colour, raised and lowered script, removal) on the first row, paragraph formatting
// (alignment, bullets, indent, line spacing, space before and after, reset) on the second.
// Every control acts on the active document's selection; TextStyleCheck() brings the controls
// into line with the selection.
class FormatBar : public QWidget
{
    Q_OBJECT
public:
    explicit FormatBar(QWidget *parent = nullptr);

    // The document the bar acts on; null disables the bar.
    void setDocument(NoteDocument *document);

    // Reads the selection's formatting into the controls, without applying anything.
    void TextStyleCheck();

    // The control with that objectName ("chkBOLD", "optALIGN_1"), for tests and shortcuts.
    QAbstractButton *button(const QString &name) const;

private:
    void buildCharacterRow(QWidget *row);
    void buildParagraphRow(QWidget *row);
    QToolButton *addButton(QWidget *row, const QString &name, const QString &caption, const QString &toolTip,
                           bool checkable = false);
    void applyFontName();
    void applyFontSize();
    void applyBold(bool on);
    void applyItalic(bool on);
    void applyUnderline(bool on);
    void chooseColor();
    void applySpacingEntry(int index);
    void applyCustomSpacing();
    void applyParagraphSpacing();
    void showColor(const QColor &color);

    QPointer<NoteDocument> m_document;
    FontFamilyBox *m_fontName;
    QComboBox *m_fontSize;
    QComboBox *m_spacing;
    QComboBox *m_customSpacing;
    QComboBox *m_before;
    QComboBox *m_after;
    QButtonGroup *m_align;
    QButtonGroup *m_script;
    QHash<QString, QToolButton *> m_buttons;
    bool m_syncing = false;
};
