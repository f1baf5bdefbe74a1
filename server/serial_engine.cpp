#include "server/serial_engine.h"

namespace quietlark {

/// Waits for its turn when it begins and gives it up when it ends.
class SerialEngine::Turn {
public:
    explicit Turn(SerialEngine& queue) : m_queue(queue) {
        std::unique_lock lock(m_queue.m_mutex);
        const std::uint64_t ticket = m_queue.m_nextTicket++;
        m_queue.m_turnEnded.wait(lock, [this, ticket] { return m_queue.m_servedTicket == ticket; });
    }

    ~Turn() {
        {
            const std::lock_guard lock(m_queue.m_mutex);
            ++m_queue.m_servedTicket;
        }
        m_queue.m_turnEnded.notify_all();
    }

    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    SerialEngine& m_queue;
};

SerialEngine::SerialEngine(SpeechEngine& engine) : m_engine(engine) {}

std::string SerialEngine::modelId() const {
    return m_engine.modelId();
}

bool SerialEngine::understands(std::string_view language) const {
    return m_engine.understands(language);
}

tl::expected<std::string, EngineError> SerialEngine::transcribe(
    std::span<const std::int16_t> samples) {
    const Turn turn(*this);
    return m_engine.transcribe(samples);
}

void SerialEngine::stop() {
    m_engine.stop();
}

std::uint64_t SerialEngine::waiting() {
    const std::lock_guard lock(m_mutex);
    const std::uint64_t present = m_nextTicket - m_servedTicket;
    return present > 0 ? present - 1 : 0;
}

}  // namespace quietlark
