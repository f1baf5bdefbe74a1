#pragma once

#include <functional>

#include <QString>
#include <tl/expected.hpp>

#include "platform/cancellable.h"

namespace quietlark {

/// Brings the model and puts it in its place, while the main thread does other things.
class ModelFetcher {
public:
    /// Nothing, once the model is installed; otherwise the message for the user.
    using Outcome = tl::expected<void, QString>;

    struct Handlers {
        /// Bytes there are so far, and in all; the latter -1 while nobody has said.
        std::function<void(qint64 written, qint64 expected)> onProgress;
        std::function<void(Outcome)> onEnd;  ///< the last call
    };

    virtual ~ModelFetcher() = default;

    /// Continues what an earlier attempt has left, or starts anew. The handlers run on the main
    /// thread, never before the call returns. Destroying the handle cancels: what has been received
    /// is kept for the next attempt. The models directory is there. Main thread.
    [[nodiscard]] virtual Cancellable fetch(Handlers handlers) = 0;

    /// Runs `action` on the main thread, never before the call returns, once no fetch that has been
    /// cancelled before is at work on the files any more. Main thread.
    virtual void whenStill(std::function<void()> action) = 0;
};

}  // namespace quietlark
