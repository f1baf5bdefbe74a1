#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/log.h"
#include "server/server_options.h"
#include "server/speech_engine.h"

namespace quietlark {

/// Makes the engines that the options name and this computer has.
class EngineChoice {
public:
    using Engine = tl::expected<std::unique_ptr<SpeechEngine>, std::string>;

    /// `environment` looks up PATH, HOME and XDG_DATA_HOME. A program that is named without its
    /// path is looked for in PATH, then in ~/.local/bin.
    EngineChoice(const ServerOptions& options, ServerOptions::Settings environment, Log& log);

    /// Whether whisper.cpp is asked for, or could serve and nothing else is asked for.
    [[nodiscard]] bool prefersWhisper() const;

    /// `onReadyChange` hears when its child becomes ready or ceases to be, on a thread of its own.
    /// The error is a sentence for the user.
    [[nodiscard]] Engine whisper(std::function<void(bool isReady)> onReadyChange) const;

    [[nodiscard]] static Engine pocketSphinx();

private:
    [[nodiscard]] std::string variable(const std::string& name) const;
    [[nodiscard]] std::string whisperProgram() const;
    [[nodiscard]] std::string modelFile() const;

    const ServerOptions& m_options;
    const ServerOptions::Settings m_environment;
    Log& m_log;
};

}  // namespace quietlark
