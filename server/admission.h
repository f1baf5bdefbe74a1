#pragma once

#include <mutex>

#include "server/server_limits.h"

namespace quietlark {

/// Counts the uploads in the house, so that there are never more than the limits let wait, nor more
/// bytes of them than memory has room for. Any thread.
class Admission {
public:
    explicit Admission(const ServerLimits& limits);

    /// Whether an upload of this size may come in; if so, it must leave() again.
    [[nodiscard]] bool enter(std::uint64_t bytes);

    void leave(std::uint64_t bytes);

private:
    const std::size_t m_mostUploads;
    const std::uint64_t m_mostBytes;
    std::mutex m_mutex;
    std::size_t m_uploads = 0;
    std::uint64_t m_bytes = 0;
};

}  // namespace quietlark
