#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include <QByteArray>
#include <QHostAddress>
#include <QMap>
#include <QString>
#include <QTcpServer>

class QTcpSocket;

namespace quietlark {

/// A server on the loopback interface that does exactly what a test tells it, faults included. It
/// lives in the test's own event loop and speaks HTTP/1.1 by hand.
class HttpServer {
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QByteArray head;  ///< the request line and all headers, as they came
        QByteArray body;
        int connection = 0;  ///< which connection it came over, counted from 1

        /// A header's value; null when it was not sent. The name's case does not matter.
        [[nodiscard]] QByteArray header(const QByteArray& name) const;
    };
    /// What is done with the connection once a request has arrived as a whole.
    using Reply = std::function<void(QTcpSocket&)>;

    HttpServer();
    ~HttpServer();

    /// From now on every request of `path` is met by `reply`; any other is answered 404.
    void on(const QByteArray& path, Reply reply);

    /// From now on connections are accepted and never read.
    void stopReading() { m_isReading = false; }

    /// Frees the port and closes every connection.
    void close();

    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] QString url(const QString& path = {}) const;

    [[nodiscard]] const std::vector<Request>& requests() const { return m_requests; }

    /// "GET /path" of every request so far, in order.
    [[nodiscard]] std::vector<QByteArray> requestLines() const;

    /// How many connections have been accepted so far.
    [[nodiscard]] int connectionCount() const { return m_connectionCount; }

    /// How many connections are open now.
    [[nodiscard]] int openConnectionCount() const;

private:
    void accept();
    void read(QTcpSocket& socket, int connection, QByteArray& received);
    void meet(QTcpSocket& socket, Request request);

    QTcpServer m_server;
    quint16 m_port = 0;
    bool m_isReading = true;
    int m_connectionCount = 0;
    QMap<QByteArray, Reply> m_replies;
    std::vector<Request> m_requests;
};

/// The ways in which a test's server can behave.
namespace http_reply {

/// A proper answer. `headers` are whole lines, each with its line end.
[[nodiscard]] HttpServer::Reply answer(int status, const QByteArray& body,
                                       const QByteArray& headers = {});
/// A 200 answer of JSON.
[[nodiscard]] HttpServer::Reply json(const QByteArray& body);
/// Nothing at all, with the connection left open.
[[nodiscard]] HttpServer::Reply silence();
/// The connection is closed after `bytes`, without another word.
[[nodiscard]] HttpServer::Reply bytesAndClose(const QByteArray& bytes = {});
/// The connection stays open after `bytes`.
[[nodiscard]] HttpServer::Reply bytesAndSilence(const QByteArray& bytes);
/// The connection is reset, so that the client sees it break.
[[nodiscard]] HttpServer::Reply reset();
/// A 200 answer whose body goes on for as long as the client listens.
[[nodiscard]] HttpServer::Reply endless();
/// A proper 200 answer whose body comes byte by byte, one after every `pause`.
[[nodiscard]] HttpServer::Reply drip(const QByteArray& body, std::chrono::milliseconds pause);
/// `reply`, once `pause` has passed.
[[nodiscard]] HttpServer::Reply after(std::chrono::milliseconds pause, HttpServer::Reply reply);
/// `once` for the first request that it meets, `then` for all others.
[[nodiscard]] HttpServer::Reply first(HttpServer::Reply once, HttpServer::Reply then);

}  // namespace http_reply

}  // namespace quietlark
