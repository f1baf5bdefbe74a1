#pragma once

#include <string>
#include <string_view>

namespace quietlark {

/// `text` with every control character (C0, DEL and the two-byte C1 of UTF-8) written as an escape
/// such as \n or \x1b, so that what a server answers can neither begin a line of its own in a log
/// nor drive the terminal that shows it. Everything else is unchanged.
[[nodiscard]] std::string singleLine(std::string_view text);

}  // namespace quietlark
