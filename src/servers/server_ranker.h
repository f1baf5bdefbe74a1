#pragma once

#include <optional>
#include <vector>

#include "servers/mdns_browser.h"
#include "servers/server_recommendation.h"

namespace quietlark {

class HardwareProfile;

/// How a server compares with this computer, where the difference is one to notice.
enum class SpeedHint { faster, slower };

/// Compares this computer's estimated speed with what servers say of theirs. Main thread.
class ServerRanker {
public:
    /// From this multiple of this computer's speed a server counts as faster, and up to that one
    /// as slower: wider than what rank() goes by, as not every difference can be felt.
    static constexpr double fasterFrom = 1.25;
    static constexpr double slowerUpTo = 0.8;

    explicit ServerRanker(const HardwareProfile& hardware);

    /// The fastest of the servers and this computer, by any margin; of equals, this computer or
    /// the earlier server. A server that does not say how fast it is never wins.
    [[nodiscard]] ServerRecommendation rank(const std::vector<MDNSBrowser::Entry>& remotes) const;

    /// Absent when either speed is unknown.
    [[nodiscard]] std::optional<SpeedHint> speedHint(const MDNSBrowser::Entry& entry) const;

private:
    [[nodiscard]] LocalCandidate local() const;

    const HardwareProfile& m_hardware;
};

}  // namespace quietlark
