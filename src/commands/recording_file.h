#pragma once

#include <QString>
#include <tl/expected.hpp>

#include "audio/wav.h"

namespace quietlark {

/// Reads a WAV file from anywhere, or standard input for "-", and puts it into the form that is
/// uploaded: 16 kHz, one channel, 16 bits. Otherwise a sentence for the user. Waits for the file.
[[nodiscard]] tl::expected<WavBytes, QString> readRecording(const QString& path);

}  // namespace quietlark
