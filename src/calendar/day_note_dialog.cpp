#include "calendar/day_note_dialog.h"

#include "themes/message_box.h"
#include "themes/painted_frame.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

QString longDate(const QDate &date)
{
    return QLocale().toString(date, QLocale::LongFormat);
}

} // namespace

DayNoteDialog::DayNoteDialog(const QDate &date, const QString &note, QWidget *parent)
    : ThemedDialog(QStringLiteral("fcln_TXT"), tr("Note for %1").arg(longDate(date)), parent), m_date(date),
      m_original(note), m_text(new QPlainTextEdit), m_save(new QPushButton(tr("&Save"))),
      m_delete(new QPushButton(tr("&Delete Note"))), m_cancel(new QPushButton(tr("Cancel")))
{
    const QFontMetrics metrics = fontMetrics();
    m_text->setObjectName(QStringLiteral("txtNOTE"));
    m_text->setPlainText(note);
    m_text->moveCursor(QTextCursor::End);
    m_text->setPlaceholderText(tr("Type what this day should remind you of"));
    // Tab leaves the field, so that the buttons are reachable from the keyboard.
    m_text->setTabChangesFocus(true);
    m_text->setMinimumSize(metrics.averageCharWidth() * 40, metrics.lineSpacing() * 8);

    m_save->setObjectName(QStringLiteral("cmdSAVE"));
    m_save->setToolTip(tr("Keep the note on this day (Ctrl+Enter)"));
    setDefaultButton(m_save);
    m_delete->setObjectName(QStringLiteral("cmdDELETE"));
    m_delete->setToolTip(tr("Remove the note from this day"));
    // Only a note the day already has can be deleted; a new one is simply not saved.
    m_delete->setEnabled(!note.isEmpty());
    m_cancel->setObjectName(QStringLiteral("cmdCANCEL"));
    m_cancel->setToolTip(tr("Close without changing the note"));

    setPanelLayout(buildLayout());
    m_text->setFocus();

    // Enter belongs to the text, which may have several lines; Ctrl+Enter saves.
    for (const QKeySequence &keys :
         {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &DayNoteDialog::save);
    connect(m_save, &QPushButton::clicked, this, &DayNoteDialog::save);
    connect(m_delete, &QPushButton::clicked, this, &DayNoteDialog::deleteNote);
    connect(m_cancel, &QPushButton::clicked, this, &DayNoteDialog::reject);
}

QLayout *DayNoteDialog::buildLayout()
{
    auto *label = new QLabel(tr("&Note:"));
    label->setBuddy(m_text);
    auto *hint = new QLabel(tr("Enter starts a new line; Ctrl+Enter saves."));
    hint->setObjectName(QStringLiteral("lblHINT"));
    QFont small = hint->font();
    small.setPointSizeF(small.pointSizeF() * 0.9);
    hint->setFont(small);

    // Delete stands apart from Save, so that neither is pressed for the other.
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_delete);
    buttons->addStretch(1);
    buttons->addWidget(m_save);
    buttons->addWidget(m_cancel);

    auto *layout = new QVBoxLayout;
    layout->addWidget(label);
    layout->addWidget(m_text, 1);
    layout->addWidget(hint);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addLayout(buttons);
    return layout;
}

QString DayNoteDialog::note() const
{
    return m_deleteRequested ? QString() : m_text->toPlainText();
}

bool DayNoteDialog::changed() const
{
    return m_text->toPlainText() != m_original;
}

void DayNoteDialog::save()
{
    m_deleteRequested = false;
    accept();
}

void DayNoteDialog::deleteNote()
{
    if (!ConfirmDestructiveAction(tr("Delete Note"), tr("Delete the note for %1?").arg(longDate(m_date)),
                                  tr("Delete"), this))
        return;
    m_deleteRequested = true;
    accept();
}

void DayNoteDialog::reject()
{
    if (changed() && !AskChoice(tr("Discard Changes"), tr("Discard the changes to this note?"), tr("Discard"),
                                tr("Keep Editing"), false, this)) {
        m_text->setFocus();
        return;
    }
    ThemedDialog::reject();
}

void DayNoteDialog::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    // The date makes a long title; the bar shows it whole rather than cut short, in the bar's
    // font as the theme sets it, with room for the close button.
    const QLabel *title = titleLabel();
    setMinimumWidth(title->fontMetrics().horizontalAdvance(title->text()) + bar()->height() * 2);
}
