#include "support/test_home.h"
#include "themes/themed_button.h"

#include <QApplication>
#include <QCursor>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

class TestThemedButton : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_host.reset(new QWidget);
        m_host->setGeometry(100, 100, 200, 100);
        m_button = new ThemedButton(m_host.get());
        m_button->setGeometry(10, 10, 20, 20);
        m_button->setCloseGlyph(Qt::white);
        m_host->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_host.get()));
        QCursor::setPos(m_button->mapToGlobal(QPoint(10, 10)));
    }

    void hoverShowsHighlightAndWatchesTheMouse()
    {
        QTest::mouseMove(m_button, QPoint(10, 10));
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Highlight);
        QVERIFY(m_button->isWatchingMouse());
        auto *timer = m_button->findChild<QTimer *>(QStringLiteral("tmrCOLORCHK"));
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 100);
        QCOMPARE(m_button->cursor().shape(), Qt::PointingHandCursor);
    }

    // No leave event arrives (the window moved, the pointer jumped): the timer notices.
    void returnsToNormalAfterTheMouseLeaves()
    {
        QTest::mouseMove(m_button, QPoint(10, 10));
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Highlight);
        m_button->colorCheckTick(); // still over it
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Highlight);

        QCursor::setPos(m_host->mapToGlobal(QPoint(150, 80)));
        m_button->colorCheckTick();
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Normal);
        QVERIFY(!m_button->isWatchingMouse());
    }

    void timerRestoresWithoutHelp()
    {
        QTest::mouseMove(m_button, QPoint(10, 10));
        QCursor::setPos(m_host->mapToGlobal(QPoint(150, 80)));
        QTRY_COMPARE(m_button->shownPicture(), ThemedButton::Picture::Normal);
    }

    void pressAndClick()
    {
        QSignalSpy clicked(m_button, &ThemedButton::clicked);
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(10, 10));
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Pressed);
        QVERIFY(m_button->isWatchingMouse());
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(10, 10));
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Highlight);
        QCOMPARE(clicked.count(), 1);
        m_button->CloseRefresh();
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Normal);
    }

    void releaseOutsideDoesNotClick()
    {
        QSignalSpy clicked(m_button, &ThemedButton::clicked);
        QTest::mousePress(m_button, Qt::LeftButton, {}, QPoint(10, 10));
        QTest::mouseRelease(m_button, Qt::LeftButton, {}, QPoint(60, 60));
        QCOMPARE(clicked.count(), 0);
    }

    void keyboardActivates_data()
    {
        QTest::addColumn<int>("key");
        QTest::newRow("space") << int(Qt::Key_Space);
        QTest::newRow("return") << int(Qt::Key_Return);
        QTest::newRow("enter") << int(Qt::Key_Enter);
    }

    void keyboardActivates()
    {
        QFETCH(int, key);
        QSignalSpy clicked(m_button, &ThemedButton::clicked);
        m_button->setFocus(Qt::TabFocusReason);
        QTest::keyClick(m_button, Qt::Key(key));
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Normal);
        QTest::keyClick(m_button, Qt::Key_A);
        QCOMPARE(clicked.count(), 1);
    }

    void disabledIgnoresTheMouse()
    {
        QSignalSpy clicked(m_button, &ThemedButton::clicked);
        m_button->setEnabledState(false);
        QVERIFY(!m_button->Enabled());
        QVERIFY(!m_button->property("Enabled").toBool());
        QTest::mouseClick(m_button, Qt::LeftButton, {}, QPoint(10, 10));
        QCOMPARE(clicked.count(), 0);
        QCOMPARE(m_button->shownPicture(), ThemedButton::Picture::Normal);
    }

    void closeGlyphFollowsSizeAndHasATooltip()
    {
        m_button->resize(32, 24);
        const QImage image = m_button->grab().toImage();
        QCOMPARE(image.size(), QSize(32, 24) * m_button->devicePixelRatioF());
        QCOMPARE(m_button->toolTip(), QStringLiteral("Close"));
        // The glyph is drawn: some pixel in the middle is (nearly) white.
        bool found = false;
        for (int x = 10; x < 22 && !found; ++x)
            found = image.pixelColor(x, x - 4).lightness() > 200;
        QVERIFY(found);
    }

private:
    TestHome m_home;
    std::unique_ptr<QWidget> m_host;
    ThemedButton *m_button = nullptr;
};

QTEST_MAIN(TestThemedButton)
#include "test_themed_button.moc"
