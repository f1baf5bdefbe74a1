#pragma once

#include <string>

#include <tl/expected.hpp>

#include "server/speech_engine.h"

namespace quietlark {

/// Has the engine transcribe a few seconds of built-in speech, and answers how fast it did: seconds
/// of sound per second. The error, when no text came of it, is a sentence for the user.
[[nodiscard]] tl::expected<double, std::string> measureSpeed(SpeechEngine& engine);

}  // namespace quietlark
