#include "server/transcript_format.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "server/json_text.h"
#include "server/text_forms.h"

namespace quietlark {
namespace {

struct Description {
    TranscriptFormat format;
    std::string_view name;
    std::string_view contentType;
};

constexpr std::array<Description, 5> descriptions = {{
    {TranscriptFormat::Json, "json", "application/json"},
    {TranscriptFormat::Text, "text", "text/plain; charset=utf-8"},
    {TranscriptFormat::VerboseJson, "verbose_json", "application/json"},
    {TranscriptFormat::Srt, "srt", "application/x-subrip; charset=utf-8"},
    {TranscriptFormat::Vtt, "vtt", "text/vtt; charset=utf-8"},
}};

/// "00:00:01,500"; `mark` stands before the milliseconds.
std::string timestamp(double seconds, char mark) {
    const auto milliseconds = static_cast<long long>(std::llround(std::max(seconds, 0.0) * 1000));
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02lld:%02lld:%02lld%c%03lld", milliseconds / 3600000,
                  milliseconds / 60000 % 60, milliseconds / 1000 % 60, mark, milliseconds % 1000);
    return text.data();
}

std::string times(const Transcript::Segment& segment, char mark) {
    return timestamp(segment.startSeconds, mark) + " --> " + timestamp(segment.endSeconds, mark) +
           "\n";
}

/// As one line: an empty one would end the subtitle.
std::string oneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    std::ranges::replace(text, '\r', ' ');
    return text.erase(0, text.find_first_not_of(' '));
}

/// WebVTT gives a meaning to these characters, and with them to "-->".
std::string escapedForVtt(std::string_view text) {
    std::string escaped;
    for (const char character : text) {
        if (character == '&') {
            escaped += "&amp;";
        } else if (character == '<') {
            escaped += "&lt;";
        } else if (character == '>') {
            escaped += "&gt;";
        } else {
            escaped += character;
        }
    }
    return escaped;
}

std::string asSrt(const Transcript& transcript) {
    std::string body;
    std::size_t number = 0;
    for (const auto& segment : transcript.segments)
        body +=
            std::to_string(++number) + "\n" + times(segment, ',') + oneLine(segment.text) + "\n\n";
    return body;
}

std::string asVtt(const Transcript& transcript) {
    std::string body = "WEBVTT\n\n";
    for (const auto& segment : transcript.segments)
        body += times(segment, '.') + escapedForVtt(oneLine(segment.text)) + "\n\n";
    return body;
}

/// How many digits numbers have that may be very small.
constexpr int fine = 4;

template <typename Items, typename Write>
std::string jsonArray(const Items& items, Write write) {
    std::string array = "[";
    for (const auto& item : items) {
        if (array.size() > 1) array += ',';
        array += write(item);
    }
    return array + "]";
}

std::string jsonTimes(double startSeconds, double endSeconds) {
    return R"("start":)" + decimals(startSeconds) + R"(,"end":)" + decimals(endSeconds);
}

std::string jsonSegment(const Transcript::Segment& segment, std::size_t id) {
    const auto number = [](int token) { return std::to_string(token); };
    return R"({"id":)" + std::to_string(id) + R"(,"seek":)" + std::to_string(segment.seek) + "," +
           jsonTimes(segment.startSeconds, segment.endSeconds) + R"(,"text":)" +
           jsonString(segment.text) + R"(,"tokens":)" + jsonArray(segment.tokens, number) +
           R"(,"temperature":)" + decimals(segment.temperature) + R"(,"avg_logprob":)" +
           decimals(segment.meanLogProbability, fine) + R"(,"compression_ratio":)" +
           decimals(segment.compressionRatio) + R"(,"no_speech_prob":)" +
           decimals(segment.noSpeechProbability, fine) + "}";
}

std::string jsonWord(const Transcript::Word& word) {
    return R"({"word":)" + jsonString(word.text) + "," +
           jsonTimes(word.startSeconds, word.endSeconds) + "}";
}

std::string asVerboseJson(const Transcript& transcript, double audioSeconds) {
    const std::string task = transcript.isTranslation ? "translate" : "transcribe";
    std::size_t id = 0;
    std::string body =
        R"({"task":)" + jsonString(task) + R"(,"language":)" + jsonString(transcript.language) +
        R"(,"duration":)" + decimals(audioSeconds) + R"(,"text":)" + jsonString(transcript.text) +
        R"(,"segments":)" + jsonArray(transcript.segments, [&id](const auto& segment) {
            return jsonSegment(segment, id++);
        });
    if (transcript.words) body += R"(,"words":)" + jsonArray(*transcript.words, &jsonWord);
    // Whole seconds, as they are counted there.
    return body + R"(,"usage":{"type":"duration","seconds":)" +
           decimals(std::ceil(audioSeconds), 0) + "}}";
}

}  // namespace

std::optional<TranscriptFormat> transcriptFormatOf(std::string_view name) {
    if (name.empty()) return TranscriptFormat::Json;
    const auto found = std::ranges::find(descriptions, name, &Description::name);
    if (found == descriptions.end()) return std::nullopt;
    return found->format;
}

std::string_view contentTypeOf(TranscriptFormat format) {
    return std::ranges::find(descriptions, format, &Description::format)->contentType;
}

std::string formatted(const Transcript& transcript, TranscriptFormat format, double audioSeconds) {
    switch (format) {
        case TranscriptFormat::Text:
            return transcript.text + "\n";
        case TranscriptFormat::VerboseJson:
            return asVerboseJson(transcript, audioSeconds);
        case TranscriptFormat::Srt:
            return asSrt(transcript);
        case TranscriptFormat::Vtt:
            return asVtt(transcript);
        case TranscriptFormat::Json:
            break;
    }
    return R"({"text":)" + jsonString(transcript.text) + "}";
}

}  // namespace quietlark
