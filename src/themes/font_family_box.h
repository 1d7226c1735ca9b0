#pragma once

#include <QComboBox>
#include <QFont>

// A font family chooser that costs nothing until it is used. Qt's own font box builds the
// list of every family and loads every image format plugin (for its font-type pictures) the
// moment it is made, which took a good part of the notes editor's start; this box shows the
// family it is given and fills its list the first time it gets the keyboard or opens.
// Typing a family's name and pressing Enter chooses it, as choosing it from the list does.
class FontFamilyBox : public QComboBox
{
    Q_OBJECT
public:
    explicit FontFamilyBox(QWidget *parent = nullptr);

    QFont currentFont() const;
    void setCurrentFont(const QFont &font);

    void showPopup() override;

signals:
    // The user chose another family (from the list, or typed and Enter); never for
    // setCurrentFont.
    void currentFontChanged(const QFont &font);

protected:
    void focusInEvent(QFocusEvent *event) override;

private:
    void fillFamilies();
    void chosen(const QString &family);

    bool m_filled = false;
    QString m_family; // the family shown, as last set or chosen
};
