#include "shell/tray_dispatch.h"

#include <array>

int TrayDispatch::codeFor(Reason reason, qint64 msSincePreviousContext, int doubleClickInterval)
{
    switch (reason) {
    case Trigger:
        return LeftButtonUp;
    case DoubleClick:
        return LeftButtonDoubleClick;
    case Context:
        if (msSincePreviousContext >= 0 && msSincePreviousContext <= doubleClickInterval)
            return RightButtonDoubleClick;
        return RightButtonUp;
    case MiddleClick:
        return MiddleButtonUp;
    case Unknown:
        break;
    }
    return MouseMove;
}

QString TrayDispatch::eventName(int code)
{
    static constexpr std::array<const char *, 10> kNames{
        "MOUSEMOVE", "LBUTTONDOWN",   "LBUTTONUP",   "LBUTTONDBLCLK", "RBUTTONDOWN",
        "RBUTTONUP", "RBUTTONDBLCLK", "MBUTTONDOWN", "MBUTTONUP",     "MBUTTONDBLCLK",
    };
    if (code >= 0 && code < int(kNames.size()))
        return QString::fromLatin1(kNames[code]);
    return QString::number(code) + QStringLiteral("OTHER...");
}

TrayDispatch::Action TrayDispatch::actionFor(int code)
{
    switch (code) {
    case LeftButtonDoubleClick:
        return Action::ShowDashboard;
    case RightButtonUp:
        return Action::PopUpMenu;
    case RightButtonDoubleClick:
        return Action::ShowThemeEditor;
    default:
        return Action::None;
    }
}
