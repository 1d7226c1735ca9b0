// The layer's undo history: exactly the pixels back, whatever was drawn, however the layer grew.
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_stroke.h"

#include <QPainter>
#include <QSignalSpy>
#include <QTest>

namespace {

// One mark of a kind that has gone wrong in paint programs' histories before.
enum class Mark
{
    PenAcrossTiles, // a long stroke through many tiles
    Highlighter,    // laid down at the end, translucent
    EraserOverInk,  // takes pixels away instead of adding them
    Rectangle,      // drawn at the end in one go
    NearEdge,       // in the partial tiles at the layer's right and bottom edge
};

void draw(DrawingLayer &layer, Mark mark, int seed)
{
    const qreal shift = seed * 7;
    auto drag = [&](const InkPen &pen, InkShape shape, const QList<QPointF> &points) {
        InkStroke stroke(layer, pen, shape, InkPoint{points.first(), 1});
        for (const QPointF &p : points.mid(1))
            stroke.moveTo(InkPoint{p, 0.6});
        stroke.finish();
    };
    switch (mark) {
    case Mark::PenAcrossTiles:
        drag({InkKind::Pen, Qt::darkBlue, 5}, InkShape::Freehand,
             {{10 + shift, 10}, {120, 90 + shift}, {230, 40}, {290, 180 - shift}});
        break;
    case Mark::Highlighter:
        drag({InkKind::Highlighter, Qt::yellow, 18}, InkShape::Freehand,
             {{20, 100 + shift}, {150, 110}, {20, 120 + shift}, {200, 100}});
        break;
    case Mark::EraserOverInk:
        drag({InkKind::Eraser, Qt::white, 14}, InkShape::Freehand, {{260, 30}, {30, 170 - shift}});
        break;
    case Mark::Rectangle:
        drag({InkKind::Pen, Qt::darkGreen, 4}, InkShape::Rectangle, {{40 + shift, 40}, {250, 170}});
        break;
    case Mark::NearEdge:
        drag({InkKind::Pen, Qt::black, 6}, InkShape::Freehand, {{300, 10 + shift}, {318, 190}, {250, 198}});
        break;
    }
}

} // namespace

class TestDrawingLayer : public QObject
{
    Q_OBJECT
private slots:
    void undoAndRedoGiveThePixelsBack_data();
    void undoAndRedoGiveThePixelsBack();
    void growingKeepsTheDrawingAndItsHistory();
    void growingWaitsForTheEditToEnd();
    void anEditThatChangesNothingLeavesNoStep();
    void revertTakesBackOnlyTheEditInProgress();
    void cleanStateFollowsTheHistory();
    void historyKeepsItsNewestSteps();
    void flattenedLaysTheInkOnTheBoard();
};

void TestDrawingLayer::undoAndRedoGiveThePixelsBack_data()
{
    QTest::addColumn<QList<int>>("marks");
    QTest::newRow("pen across tiles") << QList<int>{int(Mark::PenAcrossTiles)};
    QTest::newRow("highlighter") << QList<int>{int(Mark::Highlighter), int(Mark::Highlighter)};
    QTest::newRow("eraser over ink") << QList<int>{int(Mark::PenAcrossTiles), int(Mark::EraserOverInk)};
    QTest::newRow("rectangle over highlighter") << QList<int>{int(Mark::Highlighter), int(Mark::Rectangle)};
    QTest::newRow("partial tiles at the edge")
        << QList<int>{int(Mark::NearEdge), int(Mark::PenAcrossTiles), int(Mark::NearEdge)};
}

void TestDrawingLayer::undoAndRedoGiveThePixelsBack()
{
    QFETCH(QList<int>, marks);
    DrawingLayer layer;
    layer.reset(QSize(321, 203)); // not a whole number of tiles
    QList<QImage> states{layer.image()};
    for (int i = 0; i < marks.size(); ++i) {
        draw(layer, Mark(marks[i]), i);
        QVERIFY2(layer.image() != states.last(), "the mark drew nothing");
        states << layer.image();
    }
    QCOMPARE(layer.undoSteps(), marks.size());
    for (int i = marks.size() - 1; i >= 0; --i) {
        layer.undo();
        QVERIFY2(layer.image() == states[i], qPrintable(QStringLiteral("undo to state %1").arg(i)));
    }
    QVERIFY(!layer.canUndo());
    for (int i = 1; i <= marks.size(); ++i) {
        layer.redo();
        QVERIFY2(layer.image() == states[i], qPrintable(QStringLiteral("redo to state %1").arg(i)));
    }
    QVERIFY(!layer.canRedo());
}

void TestDrawingLayer::growingKeepsTheDrawingAndItsHistory()
{
    DrawingLayer layer;
    layer.reset(QSize(321, 203));
    const QImage blank = layer.image();
    draw(layer, Mark::NearEdge, 0);
    const QImage drawn = layer.image();

    layer.ensureSize(QSize(100, 100)); // smaller: nothing is cut
    QCOMPARE(layer.size(), QSize(321, 203));
    layer.ensureSize(QSize(700, 500));
    QCOMPARE(layer.size(), QSize(700, 500));
    QCOMPARE(layer.image().copy(0, 0, 321, 203), drawn);
    QCOMPARE(layer.image().copy(321, 0, 379, 500).pixelColor(10, 10), QColor(Qt::transparent));

    // Drawing in the new part of a tile that was cut at the old edge, then undoing both.
    draw(layer, Mark::PenAcrossTiles, 0);
    InkStroke stroke(layer, {InkKind::Pen, Qt::black, 8}, InkShape::Freehand, {QPointF(310, 5), 1});
    stroke.moveTo({QPointF(360, 230), 1});
    stroke.finish();
    layer.undo();
    layer.undo();
    QCOMPARE(layer.image().copy(0, 0, 321, 203), drawn);
    layer.undo();
    QCOMPARE(layer.image().copy(0, 0, 321, 203), blank);
}

