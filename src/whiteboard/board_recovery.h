#pragma once

#include "core/recovery_debounce.h"
#include "core/recovery_store.h"

#include <QObject>

#include <optional>

class BoardDocument;
class QTimer;

// Keeps a copy of the board in the recovery folder while it has unsaved changes, no more than
// 30 seconds behind the drawing, so that a crash, a power cut or a killed program loses at most
// that much. The copy goes as soon as the board is saved or replaced, and when the user closes
// it without saving; a copy found when the whiteboard opens was left by a run that stopped.
class BoardRecovery : public QObject
{
    Q_OBJECT
public:
    explicit BoardRecovery(BoardDocument *document, QObject *parent = nullptr);

    static QString folder();
    // The copy an earlier run left, if any (the newest, should there be several).
    static std::optional<RecoveryEntry> leftBehind();
    // Gives the board of `copy` back: its picture, as changed since its file was saved.
    // False, with nothing changed, when the copy's picture cannot be read.
    static bool restoreInto(BoardDocument *document, const RecoveryEntry &copy);
    // Removes every copy (the user chose not to have them back).
    static void discardAll();

    // Takes the copy now if the board has changes not yet copied.
    void writeNow();
    // Removes the copy and stops waiting: the user chose to lose the changes.
    void discard();

    // Why the last copy could not be written (a full disk, a read-only folder); empty while
    // copies are written.
    QString problem() const { return m_problem; }

signals:
    // A copy could not be written after the last one could (or was the first), with the
    // reason in words for the user; told once, not on every retry.
    void copyFailed(const QString &problem);

private:
    void boardChanged();
    void schedule();

    BoardDocument *m_document;
    RecoveryStore m_store;
    RecoveryDebounce m_debounce;
    QString m_id;
    QTimer *m_timer;
    bool m_stored = false;
    QString m_problem;
};
