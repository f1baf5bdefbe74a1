#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>

#include "server/speech_engine.h"

namespace quietlark {

/// Lets any number of threads share an engine that serves one at a time: in the order in which they
/// came, so that nobody waits longer than those before him take. Who has no turn by his deadline
/// gets EngineError::Busy; whoever has left by his turn is passed over.
class SerialEngine final : public SpeechEngine {
public:
    explicit SerialEngine(SpeechEngine& engine);

    [[nodiscard]] std::string modelId() const override;
    [[nodiscard]] bool understands(std::string_view language) const override;
    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override;
    void stop() override;

    /// How many callers wait for their turn.
    [[nodiscard]] std::size_t waiting();

private:
    class Turn;

    SpeechEngine& m_engine;
    std::mutex m_mutex;
    std::condition_variable m_turnEnded;
    std::deque<const Turn*> m_queue;  ///< the first one has its turn
};

}  // namespace quietlark
