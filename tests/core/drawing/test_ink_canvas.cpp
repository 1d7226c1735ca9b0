// The drawing surface under the pointer and the keyboard: strokes, modifiers, items being
// placed, and a board larger than its window.
#include "core/drawing/drawing_area.h"
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_canvas.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QSignalSpy>
#include <QTabletEvent>
#include <QTest>

namespace {

void sendMouse(QWidget *w, QEvent::Type type, const QPointF &pos, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, pos, w->mapToGlobal(pos), button, buttons, modifiers);
    QApplication::sendEvent(w, &event);
}

// A left-button drag through `points`; `modifiers` are held from the point numbered `from` on.
void drag(QWidget *w, const QList<QPointF> &points, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
          int from = 0)
{
    sendMouse(w, QEvent::MouseButtonPress, points.first(), Qt::LeftButton,
              from == 0 ? modifiers : Qt::NoModifier);
    for (int i = 1; i < points.size(); ++i)
        sendMouse(w, QEvent::MouseMove, points[i], Qt::LeftButton, i >= from ? modifiers : Qt::NoModifier);
    sendMouse(w, QEvent::MouseButtonRelease, points.last(), Qt::NoButton);
}

QList<QPointF> across(const QPointF &from, const QPointF &to, int steps = 20)
{
    QList<QPointF> points;
    for (int i = 0; i <= steps; ++i)
        points << from + (to - from) * (qreal(i) / steps);
    return points;
}

int alphaAt(const DrawingLayer &layer, int x, int y)
{
    return qAlpha(layer.image().pixel(x, y));
}

} // namespace

class TestInkCanvas : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void dragDrawsAndEachStrokeIsOneUndoStep();
    void shiftMidDragMakesAStraightLine();
    void escapeTakesTheDragBack();
    void boardLargerThanTheWindowIsKeptWhole();
    void placedPictureMovesThenFixesAsOneStep();
    void undoDropsAnItemBeingPlaced();
    void textToolAsksForTextWhereClicked();
    void clearIsOneUndoStep();
    void tabletPressureAndEraserEnd();

private:
    DrawingLayer *m_layer = nullptr;
    DrawingArea *m_area = nullptr;
    InkCanvas *canvas() const { return m_area->canvas(); }
};

void TestInkCanvas::init()
{
    m_layer = new DrawingLayer;
    m_layer->reset(QSize(1, 1));
    m_area = new DrawingArea(m_layer);
    m_area->resize(400, 300);
    m_area->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_area));
    canvas()->setPen({InkKind::Pen, Qt::black, 4});
}

void TestInkCanvas::cleanup()
{
    delete m_area;
    delete m_layer;
}

void TestInkCanvas::dragDrawsAndEachStrokeIsOneUndoStep()
{
    QCOMPARE(m_layer->size(), QSize(400, 300)); // the board fills the window
    drag(canvas(), across(QPointF(20, 20), QPointF(200, 20)));
    drag(canvas(), across(QPointF(20, 100), QPointF(200, 100)));
    QCOMPARE(alphaAt(*m_layer, 100, 20), 255);
    QCOMPARE(alphaAt(*m_layer, 100, 100), 255);
    QCOMPARE(m_layer->undoSteps(), 2);
    canvas()->undo();
    QCOMPARE(alphaAt(*m_layer, 100, 100), 0);
    QCOMPARE(alphaAt(*m_layer, 100, 20), 255);
}

void TestInkCanvas::shiftMidDragMakesAStraightLine()
{
    // Freehand along the top, then Shift: one straight line from the start to the end.
    QList<QPointF> points = across(QPointF(20, 20), QPointF(300, 20), 10);
    points << across(QPointF(300, 20), QPointF(300, 220), 10).mid(1);
    drag(canvas(), points, Qt::ShiftModifier, 12);
    QCOMPARE(alphaAt(*m_layer, 200, 20), 0);
    QCOMPARE(alphaAt(*m_layer, 160, 120), 255); // on the line from (20, 20) to (300, 220)
    QCOMPARE(m_layer->undoSteps(), 1);
}

void TestInkCanvas::escapeTakesTheDragBack()
{
    const QImage blank = m_layer->image();
    const QList<QPointF> points = across(QPointF(20, 20), QPointF(200, 150));
    sendMouse(canvas(), QEvent::MouseButtonPress, points.first(), Qt::LeftButton);
    for (const QPointF &p : points)
        sendMouse(canvas(), QEvent::MouseMove, p, Qt::LeftButton);
    QVERIFY(canvas()->isDrawing());
    QTest::keyClick(canvas(), Qt::Key_Escape);
    sendMouse(canvas(), QEvent::MouseButtonRelease, points.last(), Qt::NoButton);
    QCOMPARE(m_layer->image(), blank);
    QVERIFY(!m_layer->canUndo());
}

void TestInkCanvas::boardLargerThanTheWindowIsKeptWhole()
{
    drag(canvas(), across(QPointF(10, 280), QPointF(390, 10)));
    const QImage drawn = m_layer->image();
    m_area->resize(150, 100);
    QCOMPARE(m_layer->size(), QSize(400, 300));
    QCOMPARE(canvas()->size(), QSize(400, 300)); // scrolled, not cut
    m_area->resize(600, 450);
    QCOMPARE(m_layer->size(), QSize(600, 450));
    QCOMPARE(m_layer->image().copy(0, 0, 400, 300), drawn);
    QCOMPARE(alphaAt(*m_layer, 500, 400), 0);
}

