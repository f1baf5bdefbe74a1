#include "server/whisper_model.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

namespace quietlark {
namespace {

constexpr std::string_view prefix = "ggml-";
constexpr std::string_view suffix = ".bin";
constexpr std::size_t longestName = 100;

constexpr std::array<unsigned char, 4> format = {'l', 'm', 'g', 'g'};
constexpr std::uint32_t englishVocabulary = 51864;
constexpr std::uint32_t vocabularyWithCantonese = 51866;  // since large-v3

std::string publishedName(const std::string& modelFile) {
    std::string name;
    std::getline(std::ifstream(modelFile + ".name"), name);
    return name.empty() ? std::filesystem::path(modelFile).filename().string() : name;
}

}  // namespace

std::string usualModelFile(const std::string& dataHome, const std::string& home) {
    // A relative path is to be ignored, says the XDG base directory specification.
    const std::string data = dataHome.starts_with('/') ? dataHome
                             : home.empty()            ? ""
                                                       : home + "/.local/share";
    return data.empty() ? "" : data + "/Quietlark/models/active.bin";
}

std::string whisperModelId(const std::string& modelFile) {
    std::string name = publishedName(modelFile);
    if (name.starts_with(prefix)) name.erase(0, prefix.size());
    if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
    name.resize(std::min(name.size(), longestName));
    return "whisper-" + name;
}

ModelLanguages languagesOf(const std::string& modelFile) {
    std::array<unsigned char, 8> head{};
    std::ifstream file(modelFile, std::ios::binary);
    file.read(reinterpret_cast<char*>(head.data()), head.size());
    if (!file || !std::ranges::equal(format, std::span(head).first(format.size())))
        return ModelLanguages::All;
    const auto byte = [&head](std::size_t i) { return std::uint32_t{head[i]}; };
    const std::uint32_t size = byte(4) | byte(5) << 8U | byte(6) << 16U | byte(7) << 24U;
    if (size <= englishVocabulary) return ModelLanguages::English;
    return size < vocabularyWithCantonese ? ModelLanguages::AllButCantonese : ModelLanguages::All;
}

}  // namespace quietlark
