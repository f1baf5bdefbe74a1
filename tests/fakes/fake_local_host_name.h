#pragma once

#include <memory>
#include <utility>

#include "platform/local_host_name.h"

namespace quietlark {

/// A computer whose name is found out when the test says so.
class FakeLocalHostName final : public LocalHostName {
public:
    [[nodiscard]] Cancellable lookUp(Handler onAnswer) override {
        ++m_questions;
        m_open = std::make_shared<Handler>(std::move(onAnswer));
        return Cancellable([this, asked = std::weak_ptr(m_open)] {
            if (m_open == asked.lock()) m_open.reset();
        });
    }

    /// Answers the open question; absent for a computer without a name.
    void answer(const std::optional<QString>& name) {
        if (const auto open = std::exchange(m_open, nullptr)) (*open)(name);
    }

    /// How often anybody has asked.
    [[nodiscard]] int questions() const { return m_questions; }

private:
    std::shared_ptr<Handler> m_open;
    int m_questions = 0;
};

}  // namespace quietlark
