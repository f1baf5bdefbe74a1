#include "server/admission.h"

namespace quietlark {

// One is being transcribed while the others wait.
Admission::Admission(const ServerLimits& limits)
    : m_mostUploads(limits.waiting + 1), m_mostBytes(limits.totalBytes) {}

bool Admission::enter(std::uint64_t announcedBytes) {
    const std::lock_guard lock(m_mutex);
    // The first one always fits: its own size has been checked.
    const bool fits =
        m_uploads == 0 || (m_uploads < m_mostUploads && m_bytes + announcedBytes <= m_mostBytes);
    if (fits) ++m_uploads;
    return fits;
}

bool Admission::receive(std::uint64_t bytes) {
    const std::lock_guard lock(m_mutex);
    const bool fits = m_uploads == 1 || m_bytes + bytes <= m_mostBytes;
    if (fits) m_bytes += bytes;
    return fits;
}

void Admission::leave(std::uint64_t receivedBytes) {
    const std::lock_guard lock(m_mutex);
    --m_uploads;
    m_bytes -= receivedBytes;
}

}  // namespace quietlark
