#include "server/measured_engine.h"

#include <utility>

namespace quietlark {

MeasuredEngine::MeasuredEngine(SpeechEngine& engine, std::function<void(double)> onSpeed)
    : m_engine(engine), m_onSpeed(std::move(onSpeed)) {}

std::string MeasuredEngine::modelId() const {
    return m_engine.modelId();
}

bool MeasuredEngine::understands(std::string_view language) const {
    return m_engine.understands(language);
}

bool MeasuredEngine::isReady() const {
    return m_engine.isReady();
}

tl::expected<Transcript, EngineError> MeasuredEngine::transcribe(const SpeechRequest& request) {
    // The wait for an engine that is just being started again says nothing about its speed.
    const bool counts = m_engine.isReady();
    const double seconds = static_cast<double>(request.samples.get().size()) / sampleRateHz;
    const auto start = std::chrono::steady_clock::now();
    auto transcript = m_engine.transcribe(request);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    if (!transcript || !counts) return transcript;
    if (const auto speed = m_meter.add(seconds, elapsed)) m_onSpeed(*speed);
    return transcript;
}

void MeasuredEngine::stop() {
    m_engine.stop();
}

}  // namespace quietlark
