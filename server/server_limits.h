#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace quietlark {

/// How much one client, or all of them together, may ask of the server.
struct ServerLimits {
    std::uint64_t bodyBytes = std::uint64_t{64} << 20U;  ///< of one upload
    std::chrono::seconds audio{3600};                    ///< of one recording
    std::chrono::seconds time{600};  ///< from the arrival of a recording to its answer
    std::size_t waiting = 64;        ///< uploads that wait for their turn
    /// Of all uploads together, as far as they have arrived; one alone may be larger.
    std::uint64_t totalBytes = std::uint64_t{1} << 30U;
};

}  // namespace quietlark
