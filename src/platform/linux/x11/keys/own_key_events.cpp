#include "platform/linux/x11/keys/own_key_events.h"

namespace quietlark {

namespace {

/// Request numbers wrap around after 2^32.
bool isEarlier(std::uint32_t one, std::uint32_t other) {
    return static_cast<std::int32_t>(one - other) < 0;
}

}  // namespace

bool OwnKeyEvents::claim(const RawKeyEvent& event) {
    while (!m_expected.empty() && isEarlier(m_expected.front().sequence, event.sequence)) {
        m_expected.pop_front();
    }
    if (m_expected.empty() || m_expected.front() != event) return false;
    m_expected.pop_front();
    return true;
}

}  // namespace quietlark
