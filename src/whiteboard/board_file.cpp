#include "whiteboard/board_file.h"

#include "core/file_helpers.h"
#include "core/safe_file_write.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>

namespace {
// JPEG keeps handwriting crisp at this quality without large files.
constexpr int kJpegQuality = 92;

QString tr(const char *text)
{
    return QCoreApplication::translate("BoardFile", text);
}

QString shown(const QString &path)
{
    return QDir::toNativeSeparators(path);
}
} // namespace

namespace BoardFile {

QStringList extensions()
{
    return {QStringLiteral("png"), QStringLiteral("bmp"), QStringLiteral("jpg"), QStringLiteral("jpeg")};
}

QByteArray formatOf(const QString &path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix == QLatin1String("png"))
        return "PNG";
    if (suffix == QLatin1String("bmp"))
        return "BMP";
    if (suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg"))
        return "JPG";
    return {};
}

QString withBoardExtension(const QString &path)
{
    return formatOf(path).isEmpty() ? path + QStringLiteral(".png") : path;
}

QStringList nameFilters()
{
    return {tr("Boards (*.png *.bmp *.jpg *.jpeg)"), tr("PNG pictures (*.png)"), tr("Bitmaps (*.bmp)"),
            tr("JPEG pictures (*.jpg *.jpeg)")};
}

QImage read(const QString &path, QString *error)
{
    const QString local = LocalPath(path);
    if (!QFileInfo(local).isFile()) {
        *error = tr("%1 cannot be found. It may have been moved or deleted.").arg(shown(local));
        return {};
    }
    QImageReader reader(local);
    reader.setAutoTransform(true);
    QImage image = reader.read();
    if (image.isNull()) {
        *error = tr("%1 could not be opened as a board: it is not a picture, or it is damaged (%2).")
                     .arg(shown(local), reader.errorString());
        return {};
    }
    return image;
}

bool write(const QString &path, const QImage &board, QString *error)
{
    const QByteArray format = formatOf(path);
    if (format.isEmpty()) {
        *error = tr("%1 cannot be saved: boards are saved as .png, .bmp or .jpg pictures.").arg(shown(path));
        return false;
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    if (format == "JPG")
        writer.setQuality(kJpegQuality);
    if (!writer.write(board)) {
        *error = tr("The board could not be made into a %1 picture (%2).")
                     .arg(QString::fromLatin1(format), writer.errorString());
        return false;
    }
    QString reason;
    if (!WriteFileSafely(LocalPath(path), bytes, &reason)) {
        *error = tr("The board could not be saved as %1: %2. The file there before, if any, is unchanged.")
                     .arg(shown(LocalPath(path)), reason);
        return false;
    }
    return true;
}

} // namespace BoardFile
