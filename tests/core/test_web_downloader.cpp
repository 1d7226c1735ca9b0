#include "core/in_process_host.h"
#include "core/network_policy.h"
#include "core/web_downloader.h"
#include "support/local_http_server.h"

#include <QNetworkReply>
#include <QPointer>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTimer>

namespace {

constexpr int kWait = 5000;
const QString kBuiltInHost = QStringLiteral("feed.vantora.test");

// Answers every request with 200 and a body, without Content-Length (the end of the body is
// the end of the connection), which LocalHttpServer always sends.
class NoLengthServer : public QTcpServer
{
public:
    explicit NoLengthServer(const QByteArray &body) : m_body(body)
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *socket = nextPendingConnection()) {
                connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
                    if (!socket->readAll().contains("\r\n\r\n") || socket->property("answered").toBool())
                        return;
                    socket->setProperty("answered", true);
                    socket->write("HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nConnection: close\r\n\r\n" + m_body);
                    socket->disconnectFromHost();
                });
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            }
        });
        listen(QHostAddress::LocalHost);
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1/big").arg(serverPort()); }

private:
    QByteArray m_body;
};

// The signals of one downloader.
struct Events
{
    explicit Events(WebDownloader *downloader)
        : complete(downloader, &WebDownloader::DownloadComplete), failed(downloader, &WebDownloader::DownloadFailed)
    {
    }
    int count() const { return int(complete.count() + failed.count()); }

    QSignalSpy complete;
    QSignalSpy failed;
};

} // namespace

class TestWebDownloader : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void namedAndIdle();
    void inProcessReplySettlesOnce();
    void emptyAddressDoesNothing();
    void completes_data();
    void completes();
    void restartCancelsRunningRead();
    void hungServerStaysBusy();
    void overLimitFails_data();
    void overLimitFails();
    void failures_data();
    void failures();
    void offlineReadsStayOnThisComputer_data();
    void offlineReadsStayOnThisComputer();
    void sendsHeaders_data();
    void sendsHeaders();
    void inProcessHost_data();
    void inProcessHost();
    void cancelledInProcessReadDeliversNothing();
    void measuresDuration();

private:
    // A read that completes with "kept", so that a later failure can show the bytes stay.
    void primeWithKeptBytes(WebDownloader &downloader);

    std::unique_ptr<LocalHttpServer> m_server;
    std::unique_ptr<NoLengthServer> m_noLength;
    QString m_refusedUrl;
};

void TestWebDownloader::initTestCase()
{
    // Only this computer's addresses may be read.
    qputenv("VANTORA_OFFLINE", "1");
    m_server = std::make_unique<LocalHttpServer>();
    QVERIFY(m_server->isListening());
    m_server->setBody("/kept", "kept");
    m_server->setBody("/hello", "hello world");
    m_server->setBody("/empty", QByteArray());
    m_server->setBody("/big", QByteArray(4096, 'x'));
    LocalHttpServer::Response response;
    response.hang = true;
    m_server->setResponse("/hang", response);
    response = {};
    response.status = 500;
    response.body = "broken";
    m_server->setResponse("/error", response);
    response = {};
    response.dropConnection = true;
    m_server->setResponse("/drop", response);
    response = {};
    response.status = 302;
    response.headers = {{"Location", "/hello"}};
    m_server->setResponse("/moved", response);

    m_noLength = std::make_unique<NoLengthServer>(QByteArray(4096, 'y'));
    QVERIFY(m_noLength->isListening());

    QTcpServer closed; // a port that was just free: nobody listens there any more
    QVERIFY(closed.listen(QHostAddress::LocalHost));
    m_refusedUrl = QStringLiteral("http://127.0.0.1:%1/").arg(closed.serverPort());
}

void TestWebDownloader::cleanup()
{
    UnregisterInProcessHost(kBuiltInHost);
}

void TestWebDownloader::primeWithKeptBytes(WebDownloader &downloader)
{
    QSignalSpy complete(&downloader, &WebDownloader::DownloadComplete);
    downloader.DownloadStart(m_server->url("/kept").toString());
    QVERIFY(complete.wait(kWait));
    QCOMPARE(downloader.DataBytes(), QByteArray("kept"));
}

