#include "server/whisper_client.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include <httplib.h>

#include "audio/wav.h"
#include "server/text_forms.h"
#include "server/whisper_answer.h"

namespace quietlark {
namespace {

constexpr const char* loopback = "127.0.0.1";
/// Some versions hear nothing in what is shorter than a second.
constexpr std::size_t fewestSamples = SpeechEngine::sampleRateHz * 11 / 10;
/// In bytes. Whisper heeds the last 224 tokens of a prompt, of some four letters each. Its server
/// takes time for all of it, which grows with the square of the longest word, and crashes at tens
/// of thousands of letters.
constexpr std::size_t longestPrompt = 1000;
/// In bytes, of what it says when it fails.
constexpr std::size_t longestReason = 200;

httplib::MultipartFormData field(const char* name, std::string value) {
    return {.name = name, .content = std::move(value), .filename = {}, .content_type = {}};
}

/// The recording as a file, with silence after it where it is very short.
std::string fileOf(std::span<const std::int16_t> samples) {
    std::vector<std::int16_t> padded;
    if (samples.size() < fewestSamples) {
        padded.assign(samples.begin(), samples.end());
        padded.resize(fewestSamples);
        samples = padded;
    }
    const auto wav = WAV::encode(samples, SpeechEngine::sampleRateHz, 1);
    return {reinterpret_cast<const char*>(wav.data()), wav.size()};
}

/// The last characters of a text in UTF-8.
std::string endOf(std::string_view text, std::size_t mostBytes) {
    if (text.size() > mostBytes) text.remove_prefix(text.size() - mostBytes);
    const auto isWithinCharacter = [](char byte) { return (byte & 0xc0) == 0x80; };
    return {std::ranges::find_if_not(text, isWithinCharacter), text.end()};
}

/// Some versions keep what a request does not say from the one before it, so this says it all.
httplib::MultipartFormDataItems formOf(const SpeechRequest& request, const std::string& language) {
    httplib::MultipartFormDataItems form{
        field("response_format", "verbose_json"), field("language", language),
        field("translate", request.translates ? "true" : "false"),
        field("prompt", endOf(request.prompt, longestPrompt)),
        field("temperature", decimals(request.temperature.value_or(0))),
        // Nor shall the words of one recording be expected in the next, perhaps somebody else's.
        field("no_context", "true"),
        // It cuts long segments in two; this keeps it from doing so within a word.
        field("split_on_word", "true"),
        // Otherwise it looks at the recording once more, for how likely each language is.
        field("no_language_probabilities", "true")};
    // Not in the list above, which would be copied.
    form.push_back({.name = "file",
                    .content = fileOf(request.samples.get()),
                    .filename = "audio.wav",
                    .content_type = "audio/wav"});
    return form;
}

/// Without times after the end of the recording, where only our silence is.
Transcript within(double seconds, Transcript transcript) {
    const auto clamp = [seconds](auto& stretch) {
        stretch.startSeconds = std::min(stretch.startSeconds, seconds);
        stretch.endSeconds = std::min(stretch.endSeconds, seconds);
    };
    std::ranges::for_each(transcript.segments, clamp);
    if (transcript.words) std::ranges::for_each(*transcript.words, clamp);
    return transcript;
}

/// The status of an answer that is an error, and the first line of what it says.
std::string describe(const httplib::Response& answer) {
    const std::string line = answer.body.substr(0, answer.body.find('\n'));
    return std::to_string(answer.status) + " " + line.substr(0, longestReason);
}

/// Breaks a request off when nobody waits for its answer any more.
class AbandonmentWatch {
public:
    AbandonmentWatch(httplib::Client& client, const SpeechRequest& request)
        : m_thread([this, &client, &request](const std::stop_token& end) {
              std::mutex mutex;
              std::condition_variable_any ended;
              std::unique_lock lock(mutex);
              while (!end.stop_requested()) {
                  ended.wait_for(lock, end, SpeechRequest::glance, [] { return false; });
                  if (end.stop_requested() || !request.isAbandoned()) continue;
                  m_hasBrokenOff = true;
                  client.stop();
              }
          }) {}

    [[nodiscard]] bool hasBrokenOff() const { return m_hasBrokenOff; }

private:
    std::atomic<bool> m_hasBrokenOff = false;
    std::jthread m_thread;
};

}  // namespace

WhisperClient::WhisperClient(Address address, Log& log)
    : m_address(std::move(address)), m_log(log) {}

WhisperClient::Health WhisperClient::health(std::chrono::milliseconds limit) const {
    httplib::Client client(loopback, m_address.port);
    client.set_connection_timeout(limit);
    client.set_read_timeout(limit);
    const auto statusOf = [&](const char* page) {
        const auto answer = client.Get((m_address.path + page).c_str());
        return answer ? answer->status : 0;
    };
    const int status = statusOf("/health");
    if (status == 503) return Health::Loading;
    return status == 200 || (status == 404 && statusOf("/") == 200) ? Health::Ready
                                                                    : Health::NoAnswer;
}

tl::expected<Transcript, EngineError> WhisperClient::transcribe(const SpeechRequest& request,
                                                                const std::string& language) const {
    const auto now = std::chrono::steady_clock::now();
    // Beyond a day, a limit is none, and could not be counted in the library's units. It waits for
    // whole milliseconds, and less than it was told.
    const auto limit = std::min<std::chrono::steady_clock::duration>(
        request.deadline - std::min(now, request.deadline), std::chrono::hours(24));
    constexpr std::chrono::milliseconds rounding{2};

    httplib::Client client(loopback, m_address.port);
    client.set_tcp_nodelay(true);
    client.set_read_timeout(limit + rounding);
    const AbandonmentWatch watch(client, request);
    const auto answer =
        client.Post((m_address.path + "/inference").c_str(), formOf(request, language));
    if (!answer && watch.hasBrokenOff()) return tl::unexpected(EngineError::Abandoned);
    if (!answer && std::chrono::steady_clock::now() >= request.deadline)
        return tl::unexpected(EngineError::TimedOut);
    if (!answer) return tl::unexpected(EngineError::Unavailable);
    auto transcript = parseWhisperAnswer(answer->body);
    if (answer->status != 200 || !transcript) {
        // What came with 200 may hold words that were said.
        m_log.write(LogLevel::Error, answer->status == 200
                                         ? "whisper.cpp's answer is not understood"
                                         : "whisper.cpp: " + describe(*answer));
        return tl::unexpected(EngineError::Failed);
    }
    const auto samples = static_cast<double>(request.samples.get().size());
    transcript->isTranslation = request.translates;
    return within(samples / SpeechEngine::sampleRateHz, std::move(*transcript));
}

}  // namespace quietlark
