#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <tl/expected.hpp>

#include "server/speech_samples.h"
#include "server/transcript.h"

namespace quietlark {

/// Why an engine has no text for a recording.
enum class EngineError {
    Stopping,         ///< the program ends before it can be finished
    Abandoned,        ///< nobody waits for it any more
    CannotTranslate,  ///< a translation is asked of it, which it does not make
    Failed,           ///< the recogniser gave up
    Busy,             ///< others were before it until its time was over
    TimedOut,         ///< it would take longer than it may
    Unavailable,      ///< the recogniser is not running, and did not come back in time
};

/// A recording to be transcribed.
struct SpeechRequest {
    /// How often those who take long ask whether a request is abandoned.
    static constexpr std::chrono::milliseconds glance{250};

    SpeechSamples samples = {};              ///< one channel at SpeechEngine::sampleRateHz
    std::string_view language = {};          ///< as a client named it; empty when it did not
    std::string_view prompt = {};            ///< words that may occur; engines may leave it aside
    std::optional<double> temperature = {};  ///< 0 to 1: how daring to guess; likewise
    bool translates = false;                 ///< into English, from whatever is spoken
    std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
    /// Whether nobody waits for the text any more. Any thread.
    std::function<bool()> isAbandoned = [] { return false; };
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

    /// Whether a recording would be transcribed at once, were it the only one. Any thread.
    [[nodiscard]] virtual bool isReady() const = 0;

    /// Takes as long as it takes, though not much longer than to the request's deadline, or until
    /// it is abandoned. On which threads it may be called is up to the engine.
    [[nodiscard]] virtual tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) = 0;

    /// Makes this and every later transcribe() end soon with EngineError::Stopping. Any thread.
    virtual void stop() = 0;
};

}  // namespace quietlark
