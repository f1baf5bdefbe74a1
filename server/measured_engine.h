#pragma once

#include <functional>

#include "server/speech_engine.h"
#include "server/speed_meter.h"

namespace quietlark {

/// An engine that keeps watch of how fast it is. Serves as many threads as the engine behind it.
class MeasuredEngine final : public SpeechEngine {
public:
    /// `onSpeed` hears of the speed after every recording that counts, on the thread that had it
    /// transcribed.
    MeasuredEngine(SpeechEngine& engine, std::function<void(double rtf)> onSpeed);

    [[nodiscard]] std::string modelId() const override;
    [[nodiscard]] bool understands(std::string_view language) const override;
    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override;
    void stop() override;

private:
    SpeechEngine& m_engine;
    const std::function<void(double)> m_onSpeed;
    SpeedMeter m_meter;
};

}  // namespace quietlark
