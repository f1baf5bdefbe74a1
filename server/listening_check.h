#pragma once

#include <optional>
#include <string>

namespace quietlark {

/// Why a SpeechServer could not bind() to this address and port now, by the system's words; absent
/// when it could. Takes the address for an instant, in which nobody can connect to it.
[[nodiscard]] std::optional<std::string> listeningObstacle(const std::string& host, int port);

}  // namespace quietlark
