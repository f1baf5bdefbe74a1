#pragma once

#include <condition_variable>
#include <mutex>

#include "server/speech_engine.h"

namespace quietlark {

/// Lets any number of threads share an engine that serves one at a time: in the order in which they
/// came, so that nobody waits longer than those before him take.
class SerialEngine final : public SpeechEngine {
public:
    explicit SerialEngine(SpeechEngine& engine);

    [[nodiscard]] std::string modelId() const override;
    [[nodiscard]] bool understands(std::string_view language) const override;
    [[nodiscard]] tl::expected<std::string, EngineError> transcribe(
        std::span<const std::int16_t> samples) override;
    void stop() override;

    /// How many callers wait for their turn.
    [[nodiscard]] std::uint64_t waiting();

private:
    class Turn;

    SpeechEngine& m_engine;
    std::mutex m_mutex;
    std::condition_variable m_turnEnded;
    std::uint64_t m_nextTicket = 0;
    std::uint64_t m_servedTicket = 0;
};

}  // namespace quietlark
