#include "server/speech_segments.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <numeric>

namespace quietlark {
namespace {

using Samples = std::span<const std::int16_t>;

constexpr std::size_t longestSegmentSeconds = 20;
constexpr std::size_t shortestSegmentSeconds = 10;
/// What is left for the last piece, which would be hard to understand if it were shorter.
constexpr std::size_t shortestRestSeconds = 2;
constexpr std::size_t stepsPerSecond = 20;
constexpr std::size_t stepsPerPause = 4;

std::uint64_t loudness(Samples samples) {
    return std::accumulate(
        samples.begin(), samples.end(), std::uint64_t{0},
        [](std::uint64_t sum, std::int16_t sample) { return sum + std::abs(int{sample}); });
}

/// Where the quietest pause of `samples` has its middle; the first of several.
std::size_t quietestPlace(Samples samples, std::size_t step) {
    const std::size_t pause = stepsPerPause * step;
    std::size_t best = 0;
    auto lowest = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t begin = 0; begin + pause <= samples.size(); begin += step) {
        const std::uint64_t level = loudness(samples.subspan(begin, pause));
        if (level >= lowest) continue;
        lowest = level;
        best = begin + pause / 2;
    }
    return best;
}

}  // namespace

std::vector<Samples> speechSegments(Samples samples, std::uint32_t sampleRateHz) {
    const std::size_t longest = longestSegmentSeconds * sampleRateHz;
    const std::size_t shortest = shortestSegmentSeconds * sampleRateHz;
    std::vector<Samples> segments;
    while (samples.size() > longest) {
        const std::size_t end =
            std::min(longest, samples.size() - shortestRestSeconds * sampleRateHz);
        const std::size_t length =
            shortest +
            quietestPlace(samples.subspan(shortest, end - shortest), sampleRateHz / stepsPerSecond);
        segments.push_back(samples.first(length));
        samples = samples.subspan(length);
    }
    if (!samples.empty()) segments.push_back(samples);
    return segments;
}

}  // namespace quietlark
