#pragma once

#include <map>
#include <memory>
#include <utility>

#include <QObject>
#include <QPointer>

#include "platform/scheduler.h"

namespace quietlark {

/// Virtual time: nothing runs but inside advance() or runPosted().
class FakeScheduler final : public Scheduler {
public:
    [[nodiscard]] Clock::time_point now() const override { return m_now; }

    void after(std::chrono::milliseconds delay, QObject* context,
               std::function<void()> action) override {
        m_due.emplace(m_now + delay, [context = QPointer<QObject>(context), action] {
            if (context) action();
        });
    }

    [[nodiscard]] Cancellable every(std::chrono::milliseconds interval,
                                    std::function<void()> action) override {
        auto running = std::make_shared<bool>(true);
        repeat(interval, std::move(action), running);
        return Cancellable([running] { *running = false; });
    }

    void post(std::function<void()> action) override { m_due.emplace(m_now, std::move(action)); }

    /// Lets `duration` pass, running what falls due at its own time, in order.
    void advance(std::chrono::milliseconds duration) {
        const auto end = m_now + duration;
        while (!m_due.empty() && m_due.begin()->first <= end) {
            auto next = m_due.extract(m_due.begin());
            m_now = next.key();
            next.mapped()();
        }
        m_now = end;
    }

    /// Runs what is due now, including what that adds.
    void runPosted() { advance(std::chrono::milliseconds(0)); }

private:
    void repeat(std::chrono::milliseconds interval, std::function<void()> action,
                std::shared_ptr<bool> running) {
        m_due.emplace(m_now + interval, [this, interval, action, running] {
            if (!*running) return;
            action();
            if (*running) repeat(interval, action, running);
        });
    }

    Clock::time_point m_now{};
    // Equal times keep the order in which they were added.
    std::multimap<Clock::time_point, std::function<void()>> m_due;
};

}  // namespace quietlark
