#include "shell/program_icon.h"

#include <QImage>
#include <QResource>

#include <algorithm>
#include <iterator>

namespace {
// Drawn from the SVG at build time, as bare pixels: the sizes window managers and trays use, and
// larger ones the dashboard and the About box scale down from. Drawing the SVG itself would load
// the SVG library at every start.
constexpr int kShippedSizes[] = {16, 22, 24, 32, 48, 64, 96, 128, 256};
constexpr int kLargestWindowSize = 64;

// The icon at one of the shipped sizes; a null image when the program was built without it.
QImage shipped(int side)
{
    // Bare pixels: an image reader would first look through every image format plugin.
    const QByteArray pixels =
        QResource(QStringLiteral(":/icons/window/%1.rgba").arg(side)).uncompressedData();
    if (pixels.size() != side * side * 4)
        return {};
    const QImage image(reinterpret_cast<const uchar *>(pixels.constData()), side, side, side * 4,
                       QImage::Format_RGBA8888_Premultiplied);
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied); // a copy that owns its pixels
}
} // namespace

QIcon ProgramIcon::forWindows()
{
    static const QIcon icon = [] {
        QIcon made;
        for (int side : kShippedSizes) {
            if (side > kLargestWindowSize)
                break;
            const QImage image = shipped(side);
            if (!image.isNull())
                made.addPixmap(QPixmap::fromImage(image));
        }
        return made;
    }();
    return icon;
}

QPixmap ProgramIcon::drawn(int side, qreal devicePixelRatio)
{
    const int pixels = qMax(1, qRound(side * devicePixelRatio));
    // The nearest size at or above the one asked for, scaled down: sharper than scaling up.
    const auto larger = std::lower_bound(std::begin(kShippedSizes), std::end(kShippedSizes), pixels);
    QImage image =
        shipped(larger == std::end(kShippedSizes) ? kShippedSizes[std::size(kShippedSizes) - 1] : *larger);
    if (image.isNull())
        return {};
    if (image.width() != pixels)
        image = image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QPixmap pixmap = QPixmap::fromImage(std::move(image));
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}
