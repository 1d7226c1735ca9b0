#include "shell/program_icon.h"

#include <QImage>
#include <QPainter>
#include <QResource>
#include <QSvgRenderer>


namespace {
const QString kSvg = QStringLiteral(":/icons/vantora.svg");
// Drawn from the SVG at build time, at the sizes window managers and trays use.
constexpr int kWindowSizes[] = {16, 22, 24, 32, 48, 64};

QPixmap render(QSvgRenderer &svg, int pixels)
{
    QPixmap pixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    return pixmap;
}
} // namespace

QIcon ProgramIcon::forWindows()
{
    static const QIcon icon = [] {
        QIcon made;
        for (int side : kWindowSizes) {
            // Bare pixels: an image reader would first look through every image format plugin.
            const QByteArray pixels =
                QResource(QStringLiteral(":/icons/window/%1.rgba").arg(side)).uncompressedData();
            if (pixels.size() != side * side * 4)
                continue;
            const QImage image(reinterpret_cast<const uchar *>(pixels.constData()), side, side, side * 4,
                               QImage::Format_RGBA8888_Premultiplied);
            made.addPixmap(QPixmap::fromImage(image.convertToFormat(QImage::Format_ARGB32_Premultiplied)));
        }
        return made;
    }();
    return icon;
}

QPixmap ProgramIcon::drawn(int side, qreal devicePixelRatio)
{
    QSvgRenderer svg(kSvg);
    QPixmap pixmap = render(svg, qRound(side * devicePixelRatio));
    pixmap.setDevicePixelRatio(devicePixelRatio);
    return pixmap;
}
