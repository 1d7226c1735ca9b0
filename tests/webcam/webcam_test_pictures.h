#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>

// A small picture of one colour, encoded as a camera would send it ("JPG" or "PNG").
inline QByteArray EncodedPicture(const QColor &colour, const char *format = "JPG", QSize size = QSize(64, 48))
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}
