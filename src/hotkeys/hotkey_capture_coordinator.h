#pragma once

#include <functional>
#include <optional>

#include "platform/key_capture.h"

namespace quietlark {

/// Lets one capture field of the whole application have the keys. The program has one. Main thread.
class HotkeyCaptureCoordinator {
public:
    explicit HotkeyCaptureCoordinator(KeyCapture& keys) : m_keys(keys) {}

    /// Takes the keys from whoever has them, whose `onPreempted` runs first, and passes each key
    /// press to `handler` until end(), which `handler` may call.
    void begin(KeyCapture::Handler handler, std::function<void()> onPreempted);

    /// Leaves the keys to the windows again; harmless when they have them.
    void end();

private:
    KeyCapture& m_keys;
    std::optional<Cancellable> m_monitor;
    std::function<void()> m_preemptHandler;
};

}  // namespace quietlark
