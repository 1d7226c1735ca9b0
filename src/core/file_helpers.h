#pragma once

#include <QChar>
#include <QString>

// File and text routines shared by the whole program. Paths may be joined with '\' as well
// as '/': outside Windows a '\' in a path is taken as a folder separator (the program builds
// paths such as "themes\custom" itself and never names a file with a backslash in it).

// Field n (counted from 1) of `text` split at `delimiter`; empty when there are fewer fields
// or n is below 1. FieldOf("a,b,,d", ',', 4) is "d", field 3 is "".
QString FieldOf(const QString &text, QChar delimiter, int n);

// The file-name part of a path: the text after the last '\' or '/' (all of it when there is none).
QString FileNameOf(const QString &path);

// True for an existing file (a folder is not a file).
bool FileExists(const QString &path);

// True for an existing folder.
bool FolderExists(const QString &path);

// Creates the folder (and missing parents) unless it exists. True when it exists afterwards.
bool CreateFolderIfMissing(const QString &path);

// Moves a folder's whole tree onto `destination`: copies every file and sub-folder, replacing
// files already there, then deletes the source with everything in it, read-only files
// included. Nothing happens when the source does not exist. When any file could not be
// copied the source is left in place, so that nothing is lost; the result is then false.
// A destination inside the source (or the source itself) is refused.
bool MoveFolder(const QString &source, const QString &destination);

// `text` with a folder separator at the end: "\" on Windows, "/" elsewhere, unless it already
// ends in either.
QString WithTrailingBackslash(const QString &text);

// `path` in the form the platform's file functions take: on Windows as given, elsewhere
// with each '\' turned into '/'.
QString LocalPath(const QString &path);

// True when `inner` is the folder or file `outer` or lies somewhere below it (paths are
// made absolute and clean first; case counts except on Windows).
bool IsSameOrInside(const QString &inner, const QString &outer);
