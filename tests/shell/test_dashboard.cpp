#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "core/widget_index.h"
#include "notes/note_document.h"
#include "notes/notes_editor.h"
#include "notes/page_box.h"
#include "shell/dashboard_tile.h"
#include "shell/dashboard_window.h"
#include "shell/program_icon.h"
#include "shell/tray_icon.h"
#include "shell/update_check.h"
#include "shell/widget_registry.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/theme.h"
#include "themes/theme_colors.h"
#include "themes/widget_window.h"
#include "weather/weather_station.h"

#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>
#include <QWindow>
#include <QtTest/qtestspontaneevent.h>
#include <cmath>

namespace {

class FakeWidget : public WidgetWindow
{
public:
    explicit FakeWidget(int index)
        : WidgetWindow(WidgetWindowName(index), index, QStringLiteral("Vantora Test"))
    {
    }
};

DashboardTile *tile(DashboardWindow &d, int index)
{
    return d.findChild<DashboardTile *>(QStringLiteral("btnWIDGET_%1").arg(index));
}

// Lets a test deliver the window system's close event.
class ClosableDashboard : public DashboardWindow
{
public:
    using DashboardWindow::closeEvent;
};

void setDetail(const char *name, const char *value)
{
    WriteDetail(QStringLiteral("mdb_SET"), QString::fromLatin1(name), QString::fromLatin1(value));
}

} // namespace

class TestDashboard : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void namesAndTiles();
    void tileKeysAndMouse();
    void arrowKeysMoveSelection_data();
    void arrowKeysMoveSelection();
    void widgetsMenuFollowsOpenState();
    void unavailableWidgetIsDisabled();
    void tileDetailFollowsTheWidget();
    void closeBox_data();
    void closeBox();
    void minimiseHidesToTray_data();
    void minimiseHidesToTray();
    void exitSavesAndClosesEverything();
    void exitWaitsForUnsavedNotes();
    void handOverOfMissingWidgetShowsDashboard();
    void menusFollowTheThemeAndRead_data();
    void menusFollowTheThemeAndRead();
    void loadingFetchesAndShowsTheWeather();
    void windowIconIsTheDrawnProgramIcon_data();
    void windowIconIsTheDrawnProgramIcon();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestDashboard::initTestCase()
{
    for (int i = 0; i < WidgetCount; ++i) {
        if (i != WidgetWeather)
            WidgetRegistry::instance().registerWidget(i, [i] { return new FakeWidget(i); });
    }
}

void TestDashboard::init()
{
    m_home = std::make_unique<TestHome>();
    TrayIcon::setAvailableForTesting(1);
}

void TestDashboard::cleanup()
{
    WidgetRegistry::instance().closeAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    TrayIcon::setAvailableForTesting(-1);
    m_home.reset();
}

void TestDashboard::namesAndTiles()
{
    DashboardWindow d;
    QCOMPARE(d.objectName(), QStringLiteral("mdb_IDX"));
    QCOMPARE(d.windowTitle(), QStringLiteral("Vantora Dashboard"));
    QVERIFY(d.findChild<QWidget *>(QStringLiteral("pfrBAR")));
    QVERIFY(d.findChild<QWidget *>(QStringLiteral("pfrPANEL")));
    // The update check's item is there only when the build names a web site.
    QCOMPARE(d.findChild<QAction *>(QStringLiteral("mnuUPDATE"))->isVisible(), UpdateCheck::isEnabled());
    for (int i = 0; i < WidgetCount; ++i) {
        QVERIFY(tile(d, i));
        QCOMPARE(tile(d, i)->text(), WidgetDisplayName(i));
        QVERIFY(!tile(d, i)->toolTip().isEmpty());
    }
    d.setIndxSel(WidgetStopwatch);
    QCOMPARE(d.IndxSel(), int(WidgetStopwatch));
    QVERIFY(tile(d, WidgetStopwatch)->isSelected());
    QVERIFY(!tile(d, WidgetClock)->isSelected());
    // The all-widgets choice selects no tile.
    d.setIndxSel(WidgetAll);
    for (int i = 0; i < WidgetCount; ++i)
        QVERIFY(!tile(d, i)->isSelected());
}

