#include "server/transcription_form.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quietlark {
namespace {

constexpr std::string_view granularities = "timestamp_granularities[]";
constexpr std::array<std::string_view, 4> yes = {"true", "1", "yes", "y"};

std::string_view fieldOf(const HttpRequest& request, std::string_view name) {
    const auto found = request.form.lower_bound(name);
    return found == request.form.end() || found->first != name ? std::string_view() : found->second;
}

std::optional<double> numberIn(std::string_view text, double lowest, double highest) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    if (!isNumber || !(number >= lowest && number <= highest)) return std::nullopt;
    return number;
}

tl::unexpected<HttpResponse> refused(std::string_view field, std::string_view message) {
    return tl::unexpected(badFieldResponse(field, message));
}

/// Why the times of words cannot be given; empty when they can be, as far as the form goes.
std::string_view wrongGranularity(const HttpRequest& request, TranscriptionForm& form) {
    const auto [first, last] = request.form.equal_range(granularities);
    for (auto field = first; field != last; ++field) {
        if (field->second != "word" && field->second != "segment")
            return "Times are given for each word or each segment.";
        form.wantsWords = form.wantsWords || field->second == "word";
    }
    return form.wantsWords && form.format != TranscriptFormat::VerboseJson
               ? "The times of words need the response format verbose_json."
               : "";
}

}  // namespace

tl::expected<TranscriptionForm, HttpResponse> TranscriptionForm::parse(const HttpRequest& request) {
    const auto format = transcriptFormatOf(fieldOf(request, "response_format"));
    if (!format)
        return refused("response_format",
                       "The response format is none of json, text, verbose_json, srt and vtt.");
    TranscriptionForm form{.file = {},
                           .format = *format,
                           .language = fieldOf(request, "language"),
                           .prompt = fieldOf(request, "prompt")};
    const std::string_view temperature = fieldOf(request, "temperature");
    form.temperature = numberIn(temperature, 0, 1);
    if (!temperature.empty() && !form.temperature)
        return refused("temperature", "The temperature is not a number from 0 to 1.");
    form.translates = std::ranges::find(yes, fieldOf(request, "translate")) != yes.end();
    const std::string_view wrong = wrongGranularity(request, form);
    if (!wrong.empty()) return refused(granularities, wrong);
    const auto file = request.form.lower_bound("file");
    if (file == request.form.end() || file->first != "file")
        return refused("file", "The form has no field named file.");
    form.file = file->second;
    return form;
}

}  // namespace quietlark
