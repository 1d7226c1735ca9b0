#include "core/settings_store.h"
#include "core/window_placement.h"
#include "support/test_home.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTest>
#include <QWidget>

namespace {

const QString kKey = QStringLiteral("SOFTWARE\\Vantora\\fnte_IDX\\Window");

QString stored(const QString &name)
{
    return ReadSetting(Hive::CurrentUser, kKey, name, QStringLiteral("<none>"));
}

void store(const QString &name, const QString &value)
{
    WriteSetting(Hive::CurrentUser, kKey, name, value);
}

double dpi()
{
    return QGuiApplication::primaryScreen()->logicalDotsPerInch();
}

QString twips(int pixels)
{
    return QString::number(PixelsToTwips(pixels, dpi()), 'g', 7);
}

QRect area()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

} // namespace

class TestWindowPlacement : public QObject
{
    Q_OBJECT

private slots:
    void placementAxis_data();
    void placementAxis();
    void normalWindowRoundTrips();
    void maximisedKeepsLastNormalRectangle();
    void minimisedComesBackMaximised();
    void offScreenAxisIsCentred();
    void positionOnlyLeavesSizeAlone();
    void unreadableValuesChangeNothing_data();
    void unreadableValuesChangeNothing();
    void freeSpot_data();
    void freeSpot();
};

void TestWindowPlacement::placementAxis_data()
{
    QTest::addColumn<double>("stored");
    QTest::addColumn<double>("size");
    QTest::addColumn<double>("screen");
    QTest::addColumn<double>("expected");
    QTest::newRow("on screen") << 1500.0 << 4500.0 << 19200.0 << 1500.0;
    QTest::newRow("at the edge") << 0.0 << 4500.0 << 19200.0 << 0.0;
    QTest::newRow("right edge on the screen edge") << 14700.0 << 4500.0 << 19200.0 << 14700.0;
    QTest::newRow("left of the screen") << -200.0 << 4500.0 << 19200.0 << 7350.0;
    QTest::newRow("right edge past the screen") << 14715.0 << 4500.0 << 19200.0 << 7350.0;
    QTest::newRow("half rounds down to even") << -1.0 << 4500.0 << 19201.0 << 7350.0;
    QTest::newRow("half rounds up to even") << -1.0 << 4500.0 << 19203.0 << 7352.0;
    QTest::newRow("fraction rounds to nearest") << -1.0 << 4500.5 << 19200.0 << 7350.0;
    QTest::newRow("wider than the screen") << 0.0 << 20000.0 << 19200.0 << 15.0;
}

void TestWindowPlacement::placementAxis()
{
    QFETCH(double, stored);
    QFETCH(double, size);
    QFETCH(double, screen);
    QFETCH(double, expected);
    QCOMPARE(PlacementAxis(stored, size, screen), expected);
}

void TestWindowPlacement::normalWindowRoundTrips()
{
    TestHome home;
    QWidget saved;
    saved.setObjectName(QStringLiteral("fnte_IDX"));
    saved.resize(300, 200);
    saved.move(area().topLeft() + QPoint(40, 30));
    SaveWindowPlacement(&saved, true);
    QCOMPARE(stored(QStringLiteral("Window State")), QStringLiteral("0"));
    QCOMPARE(stored(QStringLiteral("Width")), twips(300));
    QCOMPARE(stored(QStringLiteral("Left")), twips(area().x() + 40));

    QWidget restored;
    restored.setObjectName(QStringLiteral("fnte_IDX"));
    RestoreWindowPlacement(&restored, true);
    QCOMPARE(restored.size(), QSize(300, 200));
    QCOMPARE(restored.pos(), saved.pos());
}

void TestWindowPlacement::maximisedKeepsLastNormalRectangle()
{
    TestHome home;
    QWidget window;
    window.setObjectName(QStringLiteral("fnte_IDX"));
    window.resize(300, 200);
    window.move(area().topLeft() + QPoint(10, 10));
    SaveWindowPlacement(&window, true);
    window.setWindowState(Qt::WindowMaximized);
    SaveWindowPlacement(&window, true);
    QCOMPARE(stored(QStringLiteral("Window State")), QStringLiteral("2"));
    QCOMPARE(stored(QStringLiteral("Width")), twips(300));

    QWidget next;
    next.setObjectName(QStringLiteral("fnte_IDX"));
    next.resize(120, 90);
    RestoreWindowPlacement(&next, true);
    QVERIFY(next.windowState() & Qt::WindowMaximized);
}

void TestWindowPlacement::minimisedComesBackMaximised()
{
    TestHome home;
    store(QStringLiteral("Window State"), QStringLiteral("1"));
    store(QStringLiteral("Width"), twips(333));
    QWidget window;
    window.setObjectName(QStringLiteral("fnte_IDX"));
    window.resize(120, 90);
    RestoreWindowPlacement(&window, true);
    QCOMPARE(window.windowState() & (Qt::WindowMaximized | Qt::WindowMinimized), Qt::WindowMaximized);
    QCOMPARE(window.width(), 120); // size is not read
}

