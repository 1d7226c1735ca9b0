#include "core/picture_files.h"

#include <QImageReader>
#include <QMimeData>
#include <QUrl>

QString FirstPictureFile(const QMimeData *data)
{
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile() && !QImageReader::imageFormat(url.toLocalFile()).isEmpty())
            return url.toLocalFile();
    }
    return {};
}

QImage ReadPictureFile(const QString &path, QString *error)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage picture = reader.read();
    if (picture.isNull() && error)
        *error = reader.errorString();
    return picture;
}
