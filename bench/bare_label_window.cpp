// The yardstick for start-up time: the smallest Qt Widgets program that shows a window, one
// label. bench/launch_vs_bare_qt.sh starts it alternately with the program and compares the two.

#include <QApplication>
#include <QLabel>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QLabel label(QStringLiteral("Hello from a bare Qt window"));
    label.setWindowTitle(QStringLiteral("Bare Qt label"));
    label.resize(320, 120);
    label.show();
    return app.exec();
}
