#pragma once

#include <string_view>

namespace quietlark {

enum class LogLevel { Info, Error };

/// The system log, under one subsystem and category fixed at construction. Any thread.
class Log {
public:
    virtual ~Log() = default;

    /// Writes one line of UTF-8 text, in full. Never fails and never blocks on a reader.
    virtual void write(LogLevel level, std::string_view line) = 0;
};

}  // namespace quietlark
