#include "platform/linux/journal/log_line.h"

#include <cstdint>

namespace quietlark {
namespace {

void appendEscape(std::string& out, std::uint8_t character) {
    switch (character) {
        case '\n':
            out += "\\n";
            return;
        case '\r':
            out += "\\r";
            return;
        case '\t':
            out += "\\t";
            return;
        default:
            constexpr std::string_view digits = "0123456789abcdef";
            out += {'\\', 'x', digits[character >> 4U], digits[character & 0x0fU]};
    }
}

}  // namespace

std::string singleLine(std::string_view text) {
    constexpr std::uint8_t c1Lead = 0xc2;
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<std::uint8_t>(text[i]);
        const auto next = static_cast<std::uint8_t>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte < 0x20 || byte == 0x7f) {
            appendEscape(line, byte);
        } else if (byte == c1Lead && next >= 0x80 && next <= 0x9f) {
            appendEscape(line, next);
            ++i;
        } else {
            line += text[i];
        }
    }
    return line;
}

}  // namespace quietlark
