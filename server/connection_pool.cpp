#include "server/connection_pool.h"

#include <system_error>
#include <utility>

#include <sys/eventfd.h>

namespace quietlark {

ConnectionPool::ConnectionPool(std::size_t mostThreads, int crowdedEvent)
    : m_mostThreads(mostThreads), m_crowdedEvent(crowdedEvent) {}

void ConnectionPool::enqueue(std::function<void()> connection) {
    const std::lock_guard lock(m_mutex);
    m_connections.push_back(std::move(connection));
    if (m_connections.size() <= m_idleThreads) {
        m_changed.notify_one();
    } else if (m_threads.size() >= m_mostThreads || !addThread()) {
        eventfd_write(m_crowdedEvent, 1);
    }
}

void ConnectionPool::shutdown() {
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

bool ConnectionPool::addThread() {
    try {
        m_threads.emplace_back([this] { serve(); });
        return true;
    } catch (const std::system_error&) {
        // The system has no more to give; those there are take the connection when they can.
        return false;
    }
}

void ConnectionPool::serve() {
    std::unique_lock lock(m_mutex);
    while (true) {
        ++m_idleThreads;
        m_changed.wait(lock, [this] { return !m_connections.empty() || m_isEnding; });
        --m_idleThreads;
        if (m_connections.empty()) return;
        const auto connection = std::move(m_connections.front());
        m_connections.pop_front();
        // Nobody has to make room any more.
        eventfd_t crowd = 0;
        while (m_connections.empty() && eventfd_read(m_crowdedEvent, &crowd) == 0)
            continue;
        lock.unlock();
        connection();
        lock.lock();
    }
}

}  // namespace quietlark
