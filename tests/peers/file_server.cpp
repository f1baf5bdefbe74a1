#include "peers/file_server.h"

#include <algorithm>
#include <csignal>

#include <QFile>
#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {

namespace {

const QByteArray entityTag = QByteArrayLiteral("\"the one file\"");

qint64 sizeOf(int file) {
    struct stat status {};
    ::fstat(file, &status);
    return status.st_size;
}

int listenOnLoopback() {
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address);
    ::listen(listener, 16);
    return listener;
}

quint16 portOf(int listener) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length);
    return ntohs(address.sin_port);
}

QByteArray header(const QByteArray& head, const QByteArray& name) {
    for (const QByteArray& line : head.split('\n')) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0 && line.first(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.sliced(colon + 1).trimmed();
        }
    }
    return {};
}

/// Null when the other side has gone.
QByteArray readHead(int connection) {
    QByteArray head;
    char bytes[4096];
    while (!head.contains("\r\n\r\n")) {
        const ssize_t count = ::recv(connection, bytes, sizeof bytes, 0);
        if (count <= 0) return {};
        head.append(bytes, count);
    }
    return head;
}

/// Of what was sent, as far as the other side has not acknowledged it.
qint64 bytesOnTheWay(int connection) {
    int bytes = 0;
    ::ioctl(connection, SIOCOUTQ, &bytes);
    return bytes;
}

bool sendText(int connection, const QByteArray& text) {
    return ::send(connection, text.constData(), static_cast<size_t>(text.size()), MSG_NOSIGNAL) ==
           text.size();
}

}  // namespace

FileServer::FileServer(const QString& path)
    : m_file(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)),
      m_fileBytes(sizeOf(m_file)),
      m_listener(listenOnLoopback()),
      m_port(portOf(m_listener)),
      m_acceptor([this] { acceptConnections(); }) {}

FileServer::~FileServer() {
    ::shutdown(m_listener, SHUT_RDWR);
    m_acceptor.join();
    {
        const std::lock_guard lock(m_mutex);
        for (const int connection : m_connections)
            ::shutdown(connection, SHUT_RDWR);
    }
    for (std::thread& server : m_servers)
        server.join();
    ::close(m_listener);
    ::close(m_file);
}

QString FileServer::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1").arg(m_port) + path;
}

std::vector<FileServer::Answer> FileServer::answers() const {
    const std::lock_guard lock(m_mutex);
    return m_answers;
}

std::size_t FileServer::openConnectionCount() const {
    const std::lock_guard lock(m_mutex);
    return m_connections.size();
}

void FileServer::acceptConnections() {
    while (true) {
        const int connection = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0) return;
        {
            const std::lock_guard lock(m_mutex);
            m_connections.push_back(connection);
        }
        m_servers.emplace_back([this, connection] { serve(connection); });
    }
}

void FileServer::serve(int connection) {
    // Sending from a file has no other way not to be ended by a client that has gone.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    for (QByteArray head = readHead(connection); !head.isNull(); head = readHead(connection)) {
        answer(connection, head);
    }
    const std::lock_guard lock(m_mutex);
    std::erase(m_connections, connection);
    ::close(connection);
}

void FileServer::answer(int connection, const QByteArray& head) {
    const QByteArray range = header(head, "Range");
    const QByteArray total = QByteArray::number(m_fileBytes);
    QByteArray text = "HTTP/1.1 200 OK\r\n";
    off_t position = 0;
    if (range.startsWith("bytes=") && header(head, "If-Range") == entityTag) {
        position = range.sliced(6).chopped(1).toLongLong();
        text = "HTTP/1.1 206 Partial Content\r\nContent-Range: bytes " +
               QByteArray::number(qint64{position}) + '-' + QByteArray::number(m_fileBytes - 1) +
               '/' + total + "\r\n";
    }
    text += "ETag: " + entityTag +
            "\r\nContent-Length: " + QByteArray::number(m_fileBytes - position) + "\r\n\r\n";
    const qint64 firstByte = position;
    const std::size_t index = record(firstByte);
    if (!sendText(connection, text)) return;
    while (position < m_fileBytes) {
        constexpr size_t pieceBytes = 256 * 1024;
        if (::sendfile(connection, m_file, &position, pieceBytes) <= 0) break;
    }
    recordEnd(index, std::max<qint64>(0, position - firstByte - bytesOnTheWay(connection)));
}

std::size_t FileServer::record(qint64 firstByte) {
    const std::lock_guard lock(m_mutex);
    m_answers.push_back({firstByte, 0});
    return m_answers.size() - 1;
}

void FileServer::recordEnd(std::size_t index, qint64 acknowledgedBytes) {
    const std::lock_guard lock(m_mutex);
    m_answers[index].acknowledgedBytes = acknowledgedBytes;
}

}  // namespace quietlark
