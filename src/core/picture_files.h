#pragma once

#include <QImage>
#include <QString>

class QMimeData;

// The first local file among dropped or copied addresses that reads as a picture; empty when
// there is none.
QString FirstPictureFile(const QMimeData *data);

// A picture file read upright (as the camera's orientation tag says); a null image when it
// cannot be read, with the reason for the user in *error.
QImage ReadPictureFile(const QString &path, QString *error = nullptr);
