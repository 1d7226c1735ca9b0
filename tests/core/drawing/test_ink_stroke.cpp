// What one drag leaves in the layer: smooth freehand lines, highlighter, eraser, and lines and
// rectangles made with a modifier.
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_stroke.h"
#include "core/drawing/stroke_smoother.h"

#include <QLineF>
#include <QPainter>
#include <QTest>

namespace {

QImage drawStroke(const InkPen &pen, InkShape shape, const QList<QPointF> &points,
                  QSize size = QSize(200, 200))
{
    DrawingLayer layer;
    layer.reset(size);
    InkStroke stroke(layer, pen, shape, InkPoint{points.first(), 1});
    for (const QPointF &p : points.mid(1))
        stroke.moveTo(InkPoint{p, 1});
    stroke.finish();
    return layer.image();
}

// The corners with samples every `step` pixels between them, as a pointer reports a drag.
QList<QPointF> sampled(const QList<QPointF> &corners, qreal step = 4)
{
    QList<QPointF> points{corners.first()};
    for (int i = 1; i < corners.size(); ++i) {
        const QLineF leg(corners[i - 1], corners[i]);
        for (qreal t = step; t < leg.length(); t += step)
            points << leg.pointAt(t / leg.length());
        points << corners[i];
    }
    return points;
}

int alphaAt(const QImage &image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

// The smallest rectangle holding every pixel with any ink.
QRect inkBounds(const QImage &image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) > 0)
                bounds |= QRect(x, y, 1, 1);
    return bounds;
}

} // namespace

class TestInkStroke : public QObject
{
    Q_OBJECT
private slots:
    void smoothLineStaysNearThePointerAndEndsWhereItWasLetGo();
    void aClickLeavesADot();
    void highlighterDoesNotDarkenWhereItCrossesItself();
    void eraserTakesInkAway();
    void shapes_data();
    void shapes();
    void modifierMidDragTurnsTheLineStraight();
    void cancelTakesTheStrokeBack();
    void pressureNarrowsTheLine();
};

void TestInkStroke::smoothLineStaysNearThePointerAndEndsWhereItWasLetGo()
{
    StrokeSmoother smoother;
    QList<InkSegment> pieces{smoother.begin({QPointF(0, 0), 1})};
    // A jittery horizontal drag, as a hand on a mouse makes it.
    for (int x = 3; x <= 120; x += 3)
        pieces << smoother.add({QPointF(x, (x / 3) % 2 ? 2 : -2), 1});
    pieces << smoother.finish();
    QCOMPARE(pieces.last().to, QPointF(120, (120 / 3) % 2 ? 2 : -2));
    for (int i = 1; i < pieces.size(); ++i) {
        QCOMPARE(pieces[i].from, pieces[i - 1].to); // no gaps
        QVERIFY2(qAbs(pieces[i].control.y()) <= 2.0, "the line strays from the pointer");
    }
    // The jitter of +-2 comes out much smaller in the middle of the line.
    qreal worst = 0;
    for (int i = 3; i < pieces.size() - 3; ++i)
        worst = qMax(worst, qAbs(pieces[i].to.y()));
    QVERIFY2(worst < 1.0, qPrintable(QString::number(worst)));
}

void TestInkStroke::aClickLeavesADot()
{
    const QImage image = drawStroke({InkKind::Pen, Qt::black, 6}, InkShape::Freehand, {QPointF(50, 50)});
    QCOMPARE(alphaAt(image, 50, 50), 255);
    const QRect bounds = inkBounds(image);
    QVERIFY2(bounds.width() >= 5 && bounds.width() <= 8, qPrintable(QString::number(bounds.width())));
}

void TestInkStroke::highlighterDoesNotDarkenWhereItCrossesItself()
{
    // Down, across and back over the start: the line crosses itself at (50, 50).
    const QImage image = drawStroke(
        {InkKind::Highlighter, Qt::yellow, 16}, InkShape::Freehand,
        sampled({QPointF(50, 10), QPointF(50, 90), QPointF(90, 90), QPointF(90, 50), QPointF(20, 50)}));
    const int single = alphaAt(image, 50, 75);
    QVERIFY2(qAbs(single - qRound(255 * InkPen::kHighlighterOpacity)) <= 2,
             qPrintable(QString::number(single)));
    QCOMPARE(alphaAt(image, 50, 50), single);
    QCOMPARE(alphaAt(image, 70, 50), single);
}

void TestInkStroke::eraserTakesInkAway()
{
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    layer.beginEdit(QStringLiteral("Fill"));
    layer.paint(QRect(0, 0, 200, 200), [](QPainter &p) { p.fillRect(0, 0, 200, 200, Qt::blue); });
    layer.commitEdit();
    InkStroke stroke(layer, {InkKind::Eraser, Qt::white, 20}, InkShape::Freehand, {QPointF(20, 100), 1});
    stroke.moveTo({QPointF(180, 100), 1});
    stroke.finish();
    QCOMPARE(alphaAt(layer.image(), 100, 100), 0);
    QCOMPARE(alphaAt(layer.image(), 100, 120), 255);
    QCOMPARE(layer.undoLabel(), QStringLiteral("Eraser"));
}

