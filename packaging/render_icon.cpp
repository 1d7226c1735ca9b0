// Build-time helper: renders the program's SVG icon into the PNG sizes of the freedesktop icon
// theme layout, for desktops and launchers that do not read SVG icons.
//
//   render_icon ICON.svg OUTPUT_FOLDER NAME SIZE...
//
// writes OUTPUT_FOLDER/<SIZE>x<SIZE>/apps/NAME.png for every SIZE.

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

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
        const QString folder = QStringLiteral("%1/%2x%2/apps").arg(args.at(2)).arg(size);
        QDir().mkpath(folder);
        const QString path = folder + QLatin1Char('/') + args.at(3) + QStringLiteral(".png");
        if (!image.save(path, "PNG")) {
            std::fprintf(stderr, "render_icon: cannot write %s\n", qPrintable(path));
            return 1;
        }
    }
    return 0;
}
