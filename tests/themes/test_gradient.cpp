#include "support/test_home.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"

#include <QApplication>
#include <QImage>
#include <QLineF>
#include <QPalette>
#include <QTest>

namespace {

constexpr OleColor kRed = 0x000000FFu;
constexpr OleColor kBlue = 0x00FF0000u;
const QColor kBackground(0, 0, 0);

QImage render(int angle, QSize size = QSize(40, 30), OleColor c1 = kRed, OleColor c2 = kBlue)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(kBackground);
    PaintGradient(image, angle, c1, c2);
    return image;
}

// Lines are one pixel wide and land on whole pixels, so look at the pixel and its neighbours.
bool paintedNear(const QImage &image, QPoint at, const QColor &colour)
{
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            const QPoint p = at + QPoint(dx, dy);
            if (image.rect().contains(p) && image.pixelColor(p) == colour)
                return true;
        }
    }
    return false;
}

} // namespace

class TestGradient : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QPalette pal;
        pal.setColor(QPalette::Base, QColor(255, 255, 255));
        QApplication::setPalette(pal);
    }

    void normalizeAngle_data()
    {
        QTest::addColumn<double>("angle");
        QTest::addColumn<double>("expected");
        QTest::newRow("0") << 0.0 << 0.0;
        QTest::newRow("123") << 123.0 << 123.0;
        QTest::newRow("360 is 0") << 360.0 << 0.0;
        QTest::newRow("-90 is 270") << -90.0 << 270.0;
        QTest::newRow("-360 is 0") << -360.0 << 0.0;
        QTest::newRow("725") << 725.0 << 5.0;
    }

    void normalizeAngle()
    {
        QFETCH(double, angle);
        QFETCH(double, expected);
        QCOMPARE(NormalizeGradientAngle(angle), expected);
    }

    // The turn takes both offsets from the point's x: the point's y never matters.
    void rotatePointUsesXForBothOffsets()
    {
        const QPointF centre(20, 15);
        QCOMPARE(RotatePoint(centre, QPointF(7, 3), 90), RotatePoint(centre, QPointF(7, 99), 90));
        // Single precision: compare to a thousandth.
        auto near = [](QPointF a, QPointF b) { return QLineF(a, b).length() < 1e-3; };
        QVERIFY(near(RotatePoint(centre, QPointF(30, 0), 90), QPointF(35, 5))); // cx + dy, cy - dx
        QVERIFY(near(RotatePoint(centre, QPointF(30, 0), 0), QPointF(30, 30))); // y becomes cy + dy
    }

    // Sample points on and off the streak each angle paints, over a 40 x 30 frame.
    void streakPerAngle_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<QPoint>("on");
        QTest::addColumn<QPoint>("off");
        QTest::newRow("0") << 0 << QPoint(10, 10) << QPoint(30, 5);
        QTest::newRow("360") << 360 << QPoint(10, 10) << QPoint(30, 5);
        QTest::newRow("90") << 90 << QPoint(25, 15) << QPoint(10, 10);
        QTest::newRow("270") << 270 << QPoint(15, 15) << QPoint(25, 15);
        QTest::newRow("-90") << -90 << QPoint(15, 15) << QPoint(25, 15);
        QTest::newRow("123") << 123 << QPoint(24, 14) << QPoint(5, 25);
    }

    void streakPerAngle()
    {
        QFETCH(int, angle);
        QFETCH(QPoint, on);
        QFETCH(QPoint, off);
        const QImage image = render(angle);
        // Every ramp line lands on the same streak, so the last entry (colour 2) shows.
        QVERIFY(paintedNear(image, on, QColor(0, 0, 255)));
        QCOMPARE(image.pixelColor(off), kBackground);
    }

    void equalAnglesPaintAlike_data()
    {
        QTest::addColumn<int>("a");
        QTest::addColumn<int>("b");
        QTest::newRow("0 and 360") << 0 << 360;
        QTest::newRow("-90 and 270") << -90 << 270;
        QTest::newRow("123 and 483") << 123 << 483;
    }

    void equalAnglesPaintAlike()
    {
        QFETCH(int, a);
        QFETCH(int, b);
        QCOMPARE(render(a, QSize(64, 48)), render(b, QSize(64, 48)));
        QVERIFY(render(a, QSize(64, 48)) != render(a + 90, QSize(64, 48)));
    }

    void tooSmallFramesAreNotPainted_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("1 pixel high") << QSize(40, 1);
        QTest::newRow("1 pixel wide") << QSize(1, 40);
        QTest::newRow("empty") << QSize(0, 0);
    }

    void tooSmallFramesAreNotPainted()
    {
        QFETCH(QSize, size);
        QImage image(size, QImage::Format_RGB32);
        image.fill(kBackground);
        const QImage before = image;
        QVERIFY(!PaintGradient(image, 0, kRed, kBlue));
        QCOMPARE(image, before);
        QImage two(QSize(2, 2), QImage::Format_RGB32);
        QVERIFY(PaintGradient(two, 0, kRed, kBlue));
    }

    // References below 25 come from the palette; others are read by their low bytes.
    void systemColoursInTheRamp_data()
    {
        QTest::addColumn<OleColor>("colour2");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("window background") << kWindowBackground << QColor(255, 255, 255);
        QTest::newRow("index 48 kept as it is") << OleColor(0x80000030u) << QColor(0x30, 0, 0);
    }

    void systemColoursInTheRamp()
    {
        QFETCH(OleColor, colour2);
        QFETCH(QColor, expected);
        QVERIFY(paintedNear(render(0, QSize(40, 30), kRed, colour2), QPoint(10, 10), expected));
    }

    void frameRepaintsFromCache()
    {
        PaintedFrame frame(QStringLiteral("pfrPANEL"));
        frame.resize(400, 300);
        frame.setBackgroundColor(0x00D36A14u);
        frame.setGradient(123, 0x00D36A14u, kWindowBackground);
        frame.renderedImage();
        frame.grab();
        frame.grab();
        QCOMPARE(frame.renderCount(), 1);

        frame.setGradient(123, 0x00D36A14u, kWindowBackground); // unchanged
        frame.renderedImage();
        QCOMPARE(frame.renderCount(), 1);

        frame.setGradient(270, 0x00D36A14u, kWindowBackground);
        frame.renderedImage();
        QCOMPARE(frame.renderCount(), 2);

        frame.resize(200, 100);
        const QImage small = frame.renderedImage();
        QCOMPARE(frame.renderCount(), 3);
        QCOMPARE(small.size(), QSize(200, 100) * frame.devicePixelRatioF());
        // The background shows where the streak is not.
        QCOMPARE(small.pixelColor(small.width() - 1, 0), QColor(20, 106, 211));
    }

    void frameLowerThanTwoPixelsShowsItsBackground()
    {
        PaintedFrame frame(QStringLiteral("pfrBAR"));
        frame.resize(50, 1);
        frame.setBackgroundColor(0x00010203u);
        frame.setGradient(0, kRed, kBlue);
        const QImage image = frame.renderedImage();
        for (int x = 0; x < image.width(); ++x)
            QCOMPARE(image.pixelColor(x, 0), QColor(3, 2, 1));
    }
};

QTEST_MAIN(TestGradient)
#include "test_gradient.moc"
