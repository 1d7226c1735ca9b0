#pragma once

#include "themes/theme.h"

#include <QList>
#include <QString>
#include <QStringList>

// Named theme presets: ".dcp" files in the group folders below the data folder's "themes".
// These routines are the theme editor's model; they work on files only, never on windows.

// The group folders in the order the editor lists them: "classic", "contrast", "flat",
// "glass", "led", "retro", "white", "custom".
QStringList PresetGroups();
// Where a first save goes when no group is selected.
inline constexpr const char *kDefaultPresetGroup = "custom";

// Data folder + "themes/" + group (the group "custom" when empty).
QString PresetFolderPath(const QString &group);
// PresetFolderPath(group) + "/" + fileName; fileName includes ".dcp".
QString PresetFilePath(const QString &group, const QString &fileName);
// A preset name made safe as a file name: path separators and characters that file systems
// refuse become "_" (the caption keeps the name as typed).
QString PresetFileNameFor(const QString &name);

// Applies a preset file: reads, in order, Main-Opacity, Main-Contrast, Main-Color, Panel-Font,
// Panel-Color, Panel-Angle, Bar-Font, Bar-Color, Bar-Angle, each with `current`'s value as the
// default (so a value the file lacks keeps the current one and is added to the file), and
// returns the resulting theme. A value that is not a number keeps the current one.
Theme ReadPreset(const QString &path, const Theme &current);

// Writes a theme into a fresh preset file: "main" Main-Color, Main-Opacity, Main-Contrast;
// "text" Bar-Font, Bar-Color, Bar-Angle, Panel-Angle, Panel-Font, Panel-Color; then the
// caption in "preset". An existing file is replaced whole, in one step, so that it is either the
// old preset or the new one. False when it could not be written (the old file then stays).
bool WritePreset(const QString &path, const Theme &theme, const QString &caption, QString *error = nullptr);

enum class SavePresetResult
{
    Saved,
    NoName,     // the empty-name message was shown, nothing written
    WriteFailed // the folder or disk refused the file
};
// Saves the theme as group/name.dcp (the editor's save button). An empty name shows
// "You need to set a name before saving." and writes nothing. *error says why a write failed.
SavePresetResult SavePreset(const QString &group, const QString &name, const Theme &theme,
                            QString *savedPath = nullptr, QString *error = nullptr);

// One line of the editor's preset list.
struct PresetListEntry
{
    QString fileName; // "Ocean.dcp"
    QString caption;  // the "caption" of the "preset" section
    OleColor mainSwatch = 0;
    OleColor panelColor = 0;
    OleColor barColor = 0;
    qint64 bytes = 0;
    QString sizeText; // whole kilobytes and "K": "1K"
};
// The ".dcp" files of a group in name order, with their swatch colours (the main swatch is
// Main-Color mixed with the shadow grey at weight 250). Reading completes files that lack a
// value, with `current`'s values.
QList<PresetListEntry> ListPresets(const QString &group, const Theme &current);
// "1K" for 1 to 1024 bytes, "0K" for an empty file.
QString PresetSizeText(qint64 bytes);

// Removes one preset file of a group; all of them. Return false / the number removed.
bool DeletePreset(const QString &group, const QString &fileName);
int DeleteAllPresets(const QString &group);

// Sharing: writes the theme to a preset file of the user's choosing (".dcp" added when the
// name has no extension), with the file's base name as caption.
bool ExportTheme(const QString &path, const Theme &theme, QString *writtenPath = nullptr,
                 QString *error = nullptr);

enum class ImportResult
{
    Imported,
    NotAPreset, // missing, unreadable, too large or without any theme value
    CopyFailed
};
// Copies a shared preset into the "custom" group (under a free name; the source file is never
// changed) and reads it over `current` into *theme. *installedPath gets the copy's path.
ImportResult ImportPresetFile(const QString &path, const Theme &current, Theme *theme,
                              QString *installedPath = nullptr);

// Copies the presets shipped with the program into the group folders. A preset is copied once:
// a file that is there is never overwritten, and one the user deleted is not brought back.
// Returns how many files were copied.
int InstallMissingPresets();
