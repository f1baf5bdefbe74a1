#pragma once

#include <string>
#include <string_view>

namespace quietlark {

/// `text` as a JSON string with its quotation marks (RFC 8259, section 7).
[[nodiscard]] std::string jsonString(std::string_view text);

}  // namespace quietlark
