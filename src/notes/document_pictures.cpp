#include "notes/document_pictures.h"

#include "notes/rich_text_properties.h"

#include <QBuffer>
#include <QHash>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QUrl>

namespace DocumentPictures {

namespace {

bool IsPngOrJpeg(const QByteArray &bytes)
{
    return bytes.startsWith("\x89PNG\r\n\x1a\n") || bytes.startsWith("\xff\xd8\xff");
}

QByteArray EncodeAsPng(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QString FreeName(const QTextDocument *document, int *next)
{
    for (;; ++*next) {
        const QString name = QStringLiteral("%1:%2").arg(QLatin1String(RichText::kPictureScheme)).arg(*next);
        if (document->resource(QTextDocument::ImageResource, QUrl(name)).isNull())
            return name;
    }
}

} // namespace

QString AddPicture(QTextDocument *document, const QByteArray &encoded)
{
    int next = 1;
    const QString name = FreeName(document, &next);
    document->addResource(QTextDocument::ImageResource, QUrl(name), encoded);
    return name;
}

bool InsertPicture(QTextCursor &cursor, const QImage &image, const QByteArray &fileBytes)
{
    if (image.isNull() || !cursor.document())
        return false;
    const QByteArray encoded = IsPngOrJpeg(fileBytes) ? fileBytes : EncodeAsPng(image);
    QTextImageFormat format;
    format.setName(AddPicture(cursor.document(), encoded));
    QSizeF size = image.size();
    if (size.width() > kWidestInsertedPicture)
        size = size * (kWidestInsertedPicture / size.width());
    format.setWidth(size.width());
    format.setHeight(size.height());
    cursor.insertImage(format);
    return true;
}

void AdoptPictures(QTextDocument *source, QTextDocument *target)
{
    // Collected first: changing a format while walking the fragments would change the walk.
    struct Picture
    {
        int position;
        int length;
        QTextImageFormat format;
    };
    QList<Picture> pictures;
    for (QTextBlock block = source->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            if (fragment.charFormat().isImageFormat())
                pictures.append({fragment.position(), fragment.length(), fragment.charFormat().toImageFormat()});
        }
    }
    QHash<QString, QString> renamed;
    int next = 1;
    QTextCursor editor(source);
    for (Picture &picture : pictures) {
        const QString old = picture.format.name();
        if (!renamed.contains(old)) {
            const QVariant data = source->resource(QTextDocument::ImageResource, QUrl(old));
            const QString name = FreeName(target, &next);
            target->addResource(QTextDocument::ImageResource, QUrl(name), data);
            renamed.insert(old, name);
        }
        picture.format.setName(renamed.value(old));
        editor.setPosition(picture.position);
        editor.setPosition(picture.position + picture.length, QTextCursor::KeepAnchor);
        editor.setCharFormat(picture.format);
    }
}

} // namespace DocumentPictures
