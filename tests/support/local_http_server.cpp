#include "support/local_http_server.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <memory>

LocalHttpServer::LocalHttpServer()
{
    connect(this, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = nextPendingConnection()) {
            auto *buffer = new QByteArray;
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] {
                *buffer += socket->readAll();
                const int end = buffer->indexOf("\r\n\r\n");
                if (end < 0)
                    return;
                const QByteArray head = buffer->left(end);
                buffer->clear();
                answer(socket, head);
            });
            connect(socket, &QTcpSocket::disconnected, socket, [socket, buffer] {
                delete buffer;
                socket->deleteLater();
            });
        }
    });
    listen(QHostAddress::LocalHost);
}

QUrl LocalHttpServer::url(const QString &path) const
{
    return QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(serverPort()).arg(path));
}

void LocalHttpServer::setResponse(const QByteArray &path, const Response &response)
{
    m_responses.insert(path, response);
}

void LocalHttpServer::setBody(const QByteArray &path, const QByteArray &body, const QByteArray &contentType)
{
    Response response;
    response.body = body;
    response.contentType = contentType;
    setResponse(path, response);
}

int LocalHttpServer::requestCount(const QByteArray &path) const
{
    int count = 0;
    for (const Request &request : m_requests)
        if (request.path == path || request.path.startsWith(path + '?'))
            ++count;
    return count;
}

void LocalHttpServer::answer(QTcpSocket *socket, const QByteArray &head)
{
    const QList<QByteArray> lines = head.split('\n');
    const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
    Request request;
    request.method = requestLine.value(0);
    request.path = requestLine.value(1);
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines.at(i).trimmed();
        const qsizetype colon = line.indexOf(':');
        if (colon > 0)
            request.headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
    }
    m_requests.append(request);

    const QByteArray bare = request.path.left(request.path.indexOf('?') < 0 ? request.path.size()
                                                                            : request.path.indexOf('?'));
    Response response;
    if (m_responses.contains(request.path))
        response = m_responses.value(request.path);
    else if (m_responses.contains(bare))
        response = m_responses.value(bare);
    else
        response.status = 404, response.body = "not found";

    if (response.hang)
        return;
    if (response.dropConnection) {
        socket->abort();
        return;
    }
    QByteArray out = "HTTP/1.1 " + QByteArray::number(response.status) + " Status\r\n";
    out += "Content-Type: " + response.contentType + "\r\n";
    if (response.trickleMs > 0) {
        socket->write(out + "Connection: close\r\n\r\n");
        trickle(socket, response.body, response.trickleMs);
        return;
    }
    out += "Content-Length: " + QByteArray::number(response.body.size()) + "\r\n";
    for (const auto &[name, value] : response.headers)
        out += name + ": " + value + "\r\n";
    out += "Connection: close\r\n\r\n";
    out += response.body;
    socket->write(out);
    socket->disconnectFromHost();
}

// One byte at a time, for a server that is alive but too slow to be waited for.
void LocalHttpServer::trickle(QTcpSocket *socket, const QByteArray &body, int intervalMs)
{
    auto *timer = new QTimer(socket);
    auto sent = std::make_shared<qsizetype>(0);
    connect(timer, &QTimer::timeout, socket, [socket, timer, body, sent] {
        if (*sent >= body.size()) {
            timer->stop();
            socket->disconnectFromHost();
            return;
        }
        socket->write(body.mid((*sent)++, 1));
    });
    timer->start(intervalMs);
}
