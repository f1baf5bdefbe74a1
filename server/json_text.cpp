#include "server/json_text.h"

#include <cstdint>

namespace quietlark {

std::string jsonString(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string json = "\"";
    for (const char character : text) {
        const auto byte = static_cast<std::uint8_t>(character);
        if (character == '"' || character == '\\') {
            json += {'\\', character};
        } else if (byte < 0x20) {
            json += "\\u00";
            json += {digits[byte >> 4U], digits[byte & 0x0fU]};
        } else {
            json += character;
        }
    }
    return json + '"';
}

}  // namespace quietlark
