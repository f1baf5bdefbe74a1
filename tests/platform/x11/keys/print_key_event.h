#pragma once

#include <ostream>

#include "platform/key_event_source.h"

namespace quietlark {

/// How a failed expectation shows an event.
inline void PrintTo(const KeyEvent& event, std::ostream* stream) {
    constexpr const char* kinds[] = {"KeyDown", "KeyUp", "FlagsChanged"};
    *stream << kinds[static_cast<int>(event.kind)] << " key " << event.keyCode << std::hex
            << " flags 0x" << event.modifierFlags << std::dec;
}

}  // namespace quietlark
