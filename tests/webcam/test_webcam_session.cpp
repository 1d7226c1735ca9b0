// The snapshot session against a local server: what reaches the disk and the screen for each
// kind of answer, the time-out and the automatic refresh.
#include "core/settings_store.h"
#include "core/web_downloader.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "webcam/webcam_session.h"
#include "webcam_test_pictures.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {
constexpr int kWait = 5000;

QByteArray FileBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString LastCamera()
{
    return ReadDetail(WebcamSession::WindowName, QStringLiteral("Cam Location webcam"), QStringLiteral("<none>"));
}
} // namespace

class TestWebcamSession : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void pictureArrivesAndBothFilesAreWritten_data();
    void pictureArrivesAndBothFilesAreWritten();
    void badAnswerKeepsThePreviousSnapshot_data();
    void badAnswerKeepsThePreviousSnapshot();
    void silentServerExpires();
    void cameraWithoutAddressFetchesNothing();
    void refreshCountsTicksWithAFloor_data();
    void refreshCountsTicksWithAFloor();
    void automaticRefreshFetchesAgain();
    void lastSnapshotComesBackWithItsDate();
    void ageIsShownOnlyWhenOlderThanThePeriod_data();
    void ageIsShownOnlyWhenOlderThanThePeriod();

private:
    WebcamCamera serverCamera(const QString &name, const QByteArray &path) const
    {
        return WebcamCamera{name, m_server->url(QString::fromLatin1(path)).toString(), {}, {}, {}, false};
    }
    // Chooses the camera and waits for its read to end (either way).
    bool fetch(WebcamSession &session, const WebcamCamera &camera)
    {
        QSignalSpy busy(&session, &WebcamSession::busyChanged);
        session.chooseCamera(camera);
        return busy.wait(kWait) && (busy.size() == 2 || busy.wait(kWait));
    }

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
};

void TestWebcamSession::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    WebcamRefreshCounter::setProgramPeriod(60);
}

void TestWebcamSession::cleanup()
{
    m_server.reset();
    m_home.reset();
}

void TestWebcamSession::pictureArrivesAndBothFilesAreWritten_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("contentType");
    QTest::newRow("jpeg") << QByteArray("JPG") << QByteArray("image/jpeg");
    QTest::newRow("png") << QByteArray("PNG") << QByteArray("image/png");
    // Servers that label pictures wrongly still give a picture.
    QTest::newRow("jpeg sent as text") << QByteArray("JPG") << QByteArray("text/plain");
}

void TestWebcamSession::pictureArrivesAndBothFilesAreWritten()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, contentType);
    const QByteArray picture = EncodedPicture(Qt::darkCyan, format.constData(), QSize(80, 60));
    m_server->setBody("/cam.jpg", picture, contentType);
    WebcamSession session;
    QSignalSpy stored(&session, &WebcamSession::snapshotStored);
    QVERIFY(fetch(session, serverCamera(QStringLiteral("Harbour"), "/cam.jpg")));

    QCOMPARE(stored.size(), 1);
    QCOMPARE(FileBytes(WebcamSession::snapshotPath()), picture); // byte for byte
    const QImage bitmap(WebcamSession::bitmapPath(), "BMP");
    QCOMPARE(bitmap.size(), QSize(80, 60));
    QCOMPARE(session.picture().size(), QSize(80, 60));
    QCOMPARE(LastCamera(), QStringLiteral("Harbour"));
    QVERIFY(session.notice().isEmpty());
    QVERIFY(!session.isBusy());
}

void TestWebcamSession::badAnswerKeepsThePreviousSnapshot_data()
{
    QTest::addColumn<LocalHttpServer::Response>("answer");
    QTest::addColumn<QString>("notice");
    const QString notPicture = QStringLiteral("Sometimes websites do not activate. Please try again.");
    const QString failed = QStringLiteral("Error in accessing the site.");
    LocalHttpServer::Response html;
    html.body = "<html><body>Camera offline</body></html>";
    html.contentType = "text/html";
    QTest::newRow("html page") << html << notPicture;
    LocalHttpServer::Response empty;
    QTest::newRow("empty reply") << empty << notPicture;
    LocalHttpServer::Response cut;
    cut.body = EncodedPicture(Qt::red).left(40);
    cut.contentType = "image/jpeg";
    QTest::newRow("cut-off jpeg") << cut << notPicture;
    LocalHttpServer::Response missing;
    missing.status = 404;
    missing.body = "not found";
    QTest::newRow("404") << missing << failed;
    LocalHttpServer::Response serverError;
    serverError.status = 500;
    QTest::newRow("500") << serverError << failed;
    LocalHttpServer::Response dropped;
    dropped.dropConnection = true;
    QTest::newRow("connection dropped") << dropped << failed;
}

