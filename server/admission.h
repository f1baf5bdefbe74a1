#pragma once

#include <list>
#include <mutex>
#include <optional>

#include "server/server_limits.h"

namespace quietlark {

/// Counts the uploads in the house, so that there are never more than the limits let wait, nor more
/// bytes of them than memory has room for. The oldest always comes to its end. Any thread.
class Admission {
    struct Upload {
        std::uint64_t missingBytes;  ///< at most
        std::uint64_t receivedBytes = 0;
    };

public:
    /// One upload's, from enter() to leave().
    using Ticket = std::list<Upload>::iterator;

    explicit Admission(const ServerLimits& limits);

    /// Whether an upload that announces this size, or has at most this size, may come in; if so, it
    /// must leave() again. It takes no room yet: who announces much and sends little keeps nobody
    /// out.
    [[nodiscard]] std::optional<Ticket> enter(std::uint64_t announcedBytes);

    /// Whether there is room for so much more of an upload, beside what those that came before it
    /// need in order to end one after the other; if so, it is taken.
    [[nodiscard]] bool receive(Ticket upload, std::uint64_t bytes);

    /// Gives up an upload's place and the room for what was received of it.
    void leave(Ticket upload);

private:
    [[nodiscard]] bool hasRoomFor(Ticket upload, std::uint64_t bytes);

    const std::size_t m_mostUploads;
    const std::uint64_t m_mostBytes;
    std::mutex m_mutex;
    std::list<Upload> m_uploads;  // the oldest first
    std::uint64_t m_bytes = 0;    // of all of them
};

}  // namespace quietlark
