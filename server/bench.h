#pragma once

#include <cstdint>
#include <string>

#include <tl/expected.hpp>

#include "server/speech_engine.h"

namespace quietlark {

/// Has the engine transcribe a WAV file of at most `mostBytes` several times, and tells how fast it
/// was, as lines of "key=value". The error is a sentence for the user.
[[nodiscard]] tl::expected<std::string, std::string> benchReport(SpeechEngine& engine,
                                                                 const std::string& wavFile,
                                                                 const std::string& language,
                                                                 std::uint64_t mostBytes);

}  // namespace quietlark
