#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quietlark {

/// Many clients at once with requests of every kind, good and broken, for a server whose engine is
/// the stand-in of whisper.cpp: that one tells what it heard, so each answer can be matched with
/// its request.
class ServerLoad {
public:
    static constexpr int clients = 32;

    struct Result {
        /// Right ones, status 503 for the deadly one, and requests that were broken off as
        /// intended.
        int answers = 0;
        int lost = 0;                    ///< other good requests that got status 503
        std::vector<std::string> wrong;  ///< what else came of requests
    };

    /// The recording of request `deadly` kills the engine with SIGKILL when that has it.
    explicit ServerLoad(int port, std::optional<int> deadly = std::nullopt);

    /// Sends the requests from number `first` on; what a request is depends on its number alone.
    /// Returns when all are answered.
    [[nodiscard]] Result run(int first, int count) const;

private:
    class Client;

    const int m_port;
    const std::optional<int> m_deadly;
};

}  // namespace quietlark
