#pragma once

#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include <QByteArray>
#include <QString>

namespace quietlark {

/// A web server on the loopback interface for one large file, with ranges, on threads of its own:
/// fast, and there while the test waits for another program.
class FileServer {
public:
    struct Answer {
        qint64 firstByte = 0;  ///< of the file
        /// Of its body, by the client's system; set once it has ended.
        qint64 acknowledgedBytes = 0;
    };

    /// Serves the file at `path`, whatever the request's own path is.
    explicit FileServer(const QString& path);
    ~FileServer();
    FileServer(const FileServer&) = delete;
    FileServer& operator=(const FileServer&) = delete;

    [[nodiscard]] QString url(const QString& path) const;

    /// Every answer so far, in the order of their beginnings; recorded before the first byte is
    /// sent.
    [[nodiscard]] std::vector<Answer> answers() const;

    /// How many connections are open now.
    [[nodiscard]] std::size_t openConnectionCount() const;

private:
    void acceptConnections();
    void serve(int connection);
    void answer(int connection, const QByteArray& head);
    [[nodiscard]] std::size_t record(qint64 firstByte);
    void recordEnd(std::size_t index, qint64 acknowledgedBytes);

    int m_file;
    qint64 m_fileBytes;
    int m_listener;
    quint16 m_port = 0;
    mutable std::mutex m_mutex;
    std::vector<Answer> m_answers;     ///< guarded by m_mutex, as is the next
    std::vector<int> m_connections;    ///< open now
    std::list<std::thread> m_servers;  ///< of the accepting thread, until it has ended
    std::thread m_acceptor;
};

}  // namespace quietlark
