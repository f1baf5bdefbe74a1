#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quietlark {

/// A whole file in the RIFF/WAVE format.
using WavBytes = std::vector<std::uint8_t>;

namespace WAV {

/// Wraps 16-bit PCM samples, interleaved by the caller, in the canonical 44-byte header. Any
/// thread. Sizes that do not fit the header's fields are a programming error and stop the program:
/// the byte rate (sampleRate x channels x 2) and the data size plus 36 must fit 32 bits, channels x
/// 2 must fit 16.
[[nodiscard]] WavBytes encode(std::span<const std::int16_t> int16Samples, std::uint32_t sampleRate,
                              std::uint16_t channels);

}  // namespace WAV
}  // namespace quietlark
