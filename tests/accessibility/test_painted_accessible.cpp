#include "calculator/calculator_key.h"
#include "core/clickable_label.h"
#include "core/painted_accessible.h"
#include "shell/dashboard_tile.h"
#include "support/test_home.h"
#include "themes/themed_button.h"

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

#include <functional>
#include <memory>

namespace {

// Accessibility events sent while a test runs, as a screen reader's bridge would get them.
QList<QAccessible::Event> g_events;

void recordEvent(QAccessibleEvent *event)
{
    g_events.append(event->type());
}

QWidget *makeControl(const QString &kind)
{
    if (kind == QLatin1String("bar label"))
        return new ClickableLabel(QStringLiteral("lblSTART"), QStringLiteral(" &Start "));
    if (kind == QLatin1String("calculator key")) {
        auto *key = new CalculatorKey(QStringLiteral("lblADD"), QStringLiteral("+"), CalculatorKey::Role::Operator);
        key->setAccessibleName(QStringLiteral("Add"));
        return key;
    }
    auto *button = new ThemedButton;
    button->setAccessibleName(QStringLiteral("Close"));
    return button;
}

} // namespace

// What a screen reader learns about the controls the program paints itself.
class TestPaintedAccessible : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase()
    {
        QVERIFY(m_home.isValid());
        QAccessible::installUpdateHandler(recordEvent);
        QAccessible::setActive(true);
    }

    void cleanupTestCase() { QAccessible::installUpdateHandler(nullptr); }

    void paintedButtons_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("name");
        QTest::newRow("bar label: padding and access-key mark left out") << "bar label" << "Start";
        QTest::newRow("calculator key: the spoken name, not the symbol") << "calculator key" << "Add";
        QTest::newRow("picture button") << "picture button" << "Close";
    }

    // A push button with its name, and a Press that clicks it.
    void paintedButtons()
    {
        QFETCH(QString, kind);
        QFETCH(QString, name);
        std::unique_ptr<QWidget> control(makeControl(kind));
        QSignalSpy clicks(control.get(), SIGNAL(clicked()));
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(control.get());
        QVERIFY(iface);
        QCOMPARE(iface->role(), QAccessible::Button);
        QCOMPARE(iface->text(QAccessible::Name), name);
        QAccessibleActionInterface *actions = iface->actionInterface();
        QVERIFY(actions);
        QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
        actions->doAction(QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(clicks.count(), 1);
    }

    void switchedOffButtons_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("bar label switched off") << "bar label";
        QTest::newRow("picture button disabled") << "picture button";
    }

    // A control that does not respond says so, and a Press does nothing.
    void switchedOffButtons()
    {
        QFETCH(QString, kind);
        std::unique_ptr<QWidget> control(makeControl(kind));
        if (auto *label = qobject_cast<ClickableLabel *>(control.get()))
            label->setActive(false);
        else
            control->setEnabled(false);
        QSignalSpy clicks(control.get(), SIGNAL(clicked()));
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(control.get());
        QVERIFY(iface->state().disabled);
        iface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTest::qWait(20);
        QCOMPARE(clicks.count(), 0);
    }

    void liveValues_data()
    {
        QTest::addColumn<bool>("lineEdit");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("ticks");
        QTest::newRow("clock time") << false << "Time" << QStringList{"10:41:07", "10:41:08", "10:41:09"};
        QTest::newRow("running timer field") << true << "Seconds left" << QStringList{"59", "58", "57"};
    }

    // A value that changes every second is read when asked for and never announced.
    void liveValues()
    {
        QFETCH(bool, lineEdit);
        QFETCH(QString, name);
        QFETCH(QStringList, ticks);
        std::unique_ptr<QWidget> display;
        std::function<void(const QString &)> setText;
        if (lineEdit) {
            auto *edit = new QLineEdit;
            PaintedAccessible::makeLiveValue(edit, name);
            edit->setReadOnly(true);
            display.reset(edit);
            setText = [edit](const QString &t) { edit->setText(t); };
        } else {
            auto *label = new QLabel;
            display.reset(label);
            setText = [label](const QString &t) { label->setText(t); };
        }
        PaintedAccessible::makeLiveValue(display.get(), name);
        display->show();
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(display.get());
        QVERIFY(iface);
        QCOMPARE(iface->role(), QAccessible::StaticText);
        for (const QString &tick : ticks) {
            g_events.clear();
            setText(tick);
            QCOMPARE(iface->text(QAccessible::Name), name + QStringLiteral(": ") + tick);
            for (const QAccessible::Event type :
                 {QAccessible::NameChanged, QAccessible::ValueChanged, QAccessible::TextUpdated})
                QVERIFY2(!g_events.contains(type), qPrintable(QStringLiteral("event %1 on %2").arg(type).arg(tick)));
        }
    }

    void dashboardTile_data()
    {
        QTest::addColumn<bool>("open");
        QTest::addColumn<bool>("available");
        QTest::addColumn<int>("toggles");
        QTest::newRow("closed widget: a press opens it") << false << true << 1;
        QTest::newRow("open widget: checked, a press closes it") << true << true << 1;
        QTest::newRow("widget this build lacks: a press does nothing") << false << false << 0;
    }

    // Tiles say whether their widget is open; a screen reader's press opens or closes it, while
    // the mouse's single click only selects the tile.
    void dashboardTile()
    {
        QFETCH(bool, open);
        QFETCH(bool, available);
        QFETCH(int, toggles);
        DashboardTile tile(0);
        tile.setOpenState(open);
        tile.setAvailable(available);
        tile.show();
        QSignalSpy toggled(&tile, &DashboardTile::toggleRequested);
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(&tile);
        QVERIFY(!iface->text(QAccessible::Name).isEmpty());
        QCOMPARE(bool(iface->state().checked), open);
        QTest::mouseClick(&tile, Qt::LeftButton);
        QCOMPARE(toggled.count(), 0);
        QCOMPARE(tile.isChecked(), open); // the click did not flip it
        iface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(toggled.count(), toggles);
        QTest::qWait(toggles ? 0 : 200);
        QCOMPARE(toggled.count(), toggles);
    }

private:
    TestHome m_home;
};

QTEST_MAIN(TestPaintedAccessible)
#include "test_painted_accessible.moc"
