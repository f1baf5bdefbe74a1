#pragma once

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <QObject>
#include <QStringList>
#include <QTimer>

#include "platform/registered_service.h"

namespace quietlark {

/// A service manager with one service, which does what the test says. Answers through the event
/// loop, or when the test says so (holdAnswers()).
class FakeRegisteredService final : public RegisteredService {
public:
    ServiceStatus current = ServiceStatus::notRegistered;

    /// From now on both requests fail with this sentence; nothing ends that.
    std::optional<ServiceError> failure;

    [[nodiscard]] ServiceStatus status() const override { return current; }

    [[nodiscard]] Cancellable registerService(Done onDone) override {
        m_requests << QStringLiteral("register");
        return answerLater(ServiceStatus::enabled, std::move(onDone));
    }

    [[nodiscard]] Cancellable unregisterService(Done onDone) override {
        m_requests << QStringLiteral("unregister");
        return answerLater(ServiceStatus::notRegistered, std::move(onDone));
    }

    /// "register" and "unregister", in order.
    [[nodiscard]] const QStringList& requests() const { return m_requests; }

    /// From now on requests wait for answer().
    void holdAnswers() { m_holding = true; }

    /// Carries out the oldest request that waits, and answers it.
    void answer() {
        if (m_waiting.empty()) return;
        auto request = std::move(m_waiting.front());
        m_waiting.erase(m_waiting.begin());
        request();
    }

private:
    Cancellable answerLater(ServiceStatus wanted, Done onDone) {
        auto callback = std::make_shared<Done>(std::move(onDone));
        m_waiting.emplace_back([this, wanted, callback] { carryOut(wanted, *callback); });
        if (!m_holding) QTimer::singleShot(0, &m_context, [this] { answer(); });
        return Cancellable([callback] { *callback = nullptr; });
    }

    void carryOut(ServiceStatus wanted, const Done& onDone) {
        if (!failure && current == ServiceStatus::requiresApproval &&
            wanted == ServiceStatus::enabled) {
            return finish(onDone, tl::unexpected(ServiceError{QStringLiteral("Not allowed.")}));
        }
        if (!failure && current == ServiceStatus::notFound && wanted == ServiceStatus::enabled) {
            return finish(onDone, tl::unexpected(ServiceError{QStringLiteral("Not installed.")}));
        }
        if (failure) return finish(onDone, tl::unexpected(*failure));
        if (current == ServiceStatus::notRegistered || current == ServiceStatus::enabled)
            current = wanted;
        finish(onDone, {});
    }

    static void finish(const Done& onDone, const tl::expected<void, ServiceError>& result) {
        // A copy, since the callback may destroy its own handle.
        if (const Done callback = onDone) callback(result);
    }

    QObject m_context;
    QStringList m_requests;
    std::vector<std::function<void()>> m_waiting;
    bool m_holding = false;
};

}  // namespace quietlark
