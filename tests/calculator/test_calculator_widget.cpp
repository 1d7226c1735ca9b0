#include "calculator/calculator_key.h"
#include "calculator/calculator_widget.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/painted_frame.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPointer>
#include <QTest>

namespace {

using Keys = QList<QKeyCombination>;

const QStringList kKeyNames = {
    "lblNUMBER_0", "lblNUMBER_1",  "lblNUMBER_2", "lblNUMBER_3",   "lblNUMBER_4",
    "lblNUMBER_5", "lblNUMBER_6",  "lblNUMBER_7", "lblNUMBER_8",   "lblNUMBER_9",
    "lblPOINT",    "lblPLUSMINUS", "lblADD",      "lblSUBTRACT",   "lblMULTIPLY",
    "lblDIVIDE",   "lblEQUALS",    "lblCLEAR",    "lblCLEARENTRY", "lblDELETE",
    "lblMEMSET",   "lblMEMADD",    "lblMEMSUB",   "lblMEMRECALL",  "lblMEMCLEAR",
};

// Owns an open calculator window the way the program opens one: created, loaded, shown.
class OpenCalculator
{
public:
    OpenCalculator() : m_window(new CalculatorWidget)
    {
        m_window->loadWindow();
        m_window->show();
    }
    ~OpenCalculator() { delete m_window.data(); }

    CalculatorWidget *operator->() const { return m_window.data(); }
    CalculatorWidget *get() const { return m_window.data(); }
    // Closes the window as the user does: it saves its values and deletes itself.
    void close()
    {
        m_window->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    bool isGone() const { return m_window.isNull(); }

    CalculatorKey *key(const QString &name) const { return m_window->findChild<CalculatorKey *>(name); }
    QString label(const QString &name) const
    {
        const QLabel *l = m_window->findChild<QLabel *>(name);
        return l ? l->text() : QStringLiteral("<missing %1>").arg(name);
    }
    void click(const QString &name) const
    {
        CalculatorKey *k = key(name);
        QVERIFY2(k, qPrintable(name));
        QTest::mouseClick(k, Qt::LeftButton);
    }

private:
    QPointer<CalculatorWidget> m_window;
};

} // namespace

class TestCalculatorWidget : public QObject
{
    Q_OBJECT

private slots:
    void windowNamesAndKeys();
    void clicks_data();
    void clicks();
    void typing_data();
    void typing();
    void specialKeys_data();
    void specialKeys();
    void keysLookPressedWhileHeld();
    void mouseReleasedOutsideDoesNothing();
    void copyAndPaste();
    void memorySurvivesRestart_data();
    void memorySurvivesRestart();
    void layoutScales_data();
    void layoutScales();
    void longNumberShrinksFont();

private:
    TestHome m_home;
};

void TestCalculatorWidget::windowNamesAndKeys()
{
    OpenCalculator calc;
    QCOMPARE(calc->objectName(), QStringLiteral("fclc_IDX"));
    QCOMPARE(calc->windowTitle(), QStringLiteral("Vantora Calculator"));
    const QWidget *panel = calc->findChild<PaintedFrame *>("pfrPANEL");
    const QWidget *bar = calc->findChild<PaintedFrame *>("pfrBAR");
    QVERIFY(panel && bar);
    for (const QString &name : kKeyNames) {
        CalculatorKey *key = calc.key(name);
        QVERIFY2(key, qPrintable(name));
        QVERIFY2(panel->isAncestorOf(key) || bar->isAncestorOf(key), qPrintable(name));
        QVERIFY2(key->isVisible(), qPrintable(name));
        if (name.startsWith("lblMEM"))
            QVERIFY2(!key->toolTip().isEmpty(), qPrintable(name));
    }
    for (const char *display : {"lblDISPLAYNO", "lblDISPLAYFUNC", "lblDISPLAYMEM"})
        QVERIFY2(panel->findChild<QLabel *>(display), display);
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("0"));
}

