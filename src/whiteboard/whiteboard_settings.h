#pragma once

#include "themes/theme.h"

#include <QColor>
#include <QString>
#include <QStringList>

#include <optional>

// The settings key of the whiteboard's settings dialog; its values live under "fwbd_SET\Details".
inline constexpr char kWhiteboardSettingsName[] = "fwbd_SET";

// The colour name that stands for the desktop's window background rather than a fixed colour.
inline constexpr char kWindowColorName[] = "Window";

// The names of the board colours, in the order the settings dialog offers them.
QStringList BoardColorNames();

// The stored text of a named board colour: "&H00BBGGRR" (red in the low byte) for a colour of
// the table, empty for "Window" and for a name the table does not hold; the caller then uses
// the desktop's window background colour. Names match exactly ("white" is not "White").
QString BoardColorValue(const QString &name);

// Reads the stored text of a colour number: "&H" with one to eight hex digits (any case), or
// decimal text, signed or unsigned, within 32 bits. Nothing for empty or unreadable text.
std::optional<OleColor> ParseBoardColorText(const QString &text);

// The colour to paint a board with for a stored colour text; the desktop's window background
// when the text cannot be read. System colours follow the application palette.
QColor BoardColorFromText(const QString &text);
// The same for a colour name: "Window", "vbWindowBackground" and unknown names all give the
// desktop's window background.
QColor BoardColorOfName(const QString &name);

// True when the folder exists and already holds board pictures (PNG, BMP, JPEG).
bool FolderHoldsBoards(const QString &folder);

// The whiteboard's stored choices: where boards are saved and the board's colour.
struct WhiteboardSettings
{
    QString folder;     // "Board Folder Location", as typed ('\' or '/'), see load()
    QString colorName;  // "board-Color-name"
    QString colorValue; // "board-Color-value": the text of a colour number

    // Reads the values as the settings dialog shows them: the folder (the data folder's
    // "wboard" by default) with a separator at the end and a doubled "wboard" repaired, the
    // colour name "Window" by default, the colour the window background by default.
    static WhiteboardSettings load();

    // Writes the colour (its name and value; the value follows from the name) and, when
    // `folderChanged`, the folder, creating it first when it is missing. Then reloads the
    // shared settings the open whiteboard paints from. False when a changed folder could not
    // be created; the folder is written all the same.
    bool save(bool folderChanged) const;

    QColor boardColor() const;
    // The board folder in the form QDir and QFile take.
    QString boardFolderPath() const;
};

// The settings the open whiteboard paints and saves with, read on first use and again by
// every save(). Unlike load(), the colour name reads "vbWindowBackground" when unset; it means
// the window background too.
const WhiteboardSettings &CurrentWhiteboardSettings();
void ReloadWhiteboardSettings();
