#include "server/whisper_answer.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

namespace quietlark {
namespace {

using Json = nlohmann::json;

constexpr const char* replacement = "\xef\xbf\xbd";

/// How many bytes the character at the beginning of `text` has; 0 when it is broken (RFC 3629).
std::size_t characterLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
    if (lead < 0xc2 || lead > 0xf4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0U) != 0x80) return 0;
    const bool isOverlong = (lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xf0 && byte(1) < 0x90);
    const bool isNoCharacter = (lead == 0xed && byte(1) > 0x9f) || (lead == 0xf4 && byte(1) > 0x8f);
    return isOverlong || isNoCharacter ? 0 : length;
}

std::string withoutBrokenCharacters(std::string_view text) {
    std::string whole;
    whole.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            whole += replacement;
        } else {
            whole += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return whole;
}

std::string textIn(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

double numberIn(const Json& object, const char* name, double otherwise = 0) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number() ? found->get<double>() : otherwise;
}

std::int64_t wholeNumberIn(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_number_integer() ? found->get<std::int64_t>() : 0;
}

std::vector<int> tokensIn(const Json& segment) {
    std::vector<int> tokens;
    const auto found = segment.find("tokens");
    if (found == segment.end() || !found->is_array()) return tokens;
    for (const Json& token : *found)
        if (token.is_number_integer()) tokens.push_back(token.get<int>());
    return tokens;
}

/// The words of the segments, which are told in the model's tokens: one that does not begin with a
/// blank goes on with the word before it. Absent when a segment does not tell them.
std::optional<std::vector<Transcript::Word>> wordsIn(const Json& answer) {
    std::vector<Transcript::Word> words;
    const auto segments = answer.find("segments");
    if (segments == answer.end() || !segments->is_array()) return std::nullopt;
    for (const Json& segment : *segments) {
        const auto tokens = segment.find("words");
        if (!segment.is_object() || tokens == segment.end() || !tokens->is_array())
            return std::nullopt;
        for (const Json& token : *tokens) {
            std::string text = textIn(token, "word");
            const bool isNew = words.empty() || text.starts_with(' ');
            if (isNew) words.push_back({.startSeconds = numberIn(token, "start")});
            words.back().endSeconds = numberIn(token, "end");
            words.back().text += text.erase(0, isNew ? text.find_first_not_of(' ') : 0);
        }
    }
    return words;
}

std::vector<Transcript::Segment> segmentsIn(const Json& answer) {
    std::vector<Transcript::Segment> segments;
    const auto found = answer.find("segments");
    if (found == answer.end() || !found->is_array()) return segments;
    for (const Json& segment : *found) {
        if (!segment.is_object()) continue;
        segments.push_back({.startSeconds = numberIn(segment, "start"),
                            .endSeconds = numberIn(segment, "end"),
                            .text = textIn(segment, "text"),
                            .seek = wholeNumberIn(segment, "seek"),
                            .tokens = tokensIn(segment),
                            .temperature = numberIn(segment, "temperature"),
                            .meanLogProbability = numberIn(segment, "avg_logprob"),
                            .compressionRatio = numberIn(segment, "compression_ratio", 1),
                            .noSpeechProbability = numberIn(segment, "no_speech_prob")});
    }
    return segments;
}

/// Without line breaks, and without blanks before and after.
std::string asOneLine(std::string text) {
    constexpr const char* blanks = " \t\r";
    std::erase(text, '\n');
    text.erase(text.find_last_not_of(blanks) + 1);
    return text.erase(0, text.find_first_not_of(blanks));
}

}  // namespace

std::optional<Transcript> parseWhisperAnswer(std::string_view body) {
    const Json answer = Json::parse(withoutBrokenCharacters(body), nullptr, false);
    if (!answer.is_object()) return std::nullopt;
    const auto text = answer.find("text");
    if (text == answer.end() || !text->is_string()) return std::nullopt;
    auto segments = segmentsIn(answer);
    std::string whole;
    for (const auto& segment : segments)
        whole += segment.text;
    if (segments.empty()) whole = text->get<std::string>();
    return Transcript{.text = asOneLine(std::move(whole)),
                      .language = textIn(answer, "language"),
                      .segments = std::move(segments),
                      .words = wordsIn(answer)};
}

}  // namespace quietlark
