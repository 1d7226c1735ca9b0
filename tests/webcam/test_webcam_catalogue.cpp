// The camera list: the shipped cameras as the viewer offers them, and the user's own cameras
// kept in the data folder.
#include "core/app_paths.h"
#include "support/test_home.h"
#include "webcam/webcam_catalogue.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>

class TestWebcamCatalogue : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void shipsTheFiftyCamerasInOrder_data();
    void shipsTheFiftyCamerasInOrder();
    void everyAddressHasItsCredit();
    void ownCamerasAreKeptAfterTheShippedOnes();
    void ownCameraChecks_data();
    void ownCameraChecks();
    void changesAndRemovesOnlyOwnCameras();
    void damagedLinesAreSkipped();
    void onlyWebAddressesAreReadFromTheFile();
    void failedSaveChangesNothing();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestWebcamCatalogue::init()
{
    m_home = std::make_unique<TestHome>();
    QDir().mkpath(AppPaths::dataPath(QStringLiteral("webcam")));
}

void TestWebcamCatalogue::cleanup()
{
    m_home.reset();
}

void TestWebcamCatalogue::shipsTheFiftyCamerasInOrder_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("hasAddress");
    // The first, the last, the default camera, and the spellings users know from the list.
    QTest::newRow("first") << 0 << "Australia - NSW McLeans Ridges (country)" << true;
    QTest::newRow("Freemantle") << 7 << "Australia - WA Freemantle (port)" << false;
    QTest::newRow("default camera") << 15 << "Austria - Salzburg (mtns)" << true;
    QTest::newRow("comma in place") << 26 << "Italy - Genoa, Porto Antico (port)" << false;
    QTest::newRow("Dunedin") << 28 << "New Zealand - Dunedin (city)" << true;
    QTest::newRow("Isle of Man") << 42 << "England - Isle of Man (port)" << true;
    QTest::newRow("Peridido") << 47 << "USA - Gulf-Shores, Peridido (beach)" << false;
    QTest::newRow("last") << 49 << "Netherlands - Amsterdam (city)" << false;
}

void TestWebcamCatalogue::shipsTheFiftyCamerasInOrder()
{
    QFETCH(int, position);
    QFETCH(QString, name);
    QFETCH(bool, hasAddress);
    const WebcamCatalogue catalogue;
    QCOMPARE(catalogue.builtInCount(), 50);
    QCOMPARE(catalogue.cameras().size(), 50);
    const WebcamCamera &camera = catalogue.cameras().at(position);
    QCOMPARE(camera.name, name);
    QCOMPARE(!camera.address.isEmpty(), hasAddress);
    QVERIFY(!camera.own);
    QCOMPARE(catalogue.find(name), &camera);
}

void TestWebcamCatalogue::everyAddressHasItsCredit()
{
    const WebcamCatalogue catalogue;
    QSet<QString> names;
    int withAddress = 0;
    for (const WebcamCamera &camera : catalogue.cameras()) {
        names.insert(camera.name);
        if (camera.address.isEmpty()) {
            QVERIFY2(camera.credit.isEmpty() && camera.headers.isEmpty(), qPrintable(camera.name));
            continue;
        }
        ++withAddress;
        QVERIFY2(camera.credit.startsWith(QLatin1String("Picture: ")), qPrintable(camera.name));
        QVERIFY2(camera.creditPage.startsWith(QLatin1String("https://")), qPrintable(camera.name));
        if (camera.address.contains(QLatin1String("foto-webcam.eu")))
            QVERIFY2(camera.address.startsWith(camera.creditPage), qPrintable(camera.name)); // links the camera's page
    }
    QCOMPARE(names.size(), 50);
    QCOMPARE(withAddress, 19);
    const WebcamCamera *isleOfMan = catalogue.find(QStringLiteral("England - Isle of Man (port)"));
    QCOMPARE(isleOfMan->headers.value(0).first, QByteArray("Referer"));
}

