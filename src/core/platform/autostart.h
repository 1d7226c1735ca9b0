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

    // An entry that is on but names another executable is pointed at `executable` when the one
    // it names is gone, or when `executable` is the installed program (the "vantora" found on the
    // PATH): after installing the package, the entry a build-folder copy wrote starts the
    // installed one. An entry that is off is left alone. True when the entry was rewritten.
    // Freedesktop only; on Windows the installer owns the Run value.
    static bool followExecutable(const QString &executable, bool installed);
    // followExecutable() for the running program.
    static void followRunningProgram();

    // The freedesktop autostart file: VANTORA_HOME/autostart/vantora.desktop when VANTORA_HOME is
    // set (tests, benchmarks), else $XDG_CONFIG_HOME/autostart/vantora.desktop.
    static QString desktopEntryPath();

    // The text of the autostart file that starts `executable`.
    static QString desktopEntryText(const QString &executable, bool on);

    // The command line that starts `executable`, quoted for an Exec= line when needed.
    static QString execLine(const QString &executable);
    // The executable an Exec= line written by execLine() names.
    static QString executableOfExecLine(const QString &line);
};
