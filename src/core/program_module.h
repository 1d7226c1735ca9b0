#pragma once

#include <QString>
#include <QStringList>

// Parts of the program that live in modules of their own (src/sound/, ...) and are loaded when
// first needed: linked into the program, their libraries would cost every start the time to
// load and relocate them, for work most runs never do. A module includes only the header of its
// interface and exports one C entry point that makes the object behind it.

// Where the module `name` ("vantora_sound") is looked for: beside the program (the build folder,
// Windows), then in the installed library folder.
QStringList ProgramModuleCandidates(const QString &name);

// The address of `entry` in the module `name`, which stays loaded for the rest of the run. Null
// when no candidate has it; *problem then says which files were tried and why they failed.
void *ResolveProgramModule(const QString &name, const char *entry, QString *problem = nullptr);

// Declares a module's entry point, exported under its plain C name.
#ifdef _WIN32
#define VANTORA_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define VANTORA_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