void TestWebDownloader::namedAndIdle()
{
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    QCOMPARE(downloader.objectName(), QStringLiteral("cls_dlmgr1"));
    QVERIFY(!downloader.StatusBusy());
    QCOMPARE(downloader.requestKey(), 0u);
    QCOMPARE(downloader.Duration(), 0);
    QVERIFY(downloader.DataBytes().isEmpty());
    QCOMPARE(downloader.replyLimit(), WebDownloader::WeatherReplyLimit);
    QCOMPARE(WebDownloader::userAgent(), QByteArray("Vantora/%1.%2.%3")
                                             .replace("%1", QByteArray::number(VANTORA_VERSION_MAJOR))
                                             .replace("%2", QByteArray::number(VANTORA_VERSION_MINOR))
                                             .replace("%3", QByteArray::number(VANTORA_VERSION_PATCH)));
}

void TestWebDownloader::inProcessReplySettlesOnce()
{
    auto *reply = new InProcessReply;
    QSignalSpy finished(reply, &InProcessReply::finished);
    reply->finish("first");
    reply->finish("second");
    reply->fail(7, QStringLiteral("too late"));
    QVERIFY(reply->isFinished());
    QVERIFY(!reply->hasFailed());
    QCOMPARE(reply->data(), QByteArray("first"));
    QCOMPARE(finished.count(), 0); // only through the event loop
    QTRY_COMPARE(finished.count(), 1);
    QTest::qWait(20);
    QCOMPARE(finished.count(), 1);
    delete reply;

    // A reply deleted before the event loop runs emits nothing.
    int signalled = 0;
    QObject receiver;
    reply = new InProcessReply;
    connect(reply, &InProcessReply::finished, &receiver, [&signalled] { ++signalled; });
    reply->fail(7, QStringLiteral("failed"));
    QVERIFY(reply->hasFailed());
    QCOMPARE(reply->errorNumber(), 7);
    delete reply;
    QTest::qWait(20);
    QCOMPARE(signalled, 0);
}

void TestWebDownloader::emptyAddressDoesNothing()
{
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    primeWithKeptBytes(downloader);
    const int duration = downloader.Duration();
    Events events(&downloader);

    downloader.DownloadStart(QString());
    QTest::qWait(50);
    QCOMPARE(events.count(), 0);
    QVERIFY(!downloader.StatusBusy());
    QCOMPARE(downloader.Duration(), duration);
    QCOMPARE(downloader.DataBytes(), QByteArray("kept"));

    // Nor does it touch a running read.
    const int hangs = m_server->requestCount("/hang");
    downloader.DownloadStart(m_server->url("/hang").toString());
    QTRY_COMPARE(m_server->requestCount("/hang"), hangs + 1);
    const quint32 key = downloader.requestKey();
    downloader.DownloadStart(QString(), WebDownloader::ForceFetch);
    QCOMPARE(downloader.requestKey(), key);
    QTest::qWait(50);
    QVERIFY(downloader.StatusBusy());
    QCOMPARE(m_server->requestCount("/hang"), hangs + 1);
    QCOMPARE(events.count(), 0);
}

void TestWebDownloader::completes_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("body") << QByteArray("/hello") << QByteArray("hello world");
    QTest::newRow("zero bytes") << QByteArray("/empty") << QByteArray();
    QTest::newRow("redirect followed") << QByteArray("/moved") << QByteArray("hello world");
}

void TestWebDownloader::completes()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, bytes);
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    primeWithKeptBytes(downloader);
    Events events(&downloader);

    downloader.DownloadStart(m_server->url(QString::fromLatin1(path)).toString());
    QVERIFY(downloader.StatusBusy());
    QVERIFY(downloader.requestKey() != 0);
    QCOMPARE(downloader.Duration(), 0);
    QVERIFY(events.complete.wait(kWait));

    QCOMPARE(events.failed.count(), 0);
    QCOMPARE(events.complete.first().first().toInt(), bytes.size());
    QCOMPARE(downloader.DataBytes(), bytes);
    QVERIFY(!downloader.StatusBusy());
    QCOMPARE(downloader.requestKey(), 0u);
    QVERIFY(downloader.Duration() >= 0);
}

void TestWebDownloader::restartCancelsRunningRead()
{
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    Events events(&downloader);
    const int hangs = m_server->requestCount("/hang");
    downloader.DownloadStart(m_server->url("/hang").toString());
    QTRY_COMPARE(m_server->requestCount("/hang"), hangs + 1); // the first read is on its way

    downloader.DownloadStart(m_server->url("/hello").toString());
    QVERIFY(downloader.StatusBusy());
    QCOMPARE(downloader.Duration(), 0);
    QVERIFY(events.complete.wait(kWait));
    QTest::qWait(100);
    QCOMPARE(events.complete.count(), 1);
    QCOMPARE(events.failed.count(), 0); // the cancelled read is not reported either
    QCOMPARE(events.complete.first().first().toInt(), 11);
    QCOMPARE(downloader.DataBytes(), QByteArray("hello world"));
    QVERIFY(!downloader.StatusBusy());
}

