#include "app/launch_gate.h"

#include <utility>

namespace quietlark {

void LaunchGate::wait(std::function<bool()> isKnown, std::function<void()> launch) {
    const auto deadline = m_scheduler.now() + patience;
    m_looking = m_scheduler.every(
        lookInterval, [this, deadline, isKnown = std::move(isKnown), launch = std::move(launch)] {
            if (m_scheduler.now() < deadline && !isKnown()) return;
            m_looking.cancel();
            launch();
        });
}

}  // namespace quietlark
