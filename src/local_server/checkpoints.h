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
/// one before, since each makes the disk write its journal; but a writer that has to wait for one
/// does not wait for that. With more than `maxUnsavedBytes` unsaved a writer waits, however slow
/// the disk, so that a power cut costs no more than that and the last piece. Only what comes faster
/// than a gigabit per second, as from this computer itself, is let through for the patience after
/// the begin of a save, and waits then: it would take twice the time, and is soon fetched again.
class Checkpoints {
public:
    static constexpr qint64 strideBytes = 256 * 1024;
    static constexpr qint64 maxUnsavedBytes = 384 * 1024;
    static constexpr std::chrono::milliseconds minInterval{4};

    /// What comes too fast to wait at once, and for how long after the begin of a save it need not.
    struct Haste {
        /// A line of a gigabit per second brings 125 MB at the most.
        qint64 bytesPerSecond = 150'000'000;
        /// May have arrived before anybody looked.
        qint64 headStartBytes = 4 * 1024 * 1024;
        std::chrono::milliseconds patience{10};

        /// Whether so many bytes in so much time are too fast.
        [[nodiscard]] bool isOn(qint64 bytes, std::chrono::duration<double> elapsed) const;
    };

    /// Makes the first `bytes` of the file survive a power cut, and says so in writing.
    using Save = std::function<FileOutcome(qint64 bytes)>;

    /// So many bytes have been saved before.
    Checkpoints(qint64 savedBytes, Save save);
    /// With another idea of what is too fast.
    Checkpoints(qint64 savedBytes, Save save, Haste haste);
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

    /// So many survive a power cut. To be asked once it has stopped.
    [[nodiscard]] qint64 savedBytes() const { return m_savedBytes; }

private:
    using Clock = std::chrono::steady_clock;

    void run();
    [[nodiscard]] bool isDue() const;
    [[nodiscard]] bool mustWait() const;

    const Save m_save;
    const Haste m_haste;
    const qint64 m_firstBytes;  ///< had been saved at the begin
    const Clock::time_point m_begin = Clock::now();
    std::mutex m_mutex;
    std::condition_variable m_due;      ///< there is something to save, or it is over
    std::condition_variable m_changed;  ///< a save began or ended
    qint64 m_savedBytes;                ///< guarded by m_mutex, as are the next six
    qint64 m_writtenBytes;
    Clock::time_point m_lastBegin;  ///< of a save
    bool m_isIdle = true;           ///< the thread waits until something is due
    bool m_isWaitedFor = false;
    bool m_isOver = false;
    FileOutcome m_outcome;
    std::thread m_thread;
};

}  // namespace quietlark
