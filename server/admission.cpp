#include "server/admission.h"

#include <algorithm>

namespace quietlark {

// One is being transcribed while the others wait.
Admission::Admission(const ServerLimits& limits)
    : m_mostUploads(limits.waiting + 1), m_mostBytes(limits.totalBytes) {}

std::optional<Admission::Ticket> Admission::enter(std::uint64_t announcedBytes) {
    const std::lock_guard lock(m_mutex);
    // The first one always fits: its own size has been checked.
    const bool fits = m_uploads.empty() ||
                      (m_uploads.size() < m_mostUploads && m_bytes + announcedBytes <= m_mostBytes);
    if (!fits) return std::nullopt;
    return m_uploads.insert(m_uploads.end(), {.missingBytes = announcedBytes});
}

bool Admission::receive(Ticket upload, std::uint64_t bytes) {
    const std::lock_guard lock(m_mutex);
    if (!hasRoomFor(upload, bytes)) return false;
    upload->missingBytes -= std::min(bytes, upload->missingBytes);
    upload->receivedBytes += bytes;
    m_bytes += bytes;
    return true;
}

bool Admission::hasRoomFor(Ticket upload, std::uint64_t bytes) {
    if (upload == m_uploads.begin()) return true;
    if (m_bytes + bytes > m_mostBytes) return false;
    std::uint64_t room = m_mostBytes - m_bytes - bytes;
    for (auto older = m_uploads.begin(); older != upload; ++older) {
        if (older->missingBytes > room) return false;
        // Which it gives back at its end.
        room += older->receivedBytes;
    }
    return true;
}

void Admission::leave(Ticket upload) {
    const std::lock_guard lock(m_mutex);
    m_bytes -= upload->receivedBytes;
    m_uploads.erase(upload);
}

}  // namespace quietlark
