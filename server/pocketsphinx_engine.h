#pragma once

#include <atomic>
#include <memory>
#include <optional>

#include "server/speech_engine.h"

struct cmd_ln_s;
struct ps_decoder_s;

namespace quietlark {

/// The PocketSphinx recogniser with its model for American English. transcribe() serves one thread
/// at a time. The same recording always yields the same text.
class PocketSphinxEngine final : public SpeechEngine {
public:
    /// Loads the model that the distribution's package installs, which takes about 0.4 s; the error
    /// is a sentence for the user.
    [[nodiscard]] static tl::expected<std::unique_ptr<PocketSphinxEngine>, std::string> load(
        const std::string& modelFolder = defaultModelFolder());

    /// Where the package puts the model.
    [[nodiscard]] static std::string defaultModelFolder();

    [[nodiscard]] std::string modelId() const override;
    [[nodiscard]] bool understands(std::string_view language) const override;
    [[nodiscard]] bool isReady() const override { return !m_isStopping; }
    [[nodiscard]] tl::expected<Transcript, EngineError> transcribe(
        const SpeechRequest& request) override;
    void stop() override;

private:
    struct Deleter {
        void operator()(cmd_ln_s* settings) const;
        void operator()(ps_decoder_s* decoder) const;
    };
    using Settings = std::unique_ptr<cmd_ln_s, Deleter>;
    using Decoder = std::unique_ptr<ps_decoder_s, Deleter>;

    PocketSphinxEngine(Settings settings, Decoder decoder);
    [[nodiscard]] std::optional<std::string> textOf(std::span<const std::int16_t> samples);

    Settings m_settings;
    Decoder m_decoder;
    std::atomic<bool> m_isStopping = false;
};

}  // namespace quietlark
