#pragma once

#include <mutex>

#include "server/server_limits.h"

namespace quietlark {

/// Counts the uploads in the house, so that there are never more than the limits let wait, nor more
/// bytes of them than memory has room for. Any thread.
class Admission {
public:
    explicit Admission(const ServerLimits& limits);

    /// Whether an upload that announces this size may come in; if so, it must leave() again. It
    /// takes no room yet: who announces much and sends little keeps nobody out.
    [[nodiscard]] bool enter(std::uint64_t announcedBytes);

    /// Whether there is room for so much more of an upload; if so, it is taken.
    [[nodiscard]] bool receive(std::uint64_t bytes);

    /// Gives up an upload's place and the room for the bytes of it that were received.
    void leave(std::uint64_t receivedBytes);

private:
    const std::size_t m_mostUploads;
    const std::uint64_t m_mostBytes;
    std::mutex m_mutex;
    std::size_t m_uploads = 0;
    std::uint64_t m_bytes = 0;
};

}  // namespace quietlark
