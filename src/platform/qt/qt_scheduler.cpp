#include "platform/qt/qt_scheduler.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QThread>
#include <QTimer>

namespace quietlark {

namespace {

// What QTimer can hold: 24 days.
constexpr std::chrono::milliseconds longestDelay{std::numeric_limits<int>::max()};

}  // namespace

QtScheduler::QtScheduler(QThread& thread) {
    m_waker.moveToThread(&thread);
}

Scheduler::Clock::time_point QtScheduler::now() const {
    return Clock::now();
}

void QtScheduler::after(std::chrono::milliseconds delay, QObject* context,
                        std::function<void()> action) {
    const auto wait = std::clamp(delay, std::chrono::milliseconds::zero(), longestDelay);
    // A coarse timer may fire up to a twentieth too early.
    QTimer::singleShot(wait, Qt::PreciseTimer, context, std::move(action));
}

Cancellable QtScheduler::every(std::chrono::milliseconds interval, std::function<void()> action) {
    auto* timer = new QTimer(&m_waker);
    timer->setTimerType(Qt::PreciseTimer);
    QObject::connect(timer, &QTimer::timeout, timer, std::move(action));
    timer->start(std::clamp(interval, std::chrono::milliseconds(1), longestDelay));
    // Later, since the action that is running may be what cancels.
    return Cancellable([timer = QPointer(timer)] {
        if (!timer) return;
        timer->stop();
        timer->deleteLater();
    });
}

void QtScheduler::post(std::function<void()> action) {
    std::unique_ptr<QEvent> wake;
    {
        const std::lock_guard lock(m_mutex);
        // One event fetches all that has gathered by the time it arrives. It is made under the
        // lock, so that the thread sanitizer, which does not see Qt's, knows how it changes hands.
        if (m_posted.empty()) wake = std::make_unique<QEvent>(QEvent::User);
        m_posted.push_back(std::move(action));
    }
    if (wake) QCoreApplication::postEvent(&m_waker, wake.release());
}

void QtScheduler::runPosted() {
    std::vector<std::function<void()>> actions;
    {
        const std::lock_guard lock(m_mutex);
        actions.swap(m_posted);
    }
    for (const auto& action : actions)
        action();
}

void QtScheduler::Waker::customEvent(QEvent*) {
    m_scheduler.runPosted();
}

}  // namespace quietlark
