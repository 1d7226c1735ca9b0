#include "core/program_module.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

#ifndef VANTORA_MODULE_DIR_FROM_BIN
#define VANTORA_MODULE_DIR_FROM_BIN "../lib/vantora"
#endif

namespace {
QStringList candidates(const QString &name)
{
    const QDir programDir(QCoreApplication::applicationDirPath());
    return {programDir.filePath(name),
            QDir::cleanPath(programDir.filePath(QStringLiteral(VANTORA_MODULE_DIR_FROM_BIN "/") + name))};
}
} // namespace

void *ResolveProgramModule(const QString &name, const char *entry, QString *problem)
{
    QStringList tried;
    for (const QString &candidate : candidates(name)) {
        QLibrary module(candidate);
        // Never unloaded: the objects it makes live as long as the program.
        if (void *address = reinterpret_cast<void *>(module.resolve(entry)))
            return address;
        tried << QStringLiteral("%1 (%2)").arg(QDir::toNativeSeparators(candidate), module.errorString());
    }
    if (problem)
        *problem = QStringLiteral("the module %1 was not found. Tried: %2")
                       .arg(name, tried.join(QStringLiteral("; ")));
    return nullptr;
}