void TestWebDownloader::hungServerStaysBusy()
{
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    Events events(&downloader);
    downloader.DownloadStart(m_server->url("/hang").toString());
    const quint32 key = downloader.requestKey();
    QVERIFY(key != 0);
    QTest::qWait(300);
    QVERIFY(downloader.StatusBusy());
    QCOMPARE(events.count(), 0);

    downloader.DownloadCancel();
    QVERIFY(downloader.StatusBusy());
    QCOMPARE(downloader.requestKey(), key);
    QTest::qWait(100);
    QCOMPARE(events.count(), 0);
    QVERIFY(downloader.StatusBusy());
}

void TestWebDownloader::overLimitFails_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("announced length") << m_server->url("/big").toString();
    QTest::newRow("no length announced") << m_noLength->url();
}

void TestWebDownloader::overLimitFails()
{
    QFETCH(QString, url);
    WebDownloader downloader(1024);
    primeWithKeptBytes(downloader);
    Events events(&downloader);

    downloader.DownloadStart(url);
    QVERIFY(events.failed.wait(kWait));
    QTest::qWait(50);
    QCOMPARE(events.count(), 1);
    QCOMPARE(events.failed.first().at(0).toInt(), int(QNetworkReply::UnknownContentError));
    QVERIFY2(events.failed.first().at(1).toString().contains(QLatin1String("larger than 1 KB")),
             qPrintable(events.failed.first().at(1).toString()));
    QCOMPARE(downloader.DataBytes(), QByteArray("kept"));
    QVERIFY(!downloader.StatusBusy());
}

void TestWebDownloader::failures_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<int>("errorNumber");
    QTest::addColumn<QString>("describes");
    QTest::newRow("404") << m_server->url("/missing").toString() << 404 << "404 (Not Found)";
    QTest::newRow("500") << m_server->url("/error").toString() << 500 << "500 (Internal Server Error)";
    QTest::newRow("connection refused")
        << m_refusedUrl << int(QNetworkReply::ConnectionRefusedError) << "connection refused";
    QTest::newRow("connection dropped")
        << m_server->url("/drop").toString() << int(QNetworkReply::RemoteHostClosedError) << "closed the connection";
    QTest::newRow("unknown protocol")
        << "nosuch://127.0.0.1/x" << int(QNetworkReply::ProtocolUnknownError) << "not supported";
    QTest::newRow("internet while offline")
        << "https://example.com/x" << int(QNetworkReply::ContentAccessDenied) << "not allowed while VANTORA_OFFLINE";
}

void TestWebDownloader::failures()
{
    QFETCH(QString, url);
    QFETCH(int, errorNumber);
    QFETCH(QString, describes);
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    primeWithKeptBytes(downloader);
    Events events(&downloader);

    downloader.DownloadStart(url);
    QVERIFY(events.failed.wait(kWait));
    QCOMPARE(events.count(), 1);
    QCOMPARE(events.failed.first().at(0).toInt(), errorNumber);
    const QString description = events.failed.first().at(1).toString();
    QVERIFY2(description.contains(describes) && description.endsWith(QLatin1Char('.')), qPrintable(description));
    QCOMPARE(downloader.DataBytes(), QByteArray("kept"));
    QVERIFY(!downloader.StatusBusy());
}

void TestWebDownloader::offlineReadsStayOnThisComputer_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("allowed");
    QTest::newRow("IPv4 loopback") << "http://127.0.0.1:8080/x" << true;
    QTest::newRow("elsewhere in 127/8") << "http://127.45.6.7/x" << true;
    QTest::newRow("short IPv4 form") << "http://127.1/x" << true;
    QTest::newRow("IPv6 loopback") << "http://[::1]:80/x" << true;
    QTest::newRow("IPv6 loopback in full") << "http://[0:0:0:0:0:0:0:1]/x" << true;
    QTest::newRow("IPv4 loopback as IPv6") << "http://[::FFFF:127.0.0.1]/x" << true;
    QTest::newRow("localhost") << "http://LocalHost/x" << true;
    QTest::newRow("built-in host") << "http://" + kBuiltInHost + "/x" << true;
    QTest::newRow("next to loopback") << "http://128.0.0.1/x" << false;
    QTest::newRow("private network") << "http://10.0.0.1/x" << false;
    QTest::newRow("name that starts like loopback") << "http://127.0.0.1.example.com/x" << false;
    QTest::newRow("other IPv6") << "http://[::2]/x" << false;
    QTest::newRow("other IPv4 as IPv6") << "http://[::ffff:10.0.0.1]/x" << false;
    QTest::newRow("internet name") << "https://example.com/x" << false;
}

