// Moving and scaling a picture or text before it is fixed.
#include "core/drawing/floating_item.h"

#include <QTest>

Q_DECLARE_METATYPE(FloatingItem::Handle)

class TestFloatingItem : public QObject
{
    Q_OBJECT
private slots:
    void dragging_data();
    void dragging();
    void handleUnderThePointer_data();
    void handleUnderThePointer();
    void fitsIntoTheVisibleArea();
};

void TestFloatingItem::dragging_data()
{
    using H = FloatingItem::Handle;
    QTest::addColumn<FloatingItem::Handle>("handle");
    QTest::addColumn<QPointF>("delta");
    QTest::addColumn<QRectF>("expected");
    // The item starts at (100, 100), 200 x 100.
    QTest::newRow("body moves") << H::Body << QPointF(-30, 12) << QRectF(70, 112, 200, 100);
    QTest::newRow("bottom-right grows, shape kept")
        << H::BottomRight << QPointF(200, 100) << QRectF(100, 100, 400, 200);
    QTest::newRow("top-left grows about the bottom-right")
        << H::TopLeft << QPointF(-100, -50) << QRectF(0, 50, 300, 150);
    QTest::newRow("top-right shrinks") << H::TopRight << QPointF(-100, 50) << QRectF(100, 150, 100, 50);
    QTest::newRow("off the diagonal: the part along it counts")
        << H::BottomRight << QPointF(250, 0) << QRectF(100, 100, 400, 200);
    QTest::newRow("past the opposite corner: smallest, not turned over")
        << H::BottomLeft << QPointF(500, -400) << QRectF(284, 100, 16, 8);
    QTest::newRow("no handle: nothing") << H::None << QPointF(10, 10) << QRectF(100, 100, 200, 100);
}

void TestFloatingItem::dragging()
{
    QFETCH(FloatingItem::Handle, handle);
    QFETCH(QPointF, delta);
    QFETCH(QRectF, expected);
    // Smallest side 8: the 2:1 item cannot get smaller than 16 x 8.
    const QRectF result = FloatingItem::draggedRect(QRectF(100, 100, 200, 100), handle, delta, 8);
    QVERIFY2(qAbs(result.left() - expected.left()) < 0.01 && qAbs(result.top() - expected.top()) < 0.01 &&
                 qAbs(result.width() - expected.width()) < 0.01 &&
                 qAbs(result.height() - expected.height()) < 0.01,
             qPrintable(QStringLiteral("%1,%2 %3x%4")
                            .arg(result.left())
                            .arg(result.top())
                            .arg(result.width())
                            .arg(result.height())));
}

void TestFloatingItem::handleUnderThePointer_data()
{
    using H = FloatingItem::Handle;
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<FloatingItem::Handle>("handle");
    QTest::newRow("corner, just outside") << QPointF(96, 97) << H::TopLeft;
    QTest::newRow("corner wins over the body") << QPointF(103, 103) << H::TopLeft;
    QTest::newRow("bottom-right") << QPointF(299, 199) << H::BottomRight;
    QTest::newRow("body") << QPointF(200, 150) << H::Body;
    QTest::newRow("beside") << QPointF(320, 150) << H::None;
}

void TestFloatingItem::handleUnderThePointer()
{
    QFETCH(QPointF, point);
    QFETCH(FloatingItem::Handle, handle);
    FloatingItem item = FloatingItem::picture(QImage(200, 100, QImage::Format_ARGB32));
    item.setRect(QRectF(100, 100, 200, 100));
    QCOMPARE(item.handleAt(point, 6), handle);
}

void TestFloatingItem::fitsIntoTheVisibleArea()
{
    FloatingItem item = FloatingItem::picture(QImage(2000, 1000, QImage::Format_ARGB32));
    item.fitInto(QRectF(0, 0, 800, 600));
    QCOMPARE(item.rect(), QRectF(0, 100, 800, 400));
    FloatingItem small = FloatingItem::picture(QImage(40, 20, QImage::Format_ARGB32));
    small.fitInto(QRectF(0, 0, 800, 600));
    QCOMPARE(small.rect(), QRectF(380, 290, 40, 20)); // never enlarged
    QVERIFY(FloatingItem::picture(QImage()).isNull());
    QVERIFY(FloatingItem::text(QStringLiteral("  \n "), QFont(), Qt::black).isNull());
}

QTEST_MAIN(TestFloatingItem)
#include "test_floating_item.moc"
