#pragma once

#include <cstdint>
#include <vector>

#include <QString>

#include "audio/wav.h"

namespace quietlark {

/// A sentence spoken by a synthesiser (flite), one channel at 16 kHz. Say what the recogniser is
/// known to understand.
[[nodiscard]] std::vector<std::int16_t> speech(const QString& sentence);

/// Sound at 16 kHz as a file of another kind.
[[nodiscard]] WavBytes resampled(const std::vector<std::int16_t>& samples, std::uint32_t rateHz,
                                 std::uint16_t channels);
[[nodiscard]] WavBytes asUnsigned8(const std::vector<std::int16_t>& samples);
[[nodiscard]] WavBytes asFloat32(const std::vector<std::int16_t>& samples);

}  // namespace quietlark