void TestDashboard::tileKeysAndMouse()
{
    DashboardWindow d;
    d.show();
    QVERIFY(QTest::qWaitForWindowExposed(&d));
    WidgetRegistry &registry = WidgetRegistry::instance();

    QTest::mouseClick(tile(d, WidgetTimer), Qt::LeftButton);
    QCOMPARE(d.IndxSel(), int(WidgetTimer));
    QVERIFY(!registry.isOpen(WidgetTimer));

    QTest::keyClick(tile(d, WidgetTimer), Qt::Key_Return);
    QVERIFY(registry.isOpen(WidgetTimer));
    QVERIFY(tile(d, WidgetTimer)->isOpenState());
    QTest::keyClick(tile(d, WidgetTimer), Qt::Key_Space);
    QVERIFY(!registry.isOpen(WidgetTimer));
    QVERIFY(!tile(d, WidgetTimer)->isOpenState());

    QTest::mouseDClick(tile(d, WidgetCalendar), Qt::LeftButton);
    QVERIFY(registry.isOpen(WidgetCalendar));
    QCOMPARE(d.IndxSel(), int(WidgetCalendar));
}

void TestDashboard::arrowKeysMoveSelection_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("to");
    QTest::newRow("right") << 0 << int(Qt::Key_Right) << 1;
    QTest::newRow("down") << 1 << int(Qt::Key_Down) << 5;
    QTest::newRow("up wraps") << 1 << int(Qt::Key_Up) << 5;
    QTest::newRow("left wraps in the row") << 4 << int(Qt::Key_Left) << 7;
    QTest::newRow("right wraps in the row") << 3 << int(Qt::Key_Right) << 0;
}

void TestDashboard::arrowKeysMoveSelection()
{
    QFETCH(int, from);
    QFETCH(int, key);
    QFETCH(int, to);
    DashboardWindow d;
    d.setIndxSel(from);
    QTest::keyClick(tile(d, from), Qt::Key(key));
    QCOMPARE(d.IndxSel(), to);
}

void TestDashboard::widgetsMenuFollowsOpenState()
{
    DashboardWindow d;
    QAction *notes = d.findChild<QAction *>(QStringLiteral("mnuWIDGET_3"));
    QVERIFY(notes);
    QCOMPARE(notes->text(), QStringLiteral("&Notes"));
    notes->trigger();
    QVERIFY(WidgetRegistry::instance().isOpen(WidgetNotes));
    QVERIFY(notes->isChecked());
    QVERIFY(d.findChild<QAction *>(QStringLiteral("mnuHIDEALL"))->isEnabled());

    d.ShowHideAll(1);
    QVERIFY(!WidgetRegistry::instance().window(WidgetNotes)->isVisible());
    QVERIFY(WidgetRegistry::instance().isOpen(WidgetNotes));
    d.ShowHideAll(2);
    QVERIFY(WidgetRegistry::instance().window(WidgetNotes)->isVisible());

    WidgetRegistry::instance().close(WidgetNotes);
    QVERIFY(!notes->isChecked());
}

void TestDashboard::unavailableWidgetIsDisabled()
{
    DashboardWindow d;
    QVERIFY(!d.findChild<QAction *>(QStringLiteral("mnuWIDGET_7"))->isEnabled());
    d.setIndxSel(WidgetWeather);
    QVERIFY(!d.findChild<QWidget *>(QStringLiteral("btnOPEN"))->isEnabled());
    QTest::keyClick(tile(d, WidgetWeather), Qt::Key_Return);
    QVERIFY(!WidgetRegistry::instance().isOpen(WidgetWeather));
}

void TestDashboard::tileDetailFollowsTheWidget()
{
    QString detail = QStringLiteral("Dentist at 10");
    WidgetRegistry::instance().registerTileDetail(WidgetCalendar, [&detail] { return detail; });
    DashboardWindow d;
    QCOMPARE(tile(d, WidgetCalendar)->detail(), detail);
    QVERIFY(tile(d, WidgetCalendar)->toolTip().startsWith(detail));
    QVERIFY(tile(d, WidgetClock)->detail().isEmpty());

    // An open widget says when its detail changes; the tile follows at once.
    WidgetWindow *calendar = WidgetRegistry::instance().open(WidgetCalendar);
    detail = QStringLiteral("Call the garage");
    emit calendar->tileDetailChanged();
    QCOMPARE(tile(d, WidgetCalendar)->detail(), detail);
    WidgetRegistry::instance().registerTileDetail(WidgetCalendar, nullptr);
}

