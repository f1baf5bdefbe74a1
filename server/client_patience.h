#pragma once

#include <chrono>
#include <cstdint>

namespace quietlark {

/// How much time a client may take.
struct ClientPatience {
    using Clock = std::chrono::steady_clock;

    std::chrono::milliseconds idle{15000};   ///< without asking anything
    std::chrono::milliseconds stall{10000};  ///< stopping in the middle of a request or an answer
    std::chrono::milliseconds head{15000};   ///< for all of a request's head
    /// For a body or an answer that falls behind the pace.
    std::chrono::milliseconds transfer{30000};
    std::uint64_t bytesPerSecond = 16384;  ///< the pace; above 0

    /// Until when a body or an answer may go on that had time until `deadline` before these bytes
    /// moved. They earn it the time that the pace gives them, but no reserve beyond `transfer`:
    /// what has arrived is no leave to dawdle, and what has only been announced earns nothing.
    [[nodiscard]] Clock::time_point extended(Clock::time_point deadline, std::uint64_t bytes,
                                             Clock::time_point now) const;
};

}  // namespace quietlark
