#pragma once

#include <QString>

// Decodes the tray icon's activations into the mouse-message codes the tray window has always
// dispatched on (the message number minus 512), and says what each code does. Only three codes
// act; the names are kept as a label for diagnostics.
class TrayDispatch
{
public:
    enum Code
    {
        MouseMove = 0,
        LeftButtonDown = 1,
        LeftButtonUp = 2,
        LeftButtonDoubleClick = 3,
        RightButtonDown = 4,
        RightButtonUp = 5,
        RightButtonDoubleClick = 6,
        MiddleButtonDown = 7,
        MiddleButtonUp = 8,
        MiddleButtonDoubleClick = 9,
    };

    enum class Action
    {
        None,
        ShowDashboard,   // show it and put it back in the normal state
        PopUpMenu,       // the shared context menu in its tray variant
        ShowThemeEditor, // with the busy cursor while it loads
    };

    // The activation reasons of QSystemTrayIcon, repeated here so this stays free of QtWidgets
    // (same values as QSystemTrayIcon::ActivationReason).
    enum Reason
    {
        Unknown = 0,
        Context = 1,
        DoubleClick = 2,
        Trigger = 3,
        MiddleClick = 4
    };

    // The code for an activation. The desktop reports no right-button double click, so a
    // context activation that follows another within the double-click interval is taken as one.
    // msSincePreviousContext is negative when there was no earlier context activation.
    static int codeFor(Reason reason, qint64 msSincePreviousContext, int doubleClickInterval);

    // "LBUTTONDBLCLK", "RBUTTONUP", ...; any other code gives the number and "OTHER...".
    static QString eventName(int code);
    static Action actionFor(int code);
};
