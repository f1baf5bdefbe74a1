#pragma once

#include <atomic>
#include <optional>
#include <string>
#include <vector>

#include "server/speech_engine.h"
#include "server/text_forms.h"

namespace quietlark {

/// Answers what a test told it to, at once.
class FakeSpeechEngine final : public SpeechEngine {
public:
    tl::expected<std::string, EngineError> result = "hello world";
    std::optional<std::vector<Transcript::Word>> words;

    [[nodiscard]] std::string modelId() const override { return "fake-model"; }

    [[nodiscard]] bool understands(std::string_view language) const override {
        return language.empty() || language == "en";
    }

    [[nodiscard]] bool isReady() const override { return m_isReady; }

    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override {
        m_sampleCount = request.samples.get().size();
        ++m_transcriptions;
        m_asked = std::string(request.prompt) + " " +
                  (request.temperature ? decimals(*request.temperature) : "-") +
                  (request.translates ? " translated" : "");
        if (m_isStopped) return tl::unexpected(EngineError::Stopping);
        if (!result) return tl::unexpected(result.error());
        const double seconds = static_cast<double>(m_sampleCount) / sampleRateHz;
        return Transcript{.text = *result,
                          .language = "english",
                          .segments = {{0, seconds, *result}},
                          .words = words};
    }

    void setReady(bool isReady) { m_isReady = isReady; }

    void stop() override { m_isStopped = true; }

    /// How long the last recording was.
    [[nodiscard]] std::size_t sampleCount() const { return m_sampleCount; }
    /// What else the last request asked for; for one client at a time.
    [[nodiscard]] const std::string& asked() const { return m_asked; }
    [[nodiscard]] int transcriptions() const { return m_transcriptions; }

private:
    std::atomic<std::size_t> m_sampleCount = 0;
    std::atomic<int> m_transcriptions = 0;
    std::string m_asked;
    std::atomic<bool> m_isStopped = false;
    std::atomic<bool> m_isReady = true;
};

}  // namespace quietlark
