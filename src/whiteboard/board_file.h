#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

// Boards on disk are pictures: PNG, BMP or JPEG, chosen by the file's extension, so that any
// picture viewer opens them and any picture can be opened as a board.
namespace BoardFile {

// The lower-case extensions of board pictures, the one new boards get first.
QStringList extensions();
// The picture format for a path's extension ("PNG", "BMP", "JPG"); empty for any other.
QByteArray formatOf(const QString &path);
// `path` with ".png" added unless it already ends in the extension of a board picture.
QString withBoardExtension(const QString &path);
// The name filters of a file dialog: all boards, then each kind.
QStringList nameFilters();

// Reads a board. On failure the image is null and *error says why, for the user.
QImage read(const QString &path, QString *error);
// Writes `board` in the format of the path's extension, through a temporary file that replaces
// the old file only once every byte is on disk. False, with *error for the user, on failure;
// an old file is then left as it was.
bool write(const QString &path, const QImage &board, QString *error);

} // namespace BoardFile
