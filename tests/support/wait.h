#pragma once

#include <chrono>
#include <functional>

namespace quietlark {

/// Runs the event loop until `condition` holds, looking again after every event and every
/// millisecond. Answers false when it still does not hold after `limit`.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds limit = std::chrono::seconds(20));

/// The same on a thread that has no event loop: looks again at once.
[[nodiscard]] bool spinUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds limit = std::chrono::seconds(20));

}  // namespace quietlark
