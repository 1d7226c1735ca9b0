#include "core/app_paths.h"
#include "core/settings_store.h"
#include "support/file_text.h"
#include "support/test_home.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFrame>
#include <QSignalSpy>
#include <QTest>

// A themed window as the widgets build it: bar, panel, edge lines and ThemeElementsUpdate.
class FakeThemedWindow : public QWidget
{
    Q_OBJECT
public:
    FakeThemedWindow()
    {
        bar = new PaintedFrame(QStringLiteral("pfrBAR"), this);
        panel = new PaintedFrame(QStringLiteral("pfrPANEL"), this);
        light = new QFrame(this);
        light->setObjectName(QStringLiteral("lneLIGHT"));
        shadow = new QFrame(this);
        shadow->setObjectName(QStringLiteral("lneSHAD"));
    }

    PaintedFrame *bar;
    PaintedFrame *panel;
    QFrame *light;
    QFrame *shadow;
    int updates = 0;
    OleColor panelStartSeen = 0;
    QColor lightSeen;

public slots:
    void ThemeElementsUpdate()
    {
        ++updates;
        panelStartSeen = panel->startColor();
        lightSeen = light->palette().color(QPalette::WindowText);
    }
};

class TestTheme : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_home.reset(); // the old folder goes first, so VANTORA_HOME ends on the new one
        m_home.reset(new TestHome);
        QCOMPARE(AppPaths::dataFolder(), QDir::cleanPath(m_home->path()));
        SetCurrentTheme(Theme());
    }

    void loadGivesDefaultsWhenNothingIsStored()
    {
        LoadThemeFromRegistry();
        QCOMPARE(CurrentTheme(), Theme());
        QCOMPARE(CurrentTheme().MainColor, OleColor(13855252));
        QCOMPARE(CurrentTheme().PanelColor, OleColor(0x80000005u));
    }

    void saveAndLoadRoundTrip()
    {
        Theme t;
        t.MainColor = 0x00123456;
        t.MainOpacity = 10;
        t.MainContrast = 255;
        t.PanelFont = QStringLiteral("DejaVu Serif");
        t.PanelAngle = 360;
        t.PanelColor = 0x80000008u;
        t.BarFont = QStringLiteral("Noto Sans");
        t.BarAngle = 0;
        t.BarColor = 0x00FFFFFF;
        SetCurrentTheme(t);
        SaveThemeToRegistry();
        SetCurrentTheme(Theme());
        LoadThemeFromRegistry();
        QCOMPARE(CurrentTheme(), t);
        // Colours are kept as the signed numbers they are.
        QCOMPARE(ReadDetail(QStringLiteral("mdb_THM"), QStringLiteral("Theme Panel-Color"), QString()),
                 QStringLiteral("-2147483640"));
    }

    // The settings file keeps values in the order they were first written.
    void saveWritesInItsOrder()
    {
        SaveThemeToRegistry();
        if (!QFile::exists(AppPaths::settingsFile()))
            QSKIP("the settings are not kept in a file on this system");
        const QString text = FileText(AppPaths::settingsFile());
        const QStringList order{"Main-Opacity", "Main-Contrast", "Main-Color",  "Bar-Font",   "Bar-Angle",
                                "Bar-Color",    "Panel-Font",    "Panel-Angle", "Panel-Color"};
        int last = -1;
        for (const QString &name : order) {
            const int at = text.indexOf(QStringLiteral("\"Theme %1\"").arg(name));
            QVERIFY2(at > last, qPrintable(name));
            last = at;
        }
    }

    void storedTextIsConverted_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected"); // field as text
        QTest::newRow("empty bar font") << "Theme Bar-Font"
                                        << ""
                                        << "Tahoma";
        QTest::newRow("blank panel font") << "Theme Panel-Font"
                                          << "   "
                                          << "Tahoma";
        QTest::newRow("contrast with trailing text") << "Theme Main-Contrast"
                                                     << "200px"
                                                     << "200";
        QTest::newRow("contrast not a number") << "Theme Main-Contrast"
                                               << "abc"
                                               << "130";
        QTest::newRow("colour unsigned spelling") << "Theme Bar-Color"
                                                  << "2147483657"
                                                  << "2147483657";
        QTest::newRow("opacity above a byte") << "Theme Main-Opacity"
                                              << "999"
                                              << "255";
    }

    void storedTextIsConverted()
    {
        QFETCH(QString, value);
        QFETCH(QString, text);
        QFETCH(QString, expected);
        WriteDetail(QStringLiteral("mdb_THM"), value, text);
        LoadThemeFromRegistry();
        const Theme &t = CurrentTheme();
        const QString actual = value.endsWith(QLatin1String("Bar-Font"))     ? t.BarFont
                               : value.endsWith(QLatin1String("Panel-Font")) ? t.PanelFont
                               : value.endsWith(QLatin1String("Contrast"))   ? QString::number(t.MainContrast)
                               : value.endsWith(QLatin1String("Opacity"))    ? QString::number(t.MainOpacity)
                                                                             : QString::number(t.BarColor);
        QCOMPARE(actual, expected);
    }

    void applyThemePaintsInOrder()
    {
        Theme t;
        t.MainColor = 0x00336699;
        t.PanelAngle = 45;
        t.BarAngle = 180;
        SetCurrentTheme(t);
        FakeThemedWindow w;
        ApplyTheme(&w);

        const ThemeGradients g = GradientsFor(t);
        QCOMPARE(w.panel->angle(), 45);
        QCOMPARE(w.panel->backgroundColor(), t.MainColor);
        QCOMPARE(w.panel->endColor(), g.panelEnd);
        QCOMPARE(w.bar->angle(), 180);
        QCOMPARE(w.bar->endColor(), g.barEnd);
        // ThemeElementsUpdate runs after the frames and before the edge lines.
        QCOMPARE(w.updates, 1);
        QCOMPARE(w.panelStartSeen, g.panelStart);
        QVERIFY(w.lightSeen != ResolveColor(LightEdgeColor(t)));
        QCOMPARE(w.light->palette().color(QPalette::WindowText), ResolveColor(LightEdgeColor(t)));
        QCOMPARE(w.shadow->palette().color(QPalette::WindowText), ResolveColor(ShadowEdgeColor(t)));
    }

    void applyThemeKeepsOnTopFromTheSettings()
    {
        FakeThemedWindow w;
        ApplyTheme(&w);
        QVERIFY(!(w.windowFlags() & Qt::WindowStaysOnTopHint));
        WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("On-Top"), QStringLiteral("1"));
        ApplyTheme(&w);
        QVERIFY(w.windowFlags() & Qt::WindowStaysOnTopHint);
    }

    void windowWithoutExtrasIsPainted()
    {
        QWidget plain;
        auto *panel = new PaintedFrame(QStringLiteral("pfrPANEL"), &plain);
        ApplyTheme(&plain); // no bar, no ThemeElementsUpdate, no edge lines
        QCOMPARE(panel->angle(), CurrentTheme().PanelAngle);
    }

    void changedThemeRepaintsEveryWindow()
    {
        FakeThemedWindow a, b;
        a.show();
        b.show();
        QSignalSpy spy(ThemeNotifier::instance(), &ThemeNotifier::themeChanged);
        Theme t;
        t.PanelAngle = 10;
        SetCurrentTheme(t);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(a.panel->angle(), 10);
        QCOMPARE(b.panel->angle(), 10);
        QCOMPARE(a.updates, 1);
        QCOMPARE(b.updates, 1);
    }

    void opacityHasAFloor_data()
    {
        QTest::addColumn<int>("alpha");
        QTest::addColumn<double>("expected");
        QTest::newRow("10 shows as 20") << 10 << 20 / 255.0;
        QTest::newRow("19 shows as 20") << 19 << 20 / 255.0;
        QTest::newRow("128") << 128 << 128 / 255.0;
        QTest::newRow("255 opaque") << 255 << 1.0;
        QTest::newRow("300 opaque") << 300 << 1.0;
    }

    void opacityHasAFloor()
    {
        QFETCH(int, alpha);
        QFETCH(double, expected);
        QWidget w;
        SetWindowOpacity(&w, alpha);
        QVERIFY(qAbs(w.windowOpacity() - expected) < 0.01);
    }

private:
    std::unique_ptr<TestHome> m_home;
};

QTEST_MAIN(TestTheme)
#include "test_theme.moc"
