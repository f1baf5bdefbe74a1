#pragma once

#include <chrono>
#include <string>

#include <QString>

#include "transcription/resolved_server.h"
#include "transcription/transcriber_error.h"

namespace quietlark {

/// The log lines of one upload, in UTF-8. Seconds have two decimals.
namespace transcribe_log {

using Elapsed = std::chrono::duration<double>;

[[nodiscard]] std::string startLine(const ResolvedServer& server, std::size_t wavBytes,
                                    const QString& language);

/// Tells how many characters the text has, as a reader counts them (grapheme clusters, UAX #29),
/// and nothing of what it says.
[[nodiscard]] std::string okLine(Elapsed elapsed, const QString& text);

[[nodiscard]] std::string failedLine(Elapsed elapsed, const TranscriberError& error);

}  // namespace transcribe_log

}  // namespace quietlark
