#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/log.h"

namespace quietlark {

/// Keeps what was written, for a test to read. Any thread.
class FakeLog final : public Log {
public:
    struct Line {
        LogLevel level;
        std::string text;
        bool operator==(const Line&) const = default;
    };

    void write(LogLevel level, std::string_view line) override {
        const std::lock_guard lock(m_mutex);
        m_lines.push_back({level, std::string(line)});
    }

    /// Every line so far, oldest first.
    [[nodiscard]] std::vector<Line> lines() const {
        const std::lock_guard lock(m_mutex);
        return m_lines;
    }

    /// Whether some line holds `text`.
    [[nodiscard]] bool contains(std::string_view text) const {
        const auto all = lines();
        return std::any_of(all.begin(), all.end(), [text](const Line& line) {
            return line.text.find(text) != std::string::npos;
        });
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Line> m_lines;
};

}  // namespace quietlark
