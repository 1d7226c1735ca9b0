#pragma once

#include <QString>
#include <QStringList>

class QTextCharFormat;
class QTextDocument;

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

// The entry (counted from 1) of `nameFilters` that a save dialog reported as chosen, or 0 when
// it names none. Dialogs report the choice in different forms: the entry as given, the entry
// without its patterns (QFileDialog::HideNameFilterDetails strips one bracketed group, so
// "Rich Text Paper (*.rtf) (*.rtf)" comes back as "Rich Text Paper (*.rtf)" and "Plain Text
// Note (*.txt)" as "Plain Text Note"), or the description alone; so an entry matches when the
// report starts with its description, the text before its first bracket.
int ChosenFilterIndex(const QStringList &nameFilters, const QString &selectedFilter);

// Where "Save as a new file" writes. Filter 1 (counted from 1) gives a rich-text document
// ending ".rtf", filter 2 a plain-text one ending ".txt"; a name typed with that ending keeps
// it (in any case) rather than getting it twice. With no usable filter (0) the typed extension
// decides: ".txt" plain text, ".rtf" rich text, anything else `documentType`, whose extension
// is then added.
SaveTarget SaveAsTarget(const QString &chosenPath, int filterIndex, const QString &documentType = QString());

// What a plain-text file cannot keep of a document: its text survives, the rest goes.
struct PlainTextLoss
{
    bool formatting = false; // character looks beyond `plainLook`, or paragraph alignment and indents
    bool lists = false;
    bool tables = false;
    bool pictures = false;

    bool any() const { return formatting || lists || tables || pictures; }
    // "formatting, lists and pictures": the losses in words, for the question before saving.
    QString describe() const;
};

// What saving `document` as plain text would lose. `plainLook` is the font and colour the
// text has when nothing was done to it (a new document's settings): text in that look, or
// with no look of its own, loses nothing.
PlainTextLoss PlainTextLossOf(const QTextDocument &document, const QTextCharFormat &plainLook);
