// The sound module: plays the program's sounds with Qt Multimedia, loaded by the program when
// the first sound plays (see core/sound_output.h).

#include "core/program_module.h"
#include "core/sound_output.h"

#include <QHash>
#include <QSoundEffect>

namespace {

class SoundEffectOutput : public SoundOutput
{
public:
    void play(const QUrl &source) override
    {
        // One effect per source, kept for the run: a sound that is still playing is not
        // restarted, so an alarm that fires on ten consecutive ticks rings once.
        QSoundEffect *&effect = m_effects[source];
        if (!effect) {
            effect = new QSoundEffect;
            effect->setSource(source);
        }
        if (!effect->isPlaying())
            effect->play();
    }

private:
    QHash<QUrl, QSoundEffect *> m_effects;
};

} // namespace

VANTORA_MODULE_EXPORT SoundOutput *vantora_create_sound_output()
{
    return new SoundEffectOutput;
}
