#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quietlark {

/// Cuts a recording into pieces of at most 20 s, in order and without a gap, each cut in the middle
/// of the quietest 0.2 s within reach, which is most likely between two words. A recogniser's time
/// and memory grow faster than the length of what it is given at once.
[[nodiscard]] std::vector<std::span<const std::int16_t>> speechSegments(
    std::span<const std::int16_t> samples, std::uint32_t sampleRateHz);

}  // namespace quietlark
