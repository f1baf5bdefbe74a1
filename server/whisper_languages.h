#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quietlark {

/// The code by which Whisper's models know a language ("de" for "de", "DE", "de-AT" or "German");
/// "auto" for none and for "auto"; absent for a language that they do not know.
[[nodiscard]] std::optional<std::string> whisperLanguage(std::string_view name);

}  // namespace quietlark
