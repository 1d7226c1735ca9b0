// The viewer window over the session: choosing cameras, what it shows, the user's own cameras
// and the switches it keeps.
#include "core/clock_source.h"
#include "core/settings_store.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "webcam/webcam_catalogue.h"
#include "webcam/webcam_session.h"
#include "webcam/webcam_viewer.h"
#include "webcam_test_pictures.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {
constexpr int kWait = 5000;

QListWidgetItem *ItemNamed(QListWidget *list, const QString &name)
{
    const QList<QListWidgetItem *> found = list->findItems(name, Qt::MatchExactly);
    return found.isEmpty() ? nullptr : found.first();
}
} // namespace

class TestWebcamViewer : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void listsShippedThenOwnCameras();
    void clickingACameraShowsItsPicture();
    void creditBelongsToThePictureShown();
    void playLastFetchesOnOpening_data();
    void playLastFetchesOnOpening();
    void oldSnapshotIsMarkedWithItsAge();
    void removingAskedFirst_data();
    void removingAskedFirst();
    void switchesAreKept();

private:
    void addServerCamera(const QString &name, const QByteArray &path)
    {
        WebcamCatalogue catalogue;
        QString error;
        QVERIFY2(catalogue.addOwn(name, m_server->url(QString::fromLatin1(path)).toString(), &error), qPrintable(error));
    }
    QListWidget *list(WebcamViewer &viewer) { return viewer.findChild<QListWidget *>(QStringLiteral("lstWEBCAMS")); }
    QString labelText(WebcamViewer &viewer, const char *name)
    {
        return viewer.findChild<QLabel *>(QString::fromLatin1(name))->text();
    }
    bool pictureShown(WebcamViewer &viewer)
    {
        return !viewer.findChild<QLabel *>(QStringLiteral("imgWEB"))->pixmap().isNull();
    }

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
    QStringList m_questions;
    int m_answer = AnswerYes;
};

void TestWebcamViewer::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    m_server->setBody("/garden.jpg", EncodedPicture(Qt::darkGreen, "JPG", QSize(160, 90)), "image/jpeg");
    m_questions.clear();
    SetMessageResponderForTesting([this](bool question, int, const QString &text) {
        if (question)
            m_questions << text;
        return m_answer;
    });
    WebcamRefreshCounter::setProgramPeriod(60);
}

void TestWebcamViewer::cleanup()
{
    ClockSource::clearNowForTesting();
    SetMessageResponderForTesting({});
    m_server.reset();
    m_home.reset();
}

void TestWebcamViewer::listsShippedThenOwnCameras()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WebcamViewer viewer;
    QCOMPARE(list(viewer)->count(), 51);
    QCOMPARE(list(viewer)->item(0)->text(), QStringLiteral("Australia - NSW McLeans Ridges (country)"));
    QCOMPARE(list(viewer)->item(50)->text(), QStringLiteral("Garden"));
    // Opening shows the last camera chosen without fetching it.
    QCOMPARE(list(viewer)->currentItem()->text(), QStringLiteral("Austria - Salzburg (mtns)"));
    QVERIFY(!viewer.session()->isBusy());
    QVERIFY(labelText(viewer, "imgWEB").contains(QLatin1String("Choose a camera")));
    QVERIFY(!viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->isEnabled());
    list(viewer)->setCurrentRow(50);
    QVERIFY(viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->isEnabled());
}

void TestWebcamViewer::clickingACameraShowsItsPicture()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WebcamViewer viewer;
    viewer.show();
    QListWidgetItem *garden = ItemNamed(list(viewer), QStringLiteral("Garden"));
    list(viewer)->scrollToItem(garden);
    QTest::mouseClick(list(viewer)->viewport(), Qt::LeftButton, {}, list(viewer)->visualItemRect(garden).center());
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Fetching Garden")));
    QTRY_VERIFY_WITH_TIMEOUT(pictureShown(viewer), kWait);
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Garden\nSnapshot of ")));
    QVERIFY(labelText(viewer, "lblNOTICE").isEmpty());
    QVERIFY(labelText(viewer, "lblCREDIT").isEmpty()); // own cameras have no operator credit
    QCOMPARE(m_server->requestCount("/garden.jpg"), 1);

    // Enter presses Refresh, which fetches the chosen camera again.
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/garden.jpg"), 2, kWait);
}