void TestInkCanvas::placedPictureMovesThenFixesAsOneStep()
{
    QImage picture(40, 20, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::red);
    FloatingItem item = FloatingItem::picture(picture);
    item.setRect(QRectF(50, 50, 40, 20));
    QSignalSpy placed(canvas(), &InkCanvas::placedItemChanged);
    canvas()->placeItem(item);
    QCOMPARE(alphaAt(*m_layer, 60, 60), 0); // shown, not yet in the layer

    drag(canvas(), across(QPointF(70, 60), QPointF(170, 160), 5)); // by its body
    QCOMPARE(canvas()->placedItem().rect(), QRectF(150, 150, 40, 20));
    QCOMPARE(alphaAt(*m_layer, 160, 160), 0);

    // A press beside it fixes it, and draws nothing itself.
    drag(canvas(), across(QPointF(300, 250), QPointF(350, 280), 5));
    QVERIFY(!canvas()->hasPlacedItem());
    QCOMPARE(m_layer->image().pixelColor(160, 160), QColor(Qt::red));
    QCOMPARE(alphaAt(*m_layer, 60, 60), 0);
    QCOMPARE(alphaAt(*m_layer, 320, 260), 0);
    QCOMPARE(m_layer->undoSteps(), 1);
    QCOMPARE(m_layer->undoLabel(), QStringLiteral("Picture"));
    QVERIFY(placed.size() >= 3); // placed, moved, fixed
}

void TestInkCanvas::undoDropsAnItemBeingPlaced()
{
    drag(canvas(), across(QPointF(20, 20), QPointF(200, 20)));
    canvas()->placeItem(FloatingItem::text(QStringLiteral("Hello"), QFont(), Qt::blue));
    QVERIFY(canvas()->canUndo());
    canvas()->undo();
    QVERIFY(!canvas()->hasPlacedItem());
    QCOMPARE(m_layer->undoSteps(), 1); // the stroke is still there

    canvas()->placeItem(FloatingItem::text(QStringLiteral("Hello"), QFont(), Qt::blue));
    QTest::keyClick(canvas(), Qt::Key_Return);
    QCOMPARE(m_layer->undoSteps(), 2);
    QCOMPARE(m_layer->undoLabel(), QStringLiteral("Text"));
}

void TestInkCanvas::textToolAsksForTextWhereClicked()
{
    canvas()->setTool(InkCanvas::Tool::Text);
    QSignalSpy asked(canvas(), &InkCanvas::textRequested);
    drag(canvas(), {QPointF(120, 80)});
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toPointF(), QPointF(120, 80) * canvas()->layerScale());
    QVERIFY(!m_layer->canUndo());
}

void TestInkCanvas::clearIsOneUndoStep()
{
    drag(canvas(), across(QPointF(20, 20), QPointF(200, 150)));
    const QImage drawn = m_layer->image();
    canvas()->clear();
    QCOMPARE(alphaAt(*m_layer, 110, 85), 0);
    QCOMPARE(m_layer->undoLabel(), QStringLiteral("Clear Board"));
    canvas()->undo();
    QCOMPARE(m_layer->image(), drawn);
}

void TestInkCanvas::tabletPressureAndEraserEnd()
{
    canvas()->setPen({InkKind::Pen, Qt::black, 20});
    QPointingDevice stylus(QStringLiteral("stylus"), 7, QInputDevice::DeviceType::Stylus,
                           QPointingDevice::PointerType::Pen,
                           QInputDevice::Capability::Position | QInputDevice::Capability::Pressure, 1, 3);
    QPointingDevice rubber(QStringLiteral("stylus eraser"), 8, QInputDevice::DeviceType::Stylus,
                           QPointingDevice::PointerType::Eraser,
                           QInputDevice::Capability::Position | QInputDevice::Capability::Pressure, 1, 3);
    auto stroke = [this](const QPointingDevice &device, qreal y, qreal pressure) {
        const QList<QPointF> points = across(QPointF(20, y), QPointF(380, y));
        for (int i = 0; i < points.size(); ++i) {
            const QEvent::Type type = i == 0 ? QEvent::TabletPress : QEvent::TabletMove;
            QTabletEvent event(type, &device, points[i], canvas()->mapToGlobal(points[i]), pressure, 0, 0, 0,
                               0, 0, Qt::NoModifier, Qt::LeftButton, Qt::LeftButton);
            QApplication::sendEvent(canvas(), &event);
            QVERIFY(event.isAccepted()); // no mouse events are made from it, so no second line
        }
        QTabletEvent release(QEvent::TabletRelease, &device, points.last(),
                             canvas()->mapToGlobal(points.last()), 0, 0, 0, 0, 0, 0, Qt::NoModifier,
                             Qt::LeftButton, Qt::NoButton);
        QApplication::sendEvent(canvas(), &release);
    };
    auto thickness = [this](int x, int from, int to) {
        int inked = 0;
        for (int y = from; y < to; ++y)
            inked += alphaAt(*m_layer, x, y) > 128;
        return inked;
    };
    stroke(stylus, 60, 1.0);
    stroke(stylus, 160, 0.1);
    QVERIFY2(thickness(200, 30, 90) >= 19, qPrintable(QString::number(thickness(200, 30, 90))));
    QVERIFY2(thickness(200, 130, 190) < 10, qPrintable(QString::number(thickness(200, 130, 190))));
    QCOMPARE(m_layer->undoSteps(), 2);
    // The pen's other end rubs out, whatever tool is chosen.
    stroke(rubber, 60, 1.0);
    QCOMPARE(thickness(200, 30, 90), 0);
    QCOMPARE(m_layer->undoLabel(), QStringLiteral("Eraser"));
}

QTEST_MAIN(TestInkCanvas)
#include "test_ink_canvas.moc"
