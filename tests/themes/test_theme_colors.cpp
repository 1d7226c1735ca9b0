#include "support/test_home.h"
#include "themes/theme_painter.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTest>

namespace {

constexpr OleColor rgb(int r, int g, int b)
{
    return OleColor(r) | (OleColor(g) << 8) | (OleColor(b) << 16);
}

} // namespace

class TestThemeColors : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // A known desktop scheme, so system-colour references have fixed values.
        QPalette pal;
        pal.setColor(QPalette::Base, QColor(255, 255, 255));
        pal.setColor(QPalette::HighlightedText, QColor(250, 240, 230));
        pal.setColor(QPalette::Highlight, QColor(0, 90, 200));
        QGuiApplication::setPalette(pal);
    }

    void blendColor_data()
    {
        QTest::addColumn<OleColor>("a");
        QTest::addColumn<OleColor>("b");
        QTest::addColumn<int>("weight");
        QTest::addColumn<OleColor>("expected");

        const OleColor main = 13855252; // red 20, green 106, blue 211
        // The theme's weights at contrast 0, 130 and 255 (panel 255 - c, bar 55 - c, first 555 - c).
        QTest::newRow("contrast 0 panel: flat main colour") << main << kWindowBackground << 255 << main;
        QTest::newRow("contrast 0 bar") << main << kWindowBackground << 55 << rgb(204, 223, 246);
        QTest::newRow("contrast 130 panel") << main << kWindowBackground << 125 << rgb(140, 182, 233);
        QTest::newRow("contrast 130 bar: past white, capped")
            << main << kWindowBackground << -75 << rgb(255, 255, 255);
        QTest::newRow("contrast 255 panel: window colour")
            << main << kWindowBackground << 0 << rgb(255, 255, 255);
        QTest::newRow("first colour, weight above 255") << main << kShadowGrey << 555 - 130 << main;
        QTest::newRow("weight 256 counts as 255")
            << rgb(10, 20, 30) << rgb(200, 200, 200) << 256 << rgb(10, 20, 30);
        // No lower bound on the weight: the mix extrapolates past b, channels stop at 0.
        QTest::newRow("negative weight extrapolates")
            << rgb(0, 0, 0) << rgb(128, 100, 60) << -75 << rgb(166, 129, 78);
        QTest::newRow("negative channel capped at 0")
            << rgb(255, 255, 255) << rgb(0, 0, 0) << -75 << rgb(0, 0, 0);
        QTest::newRow("halfway, rounded to nearest")
            << rgb(0, 0, 0) << rgb(255, 100, 1) << 128 << rgb(127, 50, 0);
        // System colours come from the palette.
        QTest::newRow("system 9 against grey")
            << OleColor(0x80000009u) << kShadowGrey << 255 << rgb(250, 240, 230);
        QTest::newRow("system 13 mixed") << OleColor(0x8000000Du) << rgb(0, 0, 0) << 51 << rgb(0, 18, 40);
        // A reference that cannot be translated counts as -1: white.
        QTest::newRow("untranslatable reference")
            << OleColor(0x80000040u) << rgb(0, 0, 0) << 255 << rgb(255, 255, 255);
        QTest::newRow("palette-index high byte ignored")
            << OleColor(0x01000000u | rgb(1, 2, 3)) << rgb(0, 0, 0) << 255 << rgb(1, 2, 3);
    }

    void blendColor()
    {
        QFETCH(OleColor, a);
        QFETCH(OleColor, b);
        QFETCH(int, weight);
        QFETCH(OleColor, expected);
        QCOMPARE(QString::number(BlendColor(a, b, weight), 16), QString::number(expected, 16));
    }

    void gradientColours_data()
    {
        QTest::addColumn<int>("contrast");
        QTest::addColumn<OleColor>("panelEnd");
        QTest::addColumn<OleColor>("barEnd");

        QTest::newRow("0") << 0 << OleColor(13855252) << rgb(204, 223, 246);
        QTest::newRow("130") << 130 << rgb(140, 182, 233) << rgb(255, 255, 255);
        QTest::newRow("255") << 255 << rgb(255, 255, 255) << rgb(255, 255, 255);
    }

    // Whatever the contrast, both gradients start at the main colour.
    void gradientColours()
    {
        QFETCH(int, contrast);
        QFETCH(OleColor, panelEnd);
        QFETCH(OleColor, barEnd);
        Theme t;
        t.MainContrast = contrast;
        const ThemeGradients g = GradientsFor(t);
        QCOMPARE(g.panelStart, t.MainColor);
        QCOMPARE(g.barStart, t.MainColor);
        QCOMPARE(g.panelEnd, panelEnd);
        QCOMPARE(g.barEnd, barEnd);
    }

    void resolveColor()
    {
        QCOMPARE(ResolveColor(rgb(20, 106, 211)), QColor(20, 106, 211));
        QCOMPARE(ResolveColor(kWindowBackground), QColor(255, 255, 255));
        QCOMPARE(ToOleColor(QColor(20, 106, 211)), rgb(20, 106, 211));
        // Every system colour number of the stored schemes has a palette role; others do not.
        QPalette::ColorGroup group;
        QPalette::ColorRole role;
        for (int i = 0; i <= 30; ++i)
            QVERIFY2(SystemColorRole(i, &group, &role), qPrintable(QString::number(i)));
        QVERIFY(!SystemColorRole(31, &group, &role));
        QVERIFY(!SystemColorRole(-1, &group, &role));
    }

    void contrastRatio_data()
    {
        QTest::addColumn<QColor>("a");
        QTest::addColumn<QColor>("b");
        QTest::addColumn<double>("ratio");
        QTest::newRow("black on white") << QColor(Qt::black) << QColor(Qt::white) << 21.0;
        QTest::newRow("either order") << QColor(Qt::white) << QColor(Qt::black) << 21.0;
        QTest::newRow("same colour") << QColor(20, 106, 211) << QColor(20, 106, 211) << 1.0;
        // #767676 on white is the usual example of the least grey that reads at 4.5:1.
        QTest::newRow("grey on white") << QColor(0x76, 0x76, 0x76) << QColor(Qt::white) << 4.54;
        QTest::newRow("white on the default blue") << QColor(Qt::white) << QColor(20, 106, 211) << 5.21;
    }

    void contrastRatio()
    {
        QFETCH(QColor, a);
        QFETCH(QColor, b);
        QFETCH(double, ratio);
        QVERIFY2(qAbs(ContrastRatio(a, b) - ratio) < 0.01, qPrintable(QString::number(ContrastRatio(a, b))));
    }
};

QTEST_MAIN(TestThemeColors)
#include "test_theme_colors.moc"
