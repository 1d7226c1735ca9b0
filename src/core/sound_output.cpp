#include "core/sound_output.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcSound, "vantora.sound", QtWarningMsg)

#ifndef VANTORA_MODULE_DIR_FROM_BIN
#define VANTORA_MODULE_DIR_FROM_BIN "../lib/vantora"
#endif

SoundOutput *load()
{
    QStringList tried;
    for (const QString &candidate : SoundModuleCandidates()) {
        QLibrary module(candidate);
        const auto create = reinterpret_cast<CreateSoundOutput>(module.resolve(kSoundModuleEntry));
        if (create)
            return create(); // the library stays loaded for the run
        tried << QStringLiteral("%1 (%2)").arg(QDir::toNativeSeparators(candidate), module.errorString());
    }
    qCWarning(lcSound, "No sounds can play: the sound module was not found. Tried: %s",
              qUtf8Printable(tried.join(QStringLiteral("; "))));
    return nullptr;
}
} // namespace

QStringList SoundModuleCandidates()
{
    const QDir programDir(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("vantora_sound");
    return {programDir.filePath(name),
            QDir::cleanPath(programDir.filePath(QStringLiteral(VANTORA_MODULE_DIR_FROM_BIN "/") + name))};
}

SoundOutput *LoadedSoundOutput()
{
    // Kept to the end of the process and never deleted: its sound effects belong to the audio
    // backend, which must not be torn down after the application object is gone.
    static SoundOutput *const output = load();
    return output;
}