void TestWebcamCatalogue::ownCamerasAreKeptAfterTheShippedOnes()
{
    {
        WebcamCatalogue catalogue;
        QString error;
        QVERIFY2(catalogue.addOwn(QStringLiteral("  Home - Garden (town) "), QStringLiteral(" http://10.0.0.5/snap.png "),
                                  &error),
                 qPrintable(error));
        QVERIFY(catalogue.addOwn(QStringLiteral("Café – Straße"), QStringLiteral("https://example.org/a.jpg"), &error));
        QCOMPARE(catalogue.cameras().size(), 52);
    }
    const WebcamCatalogue reread;
    QCOMPARE(reread.cameras().size(), 52);
    QCOMPARE(reread.builtInCount(), 50);
    const WebcamCamera &garden = reread.cameras().at(50);
    QCOMPARE(garden.name, QStringLiteral("Home - Garden (town)"));
    QCOMPARE(garden.address, QStringLiteral("http://10.0.0.5/snap.png"));
    QVERIFY(garden.own);
    QCOMPARE(reread.cameras().at(51).name, QStringLiteral("Café – Straße"));
    QVERIFY(reread.loadProblem().isEmpty());
}

void TestWebcamCatalogue::ownCameraChecks_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("problem"); // a word of the reason, empty when it is accepted
    QTest::newRow("fine") << "Pier" << "https://example.org/pier.jpg" << QString();
    QTest::newRow("no name") << "   " << "https://example.org/pier.jpg" << "name";
    QTest::newRow("bar in name") << "Pier|2" << "https://example.org/pier.jpg" << "|";
    QTest::newRow("shipped name") << "Austria - Wien (city)" << "https://example.org/w.jpg" << "already";
    QTest::newRow("own name again") << "Lake" << "https://example.org/l2.jpg" << "already";
    QTest::newRow("no scheme") << "Pier" << "example.org/pier.jpg" << "https://";
    QTest::newRow("ftp") << "Pier" << "ftp://example.org/pier.jpg" << "https://";
    QTest::newRow("file") << "Pier" << "file:///home/me/pier.jpg" << "https://";
    QTest::newRow("no host") << "Pier" << "https:///pier.jpg" << "https://";
    QTest::newRow("space inside") << "Pier" << "https://example.org/my pier.jpg" << "address";
    QTest::newRow("empty") << "Pier" << "" << "https://";
}

void TestWebcamCatalogue::ownCameraChecks()
{
    QFETCH(QString, name);
    QFETCH(QString, address);
    QFETCH(QString, problem);
    WebcamCatalogue catalogue;
    QString error;
    QVERIFY(catalogue.addOwn(QStringLiteral("Lake"), QStringLiteral("https://example.org/lake.jpg"), &error));
    error.clear();
    const bool added = catalogue.addOwn(name, address, &error);
    QCOMPARE(added, problem.isEmpty());
    QVERIFY2(error.contains(problem), qPrintable(error));
    QCOMPARE(catalogue.cameras().size(), added ? 52 : 51);
}

