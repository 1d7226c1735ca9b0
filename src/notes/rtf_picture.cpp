#include "notes/rtf_picture.h"
#include "notes/rich_text_properties.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>
#include <array>

namespace {

constexpr std::array<qint8, 256> kHexValues = [] {
    std::array<qint8, 256> values{};
    values.fill(-1);
    for (int i = 0; i < 10; ++i)
        values[size_t('0' + i)] = qint8(i);
    for (int i = 0; i < 6; ++i) {
        values[size_t('a' + i)] = qint8(10 + i);
        values[size_t('A' + i)] = qint8(10 + i);
    }
    return values;
}();

// Display sizes beyond this are damage; the picture is shown at the limit.
constexpr double kLargestSide = 10000.0;
// The placeholder image itself stays small; the format scales it to the display size.
constexpr int kLargestPlaceholderSide = 512;
constexpr double kHimetricPerPixel = 2540.0 / 96.0;

QImage placeholderImage(QSizeF displaySize)
{
    QSizeF size = displaySize;
    if (size.width() > kLargestPlaceholderSide || size.height() > kLargestPlaceholderSide)
        size.scale(kLargestPlaceholderSide, kLargestPlaceholderSide, Qt::KeepAspectRatio);
    QImage image(std::max(1, qRound(size.width())), std::max(1, qRound(size.height())), QImage::Format_RGB32);
    image.fill(QColor(0xe8, 0xe8, 0xe8));
    QPainter painter(&image);
    painter.setPen(QColor(0x99, 0x99, 0x99));
    painter.drawRect(image.rect().adjusted(0, 0, -1, -1));
    if (image.width() >= 60 && image.height() >= 20) {
        painter.setPen(QColor(0x55, 0x55, 0x55));
        painter.drawText(image.rect(), Qt::AlignCenter, QStringLiteral("Picture"));
    }
    return image;
}

} // namespace

bool RtfPicture::applyWord(QByteArrayView word, int value, bool hasValue)
{
    if (word == "pngblip")
        m_kind = Kind::Png;
    else if (word == "jpegblip")
        m_kind = Kind::Jpeg;
    else if (word == "picw")
        m_width = value;
    else if (word == "pich")
        m_height = value;
    else if (word == "picwgoal")
        m_goalWidth = value;
    else if (word == "pichgoal")
        m_goalHeight = value;
    else if (word == "picscalex")
        m_scaleX = hasValue ? value : 100;
    else if (word == "picscaley")
        m_scaleY = hasValue ? value : 100;
    else
        return false;
    return true;
}

void RtfPicture::appendHex(QByteArrayView hex)
{
    const auto *p = reinterpret_cast<const uchar *>(hex.data());
    const auto *end = p + hex.size();
    int pending = m_pendingNibble;
    QByteArray &data = m_data;
    // Grow geometrically: reserving just this line's bytes would copy the data once per line.
    const qsizetype needed = data.size() + hex.size() / 2 + 1;
    if (needed > data.capacity())
        data.reserve(std::max(needed, 2 * data.capacity()));
    for (; p != end; ++p) {
        const int v = kHexValues[*p];
        if (v < 0)
            continue;
        if (pending < 0) {
            pending = v;
        } else {
            data.append(char(pending * 16 + v));
            pending = -1;
        }
    }
    m_pendingNibble = pending;
}

QSize RtfPicture::ownPixelSize() const
{
    QByteArray bytes = m_data; // shared, not copied
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, m_kind == Kind::Png ? "png" : "jpeg");
    return reader.canRead() ? reader.size() : QSize();
}

QSizeF RtfPicture::displaySize(QSize decodedSize) const
{
    QSizeF size;
    if (m_goalWidth > 0 && m_goalHeight > 0)
        size = QSizeF(RichText::TwipsToPixels(m_goalWidth), RichText::TwipsToPixels(m_goalHeight));
    else if (decodedSize.isValid())
        size = decodedSize;
    else if (m_width > 0 && m_height > 0)
        size = m_kind == Kind::Other ? QSizeF(m_width / kHimetricPerPixel, m_height / kHimetricPerPixel)
                                     : QSizeF(m_width, m_height);
    else
        size = QSizeF(96, 96);
    const double scaleX = m_scaleX > 0 ? m_scaleX / 100.0 : 1.0;
    const double scaleY = m_scaleY > 0 ? m_scaleY / 100.0 : 1.0;
    return QSizeF(std::clamp(size.width() * scaleX, 1.0, kLargestSide),
                  std::clamp(size.height() * scaleY, 1.0, kLargestSide));
}

QTextImageFormat RtfPicture::addTo(QTextDocument *document, const QString &name, QByteArrayView group) const
{
    const QSize decoded = m_kind == Kind::Other ? QSize() : ownPixelSize();
    const bool shown = decoded.isValid() && !decoded.isEmpty();
    const QSizeF size = displaySize(decoded);
    QTextImageFormat format;
    format.setName(name);
    format.setWidth(size.width());
    format.setHeight(size.height());
    if (shown) {
        document->addResource(QTextDocument::ImageResource, QUrl(name), m_data);
    } else {
        document->addResource(QTextDocument::ImageResource, QUrl(name), placeholderImage(size));
        format.setProperty(RichText::RawPictureProperty, group.toByteArray());
    }
    return format;
}
