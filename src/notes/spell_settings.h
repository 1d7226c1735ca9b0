#pragma once

#include "notes/spell_words.h"

#include <QString>

// The spell checker's settings, kept with the editor's under "fnte_IDX\Details".
struct SpellSettings
{
    // The file name of the word list in the data folder's notes/.
    QString language = QString::fromLatin1(kUsDictionary);
    SpellSkipOptions skip;
    // Read the word list as soon as the editor opens, so underlines and the first check need
    // not wait; otherwise the first check reads it.
    bool loadOnFirst = true;

    static constexpr const char *kUsDictionary = "wordsus.dct";
    static constexpr const char *kUkDictionary = "wordsuk.dct";

    bool isUkEnglish() const;
    // Where the word list of `language` lives.
    QString dictionaryPath() const;

    static SpellSettings load();
    void save() const;
};
