// Renders the calculator into PNG files for a visual check of the layout and theme painting:
//   calculator_screenshot OUTPUT_FOLDER
// Runs in a temporary home, on any Qt platform (QT_QPA_PLATFORM=offscreen works). Not a test;
// the pictures are for looking at, not for committing.
#include "calculator/calculator_key.h"
#include "calculator/calculator_widget.h"
#include "support/test_home.h"
#include "themes/theme.h"
#include "themes/theme_painter.h"

#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QTest>

namespace {

// steps: blank-separated; a key name ("lblMEMSET") presses that key, anything else is typed.
void shoot(const QString &folder, const QString &name, const QSize &size, const QString &steps,
           const QString &heldKey = QString())
{
    QPointer<CalculatorWidget> calc = new CalculatorWidget;
    calc->loadWindow();
    calc->resize(size);
    calc->show();
    for (const QString &step : steps.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (step.startsWith(QLatin1String("lbl")))
            calc->pressKey(step);
        else
            QTest::keyClicks(calc, step);
    }
    if (!heldKey.isEmpty())
        calc->findChild<CalculatorKey *>(heldKey)->setPressed(true);
    QCoreApplication::processEvents();
    calc->grab().save(QDir(folder).filePath(name + QStringLiteral(".png")));
    delete calc.data();
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc < 2) {
        qWarning("usage: calculator_screenshot OUTPUT_FOLDER");
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(folder);
    TestHome home;

    shoot(folder, "default", QSize(240, 330), "12+7.5*", "lblMULTIPLY");
    shoot(folder, "small", QSize(180, 240), "1/3=");
    shoot(folder, "large", QSize(420, 560), "2.5 lblMEMSET 123456789012345");

    Theme light = CurrentTheme();
    light.MainColor = 0x00F0F0F0;
    light.PanelColor = 0x00303030;
    light.BarColor = 0x00202020;
    light.MainContrast = 40;
    SetCurrentTheme(light);
    shoot(folder, "light", QSize(240, 330), "42 lblMEMSET -", "lblNUMBER_2");
    return 0;
}
