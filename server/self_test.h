#pragma once

#include <string>

#include <tl/expected.hpp>

#include "server/speech_engine.h"

namespace quietlark {

/// Has the engine transcribe a few seconds of built-in speech twice, and answers how fast it was
/// the second time: seconds of sound per second. The first time may have waited for a model to be
/// loaded. The error, when no text came of it, is a sentence for the user.
[[nodiscard]] tl::expected<double, std::string> measureSpeed(SpeechEngine& engine);

}  // namespace quietlark
