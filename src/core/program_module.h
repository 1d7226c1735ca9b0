#pragma once

#include <QHash>
#include <QString>

// Parts of the program that live in modules of their own (src/sound/, ...) and are loaded when
// first needed: linked into the program, their libraries would cost every start the time to
// load and relocate them, for work most runs never do. A module includes only the header of its
// interface and exports one C entry point that makes the object behind it.

// The address of `entry` in the module `name` ("vantora_sound"), looked for beside the program
// (the build folder, Windows), then in the installed library folder; the module stays loaded for
// the rest of the run. Null when no candidate has it; *problem then says which files were tried
// and why they failed.
void *ResolveProgramModule(const QString &name, const char *entry, QString *problem = nullptr);

// The object the module `name` makes with its entry point `entry` (a function that takes nothing
// and returns a new T), made on the first call for that name and kept, like the module, to the
// end of the process. Null when the module cannot be loaded; *problem then says why, on that call
// and on every later one. For the thread that runs the windows.
template <typename T>
T *ProgramModuleObject(const QString &name, const char *entry, QString *problem = nullptr)
{
    struct Loaded
    {
        T *object = nullptr;
        QString problem;
    };
    static QHash<QString, Loaded> loaded;
    auto it = loaded.constFind(name);
    if (it == loaded.constEnd()) {
        Loaded made;
        using Create = T *(*)();
        if (const auto create = reinterpret_cast<Create>(ResolveProgramModule(name, entry, &made.problem)))
            made.object = create();
        it = loaded.insert(name, made);
    }
    if (problem)
        *problem = it->problem;
    return it->object;
}

// Declares a module's entry point, exported under its plain C name.
#ifdef _WIN32
#define VANTORA_MODULE_EXPORT extern "C" __declspec(dllexport)
#else
#define VANTORA_MODULE_EXPORT extern "C" __attribute__((visibility("default")))
#endif
