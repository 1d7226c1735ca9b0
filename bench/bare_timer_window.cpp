// The yardstick for idle cost: a one-label Qt window with the two timers the program cannot do
// without while the clock is open, the clock's 55 ms refresh and the alarm check's 100 ms, whose
// ticks do nothing. bench/idle_cost.sh measures it beside the program in the same minute, so
// that the figures say how much the program adds to what Qt's event loop costs on this machine.

#include <QApplication>
#include <QLabel>
#include <QTimer>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QLabel label(QStringLiteral("Two idle timers"));
    label.setWindowTitle(QStringLiteral("Bare Qt timers"));
    label.show();
    int ticks = 0;
    QTimer clock;
    QTimer alarms;
    QObject::connect(&clock, &QTimer::timeout, [&ticks] { ++ticks; });
    QObject::connect(&alarms, &QTimer::timeout, [&ticks] { ++ticks; });
    clock.start(55);
    alarms.start(100);
    return app.exec();
}
