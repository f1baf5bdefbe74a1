#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "server/transcript.h"

namespace quietlark {

/// The forms in which a transcript is answered, as requests name them in response_format.
enum class TranscriptFormat { Json, Text, VerboseJson, Srt, Vtt };

/// The format of that name; Json for none.
[[nodiscard]] std::optional<TranscriptFormat> transcriptFormatOf(std::string_view name);

/// The media type of a format.
[[nodiscard]] std::string_view contentTypeOf(TranscriptFormat format);

/// The body of the answer. `audioSeconds` is how long the recording was.
[[nodiscard]] std::string formatted(const Transcript& transcript, TranscriptFormat format,
                                    double audioSeconds);

}  // namespace quietlark
