#pragma once

#include <QString>

// Where the program keeps its files. VANTORA_HOME=DIR puts both the data folder and the
// settings file in DIR (tests and benchmarks always do); otherwise the data folder is
// $XDG_DATA_HOME/Vantora (%LOCALAPPDATA%\Vantora on Windows) and the settings file
// $XDG_CONFIG_HOME/Vantora/settings.reg. Nothing is cached: the environment is read on every
// call, so a test that changes VANTORA_HOME is seen at once.
class AppPaths
{
public:
    // The program's data folder (what the settings and dialogs call the "program folder"),
    // without a trailing separator. Not created here; start-up prepares it.
    static QString dataFolder();

    // Full path of the registry-like settings file used outside Windows.
    static QString settingsFile();

    // dataFolder() + separator + relative, with '/' or '\' in relative accepted.
    static QString dataPath(const QString &relative);
};
