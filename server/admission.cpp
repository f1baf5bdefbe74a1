#include "server/admission.h"

namespace quietlark {

// One is being transcribed while the others wait.
Admission::Admission(const ServerLimits& limits)
    : m_mostUploads(limits.waiting + 1), m_mostBytes(limits.totalBytes) {}

bool Admission::enter(std::uint64_t bytes) {
    const std::lock_guard lock(m_mutex);
    // The first one always fits: its own size has been checked.
    const bool fits =
        m_uploads == 0 || (m_uploads < m_mostUploads && m_bytes + bytes <= m_mostBytes);
    if (!fits) return false;
    ++m_uploads;
    m_bytes += bytes;
    return true;
}

void Admission::leave(std::uint64_t bytes) {
    const std::lock_guard lock(m_mutex);
    --m_uploads;
    m_bytes -= bytes;
}

}  // namespace quietlark
