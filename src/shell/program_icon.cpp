#include "shell/program_icon.h"

#include <QPainter>
#include <QSvgRenderer>

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
    static const QIcon icon = [] {
        QSvgRenderer svg(kSvg);
        QIcon made;
        for (int side : kWindowSizes)
            made.addPixmap(render(svg, side));
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
