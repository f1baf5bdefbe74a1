#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include <httplib.h>

namespace quietlark {

/// The threads that serve connections, one each; as many as are needed at a time, up to a bound.
/// When more clients come, those that keep a connection open without asking anything are asked to
/// make room.
class ConnectionPool final : public httplib::TaskQueue {
public:
    /// `crowdedEvent` is an eventfd, from which every idle connection that takes 1 makes room.
    ConnectionPool(std::size_t mostThreads, int crowdedEvent);

    void enqueue(std::function<void()> connection) override;
    /// Ends when every connection has.
    void shutdown() override;

private:
    [[nodiscard]] bool addThread();
    void serve();

    const std::size_t m_mostThreads;
    const int m_crowdedEvent;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::function<void()>> m_connections;  ///< that have no thread yet
    std::vector<std::thread> m_threads;
    std::size_t m_idleThreads = 0;
    bool m_isEnding = false;
};

}  // namespace quietlark