void TestDashboard::closeBox_data()
{
    QTest::addColumn<QString>("minimizeOnClose"); // null: default
    QTest::addColumn<bool>("tray");
    QTest::addColumn<bool>("hidden"); // else unloaded

    QTest::newRow("default hides") << QString() << true << true;
    QTest::newRow("0 ends the program") << "0" << true << false;
    QTest::newRow("no tray ends the program") << QString() << false << false;
}

void TestDashboard::closeBox()
{
    QFETCH(QString, minimizeOnClose);
    QFETCH(bool, tray);
    QFETCH(bool, hidden);
    TrayIcon::setAvailableForTesting(tray ? 1 : 0);
    if (!minimizeOnClose.isNull())
        setDetail("Program Minimize on Close", minimizeOnClose.toLatin1().constData());

    ClosableDashboard d;
    QSignalSpy unloaded(&d, &DashboardWindow::unloaded);
    d.show();
    QVERIFY(QTest::qWaitForWindowExposed(&d));
    // The close box's event comes from the window system: it is spontaneous.
    QCloseEvent userClose;
    QSpontaneKeyEvent::setSpontaneous(&userClose);
    d.closeEvent(&userClose);

    QCOMPARE(userClose.isAccepted(), !hidden);
    if (hidden)
        QVERIFY(!d.isVisible());
    QCOMPARE(unloaded.count(), hidden ? 0 : 1);

    // The program's own close is never cancelled.
    d.show();
    d.close();
    QVERIFY(!d.isVisible());
    QCOMPARE(unloaded.count(), hidden ? 1 : 2);
}

void TestDashboard::minimiseHidesToTray_data()
{
    QTest::addColumn<QString>("windowMinimize");
    QTest::addColumn<bool>("tray");
    QTest::addColumn<bool>("hidden");
    QTest::newRow("default stays") << QString() << true << false;
    QTest::newRow("1 hides") << "1" << true << true;
    QTest::newRow("1 without tray stays") << "1" << false << false;
}

void TestDashboard::minimiseHidesToTray()
{
    QFETCH(QString, windowMinimize);
    QFETCH(bool, tray);
    QFETCH(bool, hidden);
    TrayIcon::setAvailableForTesting(tray ? 1 : 0);
    if (!windowMinimize.isNull())
        setDetail("Window Minimize", windowMinimize.toLatin1().constData());

    DashboardWindow d;
    d.show();
    QVERIFY(QTest::qWaitForWindowExposed(&d));
    d.showMinimized();
    QTest::qWait(20);
    QCOMPARE(!d.isVisible(), hidden);
    if (hidden)
        QVERIFY(!(d.windowState() & Qt::WindowMinimized));
}

void TestDashboard::exitSavesAndClosesEverything()
{
    setDetail("Start-Webcam", "True");
    DashboardWindow d;
    QSignalSpy unloaded(&d, &DashboardWindow::unloaded);
    d.show();
    d.move(40, 30);
    WidgetRegistry::instance().open(WidgetClock);
    WidgetRegistry::instance().open(WidgetNotes);
    QWidget stray; // another window of the program, such as a settings dialog
    stray.show();

    d.exitProgram();

    QCOMPARE(unloaded.count(), 1);
    QVERIFY(WidgetRegistry::instance().openWidgets().isEmpty());
    QVERIFY(!stray.isVisible());
    QVERIFY(!d.isVisible());
    QCOMPARE(ReadDetail(QStringLiteral("mdb_SET"), QStringLiteral("Start-Webcam"), QString()),
             QStringLiteral("False"));
    QVERIFY(!ReadSetting(Hive::CurrentUser, SettingsRoot() + QStringLiteral("mdb_IDX\\Window"),
                         QStringLiteral("Left"), QString())
                 .isEmpty());
}

