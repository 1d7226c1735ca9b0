#include "core/sound_output.h"

#include "core/program_module.h"

#include <QLoggingCategory>

namespace {
Q_LOGGING_CATEGORY(lcSound, "vantora.sound", QtWarningMsg)

SoundOutput *load()
{
    QString problem;
    SoundOutput *output =
        ProgramModuleObject<SoundOutput>(QStringLiteral("vantora_sound"), kSoundModuleEntry, &problem);
    if (!output)
        qCWarning(lcSound, "No sounds can play: %s", qUtf8Printable(problem));
    return output;
}
} // namespace

SoundOutput *LoadedSoundOutput()
{
    // Kept to the end of the process and never deleted: its sound effects belong to the audio
    // backend, which must not be torn down after the application object is gone.
    static SoundOutput *const output = load();
    return output;
}
