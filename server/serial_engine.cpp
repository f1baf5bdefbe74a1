#include "server/serial_engine.h"

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

    /// False when it has not come by then.
    [[nodiscard]] bool comesBefore(std::chrono::steady_clock::time_point deadline) const {
        std::unique_lock lock(m_shared.m_mutex);
        return m_shared.m_turnEnded.wait_until(lock, deadline,
                                               [this] { return m_shared.m_queue.front() == this; });
    }

private:
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
    if (!turn.comesBefore(request.deadline)) return tl::unexpected(EngineError::Busy);
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
