#pragma once

#include <chrono>
#include <functional>

#include "platform/cancellable.h"

class QObject;

namespace quietlark {

/// Time and the main queue. Tests run on virtual time through a scheduler of their own.
class Scheduler {
public:
    using Clock = std::chrono::steady_clock;

    virtual ~Scheduler() = default;

    /// The current time of a clock that never goes back. Any thread.
    [[nodiscard]] virtual Clock::time_point now() const = 0;

    /// Runs `action` once on the main thread, `delay` from now and never before the call returns.
    /// It does not run if `context` is gone by then. Main thread.
    virtual void after(std::chrono::milliseconds delay, QObject* context,
                       std::function<void()> action) = 0;

    /// Runs `action` on the main thread every `interval` from now on, the first time one interval
    /// from now, until the handle is destroyed; `action` itself may do that. Time that was missed
    /// is not made up for. Main thread.
    [[nodiscard]] virtual Cancellable every(std::chrono::milliseconds interval,
                                            std::function<void()> action) = 0;

    /// Runs `action` on the main thread as soon as its event loop gets to it, in the order of the
    /// calls. Any thread.
    virtual void post(std::function<void()> action) = 0;
};

}  // namespace quietlark
