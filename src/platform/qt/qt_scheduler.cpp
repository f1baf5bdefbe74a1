#include "platform/qt/qt_scheduler.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

namespace quietlark {

namespace {

// What QTimer can hold: 24 days.
constexpr std::chrono::milliseconds longestDelay{std::numeric_limits<int>::max()};

}  // namespace

Scheduler::Clock::time_point QtScheduler::now() const {
    return Clock::now();
}

void QtScheduler::after(std::chrono::milliseconds delay, QObject* context,
                        std::function<void()> action) {
    const auto wait = std::clamp(delay, std::chrono::milliseconds::zero(), longestDelay);
    // A coarse timer may fire up to a twentieth too early.
    QTimer::singleShot(wait, Qt::PreciseTimer, context, std::move(action));
}

void QtScheduler::post(std::function<void()> action) {
    bool wasEmpty = false;
    {
        const std::lock_guard lock(m_mutex);
        wasEmpty = m_posted.empty();
        m_posted.push_back(std::move(action));
    }
    // One event fetches all that has gathered by the time it arrives.
    if (wasEmpty) QCoreApplication::postEvent(&m_waker, new QEvent(QEvent::User));
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

bool QtScheduler::Waker::event(QEvent* event) {
    if (event->type() != QEvent::User) return QObject::event(event);
    m_scheduler.runPosted();
    return true;
}

}  // namespace quietlark