void TestWindowPlacement::offScreenAxisIsCentred()
{
    TestHome home;
    store(QStringLiteral("Left"), QStringLiteral("-200"));
    store(QStringLiteral("Top"), twips(area().y() + 20));
    QWidget window;
    window.setObjectName(QStringLiteral("fnte_IDX"));
    window.resize(200, 100);
    RestoreWindowPlacement(&window, false);
    const double centred = CentredPosition(PixelsToTwips(200, dpi()), PixelsToTwips(area().width(), dpi()));
    QCOMPARE(window.x(), area().x() + TwipsToPixels(centred, dpi()));
    QCOMPARE(window.y(), area().y() + 20);

    // the right edge past the screen centres too; the top now starts above the screen
    store(QStringLiteral("Left"), twips(area().right() - 100));
    store(QStringLiteral("Top"), QStringLiteral("-15"));
    window.move(0, 0);
    RestoreWindowPlacement(&window, false);
    QCOMPARE(window.x(), area().x() + TwipsToPixels(centred, dpi()));
    const double middle = CentredPosition(PixelsToTwips(100, dpi()), PixelsToTwips(area().height(), dpi()));
    QCOMPARE(window.y(), area().y() + TwipsToPixels(middle, dpi()));
}

void TestWindowPlacement::positionOnlyLeavesSizeAlone()
{
    TestHome home;
    QWidget window;
    window.setObjectName(QStringLiteral("fnte_IDX"));
    window.resize(300, 200);
    window.move(area().topLeft() + QPoint(5, 6));
    SaveWindowPlacement(&window, false);
    QCOMPARE(stored(QStringLiteral("Window State")), QStringLiteral("<none>"));
    QCOMPARE(stored(QStringLiteral("Width")), QStringLiteral("<none>"));
    QCOMPARE(stored(QStringLiteral("Top")), twips(area().y() + 6));

    store(QStringLiteral("Width"), twips(50));
    QWidget other;
    other.setObjectName(QStringLiteral("fnte_IDX"));
    other.resize(310, 210);
    RestoreWindowPlacement(&other, false);
    QCOMPARE(other.size(), QSize(310, 210));
    QCOMPARE(other.pos(), window.pos());
}

void TestWindowPlacement::unreadableValuesChangeNothing_data()
{
    QTest::addColumn<QString>("width");
    QTest::addColumn<QSize>("size");
    QTest::newRow("not a number") << "wide" << QSize(300, 150);
    QTest::newRow("negative") << "-500" << QSize(300, 150);
    QTest::newRow("zero") << "0" << QSize(300, 150);
    QTest::newRow("under half a pixel") << "5" << QSize(300, 150);
    QTest::newRow("usable") << twips(250) << QSize(250, 150);
}

void TestWindowPlacement::unreadableValuesChangeNothing()
{
    QFETCH(QString, width);
    QFETCH(QSize, size);
    TestHome home;
    store(QStringLiteral("Window State"), QStringLiteral("abc"));
    store(QStringLiteral("Width"), width);
    store(QStringLiteral("Height"), twips(150));
    QWidget window;
    window.setObjectName(QStringLiteral("fnte_IDX"));
    window.resize(300, 200);
    window.move(area().topLeft() + QPoint(7, 8));
    RestoreWindowPlacement(&window, true);
    QCOMPARE(window.windowState(), Qt::WindowNoState);
    QCOMPARE(window.size(), size);
    QCOMPARE(window.pos(), area().topLeft() + QPoint(7, 8));
}

QTEST_MAIN(TestWindowPlacement)
#include "test_window_placement.moc"

void TestWindowPlacement::freeSpot_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QList<QRect>>("taken");
    QTest::addColumn<QPoint>("expected");
    const QRect dashboard(580, 346, 441, 308); // centred on the 1600 x 1000 test screen
    QTest::newRow("empty screen: top right") << QSize(240, 330) << QList<QRect>{} << QPoint(1344, 16);
    QTest::newRow("below a widget in the corner")
        << QSize(240, 330) << QList<QRect>{{1336, 8, 256, 346}} << QPoint(1344, 364);
    QTest::newRow("next column when the first is full")
        << QSize(240, 330) << QList<QRect>{{1336, 8, 256, 984}} << QPoint(1080, 16);
    // Too large to sit beside the dashboard anywhere: the spot that covers the least of it,
    // not the centre of the screen on top of it.
    QTest::newRow("large window beside the dashboard")
        << QSize(1000, 680) << QList<QRect>{dashboard} << QPoint(584, 16);
    QTest::newRow("two large windows overlap as little as they can")
        << QSize(780, 580) << QList<QRect>{dashboard, {584, 16, 1000, 680}} << QPoint(36, 400);
    QTest::newRow("larger than the screen") << QSize(1700, 900) << QList<QRect>{} << QPoint(0, 0);
}

void TestWindowPlacement::freeSpot()
{
    QFETCH(QSize, size);
    QFETCH(QList<QRect>, taken);
    QFETCH(QPoint, expected);
    const QRect screen(0, 0, 1600, 1000);
    const QPoint spot = FreeSpot(size, screen, taken);
    QCOMPARE(spot, expected);
    QVERIFY(screen.contains(QRect(spot, size)) || size.width() > screen.width());
}
