#pragma once

#include <functional>
#include <optional>

#include "server/browser_guard.h"
#include "server/http_messages.h"
#include "server/server_limits.h"
#include "server/speech_engine.h"
#include "server/transcription_form.h"

namespace quietlark {

/// What the server answers to which request: the forms of whisper.cpp's server and of OpenAI's
/// transcription interface. Knows nothing of sockets. Any thread, as far as the engine allows.
class HttpApi {
public:
    struct Settings {
        ServerLimits limits = {};
        Audience audience = Audience::ThisComputer;
        std::vector<std::string> ownNames = {};  ///< by which the network knows this computer
        std::string language = {};               ///< for requests that name none
    };

    explicit HttpApi(SpeechEngine& engine);
    HttpApi(SpeechEngine& engine, Settings settings);

    [[nodiscard]] const ServerLimits& limits() const { return m_settings.limits; }

    /// Why a request cannot be answered, whatever its body holds; absent when it can be.
    [[nodiscard]] std::optional<HttpResponse> refusal(const HttpHead& head) const;

    /// Answers a request that was not refused. Blocks while a recording is transcribed.
    [[nodiscard]] HttpResponse answer(const HttpRequest& request);

private:
    [[nodiscard]] std::optional<HttpResponse> uploadRefusal(const HttpHead& head) const;
    [[nodiscard]] HttpResponse health() const;
    [[nodiscard]] HttpResponse model(std::string_view id) const;
    [[nodiscard]] HttpResponse transcription(const HttpRequest& request);
    [[nodiscard]] HttpResponse transcribe(const TranscriptionForm& form,
                                          std::function<bool()> isAbandoned);

    SpeechEngine& m_engine;
    const Settings m_settings;
};

}  // namespace quietlark
