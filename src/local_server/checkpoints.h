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
/// one before, since each makes the disk write its journal. So at up to a gigabit per second, and
/// with a disk that takes some milliseconds, a power cut costs less than 1 MiB.
class Checkpoints {
public:
    static constexpr qint64 strideBytes = 512 * 1024;
    static constexpr std::chrono::milliseconds minInterval{4};

    /// Makes the first `bytes` of the file survive a power cut, and says so in writing.
    using Save = std::function<FileOutcome(qint64 bytes)>;

    /// So many bytes have been saved before.
    Checkpoints(qint64 savedBytes, Save save);
    /// Stops.
    ~Checkpoints();
    Checkpoints(const Checkpoints&) = delete;
    Checkpoints& operator=(const Checkpoints&) = delete;

    /// Says how much has been written by now.
    void reach(qint64 bytes);

    /// Waits for a save under way, after which there is none any more. Answers what went wrong with
    /// the first that failed; none is tried after it, since a system tells of a lost write once.
    FileOutcome stop();

private:
    void run();

    const Save m_save;
    qint64 m_savedBytes;  ///< of the thread
    std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_writtenBytes = 0;  ///< guarded by m_mutex, as are the next two
    bool m_isOver = false;
    FileOutcome m_outcome;
    std::thread m_thread;
};

}  // namespace quietlark
