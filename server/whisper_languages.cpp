#include "server/whisper_languages.h"

#include <algorithm>
#include <array>

#include "server/text_forms.h"

namespace quietlark {
namespace {

struct Language {
    std::string_view code;
    std::string_view name;
};

/// As listed with the models: ISO 639-1, and 639-3 where that has none.
constexpr std::array<Language, 100> languages = {
    {{"af", "afrikaans"},      {"am", "amharic"},     {"ar", "arabic"},
     {"as", "assamese"},       {"az", "azerbaijani"}, {"ba", "bashkir"},
     {"be", "belarusian"},     {"bg", "bulgarian"},   {"bn", "bengali"},
     {"bo", "tibetan"},        {"br", "breton"},      {"bs", "bosnian"},
     {"ca", "catalan"},        {"cs", "czech"},       {"cy", "welsh"},
     {"da", "danish"},         {"de", "german"},      {"el", "greek"},
     {"en", "english"},        {"es", "spanish"},     {"et", "estonian"},
     {"eu", "basque"},         {"fa", "persian"},     {"fi", "finnish"},
     {"fo", "faroese"},        {"fr", "french"},      {"gl", "galician"},
     {"gu", "gujarati"},       {"ha", "hausa"},       {"haw", "hawaiian"},
     {"he", "hebrew"},         {"hi", "hindi"},       {"hr", "croatian"},
     {"ht", "haitian creole"}, {"hu", "hungarian"},   {"hy", "armenian"},
     {"id", "indonesian"},     {"is", "icelandic"},   {"it", "italian"},
     {"ja", "japanese"},       {"jw", "javanese"},    {"ka", "georgian"},
     {"kk", "kazakh"},         {"km", "khmer"},       {"kn", "kannada"},
     {"ko", "korean"},         {"la", "latin"},       {"lb", "luxembourgish"},
     {"ln", "lingala"},        {"lo", "lao"},         {"lt", "lithuanian"},
     {"lv", "latvian"},        {"mg", "malagasy"},    {"mi", "maori"},
     {"mk", "macedonian"},     {"ml", "malayalam"},   {"mn", "mongolian"},
     {"mr", "marathi"},        {"ms", "malay"},       {"mt", "maltese"},
     {"my", "myanmar"},        {"ne", "nepali"},      {"nl", "dutch"},
     {"nn", "nynorsk"},        {"no", "norwegian"},   {"oc", "occitan"},
     {"pa", "punjabi"},        {"pl", "polish"},      {"ps", "pashto"},
     {"pt", "portuguese"},     {"ro", "romanian"},    {"ru", "russian"},
     {"sa", "sanskrit"},       {"sd", "sindhi"},      {"si", "sinhala"},
     {"sk", "slovak"},         {"sl", "slovenian"},   {"sn", "shona"},
     {"so", "somali"},         {"sq", "albanian"},    {"sr", "serbian"},
     {"su", "sundanese"},      {"sv", "swedish"},     {"sw", "swahili"},
     {"ta", "tamil"},          {"te", "telugu"},      {"tg", "tajik"},
     {"th", "thai"},           {"tk", "turkmen"},     {"tl", "tagalog"},
     {"tr", "turkish"},        {"tt", "tatar"},       {"uk", "ukrainian"},
     {"ur", "urdu"},           {"uz", "uzbek"},       {"vi", "vietnamese"},
     {"yi", "yiddish"},        {"yo", "yoruba"},      {"yue", "cantonese"},
     {"zh", "chinese"}}};

}  // namespace

std::optional<std::string> whisperLanguage(std::string_view name) {
    if (name.empty()) return "auto";
    const std::string wanted = lowerCase(name);
    const auto named = std::ranges::find(languages, wanted, &Language::name);
    if (named != languages.end()) return std::string(named->code);
    const std::string code = wanted.substr(0, wanted.find_first_of("-_"));
    const bool isKnown = std::ranges::find(languages, code, &Language::code) != languages.end();
    return isKnown || code == "auto" ? std::optional(code) : std::nullopt;
}

}  // namespace quietlark
