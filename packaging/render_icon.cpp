// Build-time helper: renders the program's SVG icon into the PNG sizes of the freedesktop icon
// theme layout, for desktops and launchers that do not read SVG icons, or into bare pixels for
// the program's own window icon.
//
//   render_icon ICON.svg OUTPUT_FOLDER NAME SIZE...
//
// writes OUTPUT_FOLDER/<SIZE>x<SIZE>/apps/NAME.png for every SIZE; with the NAME "raw" instead
// OUTPUT_FOLDER/<SIZE>.rgba, the pixels as premultiplied RGBA bytes, row after row. Those need
// no image reader to show: Qt's looks through every image format plugin it has first.

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

namespace {
bool writePixels(const QImage &image, const QString &path)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int y = 0; y < pixels.height(); ++y) {
        const auto *row = reinterpret_cast<const char *>(pixels.constScanLine(y));
        if (file.write(row, pixels.width() * 4) != pixels.width() * 4)
            return false;
    }
    return file.flush();
}
} // namespace

int main(int argc, char *argv[])
{
    // No window is shown; the offscreen platform keeps this working on a build machine
    // without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 5) {
        std::fputs("usage: render_icon ICON.svg OUTPUT_FOLDER NAME SIZE...\n", stderr);
        return 2;
    }
    QSvgRenderer renderer(args.at(1));
    if (!renderer.isValid()) {
        std::fprintf(stderr, "render_icon: cannot read %s\n", qPrintable(args.at(1)));
        return 1;
    }
    for (const QString &sizeText : args.mid(4)) {
        const int size = sizeText.toInt();
        if (size <= 0) {
            std::fprintf(stderr, "render_icon: not a size: %s\n", qPrintable(sizeText));
            return 2;
        }
        QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
        painter.end();
        const bool raw = args.at(3) == QLatin1String("raw");
        const QString folder = raw ? args.at(2) : QStringLiteral("%1/%2x%2/apps").arg(args.at(2)).arg(size);
        QDir().mkpath(folder);
        const QString path = raw ? QStringLiteral("%1/%2.rgba").arg(folder).arg(size)
                                 : folder + QLatin1Char('/') + args.at(3) + QStringLiteral(".png");
        if (!(raw ? writePixels(image, path) : image.save(path, "PNG"))) {
            std::fprintf(stderr, "render_icon: cannot write %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