void TestWebcamViewer::creditBelongsToThePictureShown()
{
    WebcamViewer viewer;
    viewer.show();
    // A camera with an operator's credit, as the shipped ones have, served locally.
    WebcamCamera munich = *WebcamCatalogue().find(QStringLiteral("Germany - Munich (city)"));
    munich.address = m_server->url(QStringLiteral("/garden.jpg")).toString();
    viewer.session()->chooseCamera(munich);
    QTRY_VERIFY_WITH_TIMEOUT(pictureShown(viewer), kWait);
    const QString credit = labelText(viewer, "lblCREDIT");
    QVERIFY2(credit.contains(QLatin1String("href=\"https://www.foto-webcam.eu/webcam/muenchen/\"")), qPrintable(credit));
    QVERIFY(credit.contains(QLatin1String(">Picture: foto-webcam.eu<")));

    // No test reaches the internet: the real address fails at once and says so. The picture
    // and its credit stay.
    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Austria - Wien (city)")));
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(labelText(viewer, "lblNOTICE"), QStringLiteral("Error in accessing the site."), kWait);
    QCOMPARE(labelText(viewer, "lblCREDIT"), credit);
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Germany - Munich (city)\n")));

    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Italy - Nervi (port)")));
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QVERIFY(labelText(viewer, "lblNOTICE").contains(QLatin1String("No picture address is known")));
    QCOMPARE(labelText(viewer, "lblCREDIT"), credit);
}

void TestWebcamViewer::playLastFetchesOnOpening_data()
{
    QTest::addColumn<QString>("playLast");
    QTest::addColumn<int>("fetches");
    QTest::newRow("1") << "1" << 1;
    QTest::newRow("0") << "0" << 0;
    QTest::newRow("True is not 1") << "True" << 0;
}

void TestWebcamViewer::playLastFetchesOnOpening()
{
    QFETCH(QString, playLast);
    QFETCH(int, fetches);
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Location webcam"), QStringLiteral("Garden"));
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), playLast);
    WebcamViewer viewer;
    QCOMPARE(list(viewer)->currentItem()->text(), QStringLiteral("Garden"));
    QCOMPARE(viewer.session()->isBusy(), fetches == 1);
    if (fetches == 1)
        QTRY_VERIFY_WITH_TIMEOUT(!viewer.session()->picture().isNull(), kWait);
    QCOMPARE(m_server->requestCount("/garden.jpg"), fetches);
}

void TestWebcamViewer::oldSnapshotIsMarkedWithItsAge()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Location webcam"), QStringLiteral("Garden"));
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), QStringLiteral("1"));
    {
        WebcamViewer first;
        QTRY_VERIFY_WITH_TIMEOUT(!first.session()->picture().isNull(), kWait);
    }
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), QStringLiteral("0"));
    ClockSource::setNowForTesting(QDateTime::currentDateTime().addSecs(2 * 3600 + 60));
    WebcamViewer later;
    later.show();
    QVERIFY(pictureShown(later));
    QCOMPARE(labelText(later, "lblSTATUS"), QStringLiteral("Garden\nSnapshot from 2 hours ago"));
}

void TestWebcamViewer::removingAskedFirst_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("countAfter");
    QTest::newRow("cancelled") << int(AnswerNo) << 51;
    QTest::newRow("confirmed") << int(AnswerYes) << 50;
}

void TestWebcamViewer::removingAskedFirst()
{
    QFETCH(int, answer);
    QFETCH(int, countAfter);
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    m_answer = answer;
    WebcamViewer viewer;
    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Garden")));
    viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->click();
    QCOMPARE(m_questions.size(), 1);
    QVERIFY(m_questions.first().contains(QLatin1String("Garden")));
    QCOMPARE(list(viewer)->count(), countAfter);
    QCOMPARE(WebcamCatalogue().cameras().size(), countAfter);
}

void TestWebcamViewer::switchesAreKept()
{
    {
        WebcamViewer viewer;
        viewer.show();
        viewer.findChild<QCheckBox *>(QStringLiteral("chkREFRESH"))->setChecked(true);
        QVERIFY(viewer.session()->autoRefresh());
        viewer.findChild<QCheckBox *>(QStringLiteral("chkFOLLOW"))->setChecked(true);
        viewer.hide();
    }
    WebcamViewer again;
    QVERIFY(again.findChild<QCheckBox *>(QStringLiteral("chkREFRESH"))->isChecked());
    QVERIFY(again.session()->autoRefresh());
    QVERIFY(again.findChild<QCheckBox *>(QStringLiteral("chkFOLLOW"))->isChecked());
}

QTEST_MAIN(TestWebcamViewer)
#include "test_webcam_viewer.moc"
