#pragma once

#include <QAccessibleWidget>

// What a screen reader learns about controls the program paints itself: labels that work as
// buttons, picture buttons, calculator keys, and labels whose text changes all the time.
//
// A button gets the push-button role, its caption (or accessible name) as its name, a "Press"
// action that clicks it, and shows as disabled while it does not respond. The widget class
// must have a click() slot or invokable method.
//
// A live value (a clock's time, a running stopwatch) is read when the screen reader asks for
// it: its name is "<accessible name>: <text shown>", worked out at that moment, and no change
// is announced on each tick, which would make a screen reader talk every second.
class PaintedAccessible : public QAccessibleWidget
{
public:
    // Gives every widget of the class (its meta-object class name) the button interface.
    static void registerButtonClass(const char *className);
    // Makes display (a label or a read-only line edit) a live value called name. Call right
    // after creating it: a line edit made read-only has already handed out its usual interface.
    static void makeLiveValue(QWidget *display, const QString &name);

    PaintedAccessible(QWidget *widget, QAccessible::Role role);

    QString text(QAccessible::Text kind) const override;
    QAccessible::State state() const override;

    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &actionName) const override;

private:
    bool responds() const;
};
