#pragma once

#include <optional>

namespace quietlark {

/// How many characters fit on a line of the terminal that standard error goes to; absent when it
/// goes elsewhere. Any thread.
[[nodiscard]] std::optional<int> messageTerminalColumns();

}  // namespace quietlark
