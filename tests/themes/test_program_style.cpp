#include "themes/program_style.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <QSpinBox>
#include <QStyleOption>
#include <QTest>
#include <QToolButton>

namespace {

const QColor kPanel(0x15, 0x65, 0xd0); // a dark blue panel
const QColor kText(Qt::white);          // with light text

// A panel in the themed windows' colours: light text on a dark background.
std::unique_ptr<QWidget> makePanel()
{
    auto panel = std::make_unique<QWidget>();
    QPalette pal = panel->palette();
    pal.setColor(QPalette::Window, kPanel);
    pal.setColor(QPalette::WindowText, kText);
    panel->setPalette(pal);
    panel->setAutoFillBackground(true);
    panel->resize(300, 200);
    ProgramStyle::markToolPanel(panel.get());
    return panel;
}

// How far `c` is from the panel's colour towards its text colour (0 = panel, 255 = text).
int towardsText(const QColor &c)
{
    return qRound(255.0 * (c.redF() - kPanel.redF()) / (kText.redF() - kPanel.redF()));
}

// The darkest pixel of `image` (by lightness) in `area`.
int darkest(const QImage &image, const QRect &area)
{
    int least = 255;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            least = qMin(least, QColor(image.pixel(x, y)).lightness());
    return least;
}

} // namespace

// The look of the tools on painted panels, drawn by the program's style.
class TestProgramStyle : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QApplication::setStyle(new ProgramStyle); }
    void toolButtonShowsItsState_data();
    void toolButtonShowsItsState();
    void arrowsReadOnTheirTrough_data();
    void arrowsReadOnTheirTrough();
    void onlyThePanelsToolsAreDrawnSo();
};

void TestProgramStyle::toolButtonShowsItsState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("filled");
    QTest::addColumn<bool>("framed");
    const int on = QStyle::State_Enabled;
    QTest::newRow("resting: flat") << on << false << false;
    QTest::newRow("under the pointer") << (on | QStyle::State_MouseOver) << true << true;
    QTest::newRow("switched on") << (on | QStyle::State_On) << true << true;
    QTest::newRow("focus from a click: no frame") << (on | QStyle::State_HasFocus) << false << false;
    QTest::newRow("focus from the keyboard: framed")
        << (on | QStyle::State_HasFocus | QStyle::State_KeyboardFocusChange) << false << true;
    QTest::newRow("off, under the pointer: flat") << int(QStyle::State_MouseOver) << false << false;
}

void TestProgramStyle::toolButtonShowsItsState()
{
    QFETCH(int, state);
    QFETCH(bool, filled);
    QFETCH(bool, framed);
    auto panel = makePanel();
    auto *button = new QToolButton(panel.get());
    QStyleOptionToolButton option;
    option.initFrom(button);
    option.rect = QRect(0, 0, 60, 24);
    option.state = QStyle::State(state);
    option.subControls = QStyle::SC_ToolButton;
    QImage image(option.rect.size(), QImage::Format_RGB32);
    image.fill(kPanel);
    QPainter painter(&image);
    QApplication::style()->drawComplexControl(QStyle::CC_ToolButton, &option, &painter, button);
    painter.end();

    // Inside, away from the (empty) caption, and on the frame's left edge, half-way down.
    const int inside = towardsText(image.pixelColor(4, 12));
    const int edge = towardsText(image.pixelColor(0, 12));
    QCOMPARE(inside > 20, filled);
    QCOMPARE(edge > inside + 20, framed);
}

void TestProgramStyle::arrowsReadOnTheirTrough_data()
{
    QTest::addColumn<bool>("spinBox");
    QTest::newRow("scroll bar") << false;
    QTest::newRow("spin box") << true;
}

// The panel's light text colour must not reach the arrows drawn on a light trough.
void TestProgramStyle::arrowsReadOnTheirTrough()
{
    QFETCH(bool, spinBox);
    auto panel = makePanel();
    QWidget *control = nullptr;
    if (spinBox) {
        control = new QSpinBox(panel.get());
    } else {
        auto *bar = new QScrollBar(Qt::Vertical, panel.get());
        bar->setRange(0, 100);
        control = bar;
    }
    control->resize(control->sizeHint().expandedTo(QSize(16, 120)));
    const QImage image = control->grab().toImage();
    // The arrows sit at the ends of a scroll bar and at the right of a spin box.
    const QRect arrows = spinBox ? QRect(image.width() - 14, 2, 10, image.height() - 4)
                                 : QRect(2, image.height() - 14, image.width() - 4, 12);
    QVERIFY2(darkest(image, arrows) < 128, "the arrows are drawn in a light colour on a light trough");
}

void TestProgramStyle::onlyThePanelsToolsAreDrawnSo()
{
    auto panel = makePanel();
    auto *inside = new QToolButton(panel.get());
    QWidget elsewhere;
    auto *outside = new QToolButton(&elsewhere);
    QVERIFY(ProgramStyle::isOnToolPanel(inside));
    QVERIFY(!ProgramStyle::isOnToolPanel(outside));
    // A window of its own under the panel (a menu) is not part of it.
    auto *popup = new QWidget(panel.get(), Qt::Popup);
    QVERIFY(!ProgramStyle::isOnToolPanel(new QToolButton(popup)));
}

QTEST_MAIN(TestProgramStyle)
#include "test_program_style.moc"
