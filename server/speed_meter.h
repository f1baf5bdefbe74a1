#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>

namespace quietlark {

/// How fast the engine is, as seconds of sound per second: the median of the latest recordings, so
/// that neither one odd recording nor the first ones decide. Any thread.
class SpeedMeter {
public:
    /// Recordings shorter than this say more about the cost of starting than about speed.
    static constexpr double shortestAudioSeconds = 1;
    /// How many of the latest recordings count.
    static constexpr std::size_t mostSamples = 15;

    /// Notes what a recording took. Answers the new speed, if it counts.
    std::optional<double> add(double audioSeconds, std::chrono::duration<double> elapsed);

private:
    std::mutex m_mutex;
    std::deque<double> m_samples;
};

}  // namespace quietlark
