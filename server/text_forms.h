#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quietlark {

/// A number with as many digits after the point as `places` says, such as "4.50".
[[nodiscard]] std::string decimals(double number, int places = 2);

/// With the letters of ASCII in lower case.
[[nodiscard]] std::string lowerCase(std::string_view text);

/// A computer's name as names are compared: in lower case, and without a final dot.
[[nodiscard]] std::string hostNameForm(std::string_view name);

/// Two digits of lower-case hexadecimal.
[[nodiscard]] std::string hexadecimal(std::uint8_t byte);

}  // namespace quietlark
