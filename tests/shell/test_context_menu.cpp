#include "core/widget_index.h"
#include "shell/dashboard_window.h"
#include "shell/shell_tools.h"
#include "shell/widget_context_menu.h"
#include "shell/widget_registry.h"
#include "support/test_home.h"
#include "themes/widget_window.h"

#include <QSignalSpy>
#include <QTest>

namespace {

// A bare widget standing in for the real ones, with the menu variant of its window name.
class FakeWidget : public WidgetWindow
{
public:
    FakeWidget(int index, const QString &variant, bool settings)
        : WidgetWindow(WidgetWindowName(index), index, QStringLiteral("Vantora Test")), m_variant(variant),
          m_settings(settings)
    {
    }
    QString contextMenuVariant() const override { return m_variant; }
    bool hasSettingsDialog() const override { return m_settings; }
    void openSettingsDialog() override { ++settingsOpened; }
    int settingsOpened = 0;

private:
    QString m_variant;
    bool m_settings;
};

using Variant = WidgetContextMenu::Variant;

QString describe(const QAction *a)
{
    return a->isSeparator() ? a->objectName() + QStringLiteral(" -")
                            : a->objectName() + QLatin1Char(' ') + a->text();
}

} // namespace

Q_DECLARE_METATYPE(WidgetContextMenu::Variant)

class TestContextMenu : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void itemsInOrder();
    void variantChoice_data();
    void variantChoice();
    void variantForWindow();
    void variantItems_data();
    void variantItems();
    void stateEnablesItems();
    void closeSelectedClosesActiveNotes();
    void widgetSettingsOpensActiveWidgetsDialog();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestContextMenu::initTestCase()
{
    m_home = std::make_unique<TestHome>();
    for (int i = 0; i < WidgetCount; ++i) {
        WidgetRegistry::instance().registerWidget(i, [i] {
            const QString variant = i == WidgetNotes ? QStringLiteral("notes") : QStringLiteral("common");
            return new FakeWidget(i, variant, i == WidgetNotes);
        });
    }
}

void TestContextMenu::cleanup()
{
    WidgetRegistry::instance().closeAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void TestContextMenu::itemsInOrder()
{
    WidgetContextMenu menu;
    QCOMPARE(menu.objectName(), QStringLiteral("mnuDCTOP"));
    QCOMPARE(menu.title(), QStringLiteral("&RC Menu"));

    QStringList top;
    for (const QAction *a : menu.actions())
        top << describe(a);
    const QStringList expectedTop{
        "mnuDCMANAGER Show &Dashboard",
        "mnuDCMANAGERHIDE &Hide Dashboard",
        "mnuDCSEP0112 -",
        "mnuDCGENSET &Program Settings...",
        "mnuRCWIZARD Wi&zard Setup...",
        "mnuDCSEP011 -",
        "mnuDCSETTINGS Edit &Theme Settings...",
        "mnuDCSEP01 -",
        "mnuDCWEBCAM W&ebcam Wallpaper...",
        "mnuDCSHARE Sha&re Theme...",
        "mnuDCSEP00 -",
        "mnuWIDGETSSUB &Widgets",
        "mnuDCSEP02 -",
        "mnuDCSHOWALL &Show All Opened Widgets",
        "mnuDCHIDEALL &Hide All Opened Widgets",
        "mnuDCSEP04 -",
        "mnuWIDGRESET Widget Reset S&ize",
        "mnuRCWIDGETSET Widg&et Settings...",
        "mnuDCCLOSE &Close Selected Widget",
        "mnuDCSEP03 -",
        "mnuDCEXIT E&xit program",
    };
    QCOMPARE(top, expectedTop);

    QMenu *sub = menu.findChild<QMenu *>(QStringLiteral("mnuWIDGETSSUB"));
    QVERIFY(sub);
    QStringList widgets;
    for (const QAction *a : sub->actions())
        widgets << describe(a);
    const QStringList expectedWidgets{
        "mnuDCALARM &Alarm Clock",     "mnuDCCALC Calc&ulator",  "mnuDCCALENDAR Calen&dar",
        "mnuDCNOTES &Notes",           "mnuDCSWATCH &Stopwatch", "mnuDCTIMER &Timer",
        "mnuDCWHITEBOARD Whiteb&oard", "mnuDCWEATHER &Weather",
    };
    QCOMPARE(widgets, expectedWidgets);
}

void TestContextMenu::variantChoice_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Variant>("variant");
    QTest::newRow("clock") << "clock" << Variant::Clock;
    QTest::newRow("clock window") << "falc_IDX" << Variant::Clock;
    QTest::newRow("notes window") << "fnte_IDX" << Variant::Notes;
    QTest::newRow("whiteboard") << "whiteboard" << Variant::Whiteboard;
    QTest::newRow("weather window") << "fwth_IDX" << Variant::Weather;
    QTest::newRow("calculator window") << "fclc_IDX" << Variant::Common;
    QTest::newRow("common") << "common" << Variant::Common;
    QTest::newRow("unknown") << "something" << Variant::Common;
}

void TestContextMenu::variantChoice()
{
    QFETCH(QString, name);
    QFETCH(Variant, variant);
    QCOMPARE(WidgetContextMenu::variantFromName(name), variant);
}

