#pragma once

#include <QString>

namespace quietlark {

/// Names the time since the computer was started: the same for as long as it runs, another after a
/// crash or a power cut. Empty where the system does not tell. Any thread.
[[nodiscard]] QString bootSession();

}  // namespace quietlark
