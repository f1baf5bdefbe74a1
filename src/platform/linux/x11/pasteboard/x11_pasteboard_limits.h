#pragma once

#include <chrono>
#include <cstddef>

namespace quietlark {

/// How long other programs are waited for, and how much is taken from them.
struct X11PasteboardLimits {
    /// For a whole snapshot; what has not come by then is left out.
    std::chrono::milliseconds snapshot{500};
    /// For the paste target to read the dictated text after restore().
    std::chrono::milliseconds grace{1000};
    /// For a reader to take the next piece of a large transfer.
    std::chrono::milliseconds piece{5000};
    /// For a clipboard manager, and for readers that have begun, when the program ends.
    std::chrono::milliseconds handover{500};
    /// All representations of a snapshot together.
    std::size_t snapshotBytes = std::size_t{256} * 1024 * 1024;
};

}  // namespace quietlark
