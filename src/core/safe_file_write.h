#pragma once

#include <QByteArray>
#include <QString>

// Writing a file so that a crash, a full disk or a power cut leaves either the old file or
// the new one, whole, and never an empty or half-written file.
//
// The bytes go to a temporary file beside the target ("<name>.XXXXXX.tmp"); the write, the
// flush and the sync to disk are each checked, and only then is the temporary file renamed
// over the target. On any failure the temporary file is removed, the target is left as it
// was, and *error says why in words for the user ("No space left on device").
//
// A symbolic link is followed: the file it points to is replaced and the link stays. An
// existing file keeps its permissions; a new one gets read-write for its owner and read for
// everyone else.
bool WriteFileSafely(const QString &path, const QByteArray &bytes, QString *error = nullptr);

// Removes the temporary files that WriteFileSafely() leaves beside `path` when the program is
// killed in the middle of a save, once they are at least `minimumAgeSeconds` old (a younger
// one may belong to a save still running in another process). Returns how many it removed.
int RemoveStaleTemporaryFiles(const QString &path, int minimumAgeSeconds);

// The name pattern of those temporary files, for QDir::entryList: "<name>.??????.tmp".
QString TemporaryFilePattern(const QString &path);
