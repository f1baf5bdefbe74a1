#pragma once

#include <QString>

namespace quietlark::avahi {

// Avahi's numbers for "whichever there is".
inline constexpr int anyInterface = -1;
inline constexpr int anyProtocol = -1;
inline constexpr unsigned noFlags = 0;

/// Avahi writes types and domains without the final dot.
[[nodiscard]] inline QString withoutFinalDot(QString name) {
    if (name.endsWith(u'.')) name.chop(1);
    return name;
}

}  // namespace quietlark::avahi
