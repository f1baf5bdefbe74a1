#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <string>

#include <httplib.h>

#include "server/client_patience.h"

namespace quietlark {

/// One client's connection, as the stream that cpp-httplib reads requests from and writes answers
/// to. It adds the bounds that the library lacks: on the size of a request's head, on the body
/// (what the head announced and no more), on the time that a silent or a slow client may take, and
/// on the time that the program takes to stop.
class HttpConnection final : public httplib::Stream {
public:
    /// Descriptors that end waiting when they become readable.
    struct Events {
        int stop = -1;     ///< for good
        int crowded = -1;  ///< an eventfd; an idle connection that takes 1 from it ends
    };

    /// Takes over the socket.
    HttpConnection(int socket, Events events, const ClientPatience& patience);
    ~HttpConnection() override;
    HttpConnection(const HttpConnection&) = delete;
    HttpConnection& operator=(const HttpConnection&) = delete;

    /// Waits for the first byte of a request; false when none comes.
    [[nodiscard]] bool waitForRequest();

    /// Lets `bytes` more of this request be read: what its head said.
    void expectBody(std::uint64_t bytes);

    /// Gives the answer its own time: what the engine took is not the client's. What is written
    /// before asks for the body.
    void beginAnswer();

    /// Whether the request has been read to its end, so that another can follow it.
    [[nodiscard]] bool isRequestComplete() const;

    /// Whether the client has closed its side of the connection. Any thread, while nothing is read.
    [[nodiscard]] bool hasClientLeft() const;

    [[nodiscard]] bool is_readable() const override;
    [[nodiscard]] bool is_writable() const override;
    ssize_t read(char* bytes, std::size_t size) override;
    ssize_t write(const char* bytes, std::size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    [[nodiscard]] socket_t socket() const override { return m_socket; }

private:
    using Clock = std::chrono::steady_clock;
    enum class Progress { Idle, Head, Body };

    [[nodiscard]] bool waitFor(short event, std::chrono::milliseconds limit) const;
    [[nodiscard]] bool waitWhileIdle() const;
    [[nodiscard]] bool waitWhileBusy(short event) const;
    void allow(std::chrono::milliseconds time) { m_deadline = Clock::now() + time; }
    void allowMore(std::size_t movedBytes);
    bool receive();
    bool fillBuffer();
    void discardInput() const;

    const int m_socket;
    const Events m_events;
    const ClientPatience& m_patience;
    Progress m_progress = Progress::Idle;
    bool m_isAnswering = false;
    Clock::time_point m_deadline;  // for what is being read or written
    std::uint64_t m_readable = 0;  // bytes of this request that may still be read
    std::array<char, 65536> m_buffer{};
    std::size_t m_bufferBegin = 0;
    std::size_t m_bufferEnd = 0;
};

}  // namespace quietlark
