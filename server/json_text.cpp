#include "server/json_text.h"

#include <cstdint>

#include "server/text_forms.h"

namespace quietlark {

std::string jsonString(std::string_view text) {
    std::string json = "\"";
    for (const char character : text) {
        const auto byte = static_cast<std::uint8_t>(character);
        if (character == '"' || character == '\\') {
            json += {'\\', character};
        } else if (byte < 0x20) {
            json += "\\u00" + hexadecimal(byte);
        } else {
            json += character;
        }
    }
    return json + '"';
}

}  // namespace quietlark
