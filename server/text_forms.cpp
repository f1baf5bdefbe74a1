#include "server/text_forms.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace quietlark {

std::string decimals(double number, int places) {
    // The largest number has 309 digits before the point.
    std::array<char, 400> text{};
    std::snprintf(text.data(), text.size(), "%.*f", places, number);
    return text.data();
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char character) {
        const bool isUpper = character >= 'A' && character <= 'Z';
        return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lower;
}

std::string hostNameForm(std::string_view name) {
    if (name.ends_with('.')) name.remove_suffix(1);
    return lowerCase(name);
}

std::string hexadecimal(std::uint8_t byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    return {digits[byte >> 4U], digits[byte & 0x0fU]};
}

}  // namespace quietlark