void TestCalculatorWidget::clicks_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("sign");

    QTest::newRow("add") << "lblNUMBER_2 lblADD lblNUMBER_3 lblEQUALS" << "5.0" << "";
    QTest::newRow("chain shows the step") << "lblNUMBER_2 lblADD lblNUMBER_3 lblMULTIPLY" << "5.0" << "×";
    QTest::newRow("divide by zero") << "lblNUMBER_7 lblDIVIDE lblNUMBER_0 lblEQUALS" << "0.0" << "";
    QTest::newRow("zero rule") << "lblNUMBER_0 lblPOINT lblNUMBER_0 lblNUMBER_5" << "5" << "";
    QTest::newRow("divide sign") << "lblNUMBER_9 lblDIVIDE" << "9" << "÷";
    QTest::newRow("clear entry") << "lblNUMBER_9 lblSUBTRACT lblNUMBER_4 lblCLEARENTRY" << "0" << "-";
    QTest::newRow("memory recall") << "lblNUMBER_6 lblMEMSET lblCLEAR lblMEMRECALL" << "6" << "";
}

void TestCalculatorWidget::clicks()
{
    QFETCH(QString, keys);
    QFETCH(QString, number);
    QFETCH(QString, sign);
    OpenCalculator calc;
    for (const QString &name : keys.split(' '))
        calc.click(name);
    QCOMPARE(calc.label("lblDISPLAYNO"), number);
    QCOMPARE(calc.label("lblDISPLAYFUNC"), sign);
}

void TestCalculatorWidget::typing_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("number");

    QTest::newRow("add") << "12+3=" << "15.0";
    QTest::newRow("multiply") << "2*3=" << "6.0";
    QTest::newRow("divide") << "8/2=" << "4.0";
    QTest::newRow("comma is a point") << "1,5" << "1.5";
    QTest::newRow("letters ignored") << "4a2" << "42";
}

void TestCalculatorWidget::typing()
{
    QFETCH(QString, typed);
    QFETCH(QString, number);
    OpenCalculator calc;
    QTest::keyClicks(calc.get(), typed);
    QCOMPARE(calc.label("lblDISPLAYNO"), number);
}

void TestCalculatorWidget::specialKeys_data()
{
    QTest::addColumn<Keys>("keys");
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("memory"); // a memory of 0 shows as "0" until a memory key empties it

    QTest::newRow("backspace deletes") << Keys{Qt::Key_1, Qt::Key_2, Qt::Key_Backspace} << "1" << "0";
    QTest::newRow("F9 changes sign") << Keys{Qt::Key_5, Qt::Key_F9} << "-5.0" << "0";
    QTest::newRow("escape clears") << Keys{Qt::Key_2, Qt::Key_Plus, Qt::Key_3, Qt::Key_Escape} << "0" << "0";
    QTest::newRow("delete clears entry")
        << Keys{Qt::Key_2, Qt::Key_Plus, Qt::Key_3, Qt::Key_Delete, Qt::Key_4, Qt::Key_Enter} << "6.0" << "0";
    QTest::newRow("return is equals") << Keys{Qt::Key_7, Qt::Key_Return} << "7.0" << "0";
    QTest::newRow("memory store and recall")
        << Keys{Qt::Key_5, Qt::CTRL | Qt::Key_M, Qt::Key_Escape, Qt::CTRL | Qt::Key_R} << "5" << "5";
    QTest::newRow("memory add and subtract")
        << Keys{Qt::Key_5, Qt::CTRL | Qt::Key_P, Qt::CTRL | Qt::Key_P, Qt::CTRL | Qt::Key_Q} << "5" << "5";
    QTest::newRow("memory clear") << Keys{Qt::Key_5, Qt::CTRL | Qt::Key_M, Qt::CTRL | Qt::Key_L} << "5" << "";
}

void TestCalculatorWidget::specialKeys()
{
    QFETCH(Keys, keys);
    QFETCH(QString, number);
    QFETCH(QString, memory);
    OpenCalculator calc;
    for (QKeyCombination key : keys)
        QTest::keyClick(calc.get(), key.key(), key.keyboardModifiers());
    QCOMPARE(calc.label("lblDISPLAYNO"), number);
    QCOMPARE(calc.label("lblDISPLAYMEM"), memory);
}

