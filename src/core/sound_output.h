#pragma once

#include <QString>
#include <QUrl>

// What plays the program's sounds (the alarm bell, a chosen wave file).
//
// Qt Multimedia, and the audio libraries under it, live in a module of their own (src/sound/)
// that is loaded when the first sound plays: linked into the program they cost every start a
// few milliseconds of loading and over a megabyte of memory, for a sound that most runs never
// play.
class SoundOutput
{
public:
    virtual ~SoundOutput() = default;
    // Starts `source` (a file: or qrc: address) unless it is still playing; returns at once.
    virtual void play(const QUrl &source) = 0;
};

// The module's one entry point, looked up by this name: SoundOutput *vantora_create_sound_output().
inline constexpr char kSoundModuleEntry[] = "vantora_create_sound_output";

// The output of this run, the module loaded on the first call. Null when it cannot be loaded;
// a warning says why, once.
SoundOutput *LoadedSoundOutput();
