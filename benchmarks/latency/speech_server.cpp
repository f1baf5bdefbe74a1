#include "latency/speech_server.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace quietlark::benchmark {

namespace {

QByteArray response(const char* status, const QByteArray& body) {
    return QByteArray("HTTP/1.1 ") + status +
           "\r\nContent-Type: application/json\r\nContent-Length: " +
           QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

qsizetype contentLength(const QByteArray& head) {
    constexpr char name[] = "\r\ncontent-length:";
    const qsizetype begin = head.toLower().indexOf(name);
    if (begin < 0) return 0;
    const qsizetype valueBegin = begin + qsizetype(sizeof name) - 1;
    return head.mid(valueBegin, head.indexOf("\r\n", valueBegin) - valueBegin)
        .trimmed()
        .toLongLong();
}

QByteArray answerTo(const QByteArray& head) {
    if (head.startsWith("POST")) return response("200 OK", R"({"text": "hello"})");
    if (head.startsWith("GET /v1/models"))
        return response("200 OK", R"({"data": [{"id": "instant", "labels": ["audio"]}]})");
    return response("404 Not Found", "{}");
}

}  // namespace

SpeechServer::SpeechServer() : m_listener(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    bind(m_listener, reinterpret_cast<sockaddr*>(&address), size);
    listen(m_listener, 8);
    getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { serve(); });
}

SpeechServer::~SpeechServer() {
    shutdown(m_listener, SHUT_RDWR);
    m_thread.join();
    close(m_listener);
}

bool SpeechServer::awaitUpload(Upload& upload) {
    std::unique_lock lock(m_mutex);
    if (!m_uploaded.wait_for(lock, std::chrono::seconds(5), [this] { return m_hasUpload; }))
        return false;
    m_hasUpload = false;
    upload = m_upload;
    return true;
}

void SpeechServer::serve() {
    while (true) {
        const int socket = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) return;
        serveConnection(socket);
        close(socket);
    }
}

void SpeechServer::serveConnection(int socket) {
    const int on = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    QByteArray received;
    Upload upload;
    char buffer[256 * 1024];
    while (true) {
        const ssize_t count = recv(socket, buffer, sizeof buffer, 0);
        if (count <= 0) return;
        const auto now = Clock::now();
        if (received.isEmpty()) upload.firstByte = now;
        received.append(buffer, count);
        const qsizetype headEnd = received.indexOf("\r\n\r\n");
        if (headEnd < 0) continue;
        const QByteArray head = received.first(headEnd + 2);
        if (received.size() < headEnd + 4 + contentLength(head)) continue;

        upload.lastByte = now;
        upload.bytes = std::size_t(received.size());
        received.clear();
        const QByteArray answer = answerTo(head);
        upload.answered = Clock::now();
        if (send(socket, answer.constData(), std::size_t(answer.size()), MSG_NOSIGNAL) < 0) return;
        if (!head.startsWith("POST")) continue;
        const std::scoped_lock lock(m_mutex);
        m_upload = upload;
        m_hasUpload = true;
        m_uploaded.notify_one();
    }
}

}  // namespace quietlark::benchmark
