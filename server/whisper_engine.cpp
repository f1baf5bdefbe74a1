#include "server/whisper_engine.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "server/whisper_languages.h"

namespace quietlark {
namespace {

/// What it is given is always a sound file: one failure may be chance, but a child whose graphics
/// card was lost, say, fails from then on at every recording and is well otherwise.
constexpr int mostFailuresInARow = 2;

EngineSupervisor::Program programOf(const WhisperEngine::Settings& settings) {
    const auto processors = std::max(std::thread::hardware_concurrency(), 1U);
    return {.path = settings.program,
            .arguments = {"--model", settings.modelFile, "--threads", std::to_string(processors)}};
}

}  // namespace

WhisperEngine::WhisperEngine(const Settings& settings, Log& log)
    : m_modelId(whisperModelId(settings.modelFile)),
      m_languages(languagesOf(settings.modelFile)),
      m_log(log),
      m_supervisor(programOf(settings), settings.times, settings.onReadyChange, log) {}

std::string WhisperEngine::modelId() const {
    return m_modelId;
}

bool WhisperEngine::understands(std::string_view language) const {
    const auto code = whisperLanguage(language);
    if (m_languages == ModelLanguages::English) return code == "auto" || code == "en";
    return code && (m_languages == ModelLanguages::All || code != "yue");
}

bool WhisperEngine::isReady() const {
    return m_supervisor.isReady();
}

tl::expected<Transcript, EngineError> WhisperEngine::transcribe(const SpeechRequest& request) {
    if (request.samples.get().empty()) return Transcript();
    const auto child = m_supervisor.child(request.deadline);
    if (!child) return tl::unexpected(child.error());
    const std::string language = m_languages == ModelLanguages::English
                                     ? "en"
                                     : whisperLanguage(request.language).value_or("auto");
    auto transcript = WhisperClient(child->address, m_log).transcribe(request, language);
    if (!isUnwell(child->number, transcript)) return transcript;
    // Perhaps because of this recording, which is therefore not tried again.
    m_supervisor.replace(*child);
    return m_supervisor.isStopping() ? tl::unexpected(EngineError::Stopping) : transcript;
}

bool WhisperEngine::isUnwell(std::uint64_t child,
                             const tl::expected<Transcript, EngineError>& transcript) {
    // It finishes, or drops, what nobody waits for by itself.
    if (!transcript && transcript.error() == EngineError::Abandoned) return false;
    const std::lock_guard lock(m_mutex);
    if (transcript || child != m_askedChild) m_failuresInARow = 0;
    m_askedChild = child;
    const bool hasFailed = !transcript && transcript.error() == EngineError::Failed;
    if (hasFailed) return ++m_failuresInARow >= mostFailuresInARow;
    return !transcript;
}

void WhisperEngine::stop() {
    m_supervisor.stop();
}

}  // namespace quietlark
