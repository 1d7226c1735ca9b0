#pragma once

#include <QString>
#include <QStringList>

// Names, captions and file dialogs of the notes editor's documents.

// The two document types: how a file is loaded and saved.
inline constexpr char kRichTextType[] = "RTF";
inline constexpr char kPlainTextType[] = "TXT";

// "RTF" when the file's extension, upper-cased, is "RTF"; "TXT" for any other file (so text
// files, logs and everything else open as plain text).
QString DocumentTypeForPath(const QString &path);

// The caption of a document never saved: the type, a space and its number ("RTF 3").
QString NewDocumentCaption(const QString &type, int number);

// The key of a document's tab: "DOC" and its number ("DOC3").
QString TabKey(int number);

// The open and save-as dialogs, with their filters in the "description|pattern|..." form.
// The save-as filter's second entry has no pattern; that is how it has always been.
inline constexpr char kOpenDialogTitle[] = "Open a Document";
inline constexpr char kOpenDialogFilter[] =
    "All Documents (*.rtf; *.txt)|*.rtf;*.txt|Rich Text Paper (*.rtf)|*.rtf|Plain Text Note (*.txt)|*.txt|"
    "All files (*.*)|*.*";
inline constexpr char kSaveAsDialogTitle[] = "Save as a new file";
inline constexpr char kSaveAsDialogFilter[] = "Rich Text Paper (*.rtf)|*.rtf|Plain Text Note (*.txt)";

// A "description|pattern|description|pattern..." filter as QFileDialog name filters, one per
// description, in order: "Rich Text Paper (*.rtf) (*.rtf)". The description is kept as
// written; the patterns, separated by ";" in the filter, follow in brackets separated by
// spaces, where QFileDialog looks for them (QFileDialog::HideNameFilterDetails then shows the
// description alone). An entry without a pattern is its description alone.
QStringList NameFiltersOf(const QString &filter);

struct SaveTarget
{
    QString type; // "RTF" or "TXT"
    QString path; // the chosen path, with ".rtf" or ".txt" added unless it ends so already
};

// Where "Save as a new file" writes: filter 1 (counted from 1) gives a rich-text document,
// any other filter a plain-text one.
SaveTarget SaveAsTarget(const QString &chosenPath, int filterIndex);
