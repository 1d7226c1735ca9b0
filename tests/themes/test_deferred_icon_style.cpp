#include "themes/deferred_icon_style.h"

#include <QApplication>
#include <QMenuBar>
#include <QTest>

// The program's style hands out standard icons that read their pictures when drawn; what they
// draw must be what the platform style would have drawn.
class TestDeferredIconStyle : public QObject
{
    Q_OBJECT
private slots:
    void drawsWhatTheBaseStyleDraws_data();
    void drawsWhatTheBaseStyleDraws();
    void outlivesTheWidgetThatAsked();
};

void TestDeferredIconStyle::drawsWhatTheBaseStyleDraws_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<int>("side");
    QTest::newRow("menu bar overflow") << int(QStyle::SP_ToolBarHorizontalExtensionButton) << 16;
    QTest::newRow("toolbar overflow") << int(QStyle::SP_ToolBarVerticalExtensionButton) << 16;
    QTest::newRow("warning") << int(QStyle::SP_MessageBoxWarning) << 32;
    QTest::newRow("question, large") << int(QStyle::SP_MessageBoxQuestion) << 64;
    QTest::newRow("dialog OK") << int(QStyle::SP_DialogOkButton) << 16;
}

void TestDeferredIconStyle::drawsWhatTheBaseStyleDraws()
{
    QFETCH(int, which);
    QFETCH(int, side);
    DeferredIconStyle style;
    const auto pixmap = QStyle::StandardPixmap(which);
    const QIcon deferred = style.standardIcon(pixmap);
    const QIcon direct = style.baseStyle()->standardIcon(pixmap);
    QCOMPARE(deferred.isNull(), direct.isNull());
    QCOMPARE(deferred.availableSizes(), direct.availableSizes());
    QCOMPARE(deferred.pixmap(side).toImage(), direct.pixmap(side).toImage());
    // A copy made before the first drawing draws the same.
    QIcon copy = style.standardIcon(pixmap);
    const QIcon second = copy;
    QCOMPARE(second.pixmap(side).toImage(), direct.pixmap(side).toImage());
}

void TestDeferredIconStyle::outlivesTheWidgetThatAsked()
{
    DeferredIconStyle style;
    auto *bar = new QMenuBar;
    bar->setStyle(&style);
    const QIcon icon = style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, nullptr, bar);
    delete bar;
    QVERIFY(!icon.pixmap(16).isNull());
}

QTEST_MAIN(TestDeferredIconStyle)
#include "test_deferred_icon_style.moc"
