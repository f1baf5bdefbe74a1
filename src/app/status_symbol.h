#pragma once

#include <cstdint>

#include <QString>

#include "dictation/dictation_state.h"

namespace quietlark {

/// All that the status item's symbol depends on.
struct StatusFacts {
    bool onboardingComplete = false;
    bool allPermissionsGranted = false;
    bool isLocal = false;  ///< the user has chosen the server on this computer
    bool modelIsInstalled = false;
    bool serverIsStarting = false;
    bool serverNeedsApproval = false;
    bool serverIsStopped = false;
    DictationState::Case dictation = DictationState::Case::idle;
    std::int64_t animIdx = 0;  ///< frames since the animation began, at least 0
};

/// The name of the symbol that tells the user what matters most: first what keeps dictation from
/// working, then what dictation is doing.
[[nodiscard]] QString symbolFor(const StatusFacts& facts);

}  // namespace quietlark