void TestWebDownloader::offlineReadsStayOnThisComputer()
{
    QFETCH(QString, url);
    QFETCH(bool, allowed);
    RegisterInProcessHost(kBuiltInHost, [](const QUrl &, int) { return nullptr; });
    const bool answer = NetworkReadAllowed(QUrl(url));
    UnregisterInProcessHost(kBuiltInHost);
    QCOMPARE(answer, allowed);
}

void TestWebDownloader::sendsHeaders_data()
{
    QTest::addColumn<int>("options");
    QTest::addColumn<QByteArray>("agent"); // replaces the program's own when set
    QTest::addColumn<QByteArray>("referer");
    QTest::newRow("plain") << 0 << QByteArray() << QByteArray();
    QTest::newRow("force fetch") << int(WebDownloader::ForceFetch) << QByteArray() << QByteArray();
    QTest::newRow("operator's agent") << 0 << QByteArray("Mozilla/5.0 (X11) Vantora") << QByteArray();
    QTest::newRow("operator's referer") << 0 << QByteArray() << QByteArray("https://example.org/cams/");
}

void TestWebDownloader::sendsHeaders()
{
    QFETCH(int, options);
    QFETCH(QByteArray, agent);
    QFETCH(QByteArray, referer);
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    QList<QPair<QByteArray, QByteArray>> extra;
    if (!agent.isEmpty())
        extra.append({"User-Agent", agent});
    if (!referer.isEmpty())
        extra.append({"Referer", referer});
    downloader.setExtraHeaders(extra);
    QSignalSpy complete(&downloader, &WebDownloader::DownloadComplete);
    const QByteArray path = "/hello?options=" + QByteArray::number(options);
    downloader.DownloadStart(m_server->url(QString::fromLatin1(path)).toString(), options);
    QVERIFY(complete.wait(kWait));

    const auto &requests = m_server->requests();
    const auto sent = std::find_if(requests.rbegin(), requests.rend(),
                                   [&path](const LocalHttpServer::Request &r) { return r.path == path; });
    QVERIFY(sent != requests.rend());
    QCOMPARE(sent->method, QByteArray("GET"));
    QCOMPARE(sent->headers.value("user-agent"), agent.isEmpty() ? WebDownloader::userAgent() : agent);
    QCOMPARE(sent->headers.value("referer"), referer);
    const bool force = options == WebDownloader::ForceFetch;
    QCOMPARE(sent->headers.value("cache-control") == "no-cache", force);
    QCOMPARE(sent->headers.value("pragma") == "no-cache", force);
}

void TestWebDownloader::inProcessHost_data()
{
    QTest::addColumn<QString>("answer"); // "now", "later", "fail now", "fail later", "none"
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("errorNumber"); // 0: completes
    QTest::newRow("answers in the handler") << "now" << QByteArray("<rss/>") << 0;
    QTest::newRow("answers later") << "later" << QByteArray("<rss>later</rss>") << 0;
    QTest::newRow("answers nothing") << "now" << QByteArray() << 0;
    QTest::newRow("over the limit") << "later" << QByteArray(4096, 'z') << int(QNetworkReply::UnknownContentError);
    QTest::newRow("fails in the handler") << "fail now" << QByteArray() << 42;
    QTest::newRow("fails later") << "fail later" << QByteArray() << 43;
    QTest::newRow("handler gives no reply") << "none" << QByteArray() << int(QNetworkReply::UnknownServerError);
}

