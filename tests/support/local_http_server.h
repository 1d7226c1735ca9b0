#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QUrl>

class QTcpSocket;

// A small HTTP/1.1 server on 127.0.0.1 for tests: each path answers with a fixed response,
// or hangs (never answers), or closes the connection without a word. Requests are recorded
// so that tests can check what the program sent.
class LocalHttpServer : public QTcpServer
{
    Q_OBJECT
public:
    struct Response
    {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "text/plain";
        QList<QPair<QByteArray, QByteArray>> headers; // extra headers
        bool hang = false;         // read the request, never answer
        bool dropConnection = false; // close without answering
        int trickleMs = 0;           // > 0: no length, then the body one byte every trickleMs
    };

    struct Request
    {
        QByteArray method;
        QByteArray path; // with its query
        QHash<QByteArray, QByteArray> headers; // names in lower case
    };

    LocalHttpServer();

    // "http://127.0.0.1:<port>" + path.
    QUrl url(const QString &path) const;

    // The response for a path (without the query; a path given with a query matches only that
    // query). Paths without a response get 404.
    void setResponse(const QByteArray &path, const Response &response);
    void setBody(const QByteArray &path, const QByteArray &body, const QByteArray &contentType = "text/plain");

    const QList<Request> &requests() const { return m_requests; }
    int requestCount(const QByteArray &path) const;

private:
    void answer(QTcpSocket *socket, const QByteArray &head);
    void trickle(QTcpSocket *socket, const QByteArray &body, int intervalMs);

    QHash<QByteArray, Response> m_responses;
    QList<Request> m_requests;
};

Q_DECLARE_METATYPE(LocalHttpServer::Response)
