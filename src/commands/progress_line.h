#pragma once

#include <chrono>
#include <iosfwd>
#include <optional>

#include <QtGlobal>

#include "commands/download_progress.h"
#include "platform/scheduler.h"

namespace quietlark {

/// Shows how a download goes: on a terminal a bar that changes in place, elsewhere a line now and
/// then.
class ProgressLine {
public:
    using TimePoint = Scheduler::Clock::time_point;

    static constexpr std::chrono::milliseconds barInterval{100};
    static constexpr std::chrono::seconds lineInterval{10};

    /// `columns` of the terminal; absent when it is none.
    ProgressLine(std::ostream& messages, std::optional<int> columns);

    /// Shows the last report, unless it has shown one just now.
    void report(TimePoint now, qint64 bytesWritten, qint64 totalBytes);

    /// Takes the bar away, so that something else can be written.
    void clear();

private:
    std::ostream& m_messages;
    const std::optional<int> m_columns;
    DownloadProgress m_progress;
    std::optional<TimePoint> m_shownAt;
};

}  // namespace quietlark
