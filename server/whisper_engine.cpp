#include "server/whisper_engine.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "server/whisper_languages.h"
#include "server/whisper_model.h"

namespace quietlark {
namespace {

EngineSupervisor::Program programOf(const WhisperEngine::Settings& settings) {
    const auto processors = std::max(std::thread::hardware_concurrency(), 1U);
    return {.path = settings.program,
            .arguments = {"--model", settings.modelFile, "--threads", std::to_string(processors)}};
}

}  // namespace

WhisperEngine::WhisperEngine(const Settings& settings, Log& log)
    : m_modelId(whisperModelId(settings.modelFile)),
      m_supervisor(programOf(settings), settings.times, settings.onReadyChange, log) {}

std::string WhisperEngine::modelId() const {
    return m_modelId;
}

bool WhisperEngine::understands(std::string_view language) const {
    const auto code = whisperLanguage(language);
    return code && (!isEnglishOnly(m_modelId) || *code == "auto" || *code == "en");
}

bool WhisperEngine::isReady() const {
    return m_supervisor.isReady();
}

tl::expected<Transcript, EngineError> WhisperEngine::transcribe(const SpeechRequest& request) {
    if (request.samples.get().empty()) return Transcript();
    const auto child = m_supervisor.child(request.deadline);
    if (!child) return tl::unexpected(child.error());
    const std::string language =
        isEnglishOnly(m_modelId) ? "en" : whisperLanguage(request.language).value_or("auto");
    auto transcript = WhisperClient(child->address).transcribe(request, language);
    // It finishes, or drops, what nobody waits for by itself.
    const bool isWell = transcript || transcript.error() == EngineError::Failed ||
                        transcript.error() == EngineError::TooLong ||
                        transcript.error() == EngineError::Abandoned;
    if (isWell) return transcript;
    // It hangs or it died, perhaps of this recording, which is therefore not tried again.
    m_supervisor.replace(*child);
    return m_supervisor.isStopping() ? tl::unexpected(EngineError::Stopping) : transcript;
}

void WhisperEngine::stop() {
    m_supervisor.stop();
}

}  // namespace quietlark