// Exit with a note not saved asks about it; Cancel ends nothing, not even the other widgets.
void TestDashboard::exitWaitsForUnsavedNotes()
{
    WidgetRegistry::instance().registerWidget(WidgetNotes, [] { return new NotesEditor; });
    DashboardWindow d;
    QSignalSpy unloaded(&d, &DashboardWindow::unloaded);
    d.show();
    // Every other widget is open too, whatever order the registry closes them in.
    for (int i = 0; i < WidgetCount; ++i) {
        if (i != WidgetWeather)
            WidgetRegistry::instance().open(i);
    }
    auto *notes = qobject_cast<NotesEditor *>(WidgetRegistry::instance().window(WidgetNotes));
    QVERIFY(notes);
    notes->activeDocument()->page()->insertPlainText(QStringLiteral("unsaved"));
    const int openBefore = WidgetRegistry::instance().openWidgets().size();
    int answer = AnswerCancel;
    int asked = 0;
    SetMessageResponderForTesting([&](bool question, int, const QString &) {
        asked += question;
        return answer;
    });

    d.exitProgram();
    QCOMPARE(asked, 1);
    QCOMPARE(unloaded.count(), 0);
    QCOMPARE(WidgetRegistry::instance().openWidgets().size(), openBefore); // Cancel closed nothing
    QVERIFY(d.isVisible());

    answer = AnswerNo;
    d.exitProgram();
    SetMessageResponderForTesting({});
    QCOMPARE(asked, 2); // "don't save" is not asked again when the editor closes
    QCOMPARE(unloaded.count(), 1);
    QVERIFY(WidgetRegistry::instance().openWidgets().isEmpty());
    WidgetRegistry::instance().registerWidget(WidgetNotes, [] { return new FakeWidget(WidgetNotes); });
}

void TestDashboard::handOverOfMissingWidgetShowsDashboard()
{
    DashboardWindow d;
    d.handOver(WidgetWeather); // not registered in this test
    QVERIFY(d.isVisible());
    QCOMPARE(d.IndxSel(), int(WidgetWeather));
}

void TestDashboard::menusFollowTheThemeAndRead_data()
{
    QTest::addColumn<quint32>("main"); // colours as themes store them, 0x00BBGGRR
    QTest::addColumn<quint32>("barText");
    QTest::addColumn<quint32>("panelText");

    const Theme standard;
    QTest::newRow("standard") << standard.MainColor << standard.BarColor << standard.PanelColor;
    QTest::newRow("white text on white") << 0x00FFFFFFu << 0x00FFFFFFu << 0x00FFFFFFu;
    QTest::newRow("black text on black") << 0x00000000u << 0x00000000u << 0x00000000u;
    QTest::newRow("white text on yellow") << 0x0000FFFFu << 0x00FFFFFFu << 0x00FFFFFFu;
    QTest::newRow("grey text on grey") << 0x00808080u << 0x00707070u << 0x00909090u;
}

void TestDashboard::menusFollowTheThemeAndRead()
{
    QFETCH(quint32, main);
    QFETCH(quint32, barText);
    QFETCH(quint32, panelText);
    Theme theme;
    theme.MainColor = main;
    theme.BarColor = barText;
    theme.PanelColor = panelText;
    const DashboardWindow::MenuColours c = DashboardWindow::menuColoursFor(theme);
    QVERIFY2(ContrastRatio(c.bar, c.barText) >= 4.5, "menu bar");
    QVERIFY2(ContrastRatio(c.barSelected, c.barSelectedText) >= 4.5, "chosen menu title");
    QVERIFY2(ContrastRatio(c.menu, c.menuText) >= 4.5, "menu");
    QVERIFY2(ContrastRatio(c.menuSelected, c.menuSelectedText) >= 4.5, "chosen menu item");

    const Theme before = CurrentTheme();
    DashboardWindow d;
    d.show();
    QVERIFY(QTest::qWaitForWindowExposed(&d));
    SetCurrentTheme(theme);
    const QImage bar = d.menuBar()->grab().toImage();
    SetCurrentTheme(before);
    // The free end of the bar, right of the menu titles.
    QCOMPARE(QColor(bar.pixel(bar.width() - 3, bar.height() / 2)).name(), c.bar.name());
}

