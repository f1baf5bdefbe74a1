#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

namespace quietlark {

/// Why an engine has no text for a recording.
enum class EngineError {
    Stopping,  ///< the program ends before it can be finished
    Failed,    ///< the recogniser gave up
};

/// Turns recorded speech into text.
class SpeechEngine {
public:
    /// The one rate that engines take.
    static constexpr std::uint32_t sampleRateHz = 16000;

    virtual ~SpeechEngine() = default;

    /// The model's name for the list of models, such as "pocketsphinx-en-us".
    [[nodiscard]] virtual std::string modelId() const = 0;

    /// Whether a language, as a request names it, is one that the model was made for.
    [[nodiscard]] virtual bool understands(std::string_view language) const = 0;

    /// The text of one channel at sampleRateHz, in UTF-8; empty when nothing was said. Takes as
    /// long as it takes. On which threads it may be called is up to the engine.
    [[nodiscard]] virtual tl::expected<std::string, EngineError> transcribe(
        std::span<const std::int16_t> samples) = 0;

    /// Makes this and every later transcribe() end soon with EngineError::Stopping. Any thread.
    virtual void stop() = 0;
};

}  // namespace quietlark
