#pragma once

#include <initializer_list>

class QWidget;

// What the time dialogs add to the themed dialog frame: push buttons in the theme's button
// style, and controls that look switched off when they are (the frame gives the panel's text
// one colour for every state, so a disabled check box would look live on a dark theme).
class DialogTheming
{
public:
    // panel: the dialog's panel; buttons: push buttons, or rows holding only push buttons
    // (a stylesheet is set on each, which would restyle any other control in them).
    static void apply(QWidget *panel, std::initializer_list<QWidget *> buttons);
};
