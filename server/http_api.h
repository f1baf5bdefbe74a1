#pragma once

#include <optional>

#include "server/http_messages.h"
#include "server/speech_engine.h"

namespace quietlark {

/// What the server answers to which request: the forms of whisper.cpp's server and of OpenAI's
/// transcription interface. Knows nothing of sockets. Any thread, as far as the engine allows.
class HttpApi {
public:
    /// The largest upload, in bytes: half an hour of 16-bit sound at 16 kHz.
    static constexpr std::uint64_t maximumBodyBytes = std::uint64_t{64} << 20U;

    explicit HttpApi(SpeechEngine& engine);

    /// Why a request cannot be answered, whatever its body holds; absent when it can be.
    [[nodiscard]] static std::optional<HttpResponse> refusal(const HttpHead& head);

    /// Answers a request that was not refused. Blocks while a recording is transcribed.
    [[nodiscard]] HttpResponse answer(const HttpRequest& request);

private:
    [[nodiscard]] HttpResponse models() const;
    [[nodiscard]] HttpResponse transcription(const HttpRequest& request);
    [[nodiscard]] HttpResponse transcribe(std::string_view file, bool asPlainText);

    SpeechEngine& m_engine;
};

}  // namespace quietlark
