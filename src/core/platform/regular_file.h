#pragma once

#include <QString>

class QFile;

// Opens `path` for reading only when it is a regular file, checked on the opened file itself:
// a pipe, a device or a socket is refused without waiting (opening a pipe for reading waits for
// a writer, and a device such as /dev/zero never ends), and a path swapped for one of those
// between a check and the open is caught too. False, with the reason in words for the user.
bool OpenRegularFile(QFile *file, const QString &path, QString *problem);
