#include "server/whisper_languages.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace quietlark {
namespace {

/// As listed with the models: ISO 639-1, and 639-3 where that has none.
constexpr std::array<std::string_view, 100> codes = {
    "af", "am", "ar", "as", "az", "ba", "be", "bg", "bn", "bo", "br", "bs", "ca", "cs", "cy",
    "da", "de", "el", "en", "es", "et", "eu", "fa", "fi", "fo", "fr", "gl", "gu", "ha", "haw",
    "he", "hi", "hr", "ht", "hu", "hy", "id", "is", "it", "ja", "jw", "ka", "kk", "km", "kn",
    "ko", "la", "lb", "ln", "lo", "lt", "lv", "mg", "mi", "mk", "ml", "mn", "mr", "ms", "mt",
    "my", "ne", "nl", "nn", "no", "oc", "pa", "pl", "ps", "pt", "ro", "ru", "sa", "sd", "si",
    "sk", "sl", "sn", "so", "sq", "sr", "su", "sv", "sw", "ta", "te", "tg", "th", "tk", "tl",
    "tr", "tt", "uk", "ur", "uz", "vi", "yi", "yo", "zh", "yue"};

}  // namespace

std::optional<std::string> whisperLanguage(std::string_view name) {
    if (name.empty()) return "auto";
    std::string code(name.substr(0, name.find_first_of("-_")));
    std::ranges::transform(code, code.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    if (code == "auto" || std::ranges::find(codes, code) != codes.end()) return code;
    return std::nullopt;
}

}  // namespace quietlark
