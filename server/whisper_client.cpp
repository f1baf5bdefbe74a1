#include "server/whisper_client.h"

#include <utility>

#include <httplib.h>

#include "audio/wav.h"
#include "server/whisper_answer.h"

namespace quietlark {
namespace {

constexpr const char* loopback = "127.0.0.1";

httplib::MultipartFormData field(const char* name, std::string value) {
    return {.name = name, .content = std::move(value), .filename = {}, .content_type = {}};
}

}  // namespace

WhisperClient::WhisperClient(Address address) : m_address(std::move(address)) {}

WhisperClient::Health WhisperClient::health(std::chrono::milliseconds limit) const {
    httplib::Client client(loopback, m_address.port);
    client.set_connection_timeout(limit);
    client.set_read_timeout(limit);
    const auto answer = client.Get((m_address.path + "/health").c_str());
    if (!answer) return Health::NoAnswer;
    return answer->status == 503 ? Health::Loading : Health::Ready;
}

tl::expected<Transcript, EngineError> WhisperClient::transcribe(const SpeechRequest& request,
                                                                const std::string& language) const {
    const auto wav = WAV::encode(request.samples, SpeechEngine::sampleRateHz, 1);
    const httplib::MultipartFormDataItems form{field("response_format", "verbose_json"),
                                               field("language", language),
                                               {.name = "file",
                                                .content = std::string(wav.begin(), wav.end()),
                                                .filename = "audio.wav",
                                                .content_type = "audio/wav"}};
    const auto now = std::chrono::steady_clock::now();
    // Beyond a day, a limit is none, and could not be counted in the library's units. It waits for
    // whole milliseconds, and less than it was told.
    const auto limit = std::min<std::chrono::steady_clock::duration>(
        request.deadline - std::min(now, request.deadline), std::chrono::hours(24));
    constexpr std::chrono::milliseconds rounding{2};

    httplib::Client client(loopback, m_address.port);
    client.set_tcp_nodelay(true);
    client.set_read_timeout(limit + rounding);
    const auto answer = client.Post((m_address.path + "/inference").c_str(), form);
    if (!answer && std::chrono::steady_clock::now() >= request.deadline)
        return tl::unexpected(EngineError::TimedOut);
    if (!answer) return tl::unexpected(EngineError::Unavailable);
    const auto transcript = parseWhisperAnswer(answer->body);
    if (answer->status != 200 || !transcript) return tl::unexpected(EngineError::Failed);
    return *transcript;
}

}  // namespace quietlark
