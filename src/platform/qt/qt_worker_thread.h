#pragma once

#include <optional>
#include <thread>

#include "platform/qt/qt_scheduler.h"

class QEventLoop;

namespace quietlark {

/// A thread with an event loop, for work that waits. Main thread.
class QtWorkerThread {
public:
    QtWorkerThread();
    /// Waits until everything that was posted has run and the thread has ended, with whatever
    /// libraries keep for each thread.
    ~QtWorkerThread();
    QtWorkerThread(const QtWorkerThread&) = delete;
    QtWorkerThread& operator=(const QtWorkerThread&) = delete;

    /// Runs on the thread what is posted to it; its other operations are for the thread itself.
    [[nodiscard]] Scheduler& scheduler() { return *m_scheduler; }

private:
    QEventLoop* m_loop = nullptr;  ///< of the thread
    // QThread::wait() returns while the system's thread is still at its end.
    std::thread m_thread;
    std::optional<QtScheduler> m_scheduler;
};

}  // namespace quietlark
