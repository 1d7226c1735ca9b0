#include "support/test_home.h"

#include "core/widget_frame.h"
#include "shell/widget_registry.h"
#include "themes/painted_frame.h"
#include "themes/themed_button.h"
#include "themes/widget_window.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

namespace {

class SampleWidget : public WidgetWindow
{
public:
    explicit SampleWidget(bool resizable = true)
        : WidgetWindow(QStringLiteral("ftst_IDX"), 90, QStringLiteral("Vantora Sample"))
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

private:
    std::unique_ptr<TestHome> m_home;
};

QTEST_MAIN(TestWidgetWindow)
#include "test_widget_window.moc"
