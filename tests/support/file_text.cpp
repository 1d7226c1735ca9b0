#include "support/file_text.h"

#include <QFile>
#include <QStringDecoder>

QString FileText(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray bytes = file.readAll();
    QStringDecoder decoder(QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8));
    return decoder.decode(bytes);
}
