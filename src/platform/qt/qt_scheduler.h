#pragma once

#include <mutex>
#include <vector>

#include <QObject>

#include "platform/scheduler.h"

class QThread;

namespace quietlark {

/// Time by Qt's event loop. Create and destroy it on the main thread, once nothing posts any more.
class QtScheduler final : public Scheduler {
public:
    QtScheduler() = default;
    /// For a worker thread, which then takes the main thread's place for everything but creating
    /// and destroying it: the thread must have ended before.
    explicit QtScheduler(QThread& thread);

    [[nodiscard]] Clock::time_point now() const override;
    void after(std::chrono::milliseconds delay, QObject* context,
               std::function<void()> action) override;
    [[nodiscard]] Cancellable every(std::chrono::milliseconds interval,
                                    std::function<void()> action) override;
    void post(std::function<void()> action) override;

private:
    /// Receives the event that stands for "there is something posted".
    class Waker final : public QObject {
    public:
        explicit Waker(QtScheduler& scheduler) : m_scheduler(scheduler) {}

    protected:
        void customEvent(QEvent* event) override;

    private:
        QtScheduler& m_scheduler;
    };

    void runPosted();

    Waker m_waker{*this};
    std::mutex m_mutex;
    std::vector<std::function<void()>> m_posted;  ///< guarded by m_mutex
};

}  // namespace quietlark
