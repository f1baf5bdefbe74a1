#include "server/speed_meter.h"

#include <algorithm>
#include <vector>

namespace quietlark {

std::optional<double> SpeedMeter::add(double audioSeconds, std::chrono::duration<double> elapsed) {
    if (audioSeconds < shortestAudioSeconds || elapsed.count() <= 0) return std::nullopt;
    const std::lock_guard lock(m_mutex);
    m_samples.push_back(audioSeconds / elapsed.count());
    if (m_samples.size() > mostSamples) m_samples.pop_front();
    std::vector<double> sorted(m_samples.begin(), m_samples.end());
    std::ranges::sort(sorted);
    const std::size_t middle = sorted.size() / 2;
    return sorted.size() % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

}  // namespace quietlark
