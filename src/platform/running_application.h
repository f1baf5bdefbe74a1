#pragma once

#include <functional>

#include <QString>
#include <tl/expected.hpp>

#include "platform/cancellable.h"
#include "platform/unavailable.h"

namespace quietlark {

/// What dictation can be told from outside the program.
enum class DictationOrder { start, stop, toggle, status };

/// How dictation stands once an order has been carried out.
struct DictationReport {
    QString state;    ///< "idle", "recording", "transcribing", "error" or "unreachable"
    QString message;  ///< one sentence for the user in the last two, else empty

    bool operator==(const DictationReport&) const = default;
};

/// The process of this program that runs in the user's session. Main thread; no call waits for it.
class RunningApplication {
public:
    using Answer = tl::expected<DictationReport, Unavailable>;

    virtual ~RunningApplication() = default;

    /// Has it show itself as if it had been opened anew. `onDone` runs once, on the main thread,
    /// never before the call returns.
    [[nodiscard]] virtual Cancellable reopen(
        std::function<void(const tl::expected<void, Unavailable>&)> onDone) = 0;

    /// Passes on an order. `onAnswer` as in reopen().
    [[nodiscard]] virtual Cancellable order(DictationOrder order,
                                            std::function<void(const Answer&)> onAnswer) = 0;
};

}  // namespace quietlark
