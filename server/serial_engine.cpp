#include "server/serial_engine.h"

#include <algorithm>

namespace quietlark {

/// A place in the queue, given up when it ends.
class SerialEngine::Turn {
public:
    explicit Turn(SerialEngine& engine) : m_shared(engine) {
        const std::lock_guard lock(m_shared.m_mutex);
        m_shared.m_queue.push_back(this);
    }

    ~Turn() {
        {
            const std::lock_guard lock(m_shared.m_mutex);
            std::erase(m_shared.m_queue, this);
        }
        m_shared.m_turnEnded.notify_all();
    }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    /// Waits until it has come.
    [[nodiscard]] tl::expected<void, EngineError> await(const SpeechRequest& request) const {
        while (true) {
            const auto now = std::chrono::steady_clock::now();
            const bool hasCome =
                comesBefore(std::min(now + SpeechRequest::glance, request.deadline));
            if (request.isAbandoned()) return tl::unexpected(EngineError::Abandoned);
            if (hasCome) return {};
            if (now >= request.deadline) return tl::unexpected(EngineError::Busy);
        }
    }

private:
    [[nodiscard]] bool comesBefore(std::chrono::steady_clock::time_point time) const {
        std::unique_lock lock(m_shared.m_mutex);
        return m_shared.m_turnEnded.wait_until(lock, time,
                                               [this] { return m_shared.m_queue.front() == this; });
    }

    SerialEngine& m_shared;
};

SerialEngine::SerialEngine(SpeechEngine& engine) : m_engine(engine) {}

std::string SerialEngine::modelId() const {
    return m_engine.modelId();
}

bool SerialEngine::understands(std::string_view language) const {
    return m_engine.understands(language);
}

bool SerialEngine::isReady() const {
    return m_engine.isReady();
}

tl::expected<Transcript, EngineError> SerialEngine::transcribe(const SpeechRequest& request) {
    const Turn turn(*this);
    const auto come = turn.await(request);
    if (!come) return tl::unexpected(come.error());
    return m_engine.transcribe(request);
}

void SerialEngine::stop() {
    m_engine.stop();
}

std::size_t SerialEngine::waiting() {
    const std::lock_guard lock(m_mutex);
    return m_queue.empty() ? 0 : m_queue.size() - 1;
}

}  // namespace quietlark
