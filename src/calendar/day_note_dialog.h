#pragma once

#include "themes/themed_dialog.h"

#include <QDate>

class QPlainTextEdit;
class QPushButton;

// fcln_TXT: the note the calendar keeps for one day. "Save" (the default button; Ctrl+Enter
// from the text) accepts the text as typed; "Delete Note", offered only when the day has a
// note, asks first and accepts with deleteRequested(). Closing without saving asks before
// changes are thrown away. Nothing is remembered but the dialog's position.
class DayNoteDialog : public ThemedDialog
{
    Q_OBJECT
public:
    DayNoteDialog(const QDate &date, const QString &note, QWidget *parent = nullptr);

    // The text as typed; empty after a delete. The caller trims it and drops an empty note.
    QString note() const;
    bool deleteRequested() const { return m_deleteRequested; }

public slots:
    // Escape, Cancel and the close button: asks first when the text was changed.
    void reject() override;
    void ThemeElementsUpdate() override;

private:
    QLayout *buildLayout();
    void save();
    void deleteNote();
    bool changed() const;

    QDate m_date;
    QString m_original;
    QPlainTextEdit *m_text;
    QPushButton *m_save;
    QPushButton *m_delete;
    QPushButton *m_cancel;
    bool m_deleteRequested = false;
};
