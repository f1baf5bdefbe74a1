#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace quietlark {

/// A loopback server on a thread of its own that notes when the bytes of a request arrive, and
/// answers each with an empty body. One connection at a time.
class TimingServer {
public:
    using Clock = std::chrono::steady_clock;

    struct Arrival {
        Clock::time_point firstByte;
        Clock::time_point lastByte;
    };

    TimingServer();
    ~TimingServer();

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    /// When the newest request arrived; waits until it has, as a whole.
    [[nodiscard]] Arrival takeArrival();

private:
    void serve();
    void serveConnection(int connection);

    int m_listener = -1;
    std::uint16_t m_port = 0;
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    bool m_hasArrival = false;  ///< guarded by m_mutex
    Arrival m_arrival;          ///< guarded by m_mutex
    std::thread m_thread;
};

}  // namespace quietlark
