#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "local_server/model_fetcher.h"

namespace quietlark {

/// A fetch that goes as the test says.
class FakeModelFetcher final : public ModelFetcher {
public:
    [[nodiscard]] Cancellable fetch(Handlers handlers) override {
        ++m_fetchCount;
        m_running = std::make_shared<Handlers>(std::move(handlers));
        return Cancellable([this, weak = std::weak_ptr<Handlers>(m_running)] {
            if (weak.lock() == m_running) m_running.reset();
        });
    }

    void whenStill(std::function<void()> action) override {
        m_waiting.push_back(std::move(action));
    }

    /// What has been cancelled has ended, and everybody who waits for that is told.
    void becomeStill() {
        for (const auto& action : std::exchange(m_waiting, {}))
            action();
    }

    /// How many fetches have been started so far.
    [[nodiscard]] int fetchCount() const { return m_fetchCount; }
    [[nodiscard]] bool isFetching() const { return m_running != nullptr; }

    /// These do nothing when no fetch is under way.
    void report(qint64 written, qint64 expected) {
        if (m_running) m_running->onProgress(written, expected);
    }
    void succeed() { end({}); }
    void fail(const QString& message) { end(tl::unexpected(message)); }

private:
    void end(Outcome outcome) {
        if (const auto running = std::exchange(m_running, nullptr)) running->onEnd(outcome);
    }

    int m_fetchCount = 0;
    std::shared_ptr<Handlers> m_running;
    std::vector<std::function<void()>> m_waiting;
};

}  // namespace quietlark
