#pragma once

#include <string>

#include <tl/expected.hpp>

#include "server/speech_engine.h"

namespace quietlark {

/// Has the engine transcribe a WAV file several times, and tells how fast it was, as lines of
/// "key=value". The error is a sentence for the user.
[[nodiscard]] tl::expected<std::string, std::string> benchReport(SpeechEngine& engine,
                                                                 const std::string& wavFile,
                                                                 const std::string& language);

}  // namespace quietlark
