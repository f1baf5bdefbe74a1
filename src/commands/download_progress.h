#pragma once

#include <chrono>
#include <optional>

#include <QString>
#include <QtGlobal>

#include "platform/scheduler.h"

namespace quietlark {

/// Tells in one line how a download goes: how far, how fast, how long still.
class DownloadProgress {
public:
    using TimePoint = Scheduler::Clock::time_point;

    /// Takes note of a report. The rate is that of the last five seconds or so, and counts nothing
    /// that was there before the first report.
    void report(TimePoint now, qint64 bytesWritten, qint64 totalBytes);

    /// Per second; absent until a second has passed since the first report.
    [[nodiscard]] std::optional<double> bytesPerSecond() const { return m_bytesPerSecond; }

    /// Such as "45 %  700 MB of 1.6 GB  11 MB/s  1:20 left"; only the bytes while the size is
    /// unknown.
    [[nodiscard]] QString line() const;

    /// The line with a bar before it, `columns` wide at most.
    [[nodiscard]] QString bar(int columns) const;

private:
    void updateRate(TimePoint now);
    [[nodiscard]] std::optional<double> share() const;
    [[nodiscard]] QString timeLeft() const;

    qint64 m_bytesWritten = 0;
    qint64 m_totalBytes = 0;
    std::optional<TimePoint> m_measuredFrom;
    qint64 m_measuredFromBytes = 0;
    std::optional<double> m_bytesPerSecond;
};

}  // namespace quietlark
