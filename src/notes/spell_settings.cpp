#include "notes/spell_settings.h"

#include "core/app_paths.h"
#include "core/settings_store.h"
#include "notes/notes_settings.h"

namespace {

const QString kLanguage = QStringLiteral("Spell Checker Language Version");
const QString kNumbers = QStringLiteral("Spell Number Check");
const QString kCapitals = QStringLiteral("Spell Capitals Check");
const QString kCharacters = QStringLiteral("Spell Characters Check");
const QString kLoadOnFirst = QStringLiteral("Spell Check Load on First");


} // namespace

bool SpellSettings::isUkEnglish() const
{
    return language == QLatin1String(kUkDictionary);
}

QString SpellSettings::dictionaryPath() const
{
    return AppPaths::dataPath(QStringLiteral("notes/") + language);
}

SpellSettings SpellSettings::load()
{
    const QString window = QLatin1String(kNotesWindowName);
    SpellSettings s;
    s.language = ReadDetail(window, kLanguage, QLatin1String(kUsDictionary));
    // Only a file name is taken: a stored path must not send the checker elsewhere.
    if (s.language.isEmpty() || s.language.contains(QLatin1Char('/')) || s.language.contains(QLatin1Char('\\'))
        || s.language.startsWith(QLatin1Char('.')))
        s.language = QLatin1String(kUsDictionary);
    s.skip.numbers = ReadBoolDetail(window, kNumbers, true);
    s.skip.capitals = ReadBoolDetail(window, kCapitals, true);
    s.skip.characters = ReadBoolDetail(window, kCharacters, true);
    s.loadOnFirst = ReadBoolDetail(window, kLoadOnFirst, true);
    return s;
}

void SpellSettings::save() const
{
    const QString window = QLatin1String(kNotesWindowName);
    WriteDetail(window, kLanguage, language);
    WriteDetail(window, kNumbers, SettingFromBool(skip.numbers));
    WriteDetail(window, kCapitals, SettingFromBool(skip.capitals));
    WriteDetail(window, kCharacters, SettingFromBool(skip.characters));
    WriteDetail(window, kLoadOnFirst, SettingFromBool(loadOnFirst));
}
