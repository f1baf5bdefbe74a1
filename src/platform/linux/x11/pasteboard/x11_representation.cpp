#include "platform/linux/x11/pasteboard/x11_representation.h"

#include <charconv>

namespace quietlark {

// Target, type and format stand one to a line. Names of atoms may hold any character, but a line
// break in the name of a type is nothing that any program uses.

CapturedType X11Representation::captured() const {
    const bool isPlain = type == target && format == 8;
    if (isPlain && target.find('\n') == std::string::npos) return {target, data};
    return {target + '\n' + type + '\n' + std::to_string(format), data};
}

X11Representation X11Representation::from(const CapturedType& captured) {
    const std::string& name = captured.type;
    const auto formatBreak = name.rfind('\n');
    const auto typeBreak = formatBreak == std::string::npos || formatBreak == 0
                               ? std::string::npos
                               : name.rfind('\n', formatBreak - 1);
    if (typeBreak == std::string::npos) return {name, name, 8, captured.data};

    unsigned format = 8;
    std::from_chars(name.data() + formatBreak + 1, name.data() + name.size(), format);
    return {name.substr(0, typeBreak), name.substr(typeBreak + 1, formatBreak - typeBreak - 1),
            static_cast<std::uint8_t>(format), captured.data};
}

}  // namespace quietlark