void TestInkStroke::shapes_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("shape");
    QTest::addColumn<QPoint>("inked"); // a pixel the shape covers
    QTest::addColumn<QPoint>("clear"); // one it leaves alone
    QTest::addColumn<int>("inkedAlpha");
    QTest::addColumn<QString>("label");

    QTest::newRow("pen line") << int(InkKind::Pen) << int(InkShape::Line) << QPoint(100, 100)
                              << QPoint(100, 40) << 255 << "Line";
    QTest::newRow("pen rectangle is an outline") << int(InkKind::Pen) << int(InkShape::Rectangle)
                                                 << QPoint(40, 100) << QPoint(100, 100) << 255 << "Rectangle";
    QTest::newRow("highlighter rectangle is a translucent block")
        << int(InkKind::Highlighter) << int(InkShape::Rectangle) << QPoint(100, 100) << QPoint(10, 10)
        << qRound(255 * InkPen::kHighlighterOpacity) << "Rectangle";
}

void TestInkStroke::shapes()
{
    QFETCH(int, kind);
    QFETCH(int, shape);
    QFETCH(QPoint, inked);
    QFETCH(QPoint, clear);
    QFETCH(int, inkedAlpha);
    QFETCH(QString, label);
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    // The drag wanders; only where it ends counts.
    InkStroke stroke(layer, {InkKind(kind), Qt::red, 6}, InkShape(shape), {QPointF(40, 40), 1});
    stroke.moveTo({QPointF(100, 20), 1});
    QCOMPARE(alphaAt(layer.image(), 70, 30), 0); // nothing in the layer while dragging
    stroke.moveTo({QPointF(160, 160), 1});
    stroke.finish();
    QVERIFY(qAbs(alphaAt(layer.image(), inked.x(), inked.y()) - inkedAlpha) <= 2);
    QCOMPARE(alphaAt(layer.image(), clear.x(), clear.y()), 0);
    QCOMPARE(alphaAt(layer.image(), 70, 30), 0);
    QCOMPARE(layer.undoLabel(), label);
}

void TestInkStroke::modifierMidDragTurnsTheLineStraight()
{
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    InkStroke stroke(layer, {InkKind::Pen, Qt::black, 4}, InkShape::Freehand, {QPointF(20, 20), 1});
    for (int y = 20; y <= 180; y += 10)
        stroke.moveTo({QPointF(20, y), 1}); // down the left edge first
    QVERIFY(alphaAt(layer.image(), 20, 120) > 0);
    stroke.setShape(InkShape::Line);
    stroke.moveTo({QPointF(180, 180), 1});
    stroke.finish();
    QCOMPARE(alphaAt(layer.image(), 20, 120), 0);
    QCOMPARE(alphaAt(layer.image(), 100, 100), 255);
    QCOMPARE(layer.undoSteps(), 1);
}

void TestInkStroke::cancelTakesTheStrokeBack()
{
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    const QImage blank = layer.image();
    {
        InkStroke stroke(layer, {InkKind::Pen, Qt::black, 4}, InkShape::Freehand, {QPointF(20, 20), 1});
        stroke.moveTo({QPointF(150, 170), 1});
        QVERIFY(layer.image() != blank);
        stroke.cancel();
    }
    {
        // A stroke dropped mid-drag (the window closed) takes itself back too.
        InkStroke stroke(layer, {InkKind::Pen, Qt::black, 4}, InkShape::Freehand, {QPointF(20, 20), 1});
        stroke.moveTo({QPointF(150, 170), 1});
    }
    QCOMPARE(layer.image(), blank);
    QVERIFY(!layer.canUndo());
    QVERIFY(!layer.isEditing());
}

void TestInkStroke::pressureNarrowsTheLine()
{
    auto widthAtPressure = [](qreal pressure) {
        DrawingLayer layer;
        layer.reset(QSize(200, 100));
        const InkPen pen{InkKind::Pen, Qt::black, 20};
        InkStroke stroke(layer, pen, InkShape::Freehand, {QPointF(10, 50), pressure});
        for (int x = 20; x <= 190; x += 10)
            stroke.moveTo({QPointF(x, 50), pressure});
        stroke.finish();
        int width = 0;
        for (int y = 0; y < 100; ++y)
            width += alphaAt(layer.image(), 100, y) > 128;
        return width;
    };
    const int light = widthAtPressure(0.1);
    const int full = widthAtPressure(1.0);
    QVERIFY2(full >= 19 && full <= 21, qPrintable(QString::number(full)));
    QVERIFY2(light > 0 && light < full / 2, qPrintable(QString::number(light)));
}

QTEST_GUILESS_MAIN(TestInkStroke)
#include "test_ink_stroke.moc"
