#include "peers/http_server.h"

#include <memory>
#include <utility>

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>
#include <sys/socket.h>

namespace quietlark {

namespace {

constexpr QByteArrayView headEnd("\r\n\r\n");

QByteArray statusLine(int status) {
    return "HTTP/1.1 " + QByteArray::number(status) + " Scripted\r\n";
}

QByteArray head(int status, qsizetype bodyLength, const QByteArray& headers) {
    return statusLine(status) + headers + "Content-Length: " + QByteArray::number(bodyLength) +
           "\r\n\r\n";
}

}  // namespace

QByteArray HttpServer::Request::header(const QByteArray& name) const {
    for (const QByteArray& line : head.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.sliced(colon + 1).trimmed();
        }
    }
    return {};
}

HttpServer::HttpServer() {
    QObject::connect(&m_server, &QTcpServer::newConnection, &m_server, [this] { accept(); });
    m_server.listen(QHostAddress::LocalHost);
    m_port = m_server.serverPort();
}

HttpServer::~HttpServer() {
    close();
}

void HttpServer::on(const QByteArray& path, Reply reply) {
    m_replies[path] = std::move(reply);
}

void HttpServer::close() {
    m_server.close();
    for (QTcpSocket* socket : m_server.findChildren<QTcpSocket*>()) {
        socket->disconnect();
        socket->abort();
    }
}

QString HttpServer::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1").arg(m_port) + path;
}

std::vector<QByteArray> HttpServer::requestLines() const {
    std::vector<QByteArray> lines;
    for (const Request& request : m_requests)
        lines.push_back(request.method + ' ' + request.path);
    return lines;
}

int HttpServer::openConnectionCount() const {
    int count = 0;
    for (const QTcpSocket* socket : m_server.findChildren<QTcpSocket*>()) {
        if (socket->state() == QAbstractSocket::ConnectedState) ++count;
    }
    return count;
}

void HttpServer::accept() {
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        ++m_connectionCount;
        if (!m_isReading) {
            socket->setReadBufferSize(1);
            continue;
        }
        const auto received = std::make_shared<QByteArray>();
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [this, socket, connection = m_connectionCount, received] {
                             read(*socket, connection, *received);
                         });
    }
}

void HttpServer::read(QTcpSocket& socket, int connection, QByteArray& received) {
    received += socket.readAll();
    const qsizetype headLength = received.indexOf(headEnd);
    if (headLength < 0) return;
    Request request;
    request.head = received.first(headLength);
    const qsizetype bodyStart = headLength + headEnd.size();
    const qsizetype bodyLength = request.header("Content-Length").toLongLong();
    if (received.size() < bodyStart + bodyLength) return;
    const QList<QByteArray> words = request.head.first(request.head.indexOf('\r')).split(' ');
    request.method = words.value(0);
    request.path = words.value(1);
    request.body = received.sliced(bodyStart, bodyLength);
    request.connection = connection;
    received.remove(0, bodyStart + bodyLength);
    meet(socket, std::move(request));
}

void HttpServer::meet(QTcpSocket& socket, Request request) {
    const Reply reply = m_replies.value(request.path, http_reply::answer(404, "not here"));
    m_requests.push_back(std::move(request));
    reply(socket);
}

namespace http_reply {

HttpServer::Reply answer(int status, const QByteArray& body, const QByteArray& headers) {
    return bytesAndSilence(head(status, body.size(), headers) + body);
}

HttpServer::Reply json(const QByteArray& body) {
    return answer(200, body, "Content-Type: application/json\r\n");
}

HttpServer::Reply silence() {
    return bytesAndSilence({});
}

HttpServer::Reply bytesAndClose(const QByteArray& bytes) {
    return [bytes](QTcpSocket& socket) {
        socket.write(bytes);
        socket.disconnectFromHost();
    };
}

HttpServer::Reply bytesAndSilence(const QByteArray& bytes) {
    return [bytes](QTcpSocket& socket) { socket.write(bytes); };
}

HttpServer::Reply reset() {
    return [](QTcpSocket& socket) {
        const linger atOnce{1, 0};
        ::setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                     sizeof atOnce);
        socket.abort();
    };
}

HttpServer::Reply endless() {
    return [](QTcpSocket& socket) {
        const QByteArray block(64 * 1024, 'x');
        socket.write(statusLine(200) + "Content-Type: text/plain\r\n\r\n");
        QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&socket, block] {
            if (socket.bytesToWrite() == 0) socket.write(block);
        });
    };
}

HttpServer::Reply drip(const QByteArray& body, std::chrono::milliseconds pause) {
    return [body, pause](QTcpSocket& socket) {
        socket.write(head(200, body.size(), {}));
        const auto rest = std::make_shared<QByteArray>(body);
        auto* timer = new QTimer(&socket);
        QObject::connect(timer, &QTimer::timeout, &socket, [&socket, rest, timer] {
            socket.write(rest->first(1));
            rest->remove(0, 1);
            if (rest->isEmpty()) timer->stop();
        });
        timer->start(pause);
    };
}

HttpServer::Reply after(std::chrono::milliseconds pause, HttpServer::Reply reply) {
    return [pause, reply = std::move(reply)](QTcpSocket& socket) {
        QTimer::singleShot(pause, &socket, [&socket, reply] { reply(socket); });
    };
}

HttpServer::Reply first(HttpServer::Reply once, HttpServer::Reply then) {
    const auto isFirst = std::make_shared<bool>(true);
    return [isFirst, once = std::move(once), then = std::move(then)](QTcpSocket& socket) {
        (std::exchange(*isFirst, false) ? once : then)(socket);
    };
}

}  // namespace http_reply

}  // namespace quietlark