void TestWebcamSession::badAnswerKeepsThePreviousSnapshot()
{
    QFETCH(LocalHttpServer::Response, answer);
    QFETCH(QString, notice);
    const QByteArray good = EncodedPicture(Qt::darkGreen);
    m_server->setBody("/good.jpg", good, "image/jpeg");
    m_server->setResponse("/bad.jpg", answer);
    WebcamSession session;
    QVERIFY(fetch(session, serverCamera(QStringLiteral("Good"), "/good.jpg")));
    const QByteArray bitmapBefore = FileBytes(WebcamSession::bitmapPath());
    const QImage pictureBefore = session.picture();
    QVERIFY(!bitmapBefore.isEmpty());

    QSignalSpy stored(&session, &WebcamSession::snapshotStored);
    QVERIFY(fetch(session, serverCamera(QStringLiteral("Bad"), "/bad.jpg")));

    QCOMPARE(session.notice(), notice);
    QCOMPARE(FileBytes(WebcamSession::snapshotPath()), good);
    QCOMPARE(FileBytes(WebcamSession::bitmapPath()), bitmapBefore);
    QCOMPARE(session.picture(), pictureBefore);
    QCOMPARE(LastCamera(), QStringLiteral("Good"));
    QCOMPARE(stored.size(), 0);
}

void TestWebcamSession::silentServerExpires()
{
    LocalHttpServer::Response silent;
    silent.hang = true;
    m_server->setResponse("/slow.jpg", silent);
    m_server->setBody("/good.jpg", EncodedPicture(Qt::blue), "image/jpeg");
    WebcamSession session;
    session.chooseCamera(serverCamera(QStringLiteral("Slow"), "/slow.jpg"));
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/slow.jpg"), 1, kWait);

    for (int tick = 1; tick < WebcamSession::ExpiryTicks; ++tick)
        session.expiryTick();
    QVERIFY(session.isBusy());
    QVERIFY(session.notice().isEmpty());
    session.expiryTick();
    QCOMPARE(session.notice(), QStringLiteral("Timer has expired. Try again later, some cameras can take a while. "));
    QVERIFY(!session.isBusy());
    QVERIFY(!QFile::exists(WebcamSession::snapshotPath()));

    // A new choice starts afresh and clears the notice.
    QVERIFY(fetch(session, serverCamera(QStringLiteral("Quick"), "/good.jpg")));
    QVERIFY(session.notice().isEmpty());
    QVERIFY(!session.picture().isNull());
}

void TestWebcamSession::cameraWithoutAddressFetchesNothing()
{
    WebcamSession session;
    session.chooseCamera(WebcamCamera{QStringLiteral("Italy - Nervi (port)"), {}, {}, {}, {}, false});
    QVERIFY(session.notice().contains(QLatin1String("No picture address is known")));
    QVERIFY(!session.isBusy());
    QVERIFY(!session.downloader()->StatusBusy());
    session.fetchAgain();
    QVERIFY(!session.downloader()->StatusBusy());
    QVERIFY(m_server->requests().isEmpty());
}

void TestWebcamSession::refreshCountsTicksWithAFloor_data()
{
    QTest::addColumn<int>("period");
    QTest::addColumn<int>("ticksBetweenFetches");
    QTest::newRow("1 Minute") << 60 << 61;
    QTest::newRow("30 Minutes") << 1800 << 1801;
    QTest::newRow("at the floor") << 30 << 31;
    QTest::newRow("below the floor") << 10 << 31;
    QTest::newRow("zero") << 0 << 31;
    QTest::newRow("negative") << -5 << 31;
}

void TestWebcamSession::refreshCountsTicksWithAFloor()
{
    QFETCH(int, period);
    QFETCH(int, ticksBetweenFetches);
    WebcamRefreshCounter counter(period);
    QList<int> fetchTicks;
    for (int tick = 1; fetchTicks.size() < 3; ++tick) {
        if (counter.tick())
            fetchTicks << tick;
    }
    QCOMPARE(fetchTicks, (QList<int>{ticksBetweenFetches, 2 * ticksBetweenFetches, 3 * ticksBetweenFetches}));
    QCOMPARE(counter.period(), qMax(period, WebcamRefreshCounter::MinimumPeriod));
}

