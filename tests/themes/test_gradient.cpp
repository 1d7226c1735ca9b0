#include "support/test_home.h"
#include "themes/gradient_painter.h"
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

    // The ends of each upright line share their x, so every turned line is a single point and
    // paints nothing: the frame keeps its background at every angle, whatever the colours.
    void everyAngleKeepsTheBackground_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<QSize>("size");
        for (int angle : {0, 90, 123, 270, 360, -90}) {
            QTest::addRow("%d, wide", angle) << angle << QSize(40, 30);
            QTest::addRow("%d, tall", angle) << angle << QSize(17, 64);
        }
    }

    void everyAngleKeepsTheBackground()
    {
        QFETCH(int, angle);
        QFETCH(QSize, size);
        QImage background(size, QImage::Format_RGB32);
        background.fill(kBackground);
        QCOMPARE(render(angle, size), background);
        QCOMPARE(render(angle, size, kBlue, kWindowBackground), background);
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

    // The ramp runs from colour 1 to colour 2; references below 25 come from the palette,
    // others are read by their low bytes.
    void rampColours_data()
    {
        QTest::addColumn<OleColor>("colour2");
        QTest::addColumn<int>("i");
        QTest::addColumn<int>("steps");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("first entry") << kBlue << 0 << 10 << QColor(255, 0, 0);
        QTest::newRow("last entry") << kBlue << 10 << 10 << QColor(0, 0, 255);
        QTest::newRow("halfway") << kBlue << 5 << 10 << QColor(128, 0, 128); // 127.5 rounds up
        QTest::newRow("no steps") << kBlue << 0 << 0 << QColor(255, 0, 0);
        QTest::newRow("window background") << kWindowBackground << 4 << 4 << QColor(255, 255, 255);
        QTest::newRow("index 48 kept as it is") << OleColor(0x80000030u) << 4 << 4 << QColor(0x30, 0, 0);
    }

    void rampColours()
    {
        QFETCH(OleColor, colour2);
        QFETCH(int, i);
        QFETCH(int, steps);
        QFETCH(QColor, expected);
        const OleColor c = GradientRampColor(kRed, colour2, i, steps);
        QCOMPARE(QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF), expected);
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