void TestWebDownloader::inProcessHost()
{
    QFETCH(QString, answer);
    QFETCH(QByteArray, body);
    QFETCH(int, errorNumber);

    QUrl asked;
    int askedOptions = -1;
    RegisterInProcessHost(QStringLiteral("Feed.Vantora.Test"), [&](const QUrl &url, int options) -> InProcessReply * {
        asked = url;
        askedOptions = options;
        if (answer == QLatin1String("none"))
            return nullptr;
        auto *reply = new InProcessReply;
        if (answer == QLatin1String("now"))
            reply->finish(body);
        else if (answer == QLatin1String("fail now"))
            reply->fail(errorNumber, QStringLiteral("No weather today."));
        else
            QTimer::singleShot(20, [reply = QPointer<InProcessReply>(reply), answer, body, errorNumber] {
                if (!reply)
                    return;
                if (answer == QLatin1String("later"))
                    reply->finish(body);
                else
                    reply->fail(errorNumber, QStringLiteral("No weather today."));
            });
        return reply;
    });
    QVERIFY(IsInProcessHost(kBuiltInHost));

    WebDownloader downloader(1024);
    primeWithKeptBytes(downloader);
    Events events(&downloader);
    const int requests = int(m_server->requests().size());
    const QString address = QStringLiteral("http://%1/feed?code=USNY0996").arg(kBuiltInHost);
    downloader.DownloadStart(address, WebDownloader::ForceFetch);
    QCOMPARE(asked, QUrl(address));
    QCOMPARE(askedOptions, int(WebDownloader::ForceFetch));
    QVERIFY(downloader.StatusBusy()); // even an answer given at once arrives later
    QCOMPARE(events.count(), 0);

    QTRY_COMPARE_WITH_TIMEOUT(events.count(), 1, kWait);
    QVERIFY(!downloader.StatusBusy());
    if (errorNumber == 0) {
        QCOMPARE(events.complete.first().first().toInt(), body.size());
        QCOMPARE(downloader.DataBytes(), body);
    } else {
        QCOMPARE(events.failed.first().at(0).toInt(), errorNumber);
        QVERIFY(!events.failed.first().at(1).toString().isEmpty());
        QCOMPARE(downloader.DataBytes(), QByteArray("kept"));
    }
    QCOMPARE(int(m_server->requests().size()), requests); // nothing went over the network
}

void TestWebDownloader::cancelledInProcessReadDeliversNothing()
{
    QList<QPointer<InProcessReply>> replies;
    RegisterInProcessHost(kBuiltInHost, [&replies](const QUrl &url, int) {
        auto *reply = new InProcessReply;
        replies << reply;
        QTimer::singleShot(50, [reply = QPointer<InProcessReply>(reply), url] {
            if (reply)
                reply->finish(url.path().toLatin1());
        });
        return reply;
    });
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    Events events(&downloader);

    // Cancelled: nothing arrives, the reply is gone and the control stays busy.
    downloader.DownloadStart(QStringLiteral("http://%1/first").arg(kBuiltInHost));
    downloader.DownloadCancel();
    QVERIFY(replies.value(0).isNull());
    QTest::qWait(150);
    QCOMPARE(events.count(), 0);
    QVERIFY(downloader.StatusBusy());

    // Replaced by a new read: only the new one arrives.
    downloader.DownloadStart(QStringLiteral("http://%1/second").arg(kBuiltInHost));
    downloader.DownloadStart(QStringLiteral("http://%1/third").arg(kBuiltInHost));
    QVERIFY(replies.value(1).isNull());
    QVERIFY(events.complete.wait(kWait));
    QTest::qWait(100);
    QCOMPARE(events.count(), 1);
    QCOMPARE(downloader.DataBytes(), QByteArray("/third"));
}

void TestWebDownloader::measuresDuration()
{
    RegisterInProcessHost(kBuiltInHost, [](const QUrl &, int) {
        auto *reply = new InProcessReply;
        QTimer::singleShot(60, [reply = QPointer<InProcessReply>(reply)] {
            if (reply)
                reply->finish("slow");
        });
        return reply;
    });
    WebDownloader downloader(WebDownloader::WeatherReplyLimit);
    QSignalSpy complete(&downloader, &WebDownloader::DownloadComplete);
    downloader.DownloadStart(QStringLiteral("http://%1/slow").arg(kBuiltInHost));
    QCOMPARE(downloader.Duration(), 0);
    QVERIFY(complete.wait(kWait));
    QVERIFY(!downloader.StatusBusy());
    QVERIFY2(downloader.Duration() >= 50 && downloader.Duration() < kWait, qPrintable(QString::number(downloader.Duration())));

    // A new read starts from 0 again.
    downloader.DownloadStart(m_server->url("/hang").toString());
    QCOMPARE(downloader.Duration(), 0);
}

QTEST_GUILESS_MAIN(TestWebDownloader)
#include "test_web_downloader.moc"
