#pragma once

#include "themes/theme.h"

#include <QColor>
#include <QString>

// What a new document of the notes editor starts with, kept under "fnte_SET\Details", and the
// two folders of the editor's side panel, kept under "fnte_IDX\Details".
struct NewDocumentSettings
{
    QString documentType;  // kRichTextChoice or kPlainTextChoice
    QString fontName;      // "Tahoma"
    int fontSize = 12;     // points
    OleColor fontColor = kDefaultFontColor;

    static constexpr OleColor kDefaultFontColor = 0x80000008u; // system colour 8, window text
    // Point sizes text can take; anything else in the settings is damage.
    static constexpr int kSmallestFontSize = 1;
    static constexpr int kLargestFontSize = 1638;

    bool isRichText() const;
    // The colour to paint with: a system colour resolved against the application palette.
    QColor resolvedFontColor() const;

    static NewDocumentSettings load();
    void save() const;
};

// The two choices of "Document Type", shown and stored as written.
inline constexpr char kRichTextChoice[] = "Rich Text Paper (rtf)";
inline constexpr char kPlainTextChoice[] = "Plain Text Note (txt)";

// The settings keys of the editor and of its settings dialog.
inline constexpr char kNotesWindowName[] = "fnte_IDX";
inline constexpr char kNotesSettingsName[] = "fnte_SET";

// "Text-Folder-Loc" and "Picture-Folder-Loc": the browsers' folders, the program's default
// folder when unset or gone.
QString DocumentFolderSetting();
QString PictureFolderSetting();
void SetDocumentFolderSetting(const QString &folder);
void SetPictureFolderSetting(const QString &folder);
