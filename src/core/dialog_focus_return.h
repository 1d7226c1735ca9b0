#pragma once

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>

class QWidget;

// Gives the keyboard back to the window a dialog was opened over when the dialog closes.
//
// Window managers pick the next window to focus themselves when one closes, and many skip
// tool windows (every widget is one) for the nearest normal window: the dashboard. Keys typed
// right after a question or a colour dialog then reach the dashboard instead of the note they
// were meant for. Watching which window has the keyboard covers every dialog, the program's
// own and Qt's (colour, file, print), instead of each dialog remembering to do it.
//
// It follows the application's focus-window signal and a filter on each dialog that had the
// keyboard, not a filter on the whole application: that would see every event of the program,
// the clock's ticks included, all day long.
class DialogFocusReturn : public QObject
{
    Q_OBJECT
public:
    // Starts watching once; later calls do nothing.
    static void install();

    // The window that gets the keyboard back when `dialog` closes: the window of its parent,
    // or, for a dialog without one, the window that was active before it.
    static QWidget *ownerFor(const QWidget *dialog, QWidget *activeBefore);

    // Whether `window` is a dialog in this sense: a dialog or sheet window, or any modal
    // window, but not a menu, tooltip or widget.
    static bool isDialogWindow(const QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit DialogFocusReturn(QObject *parent);
    void focusMoved();
    void dialogFocused(QWidget *dialog);
    void dialogHidden(QWidget *dialog);
    void windowActivated(QWidget *window);

    // Each dialog that had the keyboard while shown, and its owner for that showing (null once
    // it has been hidden, so that the next showing finds its owner anew).
    QHash<const QWidget *, QPointer<QWidget>> m_owners;
    QPointer<QWidget> m_lastActive;
    // The owner whose keyboard is being given back, and since when.
    QPointer<QWidget> m_returning;
    QElapsedTimer m_sinceHidden;
};
