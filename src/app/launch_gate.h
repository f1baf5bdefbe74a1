#pragma once

#include <chrono>
#include <functional>

#include "platform/scheduler.h"

namespace quietlark {

/// Holds the launch back until the system has told what the launch looks at. Asked too early, a
/// permission seems to be missing and the local server not to be registered. Main thread.
class LaunchGate {
public:
    /// Between looks at whether everything is known.
    static constexpr std::chrono::milliseconds lookInterval{20};
    /// For how long at most the launch waits, so that a system that never answers costs the user
    /// no more than a moment.
    static constexpr std::chrono::milliseconds patience{2000};

    explicit LaunchGate(Scheduler& scheduler) : m_scheduler(scheduler) {}

    /// Calls `launch` once, from the main queue, when `isKnown` answers true or patience ends;
    /// never if the gate is gone by then.
    void wait(std::function<bool()> isKnown, std::function<void()> launch);

private:
    Scheduler& m_scheduler;
    Cancellable m_looking;
};

}  // namespace quietlark