void TestWebcamCatalogue::changesAndRemovesOnlyOwnCameras()
{
    WebcamCatalogue catalogue;
    QString error;
    QVERIFY(catalogue.addOwn(QStringLiteral("Lake"), QStringLiteral("https://example.org/lake.jpg"), &error));
    QVERIFY(catalogue.addOwn(QStringLiteral("Hill"), QStringLiteral("https://example.org/hill.jpg"), &error));

    // Keeping its own name is allowed; taking another camera's is not.
    QVERIFY(catalogue.replaceOwn(QStringLiteral("Lake"), QStringLiteral("Lake"), QStringLiteral("https://example.org/l.png"),
                                 &error));
    QVERIFY(!catalogue.replaceOwn(QStringLiteral("Lake"), QStringLiteral("Hill"), QStringLiteral("https://example.org/l.png"),
                                  &error));
    QVERIFY(catalogue.replaceOwn(QStringLiteral("Lake"), QStringLiteral("Lake North"),
                                 QStringLiteral("https://example.org/n.png"), &error));
    QVERIFY(!catalogue.replaceOwn(QStringLiteral("Austria - Wien (city)"), QStringLiteral("Vienna"),
                                  QStringLiteral("https://example.org/v.png"), &error));
    QVERIFY(!catalogue.removeOwn(QStringLiteral("Austria - Wien (city)"), &error));
    QCOMPARE(catalogue.builtInCount(), 50);
    QVERIFY(catalogue.removeOwn(QStringLiteral("Hill"), &error));

    const WebcamCatalogue reread;
    QCOMPARE(reread.cameras().size(), 51);
    QCOMPARE(reread.cameras().last().name, QStringLiteral("Lake North"));
    QCOMPARE(reread.cameras().last().address, QStringLiteral("https://example.org/n.png"));
    QVERIFY(reread.find(QStringLiteral("Austria - Wien (city)")));
}

void TestWebcamCatalogue::damagedLinesAreSkipped()
{
    QFile file(WebcamCatalogue::ownCamerasPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Pond|https://example.org/pond.jpg\r\n\r\nno bar here\n|https://example.org/nameless.jpg\n"
               "Austria - Wien (city)|https://example.org/fake.jpg\nPond|https://example.org/again.jpg\n"
               "Field|https://example.org/field.jpg");
    file.close();
    const WebcamCatalogue catalogue;
    QCOMPARE(catalogue.cameras().size(), 52);
    QCOMPARE(catalogue.cameras().at(50).address, QStringLiteral("https://example.org/pond.jpg"));
    QCOMPARE(catalogue.cameras().at(51).name, QStringLiteral("Field"));
    // A shipped camera cannot be replaced through the file.
    QVERIFY(catalogue.find(QStringLiteral("Austria - Wien (city)"))->address.contains(QLatin1String("foto-webcam")));
}

void TestWebcamCatalogue::onlyWebAddressesAreReadFromTheFile()
{
    // The file may be edited by hand or by another program; what the add dialog refuses is
    // refused here too, and the user is told which cameras were left out.
    QFile file(WebcamCatalogue::ownCamerasPath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Local|file:///etc/passwd\nDish|ftp://example.org/dish.jpg\nInline|data:image/png;base64,AAAA\n"
               "Bare|example.org/bare.jpg\nHarbour|HTTPS://example.org/harbour.jpg\n");
    file.close();
    const WebcamCatalogue catalogue;
    QCOMPARE(catalogue.cameras().size(), 51);
    QCOMPARE(catalogue.cameras().at(50).name, QStringLiteral("Harbour"));
    for (const char *name : {"Local", "Dish", "Inline", "Bare"})
        QVERIFY2(catalogue.loadProblem().contains(QLatin1String(name)), qPrintable(catalogue.loadProblem()));
}

void TestWebcamCatalogue::failedSaveChangesNothing()
{
    WebcamCatalogue catalogue;
    QString error;
    QVERIFY(catalogue.addOwn(QStringLiteral("Lake"), QStringLiteral("https://example.org/lake.jpg"), &error));
    // A folder where the file should be: the write cannot succeed.
    QVERIFY(QFile::remove(WebcamCatalogue::ownCamerasPath()));
    QVERIFY(QDir().mkpath(WebcamCatalogue::ownCamerasPath()));
    QVERIFY(!catalogue.addOwn(QStringLiteral("Hill"), QStringLiteral("https://example.org/hill.jpg"), &error));
    QVERIFY2(error.contains(QLatin1String("could not be saved")), qPrintable(error));
    QCOMPARE(catalogue.cameras().size(), 51);
    QVERIFY(!catalogue.removeOwn(QStringLiteral("Lake"), &error));
    QVERIFY(catalogue.find(QStringLiteral("Lake")));
}

QTEST_GUILESS_MAIN(TestWebcamCatalogue)
#include "test_webcam_catalogue.moc"