void TestDrawingLayer::growingWaitsForTheEditToEnd()
{
    DrawingLayer layer;
    layer.reset(QSize(100, 100));
    InkStroke stroke(layer, {InkKind::Pen, Qt::black, 4}, InkShape::Freehand, {QPointF(90, 90), 1});
    layer.ensureSize(QSize(200, 150));
    QCOMPARE(layer.size(), QSize(100, 100));
    stroke.moveTo({QPointF(99, 50), 1});
    stroke.finish();
    QCOMPARE(layer.size(), QSize(200, 150));
    layer.undo();
    QCOMPARE(layer.image().copy(0, 0, 100, 100).pixelColor(90, 90), QColor(Qt::transparent));
}

void TestDrawingLayer::anEditThatChangesNothingLeavesNoStep()
{
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    QSignalSpy history(&layer, &DrawingLayer::historyChanged);
    InkStroke stroke(layer, {InkKind::Eraser, Qt::white, 20}, InkShape::Freehand, {QPointF(20, 20), 1});
    stroke.moveTo({QPointF(180, 180), 1});
    stroke.finish();
    QVERIFY(!layer.canUndo());
    QVERIFY(layer.isClean());
    QVERIFY(!history.isEmpty());
}

void TestDrawingLayer::revertTakesBackOnlyTheEditInProgress()
{
    DrawingLayer layer;
    layer.reset(QSize(200, 200));
    draw(layer, Mark::PenAcrossTiles, 0);
    const QImage before = layer.image();
    layer.beginEdit(QStringLiteral("Fill"));
    layer.paint(QRect(0, 0, 200, 200), [](QPainter &p) { p.fillRect(0, 0, 200, 200, Qt::magenta); });
    QVERIFY(!layer.isClean());
    layer.revertEdit();
    QCOMPARE(layer.image(), before);
    layer.paint(QRect(10, 10, 5, 5), [](QPainter &p) { p.fillRect(10, 10, 5, 5, Qt::magenta); });
    QVERIFY(layer.commitEdit());
    QCOMPARE(layer.undoLabel(), QStringLiteral("Fill"));
    layer.undo();
    QCOMPARE(layer.image(), before);
}

void TestDrawingLayer::cleanStateFollowsTheHistory()
{
    DrawingLayer layer;
    layer.reset(QSize(300, 200));
    QVERIFY(layer.isClean());
    draw(layer, Mark::PenAcrossTiles, 0);
    QVERIFY(!layer.isClean());
    layer.setClean(); // saved
    draw(layer, Mark::Rectangle, 0);
    QVERIFY(!layer.isClean());
    layer.undo();
    QVERIFY(layer.isClean());
    layer.undo();
    QVERIFY(!layer.isClean());
    layer.redo();
    QVERIFY(layer.isClean());
    // Undo past the saved state, then draw something else: the saved state cannot come back.
    layer.undo();
    draw(layer, Mark::Highlighter, 0);
    layer.undo();
    QVERIFY(!layer.isClean());
}

void TestDrawingLayer::historyKeepsItsNewestSteps()
{
    DrawingLayer layer;
    layer.reset(QSize(64, 64));
    layer.setClean();
    const int steps = DrawingLayer::kMostSteps + 20;
    for (int i = 0; i < steps; ++i) {
        layer.beginEdit(QString::number(i));
        layer.paint(QRect(i % 64, 0, 1, 1),
                    [i](QPainter &p) { p.fillRect(i % 64, 0, 1, 1, QColor(i % 256, 0, 0)); });
        layer.commitEdit();
    }
    QCOMPARE(layer.undoSteps(), int(DrawingLayer::kMostSteps));
    QCOMPARE(layer.undoLabel(), QString::number(steps - 1));
    while (layer.canUndo())
        layer.undo();
    // The oldest steps are gone, and with them the way back to the saved state.
    QCOMPARE(layer.redoLabel(), QString::number(steps - DrawingLayer::kMostSteps));
    QVERIFY(!layer.isClean());
}

void TestDrawingLayer::flattenedLaysTheInkOnTheBoard()
{
    DrawingLayer layer;
    layer.reset(QSize(50, 50));
    layer.beginEdit(QStringLiteral("Dot"));
    layer.paint(QRect(10, 10, 1, 1), [](QPainter &p) { p.fillRect(10, 10, 1, 1, QColor(255, 0, 0, 128)); });
    layer.commitEdit();
    const QImage board = layer.flattened(QColor(0, 0, 255));
    QVERIFY(!board.hasAlphaChannel());
    QCOMPARE(board.pixelColor(0, 0), QColor(0, 0, 255));
    const QColor mixed = board.pixelColor(10, 10);
    QVERIFY(qAbs(mixed.red() - 128) <= 1 && qAbs(mixed.blue() - 127) <= 1);
}

QTEST_GUILESS_MAIN(TestDrawingLayer)
#include "test_drawing_layer.moc"
