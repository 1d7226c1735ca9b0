#include "shell/update_check.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

class TestUpdateCheck : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void parsesVersionFile_data();
    void parsesVersionFile();
    void comparesVersions_data();
    void comparesVersions();
    void offWhileNoWebsite();
    void checksAgainstServer_data();
    void checksAgainstServer();
    void aSilentSiteEndsTheCheck();

private:
    std::unique_ptr<TestHome> m_home;
    QStringList m_messages;
};

void TestUpdateCheck::init()
{
    m_home = std::make_unique<TestHome>();
    m_messages.clear();
    SetMessageResponderForTesting([this](bool question, int number, const QString &) {
        m_messages << QStringLiteral("%1 %2").arg(question ? "question" : "info").arg(number);
        return int(AnswerNo);
    });
}

void TestUpdateCheck::cleanup()
{
    SetMessageResponderForTesting({});
    m_home.reset();
}

void TestUpdateCheck::parsesVersionFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<double>("version"); // -1: not a version
    QTest::newRow("plain") << QByteArray("1.4") << 1.4;
    QTest::newRow("blanks and line end") << QByteArray("  2.0 \r\n") << 2.0;
    QTest::newRow("first line only") << QByteArray("1.12\nrelease notes") << 1.12;
    QTest::newRow("words") << QByteArray("<html>") << -1.0;
    QTest::newRow("empty") << QByteArray() << -1.0;
    QTest::newRow("infinity") << QByteArray("inf") << -1.0;
    QTest::newRow("not a number") << QByteArray("nan") << -1.0;
    QTest::newRow("beyond the largest number") << QByteArray("1e999") << -1.0;
}

void TestUpdateCheck::parsesVersionFile()
{
    QFETCH(QByteArray, text);
    QFETCH(double, version);
    const std::optional<double> parsed = UpdateCheck::parseVersion(text);
    QCOMPARE(parsed.has_value(), version >= 0);
    if (parsed)
        QCOMPARE(*parsed, version);
}

void TestUpdateCheck::comparesVersions_data()
{
    QTest::addColumn<double>("remote");
    QTest::addColumn<double>("current");
    QTest::addColumn<bool>("newer");
    QTest::newRow("newer") << 1.1 << 1.0 << true;
    QTest::newRow("same") << 1.0 << 1.0 << false;
    QTest::newRow("same after arithmetic") << 0.1 + 0.2 << 0.3 << false;
    QTest::newRow("older") << 0.9 << 1.0 << false;
}

void TestUpdateCheck::comparesVersions()
{
    QFETCH(double, remote);
    QFETCH(double, current);
    QFETCH(bool, newer);
    QCOMPARE(UpdateCheck::isNewer(remote, current), newer);
}

void TestUpdateCheck::offWhileNoWebsite()
{
    if (UpdateCheck::isEnabled())
        QSKIP("built with VANTORA_WEBSITE set");
    QVERIFY(!UpdateCheck::versionFileUrl().isValid());
    QVERIFY(!UpdateCheck::updatePageUrl().isValid());
    UpdateCheck check;
    QSignalSpy finished(&check, &UpdateCheck::finished);
    check.start(true);
    QVERIFY(!check.isRunning());
    QTest::qWait(50);
    QCOMPARE(finished.count(), 0);
    QVERIFY(m_messages.isEmpty());
}

void TestUpdateCheck::checksAgainstServer_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("manual");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<bool>("newer");
    QTest::addColumn<bool>("fileKept");

    QTest::newRow("newer, automatic")
        << QByteArray("99.0\r\n") << false << QStringList{"question 1"} << true << true;
    QTest::newRow("older, manual") << QByteArray("0.5") << true << QStringList{"info 3"} << false << true;
    QTest::newRow("older, automatic: quiet") << QByteArray("0.5") << false << QStringList() << false << true;
    QTest::newRow("not a version file") << QByteArray("<html>") << false << QStringList() << false << true;
    QTest::newRow("too large") << QByteArray(70 * 1024, '9') << true << QStringList() << false << false;
    QTest::newRow("site answers 404") << QByteArray() << true << QStringList() << false << false;
}

void TestUpdateCheck::checksAgainstServer()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, manual);
    QFETCH(QStringList, messages);
    QFETCH(bool, newer);
    QFETCH(bool, fileKept);

    LocalHttpServer server;
    QVERIFY(server.isListening());
    if (!body.isEmpty())
        server.setBody("/version.txt", body); // else 404
    UpdateCheck check;
    check.setVersionFileUrlForTesting(server.url("/version.txt"));
    QSignalSpy finished(&check, &UpdateCheck::finished);
    check.start(manual);
    QVERIFY(check.isRunning());
    QVERIFY(finished.wait(5000));

    QCOMPARE(finished.first().first().toBool(), newer);
    QCOMPARE(m_messages, messages);
    QCOMPARE(QFile::exists(UpdateCheck::localVersionFile()), fileKept);
    QVERIFY(!check.isRunning());
    QCOMPARE(server.requestCount("/version.txt"), 1);
    QCOMPARE(server.requests().first().headers.value("user-agent"), WebDownloader::userAgent());
}

void TestUpdateCheck::aSilentSiteEndsTheCheck()
{
    LocalHttpServer server;
    LocalHttpServer::Response silent;
    silent.hang = true;
    server.setResponse("/version.txt", silent);
    UpdateCheck check;
    check.setVersionFileUrlForTesting(server.url("/version.txt"));
    check.setTimeLimitForTesting(200);
    QSignalSpy finished(&check, &UpdateCheck::finished);
    check.start(true);
    QVERIFY(finished.wait(5000));
    QCOMPARE(finished.first().first().toBool(), false);
    QVERIFY(!check.isRunning());
    QVERIFY(m_messages.isEmpty());

    // The next check is not refused as if the silent one were still running.
    server.setBody("/version.txt", "0.5");
    check.start(true);
    QVERIFY(finished.wait(5000));
    QCOMPARE(m_messages, QStringList{"info 3"});
}

QTEST_GUILESS_MAIN(TestUpdateCheck)
#include "test_update_check.moc"
