#include "server/engine_choice.h"

#include <filesystem>
#include <sstream>
#include <utility>

#include <unistd.h>

#include "server/pocketsphinx_engine.h"
#include "server/whisper_engine.h"
#include "server/whisper_model.h"

namespace quietlark {
namespace {

bool isFile(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

std::string absolutePath(const std::string& path) {
    std::error_code error;
    return std::filesystem::absolute(path, error).string();
}

bool isProgram(const std::string& path) {
    return isFile(path) && access(path.c_str(), X_OK) == 0;
}

}  // namespace

EngineChoice::EngineChoice(const ServerOptions& options, ServerOptions::Settings environment,
                           Log& log)
    : m_options(options), m_environment(std::move(environment)), m_log(log) {}

bool EngineChoice::prefersWhisper() const {
    if (m_options.engine != ServerOptions::Engine::Automatic)
        return m_options.engine == ServerOptions::Engine::Whisper;
    return !whisperProgram().empty() && isFile(modelFile());
}

EngineChoice::Engine EngineChoice::whisper(std::function<void(bool)> onReadyChange) const {
    const std::string program = whisperProgram();
    if (program.empty())
        return tl::unexpected("There is no program " + m_options.whisperServer +
                              ". Install whisper.cpp, or say where its server is with "
                              "--whisper-server.");
    const std::string model = modelFile();
    if (!isFile(model))
        return tl::unexpected("There is no speech model " + model +
                              ". \"quietlark model download\" fetches one.");
    return std::make_unique<WhisperEngine>(
        WhisperEngine::Settings{.program = absolutePath(program),
                                .modelFile = absolutePath(model),
                                .onReadyChange = std::move(onReadyChange)},
        m_log);
}

EngineChoice::Engine EngineChoice::pocketSphinx() {
    return PocketSphinxEngine::load();
}

std::string EngineChoice::variable(const std::string& name) const {
    return m_environment(name).value_or("");
}

std::string EngineChoice::whisperProgram() const {
    const std::string& name = m_options.whisperServer;
    if (name.find('/') != std::string::npos) return isProgram(name) ? name : "";
    // A service's PATH does not name where users install programs of their own.
    const std::string home = variable("HOME");
    std::istringstream folders(variable("PATH") + ':' + (home.empty() ? "" : home + "/.local/bin"));
    std::string folder;
    while (std::getline(folders, folder, ':')) {
        const std::string path = folder + "/" + name;
        if (folder.starts_with('/') && isProgram(path)) return path;
    }
    return "";
}

std::string EngineChoice::modelFile() const {
    if (!m_options.modelFile.empty()) return m_options.modelFile;
    return usualModelFile(variable("XDG_DATA_HOME"), variable("HOME"));
}

}  // namespace quietlark
