#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

#include <QtGlobal>

#include "platform/durable_file.h"

namespace quietlark {

/// Saves, on a thread of its own, how far a file has come, while another thread goes on writing.
///
/// A save begins as soon as `strideBytes` are unsaved, but not sooner than `minInterval` after the
/// one before, since each makes the disk write its journal. While one takes longer than the
/// patience, no more than `maxUnsavedBytes` are written: so with a line of up to 200 megabits per
/// second a power cut costs less than that, however slow the disk; with a faster one what arrives
/// in the patience may come on top.
class Checkpoints {
public:
    static constexpr qint64 strideBytes = 256 * 1024;
    static constexpr qint64 maxUnsavedBytes = 512 * 1024;
    static constexpr std::chrono::milliseconds minInterval{4};
    static constexpr std::chrono::milliseconds defaultPatience{10};

    /// Makes the first `bytes` of the file survive a power cut, and says so in writing.
    using Save = std::function<FileOutcome(qint64 bytes)>;

    /// So many bytes have been saved before.
    Checkpoints(qint64 savedBytes, Save save, std::chrono::milliseconds patience = defaultPatience);
    /// Stops.
    ~Checkpoints();
    Checkpoints(const Checkpoints&) = delete;
    Checkpoints& operator=(const Checkpoints&) = delete;

    /// Says how much has been written by now, and waits while too much of it is unsaved. Answers
    /// what went wrong with the first save that failed; none is tried after it, since a system
    /// tells of a lost write once.
    [[nodiscard]] FileOutcome reach(qint64 bytes);

    /// Waits for a save under way, after which there is none any more. Answers as reach() does.
    FileOutcome stop();

private:
    using Clock = std::chrono::steady_clock;

    void run();
    [[nodiscard]] bool isDue() const;
    [[nodiscard]] bool mustWait() const;

    const Save m_save;
    const std::chrono::milliseconds m_patience;
    std::mutex m_mutex;
    std::condition_variable m_due;      ///< there is something to save, or it is over
    std::condition_variable m_changed;  ///< a save began or ended
    qint64 m_savedBytes;                ///< guarded by m_mutex, as are the next five
    qint64 m_writtenBytes;
    Clock::time_point m_lastBegin;  ///< of a save
    bool m_isIdle = true;           ///< the thread waits until something is due
    bool m_isOver = false;
    FileOutcome m_outcome;
    std::thread m_thread;
};

}  // namespace quietlark
