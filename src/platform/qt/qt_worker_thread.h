#pragma once

#include <QThread>

#include "platform/qt/qt_scheduler.h"

namespace quietlark {

/// A thread with an event loop, for work that waits. Main thread.
class QtWorkerThread {
public:
    QtWorkerThread();
    /// Waits until everything that was posted has run.
    ~QtWorkerThread();
    QtWorkerThread(const QtWorkerThread&) = delete;
    QtWorkerThread& operator=(const QtWorkerThread&) = delete;

    /// Runs on the thread what is posted to it; its other operations are for the thread itself.
    [[nodiscard]] Scheduler& scheduler() { return m_scheduler; }

private:
    QThread m_thread;
    QtScheduler m_scheduler{m_thread};
};

}  // namespace quietlark
