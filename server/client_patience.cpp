#include "server/client_patience.h"

#include <algorithm>

namespace quietlark {

ClientPatience::Clock::time_point ClientPatience::extended(Clock::time_point deadline,
                                                           std::uint64_t bytes,
                                                           Clock::time_point now) const {
    const std::chrono::duration<double> earned(static_cast<double>(bytes) /
                                               static_cast<double>(bytesPerSecond));
    const std::chrono::duration<double> reserve = transfer;
    return std::min(now + transfer, deadline + std::chrono::duration_cast<Clock::duration>(
                                                   std::min(earned, reserve)));
}

}  // namespace quietlark
