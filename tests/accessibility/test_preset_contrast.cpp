#include "support/test_home.h"
#include "themes/painted_frame.h"
#include "themes/theme.h"
#include "themes/theme_colors.h"
#include "themes/theme_painter.h"
#include "themes/theme_presets.h"
#include "themes/themed_chrome.h"

#include <QApplication>
#include <QDirIterator>
#include <QImage>
#include <QSet>
#include <QScopeGuard>
#include <QTest>

// Text on the widgets must read at 4.5:1 against what is painted behind it: every pixel of
// the bar or the panel frame as it renders itself for the theme.
class TestPresetContrast : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QVERIFY(m_home.isValid()); }

    // Every shipped preset, and the built-in theme, with the text colours the widgets use.
    void presetTextReads_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("bar");
        QTest::addColumn<bool>("dark"); // a dark desktop scheme, for themes that use its colours
        QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                        QDirIterator::Subdirectories);
        QStringList paths{QString()};
        while (it.hasNext())
            paths.append(it.next());
        paths.sort();
        for (const QString &path : paths) {
            const QString name = path.isEmpty() ? QStringLiteral("built-in") : path.mid(9);
            for (const bool dark : {false, true}) {
                const QString scheme = dark ? QStringLiteral(", dark desktop") : QString();
                QTest::newRow(qPrintable(name + QStringLiteral(" bar") + scheme)) << path << true << dark;
                QTest::newRow(qPrintable(name + QStringLiteral(" panel") + scheme)) << path << false << dark;
            }
        }
    }

    void presetTextReads()
    {
        QFETCH(QString, path);
        QFETCH(bool, bar);
        QFETCH(bool, dark);
        const QPalette before = QApplication::palette();
        if (dark)
            QApplication::setPalette(darkScheme());
        const auto restore = qScopeGuard([&before] { QApplication::setPalette(before); });
        const Theme theme = path.isEmpty() ? Theme() : ReadPreset(path, Theme());
        const ThemeGradients g = GradientsFor(theme);
        PaintedFrame frame(QStringLiteral("pfrTEST"));
        frame.setBackgroundColor(theme.MainColor);
        if (bar)
            frame.setGradient(theme.BarAngle, g.barStart, g.barEnd);
        else
            frame.setGradient(theme.PanelAngle, g.panelStart, g.panelEnd);
        frame.resize(bar ? QSize(300, 24) : QSize(300, 120));
        const QImage image = frame.renderedImage();
        QVERIFY(!image.isNull());

        const QColor text = bar ? ThemedChrome::barTextColour(theme) : ThemedChrome::panelTextColour(theme);
        QSet<QRgb> behind;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                behind.insert(image.pixel(x, y));
        for (const QRgb pixel : behind) {
            const double ratio = ContrastRatio(text, QColor(pixel));
            QVERIFY2(ratio >= 4.5, qPrintable(QStringLiteral("%1 on %2 reads at %3:1")
                                                  .arg(text.name(), QColor(pixel).name())
                                                  .arg(ratio, 0, 'f', 2)));
        }
    }

private:
    static QPalette darkScheme()
    {
        QPalette p;
        for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Base, QPalette::Button,
                                               QPalette::AlternateBase, QPalette::ToolTipBase})
            p.setColor(role, QColor(0x20, 0x20, 0x24));
        for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                                               QPalette::ToolTipText, QPalette::HighlightedText})
            p.setColor(role, QColor(0xf0, 0xf0, 0xf0));
        p.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
        return p;
    }

    TestHome m_home;
};

QTEST_MAIN(TestPresetContrast)
#include "test_preset_contrast.moc"
