#include "server/whisper_model.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace quietlark {
namespace {

constexpr std::string_view prefix = "ggml-";
constexpr std::string_view suffix = ".bin";
constexpr std::size_t longestName = 100;

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

bool isEnglishOnly(const std::string& modelId) {
    return modelId.ends_with(".en") || modelId.find(".en-") != std::string::npos;
}

}  // namespace quietlark
