#include "hotkeys/hotkey_capture_coordinator.h"

#include <utility>

namespace quietlark {

void HotkeyCaptureCoordinator::begin(KeyCapture::Handler handler,
                                     std::function<void()> onPreempted) {
    if (const auto preempt = std::exchange(m_preemptHandler, nullptr)) preempt();
    m_monitor.reset();
    m_preemptHandler = std::move(onPreempted);
    m_monitor = m_keys.capture(std::move(handler));
}

void HotkeyCaptureCoordinator::end() {
    m_monitor.reset();
    m_preemptHandler = nullptr;
}

}  // namespace quietlark