void TestWebcamSession::automaticRefreshFetchesAgain()
{
    m_server->setBody("/cam.jpg", EncodedPicture(Qt::yellow), "image/jpeg");
    WebcamRefreshCounter::setProgramPeriod(1); // raised to the floor of 30 ticks
    WebcamSession session;
    QVERIFY(fetch(session, serverCamera(QStringLiteral("Beach"), "/cam.jpg")));
    QCOMPARE(m_server->requestCount("/cam.jpg"), 1);

    session.setAutoRefresh(true);
    QVERIFY(session.autoRefresh());
    // The ticks are counted here, not by the clock, so that waiting for the server adds none.
    session.findChild<QTimer *>(QStringLiteral("tmrWPAPER"))->stop();
    for (int tick = 0; tick < 30; ++tick)
        session.refreshTick();
    QVERIFY(!session.isBusy());
    session.refreshTick();
    QVERIFY(session.isBusy());
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/cam.jpg"), 2, kWait);

    // The settings' period applies from the next tick.
    WebcamRefreshCounter::setProgramPeriod(120);
    QTRY_VERIFY_WITH_TIMEOUT(!session.isBusy(), kWait);
    for (int tick = 0; tick < 120; ++tick)
        session.refreshTick();
    QVERIFY(!session.isBusy());
    session.refreshTick();
    QVERIFY(session.isBusy());

    session.setAutoRefresh(true);
    QCOMPARE(session.findChild<QTimer *>(QStringLiteral("tmrWPAPER"))->interval(), 400);
    session.setAutoRefresh(false);
    QVERIFY(!session.autoRefresh());
}

void TestWebcamSession::lastSnapshotComesBackWithItsDate()
{
    m_server->setBody("/cam.jpg", EncodedPicture(Qt::magenta), "image/jpeg");
    {
        WebcamSession first;
        QVERIFY(fetch(first, serverCamera(QStringLiteral("Town"), "/cam.jpg")));
    }
    WebcamSession next;
    QVERIFY(next.picture().isNull());
    next.loadLastSnapshot(WebcamCamera{QStringLiteral("Town"), {}, {}, {}, {}, false});
    QCOMPARE(next.picture().size(), QSize(64, 48));
    QVERIFY(qAbs(next.pictureTime().secsTo(QDateTime::currentDateTime())) < 60);
    QCOMPARE(next.currentCamera().name, QStringLiteral("Town"));
    QCOMPARE(next.pictureCamera().name, QStringLiteral("Town"));
    QVERIFY(m_server->requestCount("/cam.jpg") == 1);
}

void TestWebcamSession::ageIsShownOnlyWhenOlderThanThePeriod_data()
{
    QTest::addColumn<int>("secondsOld");
    QTest::addColumn<int>("period");
    QTest::addColumn<QString>("text");
    QTest::newRow("fresh") << 30 << 60 << QString();
    QTest::newRow("exactly the period") << 60 << 60 << QString();
    QTest::newRow("just over") << 61 << 60 << "Snapshot from 1 minute ago";
    QTest::newRow("minutes") << 7 * 60 + 20 << 60 << "Snapshot from 7 minutes ago";
    QTest::newRow("within a long period") << 20 * 60 << 1800 << QString();
    QTest::newRow("one hour") << 3600 + 5 << 60 << "Snapshot from 1 hour ago";
    QTest::newRow("hours") << 5 * 3600 + 59 * 60 << 60 << "Snapshot from 5 hours ago";
    QTest::newRow("days") << 3 * 86400 << 60 << "Snapshot from 3 days ago";
}

void TestWebcamSession::ageIsShownOnlyWhenOlderThanThePeriod()
{
    QFETCH(int, secondsOld);
    QFETCH(int, period);
    QFETCH(QString, text);
    const QDateTime now(QDate(2026, 3, 1), QTime(12, 0));
    QCOMPARE(WebcamSession::ageText(now.addSecs(-secondsOld), now, period), text);
    QCOMPARE(WebcamSession::ageText(QDateTime(), now, period), QString());
}

QTEST_GUILESS_MAIN(TestWebcamSession)
#include "test_webcam_session.moc"
