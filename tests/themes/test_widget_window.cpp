#include "support/test_home.h"

#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "shell/widget_registry.h"
#include "themes/painted_frame.h"
#include "themes/themed_button.h"
#include "themes/widget_window.h"

#include <QApplication>
#include <QGuiApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

namespace {

class SampleWidget : public WidgetWindow
{
public:
    explicit SampleWidget(bool resizable = true, const QString &name = QStringLiteral("ftst_IDX"))
        : WidgetWindow(name, 90, QStringLiteral("Vantora Sample"))
        , m_resizable(resizable)
    {
        m_label = new QLabel(QStringLiteral("12:00"), panel());
        m_label->setObjectName(QStringLiteral("lblPANEL"));
    }
    QSize defaultSize() const override { return QSize(240, 150); }
    bool isResizable() const override { return m_resizable; }
    int relayouts = 0;
    int saves = 0;

protected:
    void relayout() override { ++relayouts; }
    void saveValues() override { ++saves; }

private:
    bool m_resizable;
    QLabel *m_label;
};

} // namespace

class TestWidgetWindow : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_home = std::make_unique<TestHome>();
        WidgetRegistry::instance().registerWidget(90, [] { return new SampleWidget(); });
        WidgetRegistry::instance().registerWidget(91, [] { return new SampleWidget(false); });
        WidgetRegistry::instance().registerWidget(92, [] { return new SampleWidget(true, QStringLiteral("ftst2_IDX")); });
    }
    void cleanup()
    {
        WidgetRegistry::instance().closeAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        m_home.reset();
    }

    void frameHasItsNamedParts()
    {
        WidgetWindow *w = WidgetRegistry::instance().open(90);
        QVERIFY(w);
        QVERIFY(w->findChild<PaintedFrame *>(QStringLiteral("pfrBAR")));
        QVERIFY(w->findChild<PaintedFrame *>(QStringLiteral("pfrPANEL")));
        QVERIFY(w->findChild<ThemedButton *>(QStringLiteral("CloseRefresh")));
        QVERIFY(w->findChild<QLabel *>(QStringLiteral("lblSTRETCH"))->isVisibleTo(w));
        QVERIFY(w->windowFlags() & Qt::FramelessWindowHint);
        QVERIFY(w->windowFlags() & Qt::Tool); // no taskbar button
        QCOMPARE(w->windowTitle(), QStringLiteral("Vantora Sample"));
        QCOMPARE(w->size(), QSize(240, 150));
    }

    void fixedSizeWidgetHasNoGrip()
    {
        WidgetWindow *w = WidgetRegistry::instance().open(91);
        QVERIFY(!w->findChild<QLabel *>(QStringLiteral("lblSTRETCH"))->isVisibleTo(w));
    }

    void panelFillsTheWindowBelowTheBar()
    {
        WidgetWindow *w = WidgetRegistry::instance().open(90);
        w->resize(400, 300);
        QCOMPARE(w->bar()->geometry(), QRect(0, 0, 400, w->barHeight()));
        QCOMPARE(w->panel()->geometry(), QRect(0, w->barHeight(), 400, 300 - w->barHeight()));
        auto *close = w->closeButton();
        QCOMPARE(close->geometry().right(), 400 - 10 - 1);
    }

    void closeButtonClosesAndRegistryForgets()
    {
        auto &registry = WidgetRegistry::instance();
        QSignalSpy closed(&registry, &WidgetRegistry::widgetClosed);
        auto *w = static_cast<SampleWidget *>(registry.open(90));
        QVERIFY(registry.isOpen(90));
        QTest::mouseClick(w->closeButton(), Qt::LeftButton);
        QVERIFY(!registry.isOpen(90));
        QCOMPARE(closed.count(), 1);
        QCOMPARE(closed.at(0).at(0).toInt(), 90);
    }

    void toggleOpensThenCloses()
    {
        auto &registry = WidgetRegistry::instance();
        registry.toggle(90);
        QVERIFY(registry.isOpen(90));
        registry.toggle(90);
        QVERIFY(!registry.isOpen(90));
        QVERIFY(!registry.open(77)); // nothing registered there
    }

    void placementSurvivesReopening()
    {
        auto &registry = WidgetRegistry::instance();
        WidgetWindow *w = registry.open(90);
        w->move(120, 90);
        w->resize(300, 200);
        const QPoint pos = w->pos();
        registry.close(90);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

        w = registry.open(90);
        QCOMPARE(w->size(), QSize(300, 200));
        QCOMPARE(w->pos(), pos);
    }

    void resetSizeGivesTheDefaultBack()
    {
        WidgetWindow *w = WidgetRegistry::instance().open(90);
        w->resize(500, 400);
        w->resetSize();
        QCOMPARE(w->size(), QSize(240, 150));
    }

    void keepInsideScreen_data()
    {
        QTest::addColumn<QPoint>("offset"); // from the screen's top-left corner
        QTest::addColumn<QPoint>("expected");
        QTest::newRow("already inside") << QPoint(40, 30) << QPoint(40, 30);
        QTest::newRow("past the right edge") << QPoint(10000, 30) << QPoint(-1, 30);
        QTest::newRow("above and left") << QPoint(-500, -80) << QPoint(0, 0);
        QTest::newRow("past the bottom") << QPoint(20, 10000) << QPoint(20, -1);
    }

    void keepInsideScreen()
    {
        QFETCH(QPoint, offset);
        QFETCH(QPoint, expected);
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        QWidget window(nullptr, Qt::Window | Qt::FramelessWindowHint);
        window.resize(200, 100);
        window.move(area.topLeft() + offset);
        KeepInsideScreen(&window);
        // -1 stands for "flush with the far edge".
        const int x = expected.x() < 0 ? area.right() + 1 - 200 : area.left() + expected.x();
        const int y = expected.y() < 0 ? area.bottom() + 1 - 100 : area.top() + expected.y();
        QCOMPARE(window.pos(), QPoint(x, y));
    }

    // Keys typed after a click on a widget must not reach its close button.
    void keysDoNotCloseTheWidget_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("space") << int(Qt::Key_Space);
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }

    void keysDoNotCloseTheWidget()
    {
        QFETCH(int, key);
        auto &registry = WidgetRegistry::instance();
        WidgetWindow *w = registry.open(90);
        w->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(w));
        QTest::mouseClick(w->panel(), Qt::LeftButton, {}, QPoint(20, 20));
        QVERIFY(QApplication::focusWidget() != w->closeButton());
        QWidget *target = QApplication::focusWidget() ? QApplication::focusWidget() : w;
        QTest::keyClick(target, Qt::Key(key));
        QVERIFY(registry.isOpen(90));
    }

    // A size stored below the usable minimum (dragged there by a window manager) comes back
    // at the minimum; so does a resize below it.
    void sizeNeverFallsBelowTheMinimum()
    {
        auto &registry = WidgetRegistry::instance();
        WidgetWindow *w = registry.open(90);
        const QSize minimum = w->minimumUsableSize();
        registry.close(90);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const QString key = SettingsRoot() + QStringLiteral("ftst_IDX\\Window");
        WriteSetting(Hive::CurrentUser, key, QStringLiteral("Width"), QStringLiteral("105"));
        WriteSetting(Hive::CurrentUser, key, QStringLiteral("Height"), QStringLiteral("90"));

        w = registry.open(90);
        QCOMPARE(w->size(), minimum);
        w->resize(10, 10);
        QCOMPARE(w->size(), minimum);
    }

    // Without a window manager the system resize is refused; the grip then follows the mouse.
    void gripResizesWithoutAWindowManager()
    {
        WidgetWindow *w = WidgetRegistry::instance().open(90);
        QLabel *grip = w->stretchGrip();
        const QSize before = w->size();
        const QPoint start = grip->mapToGlobal(grip->rect().center());
        const auto send = [&](QEvent::Type type, const QPoint &global, Qt::MouseButtons buttons) {
            QMouseEvent event(type, grip->mapFromGlobal(global), global,
                              type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, {});
            QApplication::sendEvent(grip, &event);
        };
        send(QEvent::MouseButtonPress, start, Qt::LeftButton);
        send(QEvent::MouseMove, start + QPoint(60, 40), Qt::LeftButton);
        QCOMPARE(w->size(), before + QSize(60, 40));
        send(QEvent::MouseMove, start - QPoint(500, 500), Qt::LeftButton);
        QCOMPARE(w->size(), w->minimumUsableSize());
        send(QEvent::MouseButtonRelease, start - QPoint(500, 500), Qt::NoButton);
    }

    // Stored places off the screen (saved at a smaller scale factor) are not piled up in the
    // centre: each widget takes a free spot of its own.
    void offScreenPlacesTakeFreeSpots()
    {
        auto &registry = WidgetRegistry::instance();
        for (const char *name : {"ftst_IDX", "ftst2_IDX"}) {
            const QString key = SettingsRoot() + QLatin1String(name) + QStringLiteral("\\Window");
            WriteSetting(Hive::CurrentUser, key, QStringLiteral("Left"), QStringLiteral("900000"));
            WriteSetting(Hive::CurrentUser, key, QStringLiteral("Top"), QStringLiteral("600000"));
        }
        const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
        WidgetWindow *first = registry.open(90);
        WidgetWindow *second = registry.open(92);
        QVERIFY(area.contains(first->frameGeometry()));
        QVERIFY(area.contains(second->frameGeometry()));
        QVERIFY(!first->frameGeometry().intersects(second->frameGeometry()));
    }

private:
    std::unique_ptr<TestHome> m_home;
};

QTEST_MAIN(TestWidgetWindow)
#include "test_widget_window.moc"
