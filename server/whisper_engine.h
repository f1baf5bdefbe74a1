#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

#include "server/engine_supervisor.h"
#include "server/whisper_model.h"

namespace quietlark {

/// Whisper, by way of whisper.cpp's server as a child process. transcribe() may be called on any
/// thread; the child takes one recording after the other.
class WhisperEngine final : public SpeechEngine {
public:
    struct Settings {
        std::string program;  ///< the path of whisper.cpp's server
        std::string modelFile;
        /// Hears when the child becomes ready or ceases to be, on a thread of its own.
        std::function<void(bool isReady)> onReadyChange = [](bool) {};
        EngineSupervisor::Times times = {};
    };

    /// Starts the child; the first transcribe() waits for it.
    WhisperEngine(const Settings& settings, Log& log);

    [[nodiscard]] std::string modelId() const override;
    [[nodiscard]] bool understands(std::string_view language) const override;
    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override;
    void stop() override;

private:
    // Whether a child of which that came had better be replaced.
    bool isUnwell(std::uint64_t child, const tl::expected<Transcript, EngineError>& transcript);

    const std::string m_modelId;
    const ModelLanguages m_languages;
    Log& m_log;
    std::mutex m_mutex;
    std::uint64_t m_askedChild = 0;  ///< the last one
    int m_failuresInARow = 0;        ///< of that child
    EngineSupervisor m_supervisor;
};

}  // namespace quietlark