void TestCalculatorWidget::keysLookPressedWhileHeld()
{
    OpenCalculator calc;
    CalculatorKey *add = calc.key("lblADD");
    QTest::keyPress(calc.get(), Qt::Key_Plus);
    QVERIFY(add->isPressed());
    QTest::keyRelease(calc.get(), Qt::Key_Plus);
    QVERIFY(!add->isPressed());

    // Memory shortcuts show on their bar keys too.
    CalculatorKey *store = calc.key("lblMEMSET");
    QTest::keyClick(calc.get(), Qt::Key_8);
    QTest::keyPress(calc.get(), Qt::Key_M, Qt::ControlModifier);
    QVERIFY(store->isPressed());
    QTest::keyRelease(calc.get(), Qt::Key_M, Qt::ControlModifier);
    QVERIFY(!store->isPressed());
    QCOMPARE(calc.label("lblDISPLAYMEM"), QStringLiteral("8"));

    CalculatorKey *five = calc.key("lblNUMBER_5");
    QTest::mousePress(five, Qt::LeftButton);
    QVERIFY(five->isPressed());
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("8")); // acts on release
    QTest::mouseRelease(five, Qt::LeftButton);
    QVERIFY(!five->isPressed());
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("85"));
}

void TestCalculatorWidget::mouseReleasedOutsideDoesNothing()
{
    OpenCalculator calc;
    CalculatorKey *five = calc.key("lblNUMBER_5");
    QTest::mousePress(five, Qt::LeftButton);
    QTest::mouseRelease(five, Qt::LeftButton, {}, QPoint(five->width() + 5, five->height() / 2));
    QVERIFY(!five->isPressed());
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("0"));
}

void TestCalculatorWidget::copyAndPaste()
{
    OpenCalculator calc;
    QClipboard *clipboard = QGuiApplication::clipboard();
    QTest::keyClicks(calc.get(), "1/4=");
    QTest::keyClick(calc.get(), Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(clipboard->text(), QStringLiteral("0.25"));

    clipboard->setText(QStringLiteral("  12.5 apples"));
    QTest::keyClick(calc.get(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("12.5"));

    // An empty clipboard leaves the number alone.
    clipboard->setText(QString());
    QTest::keyClick(calc.get(), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("12.5"));

    // A pasted number works as the second operand.
    clipboard->setText(QStringLiteral("3"));
    QTest::keyClicks(calc.get(), "*");
    QTest::keyClick(calc.get(), Qt::Key_V, Qt::ControlModifier);
    QTest::keyClicks(calc.get(), "=");
    QCOMPARE(calc.label("lblDISPLAYNO"), QStringLiteral("37.5"));
}

void TestCalculatorWidget::memorySurvivesRestart_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shownAfterRestart");

    QTest::newRow("stored number") << "lblNUMBER_4 lblPOINT lblNUMBER_5 lblMEMSET" << "4.5" << "4.5";
    QTest::newRow("added up") << "lblNUMBER_4 lblMEMADD lblMEMADD lblMEMSUB lblMEMADD" << "8" << "8";
    QTest::newRow("one third")
        << "lblNUMBER_1 lblDIVIDE lblNUMBER_3 lblEQUALS lblMEMSET" << "0.3333" << "0.3333";
    QTest::newRow("cleared shows 0 on load") << "lblNUMBER_4 lblMEMSET lblMEMCLEAR" << "0" << "0";
}

void TestCalculatorWidget::memorySurvivesRestart()
{
    QFETCH(QString, keys);
    QFETCH(QString, stored);
    QFETCH(QString, shownAfterRestart);
    TestHome home;
    {
        OpenCalculator calc;
        for (const QString &name : keys.split(' '))
            calc.click(name);
        calc.close();
        QVERIFY(calc.isGone());
    }
    QCOMPARE(ReadDetail("fclc_IDX", "Memory", "missing"), stored);
    OpenCalculator again;
    QCOMPARE(again.label("lblDISPLAYMEM"), shownAfterRestart);
    QCOMPARE(again.label("lblDISPLAYNO"), QStringLiteral("0"));
    again.click("lblMEMRECALL");
    QCOMPARE(again.label("lblDISPLAYNO"), stored);
}

void TestCalculatorWidget::layoutScales_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("smallest") << QSize(180, 240);
    QTest::newRow("default") << QSize(240, 330);
    QTest::newRow("wide") << QSize(520, 330);
    QTest::newRow("large") << QSize(480, 660);
}

