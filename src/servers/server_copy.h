#pragma once

#include <cstddef>

#include <QString>

#include "servers/server_ranker.h"
#include "servers/server_recommendation.h"

namespace quietlark {

/// The sentences that tell the user how this computer and the network compare. Any thread.
namespace ServerCopy {

/// What there is to say when this computer is offered, beside `remoteCount` servers.
[[nodiscard]] QString localCard(const ServerRecommendation& recommendation, std::size_t remoteCount,
                                bool modelIsInstalled);

/// What there is to say when the network is offered.
[[nodiscard]] QString networkCard(const ServerRecommendation& recommendation,
                                  std::size_t remoteCount, bool initialScanIsDone);

[[nodiscard]] QString hint(SpeedHint hint);

}  // namespace ServerCopy

}  // namespace quietlark
