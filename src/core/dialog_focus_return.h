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
// were meant for. One filter on the application covers every dialog, the program's own and
// Qt's (colour, file, print), instead of each dialog remembering to do it.
class DialogFocusReturn : public QObject
{
    Q_OBJECT
public:
    // Installs the filter on the application once; later calls do nothing.
    static void install();

    // The window that gets the keyboard back when `dialog` closes: the window of its parent,
    // or, for a dialog without one, the window that was active when it was shown.
    static QWidget *ownerFor(const QWidget *dialog, QWidget *activeWhenShown);

    // Whether `window` is a dialog in this sense: a dialog or sheet window, or any modal
    // window, but not a menu, tooltip or widget.
    static bool isDialogWindow(const QWidget *window);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    explicit DialogFocusReturn(QObject *parent);
    void dialogShown(QWidget *dialog);
    void dialogHidden(QWidget *dialog);
    void windowActivated(QWidget *window);

    QHash<const QWidget *, QPointer<QWidget>> m_owners;
    // The owner whose keyboard is being given back, and since when.
    QPointer<QWidget> m_returning;
    QElapsedTimer m_sinceHidden;
};
