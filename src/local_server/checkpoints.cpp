#include "local_server/checkpoints.h"

#include <utility>

namespace quietlark {

Checkpoints::Checkpoints(qint64 savedBytes, Save save)
    : m_save(std::move(save)),
      m_savedBytes(savedBytes),
      m_writtenBytes(savedBytes),
      m_thread([this] { run(); }) {}

Checkpoints::~Checkpoints() {
    stop();
}

void Checkpoints::reach(qint64 bytes) {
    {
        const std::lock_guard lock(m_mutex);
        m_writtenBytes = bytes;
    }
    m_changed.notify_one();
}

FileOutcome Checkpoints::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_changed.notify_one();
    if (m_thread.joinable()) m_thread.join();
    return m_outcome;
}

void Checkpoints::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock,
                       [this] { return m_isOver || m_writtenBytes - m_savedBytes >= strideBytes; });
        if (m_isOver) return;
        const qint64 bytes = m_writtenBytes;
        const auto next = std::chrono::steady_clock::now() + minInterval;
        lock.unlock();
        const FileOutcome outcome = m_save(bytes);
        lock.lock();
        m_savedBytes = bytes;
        m_outcome = outcome;
        if (!m_outcome) return;
        m_changed.wait_until(lock, next, [this] { return m_isOver; });
    }
}

}  // namespace quietlark
