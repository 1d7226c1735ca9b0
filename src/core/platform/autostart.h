#pragma once

#include <QString>

// The entry that starts the program with the user's session. Switching it off empties the entry
// rather than deleting it: on Windows the "Vantora" Run value becomes empty text, on freedesktop
// systems the autostart file stays with Hidden=true.
class Autostart
{
public:
    // Writes the entry for the running executable. Failures are silent, like any setting write.
    static void apply(bool on);

    // Whether an entry that starts the program is in place (present and not switched off).
    static bool isOn();

    // The freedesktop autostart file: VANTORA_HOME/autostart/vantora.desktop when VANTORA_HOME is
    // set (tests, benchmarks), else $XDG_CONFIG_HOME/autostart/vantora.desktop.
    static QString desktopEntryPath();

    // The text of the autostart file that starts `executable`.
    static QString desktopEntryText(const QString &executable, bool on);

    // The command line that starts `executable`, quoted for an Exec= line when needed.
    static QString execLine(const QString &executable);
};