void TestCalculatorWidget::layoutScales()
{
    QFETCH(QSize, size);
    OpenCalculator calc;
    calc->resize(size);
    const QWidget *panel = calc->findChild<PaintedFrame *>("pfrPANEL");
    const QWidget *bar = calc->findChild<PaintedFrame *>("pfrBAR");
    const QWidget *close = calc->findChild<QWidget *>("CloseRefresh");
    QList<QRect> taken;
    for (const QString &name : kKeyNames) {
        CalculatorKey *key = calc.key(name);
        const QWidget *frame = key->parentWidget();
        QVERIFY2(frame->rect().contains(key->geometry()), qPrintable(name));
        QVERIFY2(key->width() >= 16 && key->height() >= 14, qPrintable(name));
        const QRect global(key->mapTo(calc.get(), QPoint(0, 0)), key->size());
        for (const QRect &other : std::as_const(taken))
            QVERIFY2(!global.intersects(other), qPrintable(name + " overlaps another key"));
        taken.append(global);
        if (frame == bar && close)
            QVERIFY2(!key->geometry().intersects(close->geometry()),
                     qPrintable(name + " under the close button"));
    }
    const QLabel *number = calc->findChild<QLabel *>("lblDISPLAYNO");
    const QRect screen(number->parentWidget()->mapTo(calc.get(), QPoint(0, 0)),
                       number->parentWidget()->size());
    for (const QRect &key : std::as_const(taken))
        QVERIFY(!key.intersects(screen));
    QVERIFY(panel->rect().contains(number->parentWidget()->geometry()));

    // Keys and digits grow with the window.
    OpenCalculator reference;
    reference->resize(180, 240);
    const double scale = std::min(size.width() / 180.0, size.height() / 240.0);
    if (scale >= 2.0) {
        QVERIFY(calc.key("lblNUMBER_5")->height() > reference.key("lblNUMBER_5")->height() * 3 / 2);
        QVERIFY(calc.key("lblNUMBER_5")->font().pixelSize() >
                reference.key("lblNUMBER_5")->font().pixelSize());
        QVERIFY(number->font().pixelSize() >
                reference->findChild<QLabel *>("lblDISPLAYNO")->font().pixelSize());
    }
}

void TestCalculatorWidget::longNumberShrinksFont()
{
    OpenCalculator calc;
    const QLabel *number = calc->findChild<QLabel *>("lblDISPLAYNO");
    const int shortSize = number->font().pixelSize();
    for (int i = 0; i < 15; ++i)
        QTest::keyClick(calc.get(), Qt::Key_7);
    QCOMPARE(number->text(), QStringLiteral("777777777777777"));
    QVERIFY(number->font().pixelSize() < shortSize);
    QVERIFY(QFontMetrics(number->font()).horizontalAdvance(number->text()) <= number->width());
    QTest::keyClick(calc.get(), Qt::Key_Escape);
    QCOMPARE(number->font().pixelSize(), shortSize);

    // Too long for the smallest font: the caption stays whole, its right-hand end stays in
    // place and the label moves over for the mark that says digits are hidden.
    const QRect shortGeometry = number->geometry();
    QTest::keyClick(calc.get(), Qt::Key_1);
    for (int i = 1; i < 120; ++i)
        QTest::keyClick(calc.get(), Qt::Key_0); // zeros are appended as text
    QCOMPARE(number->text().size(), 120);
    QCOMPARE(number->geometry().right(), shortGeometry.right());
    QVERIFY(number->x() > shortGeometry.x());
    QTest::keyClick(calc.get(), Qt::Key_Escape);
    QCOMPARE(number->geometry(), shortGeometry);
}

QTEST_MAIN(TestCalculatorWidget)
#include "test_calculator_widget.moc"
