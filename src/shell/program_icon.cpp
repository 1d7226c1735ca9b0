#include "shell/program_icon.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <iterator>

namespace {
const QString kSvg = QStringLiteral(":/icons/vantora.svg");
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
    // Drawn once at the largest size and scaled down: drawing the SVG is the slow part.
    static const QIcon icon = [] {
        QSvgRenderer svg(kSvg);
        const QImage largest = render(svg, kWindowSizes[std::size(kWindowSizes) - 1]).toImage();
        QIcon made;
        for (int side : kWindowSizes)
            made.addPixmap(QPixmap::fromImage(
                largest.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
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
