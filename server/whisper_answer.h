#pragma once

#include <optional>
#include <string_view>

#include "server/transcript.h"

namespace quietlark {

/// What whisper.cpp's server answers in verbose_json; absent when it is anything else, such as one
/// of its errors. Bytes that are no UTF-8, which the model may yield in the middle of a character,
/// become U+FFFD. The text is that of all segments without the lines into which it is broken, for
/// it may be broken within a word.
[[nodiscard]] std::optional<Transcript> parseWhisperAnswer(std::string_view body);

}  // namespace quietlark