void TestDashboard::loadingFetchesAndShowsTheWeather()
{
    LocalHttpServer server;
    server.setBody(
        "/wxdata/weather/rss/local/UKXX0085",
        "<rss><channel><item><title><![CDATA[Current Weather Conditions In London, United Kingdom]]>"
        "</title><description><![CDATA[<img src=\"http://h/images/open-meteo/26.gif?\" alt=\"\" /> "
        "Cloudy, and 57 F. <br/>For more details see "
        "open-meteo.com.]]></description></item></channel></rss>");
    WriteDetail(QStringLiteral("fwth_SET"), QStringLiteral("Weather Feed Host"),
                QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    DashboardWindow d;
    auto *weather = d.findChild<QWidget *>(QStringLiteral("pfrWEATHER"));
    QVERIFY(weather->isHidden()); // nothing to show before the first report
    d.loadDashboard(WidgetAll);
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount("/wxdata/weather/rss/local/UKXX0085"), 1, 5000);
    auto text = [&d](const char *name) { return d.findChild<QLabel *>(QString::fromLatin1(name))->text(); };
    QTRY_COMPARE_WITH_TIMEOUT(text("lblWEATHERTEMP"), QStringLiteral("14C"), 5000);
    QCOMPARE(text("lblWEATHERPLACE"), QStringLiteral("London"));
    QCOMPARE(text("lblWEATHERDESC"), QStringLiteral("Cloudy"));
    QCOMPARE(text("lblWEATHERTEXT"), QStringLiteral("57F 13.9C"));
    QVERIFY(!text("lblWEATHERPIC").isEmpty());
    // The glyph is drawn in the symbol font, loaded with the first weather and kept across a
    // theme change.
    auto *picture = d.findChild<QLabel *>(QStringLiteral("lblWEATHERPIC"));
    QCOMPARE(picture->font().family(), ShippedData::weatherFontFamily());
    d.ThemeElementsUpdate();
    QCOMPARE(picture->font().family(), ShippedData::weatherFontFamily());
    QVERIFY(!weather->isHidden());
    QVERIFY(weather->toolTip().contains(QStringLiteral("Open-Meteo")));
}

void TestDashboard::windowIconIsTheDrawnProgramIcon_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<qreal>("pixelRatio");
    QTest::addColumn<bool>("forWindows");
    QTest::addColumn<int>("meanTolerance");
    QTest::newRow("16, window") << 16 << 1.0 << true << 1;
    QTest::newRow("22, window") << 22 << 1.0 << true << 1;
    QTest::newRow("64, window") << 64 << 1.0 << true << 1;
    QTest::newRow("128") << 128 << 1.0 << false << 1;
    // Sizes between the drawn ones are scaled down from the next larger drawing: a little softer
    // than the SVG drawn at that size, never in other colours.
    QTest::newRow("35, the dashboard's") << 35 << 1.0 << false << 12;
    QTest::newRow("35 at twice the pixels") << 35 << 2.0 << false << 12;
}

// The icon comes as pixels drawn when the program was built: they must be the SVG, with the
// colours in the right byte order, also where a size between two drawings is scaled.
void TestDashboard::windowIconIsTheDrawnProgramIcon()
{
    QFETCH(int, side);
    QFETCH(qreal, pixelRatio);
    QFETCH(bool, forWindows);
    QFETCH(int, meanTolerance);
    const int pixels = qRound(side * pixelRatio);
    QImage shipped;
    if (forWindows) {
        const QIcon icon = ProgramIcon::forWindows();
        QVERIFY(icon.availableSizes().contains(QSize(side, side)));
        shipped = icon.pixmap(side, side).toImage();
    } else {
        const QPixmap pixmap = ProgramIcon::drawn(side, pixelRatio);
        QCOMPARE(pixmap.devicePixelRatio(), pixelRatio);
        shipped = pixmap.toImage();
    }
    shipped = shipped.convertToFormat(QImage::Format_ARGB32);
    QCOMPARE(shipped.size(), QSize(pixels, pixels));

    QSvgRenderer svg(QStringLiteral(VANTORA_ICON_SVG));
    QVERIFY(svg.isValid());
    QImage drawn(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    painter.end();
    drawn = drawn.convertToFormat(QImage::Format_ARGB32);

    qint64 differenceSum = 0;
    int opaque = 0;
    for (int y = 0; y < pixels; ++y) {
        for (int x = 0; x < pixels; ++x) {
            const QRgb a = shipped.pixel(x, y);
            const QRgb b = drawn.pixel(x, y);
            differenceSum += qMax(qMax(qAbs(qRed(a) - qRed(b)), qAbs(qGreen(a) - qGreen(b))),
                                  qMax(qAbs(qBlue(a) - qBlue(b)), qAbs(qAlpha(a) - qAlpha(b))));
            opaque += qAlpha(a) == 255;
        }
    }
    const double mean = double(differenceSum) / (pixels * pixels);
    QVERIFY2(mean <= meanTolerance,
             qPrintable(QStringLiteral("pixels differ from the SVG by %1 on average").arg(mean)));
    QVERIFY2(opaque > pixels * pixels / 4, "the icon is mostly see-through");
}

QTEST_MAIN(TestDashboard)
#include "test_dashboard.moc"