void TestContextMenu::variantForWindow()
{
    FakeWidget clock(WidgetClock, QStringLiteral("clock"), true);
    FakeWidget calculator(WidgetCalculator, QStringLiteral("common"), false);
    QWidget other;
    other.setObjectName(QStringLiteral("fwbd_IDX"));
    QCOMPARE(WidgetContextMenu::variantFor(nullptr), Variant::Tray);
    QCOMPARE(WidgetContextMenu::variantFor(&clock), Variant::Clock);
    QCOMPARE(WidgetContextMenu::variantFor(&calculator), Variant::Common);
    QCOMPARE(WidgetContextMenu::variantFor(&other), Variant::Whiteboard);
}

void TestContextMenu::variantItems_data()
{
    QTest::addColumn<Variant>("variant");
    QTest::addColumn<bool>("widgetItems");
    QTest::addColumn<bool>("settingsItem");
    QTest::newRow("tray") << Variant::Tray << false << false;
    QTest::newRow("common") << Variant::Common << true << false;
    QTest::newRow("clock") << Variant::Clock << true << true;
    QTest::newRow("notes") << Variant::Notes << true << true;
    QTest::newRow("whiteboard") << Variant::Whiteboard << true << true;
    QTest::newRow("weather") << Variant::Weather << true << true;
}

void TestContextMenu::variantItems()
{
    QFETCH(Variant, variant);
    QFETCH(bool, widgetItems);
    QFETCH(bool, settingsItem);
    WidgetContextMenu menu;
    WidgetContextMenu::State state;
    state.variant = variant;
    menu.prepare(state);
    QCOMPARE(menu.variant(), variant);
    for (const char *name : {"mnuDCSEP04", "mnuWIDGRESET", "mnuDCCLOSE"})
        QCOMPARE(menu.item(QString::fromLatin1(name))->isVisible(), widgetItems);
    QCOMPARE(menu.item(QStringLiteral("mnuRCWIDGETSET"))->isVisible(), settingsItem);
    // Items every variant keeps.
    for (const char *name : {"mnuDCMANAGER", "mnuDCGENSET", "mnuRCWIZARD", "mnuWIDGETSSUB", "mnuDCEXIT"})
        QVERIFY2(menu.item(QString::fromLatin1(name))->isVisible(), name);
}

void TestContextMenu::stateEnablesItems()
{
    WidgetContextMenu menu;
    WidgetContextMenu::State state;
    state.variant = Variant::Common;
    state.widgetAvailable = {true, true, false, true, true, true, true, true};
    state.widgetOpen = {false, true, false, false, false, false, false, false};
    state.webcamAvailable = true;
    menu.prepare(state);

    QVERIFY(!menu.item(QStringLiteral("mnuDCCALENDAR"))->isEnabled());
    QVERIFY(menu.item(QStringLiteral("mnuDCCALC"))->isChecked());
    QVERIFY(!menu.item(QStringLiteral("mnuDCALARM"))->isChecked());
    QVERIFY(menu.item(QStringLiteral("mnuDCSHOWALL"))->isEnabled());
    QVERIFY(!menu.item(QStringLiteral("mnuDCMANAGERHIDE"))->isEnabled());
    QVERIFY(!menu.item(QStringLiteral("mnuDCSETTINGS"))->isEnabled());
    QVERIFY(menu.item(QStringLiteral("mnuDCWEBCAM"))->isEnabled());
    QVERIFY(!menu.item(QStringLiteral("mnuDCSHARE"))->isEnabled());

    state.widgetOpen = {};
    state.dashboardVisible = true;
    menu.prepare(state);
    QVERIFY(!menu.item(QStringLiteral("mnuDCSHOWALL"))->isEnabled());
    QVERIFY(!menu.item(QStringLiteral("mnuDCHIDEALL"))->isEnabled());
    QVERIFY(menu.item(QStringLiteral("mnuDCMANAGERHIDE"))->isEnabled());
}

void TestContextMenu::closeSelectedClosesActiveNotes()
{
    DashboardWindow dashboard;
    WidgetContextMenu menu;
    dashboard.attachContextMenu(&menu);
    WidgetRegistry &registry = WidgetRegistry::instance();
    registry.open(WidgetCalculator);
    WidgetWindow *notes = registry.open(WidgetNotes);
    QVERIFY(notes);

    menu.popUpFor(notes, false, QPoint(10, 10));
    QCOMPARE(menu.variant(), Variant::Notes);
    menu.item(QStringLiteral("mnuDCCLOSE"))->trigger();

    QVERIFY(!registry.isOpen(WidgetNotes));
    QVERIFY(registry.isOpen(WidgetCalculator));
    QCOMPARE(dashboard.IndxSel(), int(WidgetNotes));
}

void TestContextMenu::widgetSettingsOpensActiveWidgetsDialog()
{
    WidgetContextMenu menu;
    auto *notes = static_cast<FakeWidget *>(WidgetRegistry::instance().open(WidgetNotes));
    menu.popUpFor(notes, false, QPoint(10, 10));
    QAction *settings = menu.item(QStringLiteral("mnuRCWIDGETSET"));
    QVERIFY(settings->isVisible());
    QVERIFY(settings->isEnabled());
    settings->trigger();
    QCOMPARE(notes->settingsOpened, 1);
    menu.close();
}

QTEST_MAIN(TestContextMenu)
#include "test_context_menu.moc"
