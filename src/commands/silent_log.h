#pragma once

#include "platform/log.h"

namespace quietlark {

/// For commands: they tell the user themselves what went wrong.
class SilentLog final : public Log {
public:
    void write(LogLevel, std::string_view) override {}
};

}  // namespace quietlark
