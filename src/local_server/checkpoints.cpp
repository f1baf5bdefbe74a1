#include "local_server/checkpoints.h"

#include <utility>

namespace quietlark {

bool Checkpoints::Haste::isOn(qint64 bytes, std::chrono::duration<double> elapsed) const {
    const double most = static_cast<double>(bytesPerSecond) * elapsed.count();
    return static_cast<double>(bytes - headStartBytes) > most;
}

Checkpoints::Checkpoints(qint64 savedBytes, Save save)
    : Checkpoints(savedBytes, std::move(save), Haste()) {}

Checkpoints::Checkpoints(qint64 savedBytes, Save save, Haste haste)
    : m_save(std::move(save)),
      m_haste(haste),
      m_firstBytes(savedBytes),
      m_savedBytes(savedBytes),
      m_writtenBytes(savedBytes),
      m_thread([this] { run(); }) {}

Checkpoints::~Checkpoints() {
    stop();
}

FileOutcome Checkpoints::reach(qint64 bytes) {
    std::unique_lock lock(m_mutex);
    m_writtenBytes = bytes;
    if (m_isIdle && isDue()) m_due.notify_one();
    if (mustWait()) {
        m_isWaitedFor = true;
        m_due.notify_one();
        m_changed.wait(lock, [this] { return !mustWait(); });
        m_isWaitedFor = false;
    }
    return m_outcome;
}

bool Checkpoints::isDue() const {
    return m_writtenBytes - m_savedBytes >= strideBytes;
}

bool Checkpoints::mustWait() const {
    const bool isTooMuch = m_writtenBytes - m_savedBytes > maxUnsavedBytes;
    if (!isTooMuch || !m_outcome || m_isOver) return false;
    const Clock::time_point now = Clock::now();
    return now >= m_lastBegin + m_haste.patience ||
           !m_haste.isOn(m_writtenBytes - m_firstBytes, now - m_begin);
}

FileOutcome Checkpoints::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_due.notify_one();
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
    return m_outcome;
}

void Checkpoints::run() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_isIdle = true;
        m_due.wait(lock, [this] { return m_isOver || isDue(); });
        m_isIdle = false;
        if (m_isOver) return;
        const qint64 bytes = m_writtenBytes;
        m_lastBegin = Clock::now();
        m_changed.notify_all();
        lock.unlock();
        FileOutcome outcome = m_save(bytes);
        lock.lock();
        m_outcome = std::move(outcome);
        if (m_outcome) m_savedBytes = bytes;
        m_changed.notify_all();
        if (!m_outcome) return;
        m_due.wait_until(lock, m_lastBegin + minInterval,
                         [this] { return m_isOver || m_isWaitedFor; });
    }
}

}  // namespace quietlark
