#include "themes/font_family_box.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QLineEdit>
#include <QSignalBlocker>

FontFamilyBox::FontFamilyBox(QWidget *parent) : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(12);
    // A choice from the list, or a name typed and Enter (the list may not match it as typed).
    connect(this, &QComboBox::textActivated, this, &FontFamilyBox::chosen);
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] { chosen(currentText()); });
}

QFont FontFamilyBox::currentFont() const
{
    return QFont(currentText());
}

void FontFamilyBox::setCurrentFont(const QFont &font)
{
    // The family the text is really drawn in: one missing here ("Tahoma" in a document from
    // elsewhere) is shown as the family that stands in for it, as the page shows it.
    const QString family = QFontInfo(font).family();
    m_family = family;
    const QSignalBlocker blocker(this);
    const int index = findText(family);
    if (index >= 0)
        setCurrentIndex(index);
    else
        setEditText(family);
}

void FontFamilyBox::showPopup()
{
    fillFamilies();
    QComboBox::showPopup();
}

void FontFamilyBox::focusInEvent(QFocusEvent *event)
{
    // The arrow keys step through the list and typing completes from it: both need it filled.
    fillFamilies();
    QComboBox::focusInEvent(event);
}

void FontFamilyBox::fillFamilies()
{
    if (m_filled)
        return;
    m_filled = true;
    const QSignalBlocker blocker(this);
    const QString shown = currentText();
    clear();
    addItems(QFontDatabase::families());
    const int index = findText(shown);
    if (index >= 0)
        setCurrentIndex(index);
    else
        setEditText(shown);
}

void FontFamilyBox::chosen(const QString &family)
{
    // Enter on a name the list also matched reports it once. A typed name that is no family
    // on this system changes nothing, and the box shows the family in use again rather than
    // a name the text is not drawn in.
    if (family == m_family)
        return;
    if (!QFontDatabase::hasFamily(family)) {
        const QSignalBlocker blocker(this);
        setEditText(m_family);
        return;
    }
    m_family = family;
    emit currentFontChanged(QFont(family));
}
