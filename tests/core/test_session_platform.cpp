#include "core/platform/session_platform.h"

#include <QTest>

using SessionPlatform::Environment;

// The platform the program asks Qt for in each kind of session, and which platforms leave the
// placing of windows to the compositor.
class TestSessionPlatform : public QObject
{
    Q_OBJECT
private slots:
    void chosenPlatform_data();
    void chosenPlatform();
    void unknownChoiceIsReported_data();
    void unknownChoiceIsReported();
    void compositorPlacesWindows_data();
    void compositorPlacesWindows();
};

void TestSessionPlatform::chosenPlatform_data()
{
    QTest::addColumn<QByteArray>("waylandDisplay");
    QTest::addColumn<QByteArray>("sessionType");
    QTest::addColumn<QByteArray>("x11Display");
    QTest::addColumn<QByteArray>("qtPlatform");
    QTest::addColumn<QByteArray>("choice");
    QTest::addColumn<QByteArray>("chosen");

    // Sessions left to Qt.
    QTest::newRow("X11 session") << QByteArray() << QByteArray("x11") << QByteArray(":0") << QByteArray()
                                 << QByteArray() << QByteArray();
    QTest::newRow("no display at all") << QByteArray() << QByteArray() << QByteArray() << QByteArray()
                                       << QByteArray() << QByteArray();
    QTest::newRow("Wayland asked for outside Wayland")
        << QByteArray() << QByteArray("x11") << QByteArray(":0") << QByteArray() << QByteArray("wayland")
        << QByteArray();
    QTest::newRow("the user's QT_QPA_PLATFORM stands")
        << QByteArray("wayland-0") << QByteArray("wayland") << QByteArray(":0") << QByteArray("wayland")
        << QByteArray() << QByteArray();
    QTest::newRow("QT_QPA_PLATFORM beats VANTORA_PLATFORM")
        << QByteArray("wayland-0") << QByteArray() << QByteArray(":0") << QByteArray("offscreen")
        << QByteArray("wayland") << QByteArray();

    // Wayland with XWayland: X11 unless Wayland is asked for.
    QTest::newRow("Wayland with XWayland") << QByteArray("wayland-0") << QByteArray("wayland")
                                           << QByteArray(":0") << QByteArray() << QByteArray()
                                           << QByteArray("xcb");
    QTest::newRow("session type only") << QByteArray() << QByteArray("wayland") << QByteArray(":1")
                                       << QByteArray() << QByteArray() << QByteArray("xcb");
    QTest::newRow("socket only") << QByteArray("wayland-1") << QByteArray() << QByteArray(":0")
                                 << QByteArray() << QByteArray() << QByteArray("xcb");
    QTest::newRow("native Wayland asked for")
        << QByteArray("wayland-0") << QByteArray("wayland") << QByteArray(":0") << QByteArray()
        << QByteArray("wayland") << QByteArray("wayland;xcb");
    QTest::newRow("asked for in capitals, with blanks")
        << QByteArray("wayland-0") << QByteArray() << QByteArray(":0") << QByteArray()
        << QByteArray(" Wayland ") << QByteArray("wayland;xcb");
    QTest::newRow("X11 asked for") << QByteArray("wayland-0") << QByteArray() << QByteArray(":0")
                                   << QByteArray() << QByteArray("x11") << QByteArray("xcb");
    QTest::newRow("unknown choice counts as unset")
        << QByteArray("wayland-0") << QByteArray() << QByteArray(":0") << QByteArray()
        << QByteArray("mir") << QByteArray("xcb");

    // Wayland without an X server: Wayland whatever was asked for.
    QTest::newRow("Wayland without XWayland")
        << QByteArray("wayland-0") << QByteArray("wayland") << QByteArray() << QByteArray() << QByteArray()
        << QByteArray("wayland");
    QTest::newRow("X11 asked for without XWayland")
        << QByteArray("wayland-0") << QByteArray() << QByteArray() << QByteArray() << QByteArray("xcb")
        << QByteArray("wayland");
    QTest::newRow("native Wayland without XWayland")
        << QByteArray("wayland-0") << QByteArray() << QByteArray() << QByteArray() << QByteArray("wayland")
        << QByteArray("wayland");
}

void TestSessionPlatform::chosenPlatform()
{
    QFETCH(QByteArray, waylandDisplay);
    QFETCH(QByteArray, sessionType);
    QFETCH(QByteArray, x11Display);
    QFETCH(QByteArray, qtPlatform);
    QFETCH(QByteArray, choice);
    QFETCH(QByteArray, chosen);

    const Environment environment{waylandDisplay, sessionType, x11Display, qtPlatform, choice};
    QCOMPARE(SessionPlatform::chooseQtPlatform(environment), chosen);
}

void TestSessionPlatform::unknownChoiceIsReported_data()
{
    QTest::addColumn<QByteArray>("choice");
    QTest::addColumn<bool>("reported");

    QTest::newRow("unset") << QByteArray() << false;
    QTest::newRow("wayland") << QByteArray("wayland") << false;
    QTest::newRow("xcb") << QByteArray("xcb") << false;
    QTest::newRow("X11") << QByteArray("X11") << false;
    QTest::newRow("misspelt") << QByteArray("waylnd") << true;
    QTest::newRow("a Qt platform list") << QByteArray("wayland;xcb") << true;
}

void TestSessionPlatform::unknownChoiceIsReported()
{
    QFETCH(QByteArray, choice);
    QFETCH(bool, reported);

    const QString problem = SessionPlatform::choiceProblem({"wayland-0", {}, ":0", {}, choice});
    QCOMPARE(!problem.isEmpty(), reported);
    if (reported)
        QVERIFY2(problem.contains(QString::fromLatin1(choice)), qPrintable(problem));
}

void TestSessionPlatform::compositorPlacesWindows_data()
{
    QTest::addColumn<QString>("platformName");
    QTest::addColumn<bool>("compositorPlaces");

    QTest::newRow("wayland") << "wayland" << true;
    QTest::newRow("wayland with EGL") << "wayland-egl" << true;
    QTest::newRow("xcb") << "xcb" << false;
    QTest::newRow("offscreen") << "offscreen" << false;
    QTest::newRow("windows") << "windows" << false;
    QTest::newRow("empty") << "" << false;
}

void TestSessionPlatform::compositorPlacesWindows()
{
    QFETCH(QString, platformName);
    QFETCH(bool, compositorPlaces);

    QCOMPARE(SessionPlatform::compositorPlacesWindows(platformName), compositorPlaces);
}

QTEST_GUILESS_MAIN(TestSessionPlatform)
#include "test_session_platform.moc"
