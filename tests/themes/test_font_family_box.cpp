#include "themes/font_family_box.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

class TestFontFamilyBox : public QObject
{
    Q_OBJECT
private slots:
    void typedFamily_data();
    void typedFamily();
    void missingFamilyShowsItsStandIn();
    void listFilledOnFirstFocus();
};

void TestFontFamilyBox::typedFamily_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("chosen");
    QTest::newRow("a family of this system") << QFontDatabase::families().first() << true;
    QTest::newRow("no such family") << QStringLiteral("Nowhere Sans 9") << false;
    QTest::newRow("nothing") << QString() << false;
}

void TestFontFamilyBox::typedFamily()
{
    QFETCH(QString, typed);
    QFETCH(bool, chosen);
    FontFamilyBox box;
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    box.setCurrentFont(QFont(QFontDatabase::families().last()));
    const QString shown = box.currentText();
    box.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&box));
    box.setFocus(Qt::TabFocusReason); // as a user reaches it, which fills its list
    QSignalSpy changed(&box, &FontFamilyBox::currentFontChanged);
    box.lineEdit()->selectAll();
    QTest::keyClicks(box.lineEdit(), typed);
    QTest::keyClick(box.lineEdit(), Qt::Key_Return);
    QCOMPARE(changed.count(), chosen ? 1 : 0);
    if (chosen)
        QCOMPARE(changed.first().first().value<QFont>().family(), typed);
    else
        QCOMPARE(box.currentText(), shown); // an unknown name does not stay in the box
}

void TestFontFamilyBox::missingFamilyShowsItsStandIn()
{
    FontFamilyBox box;
    QSignalSpy changed(&box, &FontFamilyBox::currentFontChanged);
    const QFont missing(QStringLiteral("Nowhere Sans 9"));
    box.setCurrentFont(missing);
    QCOMPARE(box.currentText(), QFontInfo(missing).family());
    QCOMPARE(changed.count(), 0); // setting is not choosing
}

void TestFontFamilyBox::listFilledOnFirstFocus()
{
    FontFamilyBox box;
    box.setCurrentFont(QFont(QFontDatabase::families().last()));
    QCOMPARE(box.count(), 0); // nothing built until it is used
    box.show();
    box.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&box));
    box.setFocus(Qt::TabFocusReason);
    QCOMPARE(box.count(), QFontDatabase::families().size());
    QCOMPARE(box.currentText(), QFontDatabase::families().last()); // the shown family stays
}

QTEST_MAIN(TestFontFamilyBox)
#include "test_font_family_box.moc"
