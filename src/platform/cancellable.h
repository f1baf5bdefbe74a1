#pragma once

#include <functional>
#include <utility>

namespace quietlark {

/// Owns something that is under way: a question not yet answered, an event monitor. Destroying it,
/// or calling cancel(), withdraws it; its callback does not run any more. Main thread only.
class Cancellable {
public:
    Cancellable() = default;
    explicit Cancellable(std::function<void()> onCancel) : m_onCancel(std::move(onCancel)) {}
    Cancellable(Cancellable&& other) noexcept
        : m_onCancel(std::exchange(other.m_onCancel, nullptr)) {}
    Cancellable& operator=(Cancellable&& other) noexcept {
        if (this != &other) {
            cancel();
            m_onCancel = std::exchange(other.m_onCancel, nullptr);
        }
        return *this;
    }
    Cancellable(const Cancellable&) = delete;
    Cancellable& operator=(const Cancellable&) = delete;
    ~Cancellable() { cancel(); }

    /// Withdraws it now; harmless when that has happened already.
    void cancel() {
        if (auto onCancel = std::exchange(m_onCancel, nullptr)) onCancel();
    }

private:
    std::function<void()> m_onCancel;
};

}  // namespace quietlark
